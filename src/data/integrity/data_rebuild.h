#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/db/control_list.h"
#include "data/db/db_groups.h"
#include "data/db/directory_sign_in.h"
#include "data/integrity/data_integrity.h"
#include "data/integrity/database_recovery.h"
#include "data/tables/table_registry.h"

namespace korvan::data {

// The rebuild data module: rebuilds whole databases, one group at a time, in every
// directory where the group's data file exists (see database_recovery.h for how one
// database is rebuilt), and runs the integrity check over the databases.
//
// Before a directory's files are replaced, its control file "DATA.QDC" is consulted:
// the rebuild signs in exclusively and refuses when anybody else works in the
// directory, and stays signed in until the files are replaced. A caller that holds the
// directories alone for a longer run says so with HoldDirectories.
class TdmDataRebuild {
 public:
  // `registry` knows the table classes that build the keys of the copied records; a
  // record of a letter it does not know is copied without keys.
  TdmDataRebuild(const DatabaseFiles& files, ControlUser me, TTableRegistry registry);

  // The table classes the rebuild and its integrity checks know.
  const TTableRegistry& Registry() const { return FRegistry; }

  // The exclusive sign-in under which the caller runs; directories it holds are not
  // signed in to again.
  void HoldDirectories(const TDirectorySignIn* held) { FHeld = held; }

  // The group's databases, rebuilt; one result per existing data file.
  std::vector<DatabaseRebuild> RebuildGroup(std::string_view group);
  // Only the group's database in the directory of one path type.
  std::vector<DatabaseRebuild> RebuildGroupIn(std::string_view group, char path_type);
  // Every group.
  std::vector<DatabaseRebuild> RebuildAll();

  std::vector<DatabaseRebuild> RebuildDB_LV() { return RebuildGroup("DB_Lv"); }
  std::vector<DatabaseRebuild> RebuildDB_Kat() { return RebuildGroup("DB_Kat"); }
  std::vector<DatabaseRebuild> RebuildDB_Texte() { return RebuildGroup("DB_Texte"); }
  std::vector<DatabaseRebuild> RebuildDB_Ris() { return RebuildGroup("DB_Ris"); }
  std::vector<DatabaseRebuild> RebuildDB_LvEx() { return RebuildGroup("DB_LvEx"); }
  std::vector<DatabaseRebuild> RebuildDB_RV() { return RebuildGroup("DB_Rv"); }
  std::vector<DatabaseRebuild> RebuildDB_KP() { return RebuildGroup("DB_KP"); }
  std::vector<DatabaseRebuild> RebuildDB_KR() { return RebuildGroup("DB_KR"); }
  std::vector<DatabaseRebuild> RebuildDB_Ansatz() { return RebuildGroup("DB_Ansatz"); }
  // The calculation approaches of the current project only.
  std::vector<DatabaseRebuild> RebuildDB_Ansatz_Object() {
    return RebuildGroupIn("DB_Ansatz", kPathObjekt);
  }
  std::vector<DatabaseRebuild> RebuildDB_QProject() { return RebuildGroup("DB_QProjekt"); }
  std::vector<DatabaseRebuild> RebuildDB_Stamm() { return RebuildGroup("DB_Stamm"); }
  std::vector<DatabaseRebuild> RebuildDB_UP() { return RebuildGroup("DB_UP"); }
  std::vector<DatabaseRebuild> RebuildDB_QOffice() { return RebuildGroup("DB_QOffice"); }
  std::vector<DatabaseRebuild> RebuildDB_QPR() { return RebuildGroup("DB_QPR"); }
  std::vector<DatabaseRebuild> RebuildDB_Contro() { return RebuildGroup("DB_CONTRO"); }
  std::vector<DatabaseRebuild> RebuildDB_Property() { return RebuildGroup("DB_Prop"); }
  std::vector<DatabaseRebuild> RebuildDB_GlobData() { return RebuildGroup("DB_GlobData"); }
  std::vector<DatabaseRebuild> RebuildDB_UserFelder() { return RebuildGroup("DB_UserFelder"); }
  std::vector<DatabaseRebuild> RebuildDB_UserFelderDef() {
    return RebuildGroup("DB_UserFelderDef");
  }

  // Runs the integrity check over the existing databases (of one group when `group` is
  // not empty). Databases that cannot be opened are logged as errors. Returns the
  // number of problems; the run keeps the log.
  // A rebuild that crashed after its copy was committed is finished first, also in a
  // dry run: until then the directory holds neither the old nor the new database whole.
  int IntegrityCheck(TDataIntegrity& run, bool only_test, std::string_view group = {});
  // What the last IntegrityCheck put right before it read anything.
  const std::vector<std::string>& RecoveryLines() const { return FRecoveryLines; }

  // The existing databases (data file present) of a group, or of all groups.
  std::vector<const DatabaseFile*> ExistingFiles(std::string_view group = {}) const;

 private:
  DatabaseRebuild RebuildFile(const DatabaseFile& file);

  const DatabaseFiles& FFiles;
  ControlUser FMe;
  const TDirectorySignIn* FHeld = nullptr;
  TTableRegistry FRegistry;
  std::vector<std::unique_ptr<TStdDb>> FOpenForCheck;
  std::vector<std::string> FRecoveryLines;
};

}  // namespace korvan::data
