#include "storage/data_file_check.h"

#include <cstring>
#include <map>

#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

std::string At(int64_t position) {
  return "Block an Position " + std::to_string(position) + ": ";
}

// Every stretch the reader skipped is one problem.
class ProblemReporter : public DataFileReader::Reporter {
 public:
  explicit ProblemReporter(DataFileReport* report) : report_(report) {}
  void Damaged(int64_t position, int64_t length, BlockDamage damage) override {
    report_->problems.push_back(At(position) + BlockDamageText(damage) + ", " +
                                std::to_string(length) + " Bytes übersprungen");
  }

 private:
  DataFileReport* report_;
};

void WalkBlocks(const DbHandleSlot& slot, DataFileReport* report) {
  int64_t file_size = 0;
  if (kernel::FileSize(slot.data_file, &file_size) != kOk) {
    report->problems.push_back("Größe der Datendatei nicht lesbar");
    return;
  }
  if (file_size < kFirstBlockPosition) {
    report->problems.push_back("Datendatei kürzer als ihr Kopf");
    return;
  }
  ProblemReporter reporter(report);
  DataFileReader reader(slot.data_file, &reporter);
  DataFileBlock block;
  while (reader.ReadBlock(&block)) {
    if (block.live && (block.header.RecTyp < 'A' || block.header.RecTyp > 'Z')) {
      report->problems.push_back(At(block.position) + "Datensatz ohne Tabellenbuchstaben");
    }
    report->blocks.push_back(block);
  }
  if (reader.io_error()) report->problems.push_back("Datendatei nicht lesbar");
}

int64_t KeyLength(const KeyEntry& entry) {
  int64_t value = 0;
  bool digits = false;
  for (int i = 1; i <= kernel::kFreeSpaceDigits; ++i) {
    const uint8_t c = entry.key[i];
    if (c == ' ' && !digits) continue;
    if (c < '0' || c > '9') return -1;
    digits = true;
    value = value * 10 + (c - '0');
  }
  return digits ? value : -1;
}

void CheckFreeSpaceKeys(int handle, DataFileReport* report) {
  std::map<int32_t, int32_t> free_blocks;  // position -> length
  for (const DataFileBlock& block : report->blocks) {
    if (!block.live) free_blocks[block.position] = block.length;
  }
  std::map<int32_t, int> keys_per_block;
  KeyEntry entry;
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  entry.key[0] = kernel::kFreeSpaceKeyLead;
  uint32_t position = 0;
  int result = iDK_KeyFirstMatch(handle, entry, &position);
  while (result == kOk && entry.key[0] == kernel::kFreeSpaceKeyLead) {
    const auto block_position = static_cast<int32_t>(position);
    const int64_t length = KeyLength(entry);
    const auto block = free_blocks.find(block_position);
    if (block == free_blocks.end()) {
      report->problems.push_back("Freiraum-Schlüssel bei " + std::to_string(block_position) +
                                 " nennt keinen freien Block");
    } else if (length != block->second) {
      report->problems.push_back("Freiraum-Schlüssel bei " + std::to_string(block_position) +
                                 " nennt " + std::to_string(length) + " Bytes, der Block hat " +
                                 std::to_string(block->second));
    }
    ++keys_per_block[block_position];
    result = iDK_KeyNext(handle, entry, &position);
  }
  if (result != kOk && result != kDkKeyNotFound) {
    report->problems.push_back("Freiraum-Index nicht lesbar: Code " + std::to_string(result));
  }
  for (const auto& [block_position, length] : free_blocks) {
    const int keys = keys_per_block.count(block_position) ? keys_per_block[block_position] : 0;
    if (keys != 1) {
      report->problems.push_back(At(block_position) + "freier Block von " + std::to_string(length) +
                                 " Bytes hat " + std::to_string(keys) + " Freiraum-Schlüssel");
    }
  }
}

}  // namespace

DataFileReport CheckDataFile(int handle) {
  DataFileReport report;
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) {
    report.problems.push_back("ungültiges Datenbank-Handle " + std::to_string(handle));
    return report;
  }
  WalkBlocks(*slot, &report);
  CheckFreeSpaceKeys(handle, &report);
  return report;
}

}  // namespace korvan::storage
