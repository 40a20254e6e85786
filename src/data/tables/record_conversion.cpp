#include "data/tables/record_conversion.h"

#include <cstdio>
#include <string>

#include "data/common/message_format.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_exception.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

constexpr int32_t kFirstRecordPosition = 80;

bool IsTableLetter(char letter) {
  return letter >= 'A' && letter <= 'Z';
}

}  // namespace

int ScanDataFileRecords(int handle, std::vector<DataFileRecord>& records) {
  records.clear();
  int64_t position = kFirstRecordPosition;
  while (position < INT32_MAX) {
    const auto at = static_cast<int32_t>(position);
    int32_t length = 0;
    try {
      storage::iDK_RecordRead(handle, at, nullptr, &length, false);
    } catch (const storage::EDbKernelException& error) {
      // Reading past the last block is the end of the file.
      return error.FErrorCode == storage::kDkFileTooShort ? storage::kOk : error.FErrorCode;
    }
    if (length == 0) return storage::kDkInvalidRecordLength;
    if (length > 0) {
      char head[5] = {};
      int32_t wanted = sizeof head;
      try {
        storage::iDK_RecordRead(handle, at, head, &wanted, true);
      } catch (const storage::EDbKernelException& error) {
        return error.FErrorCode;
      }
      records.push_back({at, length, head[4]});
    }
    position += length > 0 ? length : -int64_t{length};
  }
  return storage::kOk;
}

int TStdTB::ConvertTable(bool by_records) {
  FDbOwner.Log(by_records ? "Convert by records ..." : "Convert by keys ...");
  std::vector<int32_t> positions;
  if (by_records) {
    std::vector<DataFileRecord> records;
    const int scanned = ScanDataFileRecords(FDbOwner.Handle(), records);
    if (scanned != storage::kOk) {
      const int32_t at =
          records.empty() ? kFirstRecordPosition : records.back().position + records.back().length;
      FDbOwner.Log(Printf("Cannot read record at position %d", at));
    }
    for (const DataFileRecord& record : records) {
      if (record.type == FTableType) {
        positions.push_back(record.position);
      } else if (!IsTableLetter(record.type)) {
        FDbOwner.Log(Printf("Invalid record type \"%c\" (expected \"%c\") at position %d.",
                            record.type, FTableType, record.position));
      }
    }
  } else {
    std::vector<std::string> keys;
    if (int result = GetKeyBatch("", '1', keys, positions); result != storage::kOk) {
      return -result;
    }
  }

  BeginConversion();
  int converted = 0;
  bool logged_layout = false;
  for (size_t number = 0; number < positions.size(); ++number) {
    if (!GetRec(positions[number])) {
      FDbOwner.Log(Printf("Cannot read record at position %d", positions[number]));
      continue;
    }
    if (!FLastReadConverted) continue;
    if (!logged_layout) {
      storage::TDbRecordHeader stored{};
      std::vector<uint8_t> raw;
      FDbOwner.ReadRaw(positions[number], raw);
      std::memcpy(&stored, raw.data(), std::min(raw.size(), sizeof stored));
      FDbOwner.Log(Printf("ConvertTB: %s RecLen alt: %d  neu: %d Var: %d", FTableName.c_str(),
                          FTBRealRecLen, static_cast<int>(FCurrentRecord.size()),
                          FVariantRecordSize));
      FDbOwner.Log(Printf("Version alt: %d Version neu: %d", stored.Version, FVersion));
      logged_layout = true;
    }
    if (UpDateRec() != storage::kOk) {
      FDbOwner.Log(Printf("Error converting dataset number %d with type \"%c\"",
                          static_cast<int>(number) + 1, FTableType));
      continue;
    }
    ++converted;
  }
  EndConversion();
  FDbOwner.Log(Printf("%d items converted for table %s", converted, FTableName.c_str()));
  return converted;
}

}  // namespace korvan::data
