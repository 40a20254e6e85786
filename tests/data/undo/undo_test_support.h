#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "data/tables/table_change_journal.h"
#include "data/undo/undo_items.h"
#include "storage/record_header.h"

namespace korvan::data::testing {

// A record image of table `type`: the header, then a 32-bit id (the unique key) and
// `payload` bytes.
inline std::vector<uint8_t> MakeImage(char type, int32_t id, std::vector<uint8_t> payload = {}) {
  std::vector<uint8_t> image(static_cast<size_t>(storage::kRecordHeaderSize) + 4 + payload.size());
  storage::TDbRecordHeader header{};
  header.RecLen = static_cast<int32_t>(image.size());
  header.RecTyp = type;
  std::memcpy(image.data(), &header, sizeof header);
  std::memcpy(image.data() + storage::kRecordHeaderSize, &id, 4);
  std::copy(payload.begin(), payload.end(), image.begin() + storage::kRecordHeaderSize + 4);
  return image;
}

inline int32_t IdOf(JournalImage image) {
  int32_t id = 0;
  std::memcpy(&id, image.data() + storage::kRecordHeaderSize, 4);
  return id;
}

inline std::vector<char> ReadJournalBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteJournalBytes(const std::string& path, const std::vector<char>& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A stand-in for the table layer: tables of records by id, changed through Insert,
// Update and Delete, which report to the current journal as the table layer does, and
// restored by the journal through RecordRestorer.
class FakeTables : public RecordRestorer {
 public:
  using Table = std::map<int32_t, std::vector<uint8_t>>;
  using State = std::map<char, Table>;

  static TableTarget Target(char type) { return {"/data/DB_Test.QE", 'E', type, 52}; }

  void Insert(char type, std::vector<uint8_t> image) {
    if (auto* journal = CurrentTableChangeObserver())
      journal->RecordWillChange(Target(type), {}, image);
    tables_[type][IdOf(image)] = image;
    if (auto* journal = CurrentTableChangeObserver()) journal->RecordInserted(Target(type), image);
  }
  void Update(char type, std::vector<uint8_t> image) {
    if (auto* journal = CurrentTableChangeObserver())
      journal->RecordWillChange(Target(type), tables_[type].at(IdOf(image)), image);
    std::vector<uint8_t> before = std::exchange(tables_[type].at(IdOf(image)), image);
    if (auto* journal = CurrentTableChangeObserver())
      journal->RecordUpdated(Target(type), before, image);
  }
  void Delete(char type, int32_t id) {
    const std::vector<uint8_t> before = tables_[type].at(id);
    if (auto* journal = CurrentTableChangeObserver())
      journal->RecordWillChange(Target(type), before, {});
    tables_[type].erase(id);
    if (auto* journal = CurrentTableChangeObserver()) journal->RecordDeleted(Target(type), before);
  }
  bool Contains(char type, int32_t id) const {
    return tables_.contains(type) && tables_.at(type).contains(id);
  }

  int RestoreRecord(const TableTarget& target, JournalImage expected, JournalImage image,
                    std::string& error) override {
    if (++restore_calls == fail_at) {
      error = "injected failure";
      return kUndoConflict;
    }
    Table& table = tables_[target.table_type];
    const int32_t id = IdOf(expected.empty() ? image : expected);
    const auto found = table.find(id);
    const bool as_expected =
        expected.empty()
            ? found == table.end()
            : found != table.end() && std::equal(expected.begin(), expected.end(),
                                                 found->second.begin(), found->second.end());
    if (!as_expected) {
      error = "record " + std::to_string(id) + " changed meanwhile";
      return kUndoConflict;
    }
    if (image.empty()) {
      table.erase(found);
    } else {
      table[id].assign(image.begin(), image.end());
    }
    return kUndoOk;
  }

  // The tables, without those emptied to nothing.
  State Snapshot() const {
    State state;
    for (const auto& [type, table] : tables_) {
      if (!table.empty()) state[type] = table;
    }
    return state;
  }

  int restore_calls = 0;
  int fail_at = -1;  // the number of the restore call that fails (-1: none)

 private:
  State tables_;
};

}  // namespace korvan::data::testing
