#include "app/commands/lists/master_data_session.h"

#include <filesystem>

#include "app/cli/command_error.h"
#include "app/commands/db/db_database.h"
#include "app/commands/lists/journal_wait.h"
#include "app/program/command_sign_in.h"
#include "app/program/database_open_failure.h"
#include "app/program/installation.h"
#include "data/db/path_types.h"
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
  user_ = installation.machine.SystemUserName();
  sign_in_ = SignInToDirectories(CommandUser(user_), {stamm->directory()}, false);
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
    throw CommandError(DatabaseOpenFailureText(db_->BasePath(), opened));
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
  restorer_->SetDatabaseOpener(
      [this](const data::TableTarget& target) { return OpenJournalTarget(target); });
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

data::TStdDb& MasterDataSession::OpenDatabase(const data::DatabaseFile& file) {
  for (const std::unique_ptr<data::TStdDb>& open : other_dbs_) {
    if (open->BasePath() == file.BasePath()) return *open;
  }
  other_sign_ins_.push_back(SignInToDirectories(CommandUser(user_), {file.directory()}, false));
  auto db = std::make_unique<data::TStdDb>(file);
  db->SetMessages(&messages_);
  db->SetModifiedById(user_);
  db->SetConcurrencyQuestion(&answer_);
  if (const int opened = db->DbOpen(true); opened != storage::kOk) {
    throw CommandError(file.DataFileName() + ": " + ResultCodeText(opened));
  }
  other_dbs_.push_back(std::move(db));
  return *other_dbs_.back();
}

// A database the journal names by its path, relative to the data directory: opened when
// it is one of the installation's groups (by file name and type letter) and there.
data::TStdDb* MasterDataSession::OpenJournalTarget(const data::TableTarget& target) {
  std::filesystem::path base(target.db_file);
  if (base.is_relative()) base = std::filesystem::path(data_dir_) / base;
  // The base path is the group's name with ".Q" and the type letter.
  const std::string suffix = std::string(".Q") + target.db_type;
  std::string name = base.filename().string();
  if (name.size() <= suffix.size() || !name.ends_with(suffix)) return nullptr;
  name.resize(name.size() - suffix.size());
  const data::DbGroupDefinition* group = data::FindDbGroup(name);
  if (group == nullptr || group->type_letter != target.db_type) return nullptr;
  const std::string directory = data::WithTrailingSeparator(base.parent_path().string());
  const data::DatabaseFile file(*group, data::kPathObjekt, directory);
  if (!file.Exists()) return nullptr;
  try {
    return &OpenDatabase(file);
  } catch (const CommandError&) {
    return nullptr;  // the journal reports the step as not writable
  }
}

// The journal stops recording before the databases close; the databases are closed
// before their file set goes.
MasterDataSession::~MasterDataSession() {
  observing_.reset();
  for (const std::unique_ptr<data::TStdDb>& db : other_dbs_) {
    if (db->IsOpen()) db->DbClose();
  }
  if (db_ && db_->IsOpen()) db_->DbClose();
}

}  // namespace korvan::app
