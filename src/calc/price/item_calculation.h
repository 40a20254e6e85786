#pragma once

#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"

// The item calculation: an entry's five unit prices and its quantities give its totals.
// Unit prices are rounded to the LV's unit-price decimals, every total to the amount
// decimals of the currency, each from already rounded factors, so that a total is the
// exact decimal product as a person would compute it (docs/ARCHITECTURE.md, "Money").
//
// The description record of this installation does not keep the estimated unit-price
// components nor their switch (UseUPComps); the components therefore never replace an
// entered estimated unit price, and the awarded components only give their totals.
namespace korvan::calc {

class TItemCalculation {
 public:
  // `ep_decimals`: the LV's EPGenauigkeit.
  TItemCalculation(const boq::TAvaUiValueConverter& converter, int ep_decimals);

  // Calculates the entry at `index`; groups are left alone. A surcharge item takes its
  // base from the entries as they stand, so the entries it refers to come first.
  void Calculate(boq::TLVPosList& list, int index) const;
  // Every entry in list order.
  void CalculateAll(boq::TLVPosList& list) const;

  // The decimals unit prices are rounded to: the larger of the LV's and the currency's.
  int EpDecimals() const { return ep_decimals_; }
  int AmountDecimals() const { return amount_decimals_; }
  // A total rounded as the project rounds amounts.
  double RoundAmount(double value) const;
  // A unit price rounded to EpDecimals() as the project rounds amounts.
  double RoundUnitPrice(double value) const;

 private:
  void CalculateNormal(boq::TLvPos& item) const;
  void CalculateSurcharge(boq::TLVPosList& list, int index) const;

  const boq::TAvaUiValueConverter& converter_;
  int ep_decimals_;
  int amount_decimals_;
};

// Whether an entry is a surcharge item (ZuschArt A, S or Z): its unit prices are rates.
bool IsSurchargeItem(const boq::TLvPos& entry);

}  // namespace korvan::calc
