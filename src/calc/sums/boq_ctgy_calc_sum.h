#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/price/item_calculation.h"
#include "data/records/null_values.h"

// The sum run of an LV: the items' totals summed into their groups and into the LV header,
// with the discounts and lump sums of every group and of the LV. Works on the LV in memory;
// whoever loaded the list writes the changed entries and the header back.
namespace korvan::calc {

// What a sum run found besides the totals.
struct TSumRunResult {
  // Some top-level entry stands deeper than level 1: its group is missing, so the groups'
  // totals lack it (the LV total still counts it).
  bool entries_without_parent = false;
  int changed_entries = 0;  // entries whose record the run changed
};

class TBoqCtgyCalcSum {
 public:
  // `converter` rounds as the project rounds; the unit-price decimals are the LV's.
  // `only_marked`: when some entry is marked, only marked items count.
  TBoqCtgyCalcSum(boq::TLVPosList& list, const boq::TAvaUiValueConverter& converter,
                  bool only_marked = false);

  // Runs the sum: the tree's parent links from the OZs, the group kinds, every item
  // calculated, every group summed bottom-up with its discount or lump sum, then the
  // LV's totals with its own discount or lump sum. `contract`: only items of this contract
  // reach the awarded totals (0 or the null id: all).
  TSumRunResult Calculate(int32_t contract = data::kNullId);

 private:
  struct Totals;

  bool Counts(const boq::TLvPos& item) const;
  bool PassesContract(const boq::TLvPos& item) const;
  Totals ItemTotals(const boq::TLvPos& item) const;
  Totals FinishGroup(boq::TLvPos& group, const Totals& children) const;
  void ApplyGroupDiscount(boq::TLvPos& group) const;
  void SetCarryOvers(const std::vector<int>& parent,
                     const std::vector<std::array<double, 3>>& carried);
  void SetLvTotals(const Totals& top, const Totals& billed);
  void ApplyLvDiscount();
  double Round(double value) const { return calculation_.RoundAmount(value); }
  // The amount less `percent` percent, each part rounded as the project rounds.
  double LessPercent(double amount, double percent) const;

  boq::TLVPosList& list_;
  const boq::TAvaUiValueConverter& converter_;
  TItemCalculation calculation_;
  bool only_marked_;
  bool any_marked_ = false;
  int32_t contract_ = data::kNullId;
};

}  // namespace korvan::calc
