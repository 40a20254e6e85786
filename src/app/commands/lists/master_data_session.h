#pragma once

#include <memory>
#include <string>

#include "data/component/c_data_undo.h"
#include "data/db/db_groups.h"
#include "data/db/directory_sign_in.h"
#include "data/tables/concurrency_question.h"
#include "data/tables/std_db.h"
#include "data/tables/table_registry.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"

namespace korvan::app {

// The journal of the data directory `data_dir`, opened as `damaged` says; a journal that
// cannot be opened gives a CommandError that says which file, where, and what to do.
std::unique_ptr<data::TUndoRedo> OpenJournal(const std::string& data_dir,
                                             data::TDamagedFile damaged);

// The master data of the installation in `data_dir`, open for one command, with the
// journal of the data directory ("UNDO.QUJ", "REDO.QUJ") recording every record change
// from its first use on; the journal puts records back through the table classes of
// `tables`. Other databases of the installation (a project's LVs) are opened through the
// session too, so that their changes are journalled alike; a step that names a database
// the command did not open has it opened when the step is taken back or made again. The concurrency
// question is answered by `overwrite`. A damaged journal is reported (CommandError naming file and
// byte) or, for commands that must not be stopped by it, set aside as `damaged` says. The session
// is signed in to the master data directory's control file for as long as it lasts.
class MasterDataSession {
 public:
  MasterDataSession(const data::TTableRegistry& tables, const std::string& data_dir, bool overwrite,
                    data::TDamagedFile damaged = data::TDamagedFile::kReport);
  ~MasterDataSession();
  MasterDataSession(const MasterDataSession&) = delete;
  MasterDataSession& operator=(const MasterDataSession&) = delete;

  // The master database, opened on first use (CommandError when it cannot be).
  data::TStdDb& Db();
  // The journal, opened on first use; from then on it records every record change of the
  // session. A step a killed process left unfinished is finished or taken back first
  // (RecoveryNote() tells the user). CommandError when it cannot be opened.
  data::TUndoRedo& Journal();
  data::UserActionScope& Actions();
  // Another database of the installation, open for writing and signed in to its
  // directory for as long as the session lasts (CommandError when it cannot be opened).
  // Open the journal first when the command writes.
  data::TStdDb& OpenDatabase(const data::DatabaseFile& file);

 private:
  class RowReloader;
  void OpenJournalOnce();
  void OpenDbOnce();
  data::TStdDb* OpenJournalTarget(const data::TableTarget& target);

  const data::TTableRegistry& tables_;
  std::string data_dir_;
  data::TDamagedFile damaged_;
  std::unique_ptr<data::DatabaseFiles> files_;
  // Held while the database is open: no rebuild or reorg replaces its files meanwhile.
  std::unique_ptr<data::TDirectorySignIn> sign_in_;
  std::unique_ptr<data::TStdDb> db_;
  std::string user_;
  std::vector<std::unique_ptr<data::TDirectorySignIn>> other_sign_ins_;
  std::vector<std::unique_ptr<data::TStdDb>> other_dbs_;
  data::TFixedConcurrencyAnswer answer_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TUndoRedo> journal_;
  std::unique_ptr<data::ScopedTableChangeObserver> observing_;
  std::unique_ptr<data::TCDataUndoJournal> actions_;
  std::unique_ptr<data::TTableRecordRestorer> restorer_;
  std::unique_ptr<RowReloader> rows_;
};

}  // namespace korvan::app
