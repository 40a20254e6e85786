#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "data/table_change_journal.h"
#include "data/undo_items.h"
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

// A stand-in for the table layer: tables of records by id, changed through Insert,
// Update and Delete, which report to the current journal as the table layer does, and
// restored by the journal through RecordRestorer.
class FakeTables : public RecordRestorer {
 public:
  using Table = std::map<int32_t, std::vector<uint8_t>>;
  using State = std::map<std::string, Table>;

  static TableTarget Target(char type) { return {"/data/DB_Test.QE", 'E', type, 52}; }

  void Insert(char type, std::vector<uint8_t> image) {
    tables_[Name(type)][IdOf(image)] = image;
    if (auto* journal = CurrentTableChangeObserver()) journal->RecordInserted(Target(type), image);
  }
  void Update(char type, std::vector<uint8_t> image) {
    std::vector<uint8_t>& stored = tables_[Name(type)].at(IdOf(image));
    const std::vector<uint8_t> before = stored;
    stored = image;
    if (auto* journal = CurrentTableChangeObserver())
      journal->RecordUpdated(Target(type), before, image);
  }
  void Delete(char type, int32_t id) {
    Table& table = tables_[Name(type)];
    const std::vector<uint8_t> before = table.at(id);
    table.erase(id);
    if (auto* journal = CurrentTableChangeObserver()) journal->RecordDeleted(Target(type), before);
  }

  int RestoreRecord(const TableTarget& target, JournalImage expected, JournalImage image,
                    std::string& error) override {
    ++restore_calls;
    if (restore_calls == fail_at) {
      error = "injected failure";
      return kUndoConflict;
    }
    Table& table = tables_[target.db_file + target.table_type];
    const int32_t id = IdOf(expected.empty() ? image : expected);
    const auto found = table.find(id);
    if (expected.empty()
            ? found != table.end()
            : found == table.end() || !std::equal(expected.begin(), expected.end(),
                                                  found->second.begin(), found->second.end())) {
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

  // The tables without tables emptied to nothing.
  State Snapshot() const {
    State state;
    for (const auto& [name, table] : tables_) {
      if (!table.empty()) state[name] = table;
    }
    return state;
  }

  int restore_calls = 0;
  int fail_at = -1;  // the number of the restore call that fails (-1: none)

 private:
  static std::string Name(char type) { return Target(type).db_file + type; }
  State tables_;
};

// Rows of data components as ordered key lists, for the row items.
class FakeRows : public TCDataRowRestorer {
 public:
  int MoveRow(int32_t id, int32_t from, int32_t to, std::string& error) override {
    std::vector<std::string>& rows = rows_[id];
    if (from < 1 || to < 1 || from > static_cast<int32_t>(rows.size()) ||
        to > static_cast<int32_t>(rows.size())) {
      error = "bad row";
      return kUndoConflict;
    }
    std::string key = rows[static_cast<size_t>(from - 1)];
    rows.erase(rows.begin() + from - 1);
    rows.insert(rows.begin() + to - 1, key);
    return kUndoOk;
  }
  int RemoveRow(int32_t id, const std::string& key, int32_t row, std::string& error) override {
    std::vector<std::string>& rows = rows_[id];
    if (row < 1 || row > static_cast<int32_t>(rows.size()) ||
        rows[static_cast<size_t>(row - 1)] != key) {
      error = "row " + key + " not at " + std::to_string(row);
      return kUndoConflict;
    }
    rows.erase(rows.begin() + row - 1);
    return kUndoOk;
  }
  int RestoreRow(int32_t id, const std::string& key, int32_t row, std::string& error) override {
    std::vector<std::string>& rows = rows_[id];
    if (row < 1 || row > static_cast<int32_t>(rows.size()) + 1) {
      error = "bad row";
      return kUndoConflict;
    }
    rows.insert(rows.begin() + row - 1, key);
    return kUndoOk;
  }
  std::map<int32_t, std::vector<std::string>> rows_;
};

}  // namespace korvan::data::testing
