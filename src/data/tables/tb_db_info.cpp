#include "data/tables/tb_db_info.h"

#include <chrono>

#include "data/integrity/data_check.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

// Days since 30 December 1899, as record dates count.
double Now() {
  using namespace std::chrono;
  const auto since_epoch = duration<double>(system_clock::now().time_since_epoch()).count();
  return since_epoch / 86400.0 + 25569.0;
}

}  // namespace

TTbDbInfo::TTbDbInfo(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbDbInfo") {
  InitRecord();
}

void TTbDbInfo::InitRecord() {
  TStdTB::InitRecord();
  Rec().Version = 0;
  Rec().CreateDate = 0.0;
}

int TTbDbInfo::GetKeyString(RecordView, char index, std::string& key) const {
  key.clear();
  return index == '1' ? 0 : -1;
}

bool TTbDbInfo::ReadVersion(t_VersionInfo& info) {
  if (!GetKey("")) return false;
  info.Version = Rec().Version;
  info.CreateDate = Rec().CreateDate;
  return true;
}

int TTbDbInfo::WriteVersion(int32_t version) {
  if (!GetKey("")) {
    InitRecord();
    Rec().CreateDate = Now();
  }
  Rec().Version = version;
  return UpDateRec();
}

bool TTbDbInfo::IsToConvert(int32_t program_version) {
  t_VersionInfo info{};
  return !ReadVersion(info) || info.Version < program_version;
}

void TTbDbInfo::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().Version);
  check.CheckItemForMandatory("Version", Rec().Version, 0);
}

}  // namespace korvan::data
