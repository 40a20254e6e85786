#include "data/tables/std_tb.h"

#include <algorithm>
#include <cstdio>

#include "data/common/message_format.h"
#include "data/tables/table_key.h"
#include "storage/db_error_translate.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::data {

using storage::kOk;
using storage::kRecordHeaderSize;
using storage::TDbRecordHeader;

namespace {

// Longest lock name the lock file keeps.
constexpr size_t kMaxLockName = 31;

TDbRecordHeader HeaderOf(RecordView record) {
  TDbRecordHeader header{};
  std::memcpy(&header, record.data(), std::min(record.size(), sizeof header));
  return header;
}

// FNV-1a: the same name in every process for the same key.
uint32_t NameHash(std::string_view text) {
  uint32_t hash = 2166136261u;
  for (char c : text) {
    hash ^= static_cast<uint8_t>(c);
    hash *= 16777619u;
  }
  return hash;
}

}  // namespace

TStdTB::TStdTB(TStdDb& db, char table_type, int phys_rec_len, uint16_t version,
               std::string table_name)
    : FDbOwner(db),
      FStaticRecordSize(phys_rec_len),
      FTbPhysRecLen(phys_rec_len),
      FTableType(table_type),
      FCurrentRecord(static_cast<size_t>(phys_rec_len), 0),
      FTableName(std::move(table_name)),
      FVersion(version) {
  FDbOwner.AddTable(this);
}

TStdTB::~TStdTB() {
  UnLockRec();
  FDbOwner.RemoveTable(this);
}

void TStdTB::InitRecord() {
  FCurrentRecord.assign(static_cast<size_t>(FTbPhysRecLen), 0);
  TDbRecordHeader header{};
  header.RecLen = FTbPhysRecLen;
  header.RecTyp = FTableType;
  header.Size = static_cast<uint16_t>(std::min(FTbPhysRecLen, 65535));
  header.Version = FVersion;
  std::memcpy(FCurrentRecord.data(), &header, sizeof header);
  FCurrentRecordPos = 0;
  FLastRecord.clear();
}

int TStdTB::RecordLength(RecordView) const {
  return FTbPhysRecLen;
}

bool TStdTB::NeedsConversion(const TDbRecordHeader& stored, int) const {
  return stored.Version < FVersion;
}

int TStdTB::Convert(RecordView old_record, std::vector<uint8_t>& new_record) {
  if (old_record.size() < static_cast<size_t>(kRecordHeaderSize)) {
    FailWithText(storage::kDkBadRecordLength,
                 Printf("Unexpected Record Size %d", static_cast<int>(old_record.size())));
    return storage::kDkBadRecordLength;
  }
  new_record = InitTemplate();
  const size_t common = std::min(old_record.size(), new_record.size());
  // The header is kept as read (its LastModified is what the conflict check compares);
  // fields the old layout did not have keep their defaults.
  std::copy_n(old_record.begin(), common, new_record.begin());
  TDbRecordHeader header = HeaderOf(old_record);
  header.RecLen = static_cast<int32_t>(new_record.size());
  header.Size = static_cast<uint16_t>(std::min<size_t>(new_record.size(), 65535));
  header.Version = FVersion;
  std::memcpy(new_record.data(), &header, sizeof header);
  return kOk;
}

std::string TStdTB::CurrentRecordToString() const {
  std::string key = KeyStringOf(CurrentKey(FUniqueIndex));
  std::replace(key.begin(), key.end(), kKeyPadChar, '_');
  return FTableName + " " + key;
}

void TStdTB::ClearTbRecord() {
  std::fill(FCurrentRecord.begin(), FCurrentRecord.end(), 0);
  FCurrentRecordPos = 0;
  FLastRecord.clear();
  sUniqueResultKey.clear();
  sFilterResultKey.clear();
}

void TStdTB::SetTbRecord(RecordView record) {
  FCurrentRecord.assign(record.begin(), record.end());
  if (FCurrentRecord.size() < static_cast<size_t>(FTbPhysRecLen)) {
    FCurrentRecord.resize(static_cast<size_t>(FTbPhysRecLen), 0);
  }
  FCurrentRecordPos = 0;
  FLastRecord.clear();
}

const std::vector<uint8_t>& TStdTB::InitTemplate() {
  if (FInitRecord.empty()) {
    std::vector<uint8_t> saved = FCurrentRecord;
    std::vector<uint8_t> saved_last = FLastRecord;
    const int32_t saved_position = FCurrentRecordPos;
    InitRecord();
    FInitRecord = FCurrentRecord;
    FCurrentRecord = std::move(saved);
    FLastRecord = std::move(saved_last);
    FCurrentRecordPos = saved_position;
  }
  return FInitRecord;
}

TRecordKeys TStdTB::BuildKeys(RecordView record) const {
  TRecordKeys keys;
  for (char index = '1'; index <= GetMaxIndex(); ++index) {
    std::string key_string;
    const int length = GetKeyString(record, index, key_string);
    keys.entered.push_back(length >= 0);
    keys.unique.push_back(IsUniqueIndex(index));
    keys.keys.push_back(length >= 0
                            ? BuildFullKey(FTableType, index, key_string, FDbOwner.KeyLength())
                            : std::string());
  }
  return keys;
}

std::string TStdTB::CurrentKey(char index) const {
  std::string key_string;
  if (GetKeyString(FCurrentRecord, index, key_string) < 0) return {};
  return BuildFullKey(FTableType, index, key_string, FDbOwner.KeyLength());
}

// ---------------------------------------------------------------------------------------

int TStdTB::Fail(std::string_view operation, int code) {
  FailWithText(code, FDbOwner.ErrorText(operation, FTableName,
                                        storage::KernelErrorTranslate().GetErrorString(code)));
  return code;
}

void TStdTB::FailWithText(int code, const std::string& text) {
  nLastError = code;
  FLastErrorText = text;
  FFailedPosition = -1;
  FDbOwner.ShowError(text);
}

int TStdTB::ReadStored(int32_t position, StoredRecord& stored, const char* function) {
  if (int result = FDbOwner.ReadRaw(position, stored.raw); result != kOk) {
    return Fail("Read", result);
  }
  return DecodeStored(position, stored, function);
}

int TStdTB::DecodeStored(int32_t position, StoredRecord& stored, const char* function) {
  const TDbRecordHeader header = HeaderOf(stored.raw);
  const auto report = [&](const std::string& what) {
    FailWithText(storage::kDkBadRecordLength,
                 Printf("Error: %s (function: %s) in DB: %s - TB: %s", what.c_str(), function,
                        FDbOwner.Name().c_str(), FTableName.c_str()));
    return storage::kDkBadRecordLength;
  };
  if (header.RecTyp != FTableType) {
    return report(Printf("Invalid record type \"%c\" (expected \"%c\") at position %d.",
                         header.RecTyp, FTableType, position));
  }
  const int stored_length = static_cast<int>(stored.raw.size());
  stored.converted = NeedsConversion(header, stored_length);
  if (stored.converted) {
    if (int result = Convert(stored.raw, stored.current); result != kOk) {
      FailWithText(result, Printf("Error converting dataset number %d with type \"%c\"", position,
                                  FTableType));
      return result;
    }
    if (!FInConversion) {
      FDbOwner.Log(Printf("ConvertTB: %s RecLen alt: %d  neu: %d Var: %d", FTableName.c_str(),
                          stored_length, static_cast<int>(stored.current.size()),
                          FVariantRecordSize));
      FDbOwner.Log(Printf("Version alt: %d Version neu: %d", header.Version, FVersion));
    }
    return kOk;
  }
  // A slot may be up to 3 bytes longer than the record it holds.
  const int expected = RecordLength(stored.raw);
  if (expected < kRecordHeaderSize || stored_length < expected || stored_length > expected + 3) {
    return report(
        Printf("Expected record size: %d, read record size: %d", expected, stored_length));
  }
  stored.current.assign(stored.raw.begin(), stored.raw.begin() + expected);
  return kOk;
}

bool TStdTB::GetRec(int32_t position) {
  StoredRecord stored;
  if (ReadStored(position, stored, "GetRec") != kOk) {
    FFailedPosition = position;
    return false;
  }
  return TakeStored(position, std::move(stored));
}

bool TStdTB::TakeStored(int32_t position, StoredRecord stored) {
  FCurrentRecord = std::move(stored.current);
  FLastReadConverted = stored.converted;
  FLastRecord = FCurrentRecord;
  FCurrentRecordPos = position;
  FTBRealRecLen = static_cast<int>(stored.raw.size());
  FActualRecordSize = static_cast<int>(FCurrentRecord.size());
  nLastError = kOk;
  sUniqueResultKey = CurrentKey(FUniqueIndex);
  ValidateRecordAfterRead();
  return true;
}

void TStdTB::SetHeaderForWrite(std::vector<uint8_t>& record) const {
  TDbRecordHeader header = HeaderOf(record);
  header.RecLen = static_cast<int32_t>(record.size());
  header.RecTyp = FTableType;
  header.Size = static_cast<uint16_t>(std::min<size_t>(record.size(), 65535));
  header.Version = FVersion;
  const std::string& id = FDbOwner.ModifiedById();
  const size_t id_length = std::min<size_t>(id.size(), sizeof header.ModifiedById - 1);
  std::memset(header.ModifiedById, 0, sizeof header.ModifiedById);
  header.ModifiedById[0] = static_cast<uint8_t>(id_length);
  std::memcpy(header.ModifiedById + 1, id.data(), id_length);
  std::memcpy(record.data(), &header, sizeof header);
}

// ---------------------------------------------------------------------------------------

std::string TStdTB::RecordLockName() const {
  std::string name = CurrentKey(FUniqueIndex);
  while (!name.empty() && name.back() == kKeyPadChar) name.pop_back();
  // The lock file ends a name at its first pad byte.
  std::replace(name.begin(), name.end(), kKeyPadChar, '_');
  if (name.size() > kMaxLockName) {
    name = name.substr(0, kMaxLockName - 9) + Printf("#%08X", NameHash(name));
  }
  return name;
}

int TStdTB::LockRec(storage::LockWaitHandler* handler) {
  if (bTbIsLocked) return kOk;
  const std::string name = RecordLockName();
  const int result = FDbOwner.Lock(name, true, handler);
  nLastError = result;
  if (result != kOk) return result;
  bTbIsLocked = true;
  FLockedName = name;
  return kOk;
}

int TStdTB::UnLockRec() {
  if (!bTbIsLocked) return kOk;
  bTbIsLocked = false;
  return FDbOwner.UnLock(FLockedName);
}

int TStdTB::GetRecCount(uint32_t* count) const {
  const std::string pattern = BuildKeyPattern(FTableType, FUniqueIndex, "", FDbOwner.KeyLength());
  return storage::iDK_KeyMatchesCount(
      FDbOwner.Handle(), reinterpret_cast<const uint8_t*>(pattern.data()), 2, false, count);
}

}  // namespace korvan::data
