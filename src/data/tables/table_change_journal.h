#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace korvan::data {

class TStdDb;

using JournalImage = std::span<const uint8_t>;

// The table a record change belongs to, as the journal stores it: the database's base
// path and type letter, the table's type letter and its fixed record length.
struct TableTarget {
  std::string db_file;
  char db_type = 0;
  char table_type = 0;
  int32_t static_len = 0;
};

// What the table layer tells the undo journal. Each call carries whole record images
// as stored (header included); the journal copies what it keeps.
class TableChangeObserver {
 public:
  virtual ~TableChangeObserver() = default;
  // Called before a record is written, with its image now and the image it is to have
  // (empty before: it is inserted; empty after: it is deleted), so that the journal can
  // make the change durable before the data holds it. The write may still fail.
  virtual void RecordWillChange(const TableTarget& /*table*/, JournalImage /*before*/,
                                JournalImage /*after*/) {}
  virtual void RecordInserted(const TableTarget& table, JournalImage after) = 0;
  virtual void RecordUpdated(const TableTarget& table, JournalImage before, JournalImage after) = 0;
  virtual void RecordDeleted(const TableTarget& table, JournalImage before) = 0;
};

// How the journal puts records back. The record is identified by the unique key built
// from `expected` (or from `image` when `expected` is empty). Before anything is
// written, the stored record must equal `expected` (an empty `expected`: no record with
// that key may exist); otherwise somebody changed it meanwhile and nothing is written.
// An empty `image` deletes the record, otherwise `image` is stored with all keys kept in
// step. 0 on success, else a code with `error` naming what was wrong.
class RecordRestorer {
 public:
  virtual ~RecordRestorer() = default;
  virtual int RestoreRecord(const TableTarget& table, JournalImage expected, JournalImage image,
                            std::string& error) = 0;
  // The databases the records of these tables are written to, opened where needed, so
  // that a whole step can be written in batches (TBatchHold); none when not known.
  virtual std::vector<const TStdDb*> DatabasesOf(const std::vector<TableTarget>& /*tables*/) {
    return {};
  }
};

// The one journal of the process that the table layer reports to; none while nothing
// is recorded. The table layer asks for it on every write, so it is a plain pointer.
inline TableChangeObserver*& CurrentTableChangeObserverSlot() {
  static TableChangeObserver* current = nullptr;
  return current;
}
inline TableChangeObserver* CurrentTableChangeObserver() {
  return CurrentTableChangeObserverSlot();
}

// Installs a journal as the process's current one for the lifetime of the object.
class ScopedTableChangeObserver {
 public:
  explicit ScopedTableChangeObserver(TableChangeObserver* observer)
      : previous_(CurrentTableChangeObserverSlot()) {
    CurrentTableChangeObserverSlot() = observer;
  }
  ~ScopedTableChangeObserver() { CurrentTableChangeObserverSlot() = previous_; }
  ScopedTableChangeObserver(const ScopedTableChangeObserver&) = delete;
  ScopedTableChangeObserver& operator=(const ScopedTableChangeObserver&) = delete;

 private:
  TableChangeObserver* previous_;
};

}  // namespace korvan::data
