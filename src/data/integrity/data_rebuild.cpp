#include "data/integrity/data_rebuild.h"

#include "data/tables/std_db_datas.h"
#include "storage/db_error_translate.h"
#include "storage/result_codes.h"

namespace korvan::data {

TdmDataRebuild::TdmDataRebuild(const DatabaseFiles& files, ControlUser me, TTableRegistry registry)
    : FFiles(files), FMe(std::move(me)), FRegistry(std::move(registry)) {}

std::vector<const DatabaseFile*> TdmDataRebuild::ExistingFiles(std::string_view group) const {
  std::vector<const DatabaseFile*> found;
  for (const DatabaseFile& file : FFiles.all()) {
    if (!group.empty() && file.group_name() != group) continue;
    if (file.Exists()) found.push_back(&file);
  }
  return found;
}

DatabaseRebuild TdmDataRebuild::RebuildFile(const DatabaseFile& file) {
  TControlList list(file.directory());
  const bool held = FHeld != nullptr && FHeld->exclusive() && FHeld->Holds(file.directory());
  try {
    if (!held && !list.Open(FMe, true)) {
      DatabaseRebuild refused;
      refused.data_file = file.DataFileName();
      const auto& holder = list.GetLockUser();
      refused.error = "Verzeichnis \"" + file.directory() + "\" wird benutzt von " +
                      (holder ? holder->DisplayName() : std::string(kStandardUser));
      return refused;
    }
  } catch (const ControlFileError& error) {
    DatabaseRebuild refused;
    refused.data_file = file.DataFileName();
    refused.error = error.what();
    return refused;
  }
  // Handles of this process on the old files would point at replaced files.
  TStdDbDatas::Instance().FreeDBdata(file.BasePath());
  DatabaseRebuild result = RebuildDatabase(file.directory(), file.group_name(), file.type_letter(),
                                           file.key_length(), FRegistry);
  list.Close();
  return result;
}

std::vector<DatabaseRebuild> TdmDataRebuild::RebuildGroup(std::string_view group) {
  std::vector<DatabaseRebuild> results;
  for (const DatabaseFile* file : ExistingFiles(group)) results.push_back(RebuildFile(*file));
  return results;
}

std::vector<DatabaseRebuild> TdmDataRebuild::RebuildGroupIn(std::string_view group,
                                                            char path_type) {
  std::vector<DatabaseRebuild> results;
  const DatabaseFile* file = FFiles.Find(group, path_type);
  if (file != nullptr && file->Exists()) results.push_back(RebuildFile(*file));
  return results;
}

std::vector<DatabaseRebuild> TdmDataRebuild::RebuildAll() {
  return RebuildGroup({});
}

int TdmDataRebuild::IntegrityCheck(TDataIntegrity& run, bool only_test, std::string_view group) {
  run.Clear();
  run.SetOnlyTest(only_test);
  FOpenForCheck.clear();
  FRecoveryLines.clear();
  for (const DatabaseFile* file : ExistingFiles(group)) {
    for (std::string& line : FinishInterruptedRebuilds(file->directory())) {
      FRecoveryLines.push_back(std::move(line));
    }
    auto db = std::make_unique<TStdDb>(*file);
    db->SetModifiedById(FMe.user);
    // A database that does not open is reported by the run as not opened.
    db->DbOpen(!only_test);
    run.Add(*db, FRegistry.CreateTables(*db));
    FOpenForCheck.push_back(std::move(db));
  }
  const int problems = run.Execute();
  // Tables first, then their databases.
  run.ReleaseTables();
  FOpenForCheck.clear();
  return problems;
}

}  // namespace korvan::data
