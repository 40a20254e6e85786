#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/tables/std_tb.h"
#include "data/tables/table_change_journal.h"
#include "data/tables/table_registry.h"

namespace korvan::data {

// Puts records back for the undo journal through the table objects: the record is found
// by its unique key, written as the image says (header stamps aside: the kernel stamps
// the time of the write), and all its keys are kept in step. Writes go to the kernel
// directly, so they are not recorded again.
class TTableRecordRestorer : public RecordRestorer {
 public:
  // Finds the table object for a journal target (its database open for writing), or
  // returns nullptr.
  using TTableResolver = std::function<TStdTB*(const TableTarget&)>;
  explicit TTableRecordRestorer(TTableResolver resolver) : resolver_(std::move(resolver)) {}
  // Resolves among the tables of the given databases, by base path and type letters; a
  // table without an object in its database gets one from `tables`, kept while the
  // restorer lives (the databases must outlive it). A relative path in the journal is
  // taken from `journal_dir`.
  TTableRecordRestorer(std::vector<TStdDb*> databases, TTableRegistry tables,
                       std::string journal_dir = {});
  TTableRecordRestorer(const TTableRecordRestorer&) = delete;
  // Opens the database of a journal target that none of the given databases is, or
  // returns nullptr; the database must outlive the restorer. Commands that write into
  // more than one database (a project's LVs beside the master data) let the journal
  // reach the ones a step names.
  using TDatabaseOpener = std::function<TStdDb*(const TableTarget&)>;
  void SetDatabaseOpener(TDatabaseOpener opener) { opener_ = std::move(opener); }
  TTableRecordRestorer& operator=(const TTableRecordRestorer&) = delete;

  int RestoreRecord(const TableTarget& table, JournalImage expected, JournalImage image,
                    std::string& error) override;
  std::vector<const TStdDb*> DatabasesOf(const std::vector<TableTarget>& tables) override;

 private:
  int Insert(TStdTB& table, JournalImage image, std::string& error);
  int Replace(TStdTB& table, int32_t position, const std::vector<uint8_t>& stored,
              JournalImage image, std::string& error);
  int Delete(TStdTB& table, int32_t position, const std::vector<uint8_t>& stored,
             std::string& error);

  TStdTB* TableOf(const TableTarget& target);

  TTableResolver resolver_;
  std::vector<TStdDb*> databases_;
  TTableRegistry tables_;
  std::string journal_dir_;
  TDatabaseOpener opener_;
  std::vector<std::unique_ptr<TStdTB>> created_;
};

// The target of a table object, as the table layer reports it to the journal.
TableTarget TableTargetOf(const TStdTB& table);

// Whether a stored record equals an image, leaving out what the kernel sets on every
// write: the length field (a slot may be up to three bytes longer) and the time stamps.
bool SameRecordContent(JournalImage stored, JournalImage image);

}  // namespace korvan::data
