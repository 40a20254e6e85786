#include "calc/tables/tb_zuschlag.h"

#include "calc/model/cost_types.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;
using data::TStdDb;
using data::TStdTB;

namespace {

// The system's blank code of an unset one-letter field.
constexpr char kBlank = ' ';

std::string KindKey(char kalk_art, char kza) {
  return std::string{kalk_art, kza};
}

int NoKey(std::string& key) {
  key.clear();
  return -1;
}

}  // namespace

TTbZuR::TTbZuR(TStdDb& db, char table_type) : TTypedTB(db, table_type, kLayoutVersion, "TTbZuR") {
  InitRecord();
}

void TTbZuR::InitRecord() {
  TStdTB::InitRecord();
  Rec().KZKALKART = kBlank;
  Rec().KZKA = kBlank;
}

int TTbZuR::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') return NoKey(key);
  const t_KrZU row = Of(record);
  key = KindKey(row.KZKALKART, row.KZKA);
  return static_cast<int>(key.size());
}

std::string TTbZuR::CurrentRecordToString() const {
  return std::string("Zuschlag ") + Rec().KZKALKART + "/" + Rec().KZKA;
}

int TTbZuR::InitTable() {
  for (const TDefaultSurcharge& row : DefaultSurcharges()) {
    if (GetKey(KindKey(row.kalk_art, row.kza), '1')) continue;
    InitRecord();
    Rec().KZKALKART = row.kalk_art;
    Rec().KZKA = row.kza;
    Rec().ZU = row.percent;
    if (int result = UpDateRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

std::vector<t_KrZU> TTbZuR::All() {
  std::vector<t_KrZU> rows;
  for (bool found = GetFirstKey("", '1'); found; found = GetNextKey("", '1')) rows.push_back(Rec());
  return rows;
}

std::optional<double> TTbZuR::Find(char kalk_art, char kza) {
  if (!GetKey(KindKey(kalk_art, kza), '1')) return std::nullopt;
  const double percent = Rec().ZU;
  return percent;
}

TTbZuP::TTbZuP(TStdDb& db, char table_type) : TTypedTB(db, table_type, kLayoutVersion, "TTbZuP") {
  InitRecord();
}

void TTbZuP::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDLV = data::kNullId;
  Rec().KZKALKART = kBlank;
  Rec().KZKA = kBlank;
}

int TTbZuP::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') return NoKey(key);
  const t_KpZU row = Of(record);
  key = KeyNumber(row.IDLV) + KindKey(row.KZKALKART, row.KZKA);
  return static_cast<int>(key.size());
}

std::string TTbZuP::CurrentRecordToString() const {
  return "Zuschlag LV " + std::to_string(Rec().IDLV) + " " + Rec().KZKALKART + "/" + Rec().KZKA;
}

int TTbZuP::InitTable(int32_t lv, TTbZuR& master) {
  if (ExistsRec(KeyNumber(lv), '1')) return storage::kOk;
  for (const t_KrZU& row : master.All()) {
    if (int result = Set(lv, row.KZKALKART, row.KZKA, row.ZU); result != storage::kOk) {
      return result;
    }
  }
  return storage::kOk;
}

std::vector<t_KpZU> TTbZuP::AllOf(int32_t lv) {
  std::vector<t_KpZU> rows;
  const std::string pattern = KeyNumber(lv);
  for (bool found = GetFirstKey(pattern, '1'); found; found = GetNextKey(pattern, '1')) {
    rows.push_back(Rec());
  }
  return rows;
}

std::optional<double> TTbZuP::Find(int32_t lv, char kalk_art, char kza) {
  if (!GetKey(KeyNumber(lv) + KindKey(kalk_art, kza), '1')) return std::nullopt;
  const double percent = Rec().ZU;
  return percent;
}

int TTbZuP::Set(int32_t lv, char kalk_art, char kza, double percent) {
  if (!GetKey(KeyNumber(lv) + KindKey(kalk_art, kza), '1')) {
    InitRecord();
    Rec().IDLV = lv;
    Rec().KZKALKART = kalk_art;
    Rec().KZKA = kza;
  }
  Rec().ZU = percent;
  return UpDateRec();
}

int TTbZuP::DeleteAllOf(int32_t lv) {
  if (lv == data::kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(lv), '1');
}

}  // namespace korvan::calc
