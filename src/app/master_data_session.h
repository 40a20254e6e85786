#pragma once

#include <memory>
#include <string>

#include "data/c_data_undo.h"
#include "data/concurrency_question.h"
#include "data/db_groups.h"
#include "data/std_db.h"
#include "data/undo_redo.h"
#include "data/undo_table_restorer.h"

namespace korvan::app {

// The master data of the installation in `data_dir`, open for one command, with the
// journal of the data directory ("UNDO.QUJ", "REDO.QUJ") recording every record change
// while the session lasts. The concurrency question is answered by `overwrite`.
class MasterDataSession {
 public:
  MasterDataSession(const std::string& data_dir, bool overwrite);
  ~MasterDataSession();
  MasterDataSession(const MasterDataSession&) = delete;
  MasterDataSession& operator=(const MasterDataSession&) = delete;

  data::TStdDb& Db() { return *db_; }
  data::TUndoRedo& Journal() { return *journal_; }
  data::UserActionScope& Actions() { return *actions_; }

 private:
  class RowReloader;
  std::unique_ptr<data::DatabaseFiles> files_;
  std::unique_ptr<data::TStdDb> db_;
  data::TFixedConcurrencyAnswer answer_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TUndoRedo> journal_;
  std::unique_ptr<data::ScopedTableChangeObserver> observing_;
  std::unique_ptr<data::TCDataUndoJournal> actions_;
  std::unique_ptr<data::TTableRecordRestorer> restorer_;
  std::unique_ptr<RowReloader> rows_;
};

}  // namespace korvan::app
