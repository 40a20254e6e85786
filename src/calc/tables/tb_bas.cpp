#include "calc/tables/tb_bas.h"

#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyText;
using data::RecordView;

namespace {

constexpr int kIdKeyWidth = 10;

int IdKey(const data::string10& id, char index, std::string& key) {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyText(id.Raw(), kIdKeyWidth);
  return static_cast<int>(key.size());
}

}  // namespace

TTbBASR::TTbBASR(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbBASR") {
  InitRecord();
}

void TTbBASR::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID.SetRaw(" ");
  Rec().MLA.IdWaehrung = data::kOwnerCurrencyId;
}

int TTbBASR::GetKeyString(RecordView record, char index, std::string& key) const {
  return IdKey(Of(record).ID, index, key);
}

std::string TTbBASR::CurrentRecordToString() const {
  return "Arbeitsschlüssel \"" + Rec().ID.Get() + "\"";
}

std::vector<t_KrBAS_729> TTbBASR::All() {
  std::vector<t_KrBAS_729> rows;
  for (bool found = GetFirstKey("", '1'); found; found = GetNextKey("", '1')) rows.push_back(Rec());
  return rows;
}

TTbBASP::TTbBASP(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbBASP") {
  InitRecord();
}

void TTbBASP::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID.SetRaw(" ");
  Rec().MLA.IdWaehrung = data::kOwnerCurrencyId;
}

int TTbBASP::GetKeyString(RecordView record, char index, std::string& key) const {
  return IdKey(Of(record).ID, index, key);
}

std::string TTbBASP::CurrentRecordToString() const {
  return "Arbeitsschlüssel \"" + Rec().ID.Get() + "\"";
}

int TTbBASP::InitTable(TTbBASR& master) {
  if (GetFirstKey("", '1')) return storage::kOk;
  for (const t_KrBAS_729& row : master.All()) {
    InitRecord();
    Rec().ID = row.ID;
    Rec().MLA = row.MLA;
    Rec().ZUWG = row.ZUWG;
    if (int result = UpDateRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

}  // namespace korvan::calc
