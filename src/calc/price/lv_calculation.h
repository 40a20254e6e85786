#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

#include "boq/model/lv_pos_list.h"
#include "calc/model/cost_types.h"
#include "calc/price/item_calculation.h"
#include "calc/tables/tb_aupos.h"
#include "calc/tables/tb_bas.h"
#include "calc/tables/tb_ends.h"
#include "calc/tables/tb_mittellohn.h"
#include "calc/tables/tb_zuschlag.h"
#include "data/tables/std_db.h"

// The calculation of one LV by cost elements with fixed surcharges per cost type (method
// Z): the LV's settings copied from the master on first use, the cost elements of its
// items, and the calculated unit prices they give.
namespace korvan::calc {

// A calculation table could not be read or written, or the LV is calculated by a
// method this installation cannot compute yet.
class ECalcError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Per cost type (result order) an amount per unit of the item.
using TCostAmounts = std::array<double, kResultCostTypes>;

// What the cost elements of one item give per unit of the item.
struct TItemCosts {
  TCostAmounts direct{};     // direct cost per cost type
  TCostAmounts surcharge{};  // percentage per cost type
  TCostAmounts price{};      // direct cost with its surcharge
  double direct_total = 0.0;
  double price_total = 0.0;
  double wage_hours = 0.0;  // of the time lines
  bool HasElements() const;
};

class TLvCalculation {
 public:
  // `project`: the project's DB_KP, `master`: the installation's DB_KR, both open. With
  // `copy_settings` the master settings are copied to the LV when it has none yet (and
  // an empty master surcharge table gets its defaults first); without, such an LV is
  // calculated with the master's settings and nothing is written. ECalcError when a
  // copy cannot be written.
  TLvCalculation(data::TStdDb& project, data::TStdDb& master, int32_t lv, bool copy_settings);

  // The surcharge percentages of method Z per cost type; the wage's is derived from the
  // average wage (0 while the project has no work key with a wage).
  const TCostAmounts& Surcharges() const { return surcharges_; }
  // Prices the items with other surcharges from now on (those of the end-sum method).
  void UseSurcharges(const TCostAmounts& percentages) { surcharges_ = percentages; }

  // The cost elements of an item description and what they give.
  TItemCosts CostsOf(int32_t id_beschr);
  // Sets the direct cost per unit of one cost type of an item description (0 removes
  // it); ECalcError when it cannot be written.
  void SetCostElement(int32_t id_beschr, TResultIndex type, double amount);
  // Sets the wage hours per unit of an item description on its wage line (made with no
  // amount when there is none; 0 hours and no wage removes it); ECalcError when it cannot
  // be written.
  void SetWageHours(int32_t id_beschr, double hours);

  // Sets one item's direct cost and calculated unit price from its cost elements; false,
  // and the item unchanged, when it has none (a fixed price) or is no item.
  bool UpdateCalculatedPrice(boq::TLvPos& entry, const TItemCalculation& calculation);
  // "Kalkulierte EP aktualisieren": every item (L, P, U) with cost elements gets its
  // direct cost (EinzelkostenEP) and its calculated unit price (AngebotsEP) rounded to
  // the unit-price decimals; the list is recalculated after. Items without cost
  // elements keep their prices (fixed prices). `progress` is told (done, total).
  void UpdateCalculatedPrices(boq::TLVPosList& list, const TItemCalculation& calculation,
                              const std::function<void(int, int)>& progress = {});

 private:
  void CopySettings();
  void LoadSurcharges();
  // The key of the sub-item that carries the cost elements entered per unit, made when
  // missing.
  std::string DirectSubItem(int32_t id_beschr);

  data::TStdDb& project_;
  data::TStdDb& master_;
  int32_t lv_;
  TTbZuP surcharges_table_;
  TTbAUPos lines_;
  TCostAmounts surcharges_{};
};

}  // namespace korvan::calc
