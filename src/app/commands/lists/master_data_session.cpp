#include "app/commands/lists/master_data_session.h"

#include <filesystem>

#include "app/cli/command_error.h"
#include "app/commands/db/db_database.h"
#include "app/commands/lists/journal_wait.h"
#include "app/program/command_sign_in.h"
#include "app/program/installation.h"
#include "storage/result_codes.h"

namespace korvan::app {

// The rows of the command line's lists are read from the tables on every run, so a row
// taken back or made again needs nothing beyond its record.
class MasterDataSession::RowReloader : public data::TCDataRowRestorer {
 public:
  int MoveRow(int32_t, int32_t, int32_t, std::string&) override { return data::kUndoOk; }
  int RemoveRow(int32_t, const std::string&, int32_t, std::string&) override {
    return data::kUndoOk;
  }
  int RestoreRow(int32_t, const std::string&, int32_t, std::string&) override {
    return data::kUndoOk;
  }
};

std::unique_ptr<data::TUndoRedo> OpenJournal(const std::string& data_dir,
                                             data::TDamagedFile damaged) {
  try {
    return WaitWhileJournalInUse(
        [&] { return data::TUndoRedo::OpenPersistent(data_dir, damaged); });
  } catch (const data::UndoJournalError& e) {
    if (!e.Damaged()) throw CommandError(e.what());
    throw CommandError(std::string(e.what()) +
                       "\nDas Journal wird nicht verwendet. \"korvan undo --clear\" löscht es; "
                       "\"korvan edit\" legt es beiseite und beginnt ein neues.");
  }
}

MasterDataSession::MasterDataSession(const data::TTableRegistry& tables,
                                     const std::string& data_dir, bool overwrite,
                                     data::TDamagedFile damaged)
    : tables_(tables), data_dir_(data_dir), damaged_(damaged), answer_(overwrite) {
  const Installation installation = LoadInstallation(data_dir);
  files_ = std::make_unique<data::DatabaseFiles>(installation.machine.ToDatabaseDirectories());
  const data::DatabaseFile* stamm = files_->Find("DB_Stamm", data::kPathStammdaten);
  if (stamm == nullptr) throw CommandError("die Installation hat kein Stammdatenverzeichnis");
  sign_in_ = SignInToDirectories(CommandUser(installation.machine.SystemUserName()),
                                 {stamm->directory()}, false);
  db_ = std::make_unique<data::TStdDb>(*stamm);
  db_->SetMessages(&messages_);
  db_->SetModifiedById(installation.machine.SystemUserName());
  db_->SetConcurrencyQuestion(&answer_);
}

// Opened on first use, and for a session that writes only after its journal: the
// journal is held while the database is used, and a database opened before waiting for
// it would start from what the other writer had not yet finished.
void MasterDataSession::OpenDbOnce() {
  if (db_->IsOpen()) return;
  if (const int opened = db_->DbOpen(true); opened != storage::kOk) {
    throw CommandError(db_->BasePath() + "0: " + ResultCodeText(opened));
  }
  // A step a killed process left unfinished is settled before anything is read, so that
  // nobody sees a change the journal then takes back. Should that fail, the commands
  // that use the journal report it.
  std::error_code missing;
  if (std::filesystem::exists(data::TUndoRedo::PendingFile(data_dir_), missing)) {
    try {
      OpenJournalOnce();
    } catch (const CommandError&) {
    }
  }
}

data::TStdDb& MasterDataSession::Db() {
  OpenDbOnce();
  return *db_;
}

// Opened on first use: a session that only reads neither takes the journal's lock nor is
// stopped by a damaged journal.
void MasterDataSession::OpenJournalOnce() {
  if (journal_) return;
  journal_ = OpenJournal(data_dir_, damaged_);
  observing_ = std::make_unique<data::ScopedTableChangeObserver>(journal_.get());
  actions_ = std::make_unique<data::TCDataUndoJournal>(*journal_);
  restorer_ = std::make_unique<data::TTableRecordRestorer>(std::vector<data::TStdDb*>{db_.get()},
                                                           tables_, data_dir_);
  rows_ = std::make_unique<RowReloader>();
  journal_->SetRecordRestorer(restorer_.get());
  journal_->SetRowRestorer(rows_.get());
  OpenDbOnce();
  // A step a killed process left is taken back before anything else is done, so that
  // journal and data agree.
  if (!journal_->ResolveUnfinished()) {
    const std::string problem = journal_->LastError();
    observing_.reset();
    actions_.reset();
    journal_.reset();
    throw CommandError(problem +
                       "\nDas Journal wird nicht verwendet. \"korvan undo --clear\" löscht es.");
  }
}

data::TUndoRedo& MasterDataSession::Journal() {
  OpenJournalOnce();
  return *journal_;
}

data::UserActionScope& MasterDataSession::Actions() {
  OpenJournalOnce();
  return *actions_;
}

// The journal stops recording before the database closes; the database is closed
// before its file set goes.
MasterDataSession::~MasterDataSession() {
  observing_.reset();
  if (db_ && db_->IsOpen()) db_->DbClose();
}

}  // namespace korvan::app
