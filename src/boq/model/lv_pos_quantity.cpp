// The quantity of an item formed from its partial quantities.
#include <cmath>

#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos.h"
#include "boq/qty/tb_lv_teilmenge.h"
#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/records/null_values.h"
#include "data/records/wae_betrag.h"
#include "storage/result_codes.h"

namespace korvan::boq {
namespace {

bool SameQuantity(double a, double b) {
  return std::fabs(a - b) < data::kAmountTolerance;
}

[[noreturn]] void Fail(data::TStdDb& db, const std::string& what) {
  throw EStoredLvError(db.BasePath() + "0: " + what);
}

// The quantity a cost element gives its partial quantity: its item-quantity variable,
// when it has one; otherwise the quantity stays as stored.
double CostElementQuantity(data::TStdDb& lv_db, const t_LvTeilmenge_2700& row) {
  TTbVariable variables(lv_db);
  const std::string pattern =
      TTbVariable::OwnerKey(row.IdLkt, kOwnerCostElement) + std::string(1, kTypeItemQuantity);
  double quantity = row.VMenge;
  if (variables.GetKey(pattern, '2')) quantity = variables.Rec().Menge;
  return quantity;
}

// The determination of one partial quantity. Quantity formulas are not kept yet, so the
// partial quantity's own contract and forecast quantities are its sources.
TQtyDeterm DetermOf(data::TStdDb& lv_db, const t_LvTeilmenge_2700& row) {
  TQtyDeterm determ;
  determ.Id = row.ID;
  determ.Sort = row.SzLVBeschr;
  determ.Contract = row.VMenge;
  determ.Forecast = row.PMenge;
  determ.Billed = row.AMenge;
  if (row.IdLkt != data::kNullId) {
    determ.Kind = kDetermCostElement;
    determ.Contract = CostElementQuantity(lv_db, row);
  }
  return determ;
}

void WriteContractQuantity(data::TStdDb& lv_db, const TQtyDeterm& determ, int32_t item) {
  TTbLvTeilmenge rows(lv_db);
  if (!rows.FindBySort(item, determ.Sort)) {
    Fail(lv_db, "die Teilmenge " + std::to_string(determ.Id) + " ist verschwunden");
  }
  rows.Rec().VMenge = determ.Contract;
  if (int result = rows.UpDateRec(); result != storage::kOk) {
    Fail(lv_db, "die Teilmenge " + std::to_string(determ.Id) + " kann nicht gespeichert werden (" +
                    std::to_string(result) + ")");
  }
}

}  // namespace

const TQtyDeterm* TLvPos::GetQtyDeterm(int index) const {
  if (index < 0 || index >= static_cast<int>(QtyDeterms.size())) return nullptr;
  return &QtyDeterms[static_cast<std::size_t>(index)];
}

void TLvPos::SetQtyDeterm(int index, const TQtyDeterm& value) {
  if (index < 0) return;
  if (index >= static_cast<int>(QtyDeterms.size())) {
    QtyDeterms.resize(static_cast<std::size_t>(index) + 1);
  }
  QtyDeterms[static_cast<std::size_t>(index)] = value;
}

bool TLvPos::RecalcQuantity(data::TStdDb& lv_db, bool force_partial_quantities) {
  if (!IsQuantityItem()) return false;
  const int32_t item = LvBgBeschr.ID;
  std::vector<t_LvTeilmenge_2700> rows;
  TTbLvTeilmenge table(lv_db);
  if (int result = table.ListOf(item, rows); result != storage::kOk) {
    Fail(lv_db, "die Teilmengen der Position " + std::string(Oz()) +
                    " können nicht gelesen werden (" + std::to_string(result) + ")");
  }
  // An LV that asks for partial quantities leaves items without any to their own quantity.
  if (LvBeschr.KzTeilmengen == 0 && !(force_partial_quantities && !rows.empty())) return false;

  QtyDeterms.clear();
  double contract = 0.0;
  double forecast = 0.0;
  for (const t_LvTeilmenge_2700& row : rows) {
    const TQtyDeterm determ = DetermOf(lv_db, row);
    if (!SameQuantity(determ.Contract, row.VMenge)) WriteContractQuantity(lv_db, determ, item);
    contract += determ.Contract;
    forecast += determ.Forecast;
    QtyDeterms.push_back(determ);
  }
  bool changed = false;
  if (!SameQuantity(LvBeschr.FMenge, contract) || LvBeschr.KzTMgueltig == 0) {
    LvBeschr.FMenge = contract;
    LvBeschr.KzTMgueltig = 1;
    changed = true;
  }
  if (!SameQuantity(LvBeschr.VaMenge, forecast)) {
    LvBeschr.VaMenge = forecast;
    changed = true;
  }
  return changed;
}

}  // namespace korvan::boq
