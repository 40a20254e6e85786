#include "award/tables/tb_angebot.h"

#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::award {

using data::KeyNumber;
using data::kNullId;

TTbAngebot::TTbAngebot(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbAngebot") {
  InitRecord();
}

void TTbAngebot::InitRecord() {
  TStdTB::InitRecord();
  t_Angebot_DB_VERSION_201501& rec = Rec();
  rec.ID = kNullId;
  rec.IdBieter = kNullId;
  rec.IdLvBgBeschr = kNullId;
  for (data::t_WaeBetrag* amount :
       {&rec.EP, &rec.GP, &rec.GPnachNL, &rec.GPPsch, &rec.GPExclNachlass, &rec.DiscountAmt}) {
    amount->IdWaehrung = data::kOwnerCurrencyId;
  }
  for (data::t_WaeBetrag& part : rec.EPAnteil) part.IdWaehrung = data::kOwnerCurrencyId;
  rec.Kennz = kMarkNone;
}

int TTbAngebot::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const t_Angebot_DB_VERSION_201501 rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.ID);
      break;
    case '2':
      key = KeyNumber(rec.IdBieter) + KeyNumber(rec.IdLvBgBeschr);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbAngebot::CurrentRecordToString() const {
  return data::Printf("Angebotszeile %d des Bieters %d (LV-Eintrag %d)", Rec().ID, Rec().IdBieter,
                      Rec().IdLvBgBeschr);
}

void TTbAngebot::DoValidateRecord(data::TDataCheck& check) {
  check.SetAvaRecordID(Rec().ID);
  check.CheckItemForMandatory("ID", Rec().ID, kNullId);
  check.CheckItemForMandatory("IdBieter", Rec().IdBieter, kNullId);
  check.CheckItemForMandatory("IdLvBgBeschr", Rec().IdLvBgBeschr, kNullId);
}

bool TTbAngebot::Find(int32_t bidder, int32_t lv_line) {
  if (bidder == kNullId || lv_line == kNullId) return false;
  return GetKey(KeyNumber(bidder) + KeyNumber(lv_line), '2');
}

int TTbAngebot::LinesOf(int32_t bidder, std::vector<t_Angebot_DB_VERSION_201501>& lines) {
  lines.clear();
  if (bidder == kNullId) return storage::kOk;
  std::vector<std::vector<uint8_t>> records;
  if (int result = GetBatch(KeyNumber(bidder), '2', records); result != storage::kOk) {
    return result;
  }
  lines.reserve(records.size());
  for (const std::vector<uint8_t>& record : records) lines.push_back(Of(record));
  return storage::kOk;
}

int TTbAngebot::DeleteAllOf(int32_t bidder) {
  if (bidder == kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(bidder), '2');
}

}  // namespace korvan::award
