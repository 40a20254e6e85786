#pragma once

#include <memory>
#include <string>

#include "app/commands/lists/master_data_session.h"
#include "data/db/db_groups.h"
#include "data/tables/std_db.h"

namespace korvan::app {

// The LV database of one project of an installation, opened for one LV command with the
// installation's journal, so that every change is one step `korvan undo` can take back.
class LvProject {
 public:
  // `project` is the folder name below the project root; empty for the user's current
  // project. CommandError when there is no installation, no such project or no LV
  // database in it; UsageError for a project name that cannot be a folder.
  LvProject(const std::string& data_dir, const std::string& project);

  // The project's name as the user knows it.
  const std::string& Name() const { return name_; }
  // The project folder.
  const std::string& Directory() const { return file_->directory(); }
  // The LV database, open for writing; with `journal` the journal is taken first and
  // records every change from then on.
  data::TStdDb& Db(bool journal);
  data::TUndoRedo& Journal() { return session_->Journal(); }
  // The project's text database beside the LV database, open for writing; nullptr when
  // the project has none. Open the LV database first.
  data::TStdDb* TextDb();

  // The id of the LV that the command line names by id or name; CommandError (in the
  // project's words) when it names none or more than one.
  int32_t ResolveLv(const std::string& name_or_id);

 private:
  std::string name_;
  std::unique_ptr<data::DatabaseFile> file_;
  std::unique_ptr<MasterDataSession> session_;
  data::TStdDb* db_ = nullptr;
};

// One step of the journal for the lifetime of the object: everything the command changes
// meanwhile is taken back by one `korvan undo`.
class JournalStep {
 public:
  JournalStep(data::TUndoRedo& journal, data::TOperationKind kind, std::string caption)
      : journal_(journal) {
    journal_.StartTransaction(data::TStartItem(0, kind, std::move(caption)));
  }
  ~JournalStep() { journal_.EndTransaction(); }
  JournalStep(const JournalStep&) = delete;
  JournalStep& operator=(const JournalStep&) = delete;

 private:
  data::TUndoRedo& journal_;
};

}  // namespace korvan::app
