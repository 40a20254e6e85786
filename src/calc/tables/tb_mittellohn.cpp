#include "calc/tables/tb_mittellohn.h"

#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

namespace {
// The master table holds a single row under this key.
constexpr const char* kSingleRowKey = "1";
}  // namespace

TTbMLohnR::TTbMLohnR(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbMLohnR") {
  InitRecord();
}

int TTbMLohnR::GetKeyString(RecordView record, char index, std::string& key) const {
  (void)record;
  key = index == '1' ? kSingleRowKey : "";
  return index == '1' ? static_cast<int>(key.size()) : -1;
}

std::optional<t_KrMLOHN> TTbMLohnR::Get() {
  if (!GetKey(kSingleRowKey, '1')) return std::nullopt;
  return Rec();
}

TTbMLohnP::TTbMLohnP(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbMLohnP") {
  InitRecord();
}

void TTbMLohnP::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDLV = data::kNullId;
}

int TTbMLohnP::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).IDLV);
  return static_cast<int>(key.size());
}

std::string TTbMLohnP::CurrentRecordToString() const {
  return "Mittellohn LV " + std::to_string(Rec().IDLV);
}

int TTbMLohnP::InitTable(int32_t lv, TTbMLohnR& master) {
  if (ExistsRec(KeyNumber(lv), '1')) return storage::kOk;
  const std::optional<t_KrMLOHN> defaults = master.Get();
  if (!defaults) return storage::kOk;
  InitRecord();
  Rec().IDLV = lv;
  Rec().MLL = defaults->MLL;
  Rec().MLS = defaults->MLS;
  return UpDateRec();
}

std::optional<t_KpMLOHN> TTbMLohnP::Get(int32_t lv) {
  if (!GetKey(KeyNumber(lv), '1')) return std::nullopt;
  return Rec();
}

int TTbMLohnP::DeleteAllOf(int32_t lv) {
  if (lv == data::kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(lv), '1');
}

}  // namespace korvan::calc
