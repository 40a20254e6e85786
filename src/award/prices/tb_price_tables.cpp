#include "award/prices/tb_price_tables.h"

#include "award/prices/price_table_types.h"
#include "data/common/cp1252.h"
#include "data/common/message_format.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

using data::KeyNumber;
using data::kNullId;

constexpr int kNameKeyWidth = 50;

std::string NameKey(std::string_view cp1252) {
  return data::KeyText(cp1252, kNameKeyWidth);
}

}  // namespace

TTbPrNiveau::TTbPrNiveau(data::TStdDb& db)
    : TTypedTB(db, kPrNiveauTableType, kLayoutVersion, "TTbPrNiveau") {
  InitRecord();
}

void TTbPrNiveau::InitRecord() {
  TStdTB::InitRecord();
  t_PrNiveau& rec = Rec();
  rec.Id = kNullId;
  rec.IdBezug = kNullId;
  rec.CreateUserId = kNullId;
  rec.ModifyUserId = kNullId;
  rec.CreateDate = data::TodayAsIntDate();
  rec.ModifyDate = rec.CreateDate;
}

int TTbPrNiveau::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const t_PrNiveau rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.Id);
      break;
    case '2':
      key = NameKey(rec.Bez.Raw()) + KeyNumber(rec.Id);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbPrNiveau::CurrentRecordToString() const {
  return data::Printf("Preisniveau %d \"%s\"", Rec().Id, Rec().Bez.Get().c_str());
}

bool TTbPrNiveau::Find(int32_t id) {
  return id != kNullId && GetKey(KeyNumber(id), '1');
}

std::optional<t_PrNiveau> TTbPrNiveau::FindByName(const std::string& name) {
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(NameKey(data::Utf8ToCp1252(name)), '2', records) != storage::kOk) {
    return std::nullopt;
  }
  for (const std::vector<uint8_t>& record : records) {
    const t_PrNiveau level = Of(record);
    if (level.Bez.Get() == name) return level;
  }
  return std::nullopt;
}

TTbPrEntry::TTbPrEntry(data::TStdDb& db)
    : TTypedTB(db, kPrEntryTableType, kLayoutVersion, "TTbPrEntry") {
  InitRecord();
}

void TTbPrEntry::InitRecord() {
  TStdTB::InitRecord();
  t_PrEntry& rec = Rec();
  rec.Id = rec.IdPrNiveau = rec.IdBezug = rec.IdIdxBezug = kNullId;
  rec.IdProjekt = rec.IdBieter = rec.CreateUserId = rec.ModifyUserId = kNullId;
  rec.ProzFak = 1.0;
  rec.Wert.IdWaehrung = data::kOwnerCurrencyId;
  rec.CreateDate = data::TodayAsIntDate();
  rec.ModifyDate = rec.CreateDate;
}

int TTbPrEntry::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const t_PrEntry rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.Id);
      break;
    case '2':
      key = KeyNumber(rec.IdPrNiveau) + KeyNumber(rec.IdBezug);
      break;
    case '3':
      key = KeyNumber(rec.IdIdxBezug) + KeyNumber(rec.Id);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbPrEntry::CurrentRecordToString() const {
  return data::Printf("Preiseintrag %d (Niveau %d, Bezug %d)", Rec().Id, Rec().IdPrNiveau,
                      Rec().IdBezug);
}

bool TTbPrEntry::Find(int32_t id) {
  return id != kNullId && GetKey(KeyNumber(id), '1');
}

bool TTbPrEntry::FindOf(int32_t level, int32_t item) {
  if (level == kNullId || item == kNullId) return false;
  return GetKey(KeyNumber(level) + KeyNumber(item), '2');
}

}  // namespace korvan::award
