#include "billing/tables/tb_abzug.h"

#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::billing {
namespace {

using data::KeyNumber;
using data::kNullId;

constexpr char kDeductionCounterKind = 'J';
constexpr char kDeductionCounter[] = "Abzug";

std::string OwnerKey(char owner_kind, int32_t owner) {
  return std::string(1, owner_kind) + KeyNumber(owner);
}

}  // namespace

TTbAbzug::TTbAbzug(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbAbzug") {
  InitRecord();
}

void TTbAbzug::InitRecord() {
  TStdTB::InitRecord();
  TAbzug& rec = Rec();
  rec.ID = kNullId;
  rec.IDBezug = kNullId;
  rec.KzBezug = kDeductionOfContract;
  rec.AbzugBetrag.IdWaehrung = data::kOwnerCurrencyId;
  rec.KzBruttoNetto = kNetDeduction;
  rec.Typ = kAllocationDeduction;
  rec.SubTyp = kOtherDeduction;
}

int TTbAbzug::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const TAbzug rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.ID);
      break;
    case '2':
      key = OwnerKey(rec.KzBezug, rec.IDBezug) + KeyNumber(rec.ID);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbAbzug::CurrentRecordToString() const {
  return data::Printf("Abzug %d von %c %d", Rec().ID, Rec().KzBezug, Rec().IDBezug);
}

void TTbAbzug::DoValidateRecord(data::TDataCheck& check) {
  check.SetAvaRecordID(Rec().ID);
  check.CheckItemForMandatory("ID", Rec().ID, kNullId);
  check.CheckItemForMandatory("IDBezug", Rec().IDBezug, kNullId);
  check.CheckItemForCharSelector("KzBezug", Rec().KzBezug, Rec().KzBezug, "VR",
                                 "V=Vertrag, R=Rechnung", data::TRepair::kClarify);
  check.CheckItemForCharSelector("KzBruttoNetto", Rec().KzBruttoNetto, kNetDeduction, "BN",
                                 "B=brutto, N=netto");
  check.CheckItemForCharSelector("SubTyp", Rec().SubTyp, kOtherDeduction, "LS",
                                 "L=leistungsmindernde Abzüge, S=sonstige Abzüge");
}

int TTbAbzug::NewAbzug(char owner_kind, int32_t owner) {
  int32_t id = 0;
  data::TTbCounter counters(Db());
  if (int result = counters.NextId(kDeductionCounterKind, kDeductionCounter, &id);
      result != storage::kOk) {
    return result;
  }
  InitRecord();
  Rec().ID = id;
  Rec().IDBezug = owner;
  Rec().KzBezug = owner_kind;
  return storage::kOk;
}

bool TTbAbzug::Find(int32_t id) {
  return id != kNullId && GetKey(KeyNumber(id), '1');
}

std::vector<TAbzug> TTbAbzug::ListOf(char owner_kind, int32_t owner) {
  std::vector<TAbzug> deductions;
  if (owner == kNullId) return deductions;
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(OwnerKey(owner_kind, owner), '2', records) != storage::kOk) return deductions;
  for (const std::vector<uint8_t>& record : records) deductions.push_back(Of(record));
  return deductions;
}

}  // namespace korvan::billing
