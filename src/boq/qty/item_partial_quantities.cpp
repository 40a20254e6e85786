#include "boq/qty/item_partial_quantities.h"

#include "boq/lv/project_lvs.h"
#include "boq/qty/tb_lv_teilmenge.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::boq {
namespace {

constexpr char kCounterKind = 'L';
constexpr std::string_view kCounterName = "LvTeilmeng";

[[noreturn]] void Fail(data::TStdDb& db, const std::string& what, int code) {
  throw EStoredLvError(db.BasePath() + "0: " + what + " (" + std::to_string(code) + ")");
}

void Write(TTbLvTeilmenge& rows, const std::string& what) {
  if (int result = rows.UpDateRec(); result != storage::kOk) Fail(rows.Db(), what, result);
}

}  // namespace

std::vector<t_LvTeilmenge_2700> PartialQuantitiesOf(data::TStdDb& lv_db, int32_t item_id) {
  std::vector<t_LvTeilmenge_2700> rows;
  TTbLvTeilmenge table(lv_db);
  if (int result = table.ListOf(item_id, rows); result != storage::kOk) {
    Fail(lv_db, "die Teilmengen können nicht gelesen werden", result);
  }
  return rows;
}

std::map<int32_t, std::vector<t_LvTeilmenge_2700>> AllPartialQuantities(data::TStdDb& lv_db) {
  TTbLvTeilmenge table(lv_db);
  std::vector<std::vector<uint8_t>> records;
  if (int result = table.GetBatch("", '4', records); result != storage::kOk) {
    Fail(lv_db, "die Teilmengen können nicht gelesen werden", result);
  }
  std::map<int32_t, std::vector<t_LvTeilmenge_2700>> by_item;
  for (const std::vector<uint8_t>& record : records) {
    const t_LvTeilmenge_2700 row = TTbLvTeilmenge::Of(record);
    by_item[row.IdLVBeschr].push_back(row);
  }
  return by_item;
}

uint16_t AddPartialQuantity(data::TStdDb& lv_db, TLvPos& item, double qty,
                            const std::string& source) {
  const int32_t item_id = item.LvBgBeschr.ID;
  const std::vector<t_LvTeilmenge_2700> existing = PartialQuantitiesOf(lv_db, item_id);
  const uint16_t number =
      existing.empty() ? 1 : static_cast<uint16_t>(existing.back().SzLVBeschr + 1);
  int32_t id = 0;
  data::TTbCounter counters(lv_db);
  if (int result = counters.NextId(kCounterKind, kCounterName, &id); result != storage::kOk) {
    Fail(lv_db, "für die Teilmenge gibt es keine neue Nummer", result);
  }
  TTbLvTeilmenge rows(lv_db);
  rows.InitRecord();
  rows.Rec().ID = id;
  rows.Rec().IdLVBeschr = item_id;
  rows.Rec().SzLVBeschr = number;
  rows.Rec().VMenge = qty;
  rows.Rec().PMenge = qty;
  rows.Rec().BimLvContainerCode.Set(source);
  Write(rows, "die Teilmenge kann nicht gespeichert werden");
  item.LvBeschr.KzTeilmengen = 1;
  return number;
}

bool SetPartialQuantity(data::TStdDb& lv_db, const TLvPos& item, uint16_t number, double qty) {
  TTbLvTeilmenge rows(lv_db);
  if (!rows.FindBySort(item.LvBgBeschr.ID, number)) return false;
  rows.Rec().VMenge = qty;
  rows.Rec().PMenge = qty;
  Write(rows, "die Teilmenge " + std::to_string(number) + " kann nicht gespeichert werden");
  return true;
}

bool RemovePartialQuantity(data::TStdDb& lv_db, const TLvPos& item, uint16_t number) {
  TTbLvTeilmenge rows(lv_db);
  if (!rows.FindBySort(item.LvBgBeschr.ID, number)) return false;
  if (int result = rows.DeleteRec(); result != storage::kOk) {
    Fail(lv_db, "die Teilmenge " + std::to_string(number) + " kann nicht gelöscht werden", result);
  }
  return true;
}

}  // namespace korvan::boq
