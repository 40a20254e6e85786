#include "data/tables/tb_counter.h"

#include <climits>

#include "data/integrity/data_check.h"
#include "data/tables/table_key.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::data {

TTbCounter::TTbCounter(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbCounter") {
  InitRecord();
}

void TTbCounter::InitRecord() {
  TStdTB::InitRecord();
  Rec().KzBezug = ' ';
  Rec().LastId = 0;
}

std::string TTbCounter::CounterKey(char kz_bezug, std::string_view kennung) {
  return std::string(1, kz_bezug) + KeyText(kennung, 10);
}

int TTbCounter::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_Counter counter = Of(record);
  key = CounterKey(counter.KzBezug, counter.Kennung.Raw());
  return static_cast<int>(key.size());
}

std::string TTbCounter::CurrentRecordToString() const {
  return std::string(1, Rec().KzBezug) + Rec().Kennung.Get();
}

int32_t TTbCounter::LastId(char kz_bezug, std::string_view kennung) {
  return GetKey(CounterKey(kz_bezug, kennung)) ? Rec().LastId : 0;
}

int TTbCounter::NextId(char kz_bezug, std::string_view kennung, int32_t* id) {
  return NextIds(kz_bezug, kennung, 1, id);
}

int TTbCounter::NextIds(char kz_bezug, std::string_view kennung, int32_t count, int32_t* first) {
  const std::string key = CounterKey(kz_bezug, kennung);
  // The counter's name is locked before it is read, also when it does not exist yet.
  const std::string lock_name = std::string(1, TableType()) + "1" + key;
  if (int locked = Db().Lock(lock_name, true); locked != storage::kOk) return locked;
  if (!GetKey(key)) {
    InitRecord();
    Rec().KzBezug = kz_bezug;
    Rec().Kennung.SetRaw(kennung);
  }
  const int32_t last = Rec().LastId;
  if (count < 1 || last > INT32_MAX - count) {
    Db().UnLock(lock_name);
    return storage::kDkFileWouldExceed2GB;
  }
  Rec().LastId = last + count;
  const int result = UpDateRec();
  Db().UnLock(lock_name);
  if (result != storage::kOk) return result;
  *first = last + 1;
  return storage::kOk;
}

void TTbCounter::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().LastId);
  check.CheckItemForMandatory("KzBezug", Rec().KzBezug, '\0');
}

}  // namespace korvan::data
