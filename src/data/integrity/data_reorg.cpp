#include "data/integrity/data_reorg.h"

#include <set>

#include "data/common/stamped_path.h"
#include "data/integrity/database_recovery.h"
#include "data/tables/std_db_datas.h"
#include "storage/data_file_check.h"
#include "storage/file/atomic_file.h"
#include "storage/file/file_names.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace fs = std::filesystem;
namespace {

uint64_t Fnv1a(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 1469598103934665603ull;
  for (uint8_t byte : bytes) {
    hash ^= byte;
    hash *= 1099511628211ull;
  }
  return hash;
}

// What a check found per table: records checked and problems.
using CheckSummary = std::map<std::string, std::pair<std::vector<std::string>, int>>;

CheckSummary Summarize(const TDataIntegrity& run) {
  CheckSummary summary;
  for (const TDiLogItem& item : run.GetLogItems()) {
    auto& entry = summary[item.FDatabaseName + " / " + item.FTableName];
    entry.first = item.FRecordCountResult;
    entry.second += item.ProblemCount();
  }
  return summary;
}

bool IsDatabaseFileName(const std::string& name) {
  return name.rfind("DB_", 0) == 0 && name.find(".Q") != std::string::npos;
}

// The "DB_*.Q*" files of the directories, as they are before the reorganisation.
struct BackedUpFile {
  fs::path original;
  fs::path copy;
};

// Copies every "DB_*.Q*" file of the directories into numbered folders below `folder`.
std::vector<BackedUpFile> BackUp(const std::vector<const DatabaseFile*>& files,
                                 const fs::path& folder) {
  std::vector<BackedUpFile> copied;
  std::set<std::string> directories;
  for (const DatabaseFile* file : files) directories.insert(file->directory());
  int number = 0;
  for (const std::string& directory : directories) {
    const fs::path target = folder / std::to_string(++number);
    fs::create_directories(target);
    for (const auto& entry : fs::directory_iterator(directory)) {
      const std::string name = entry.path().filename().string();
      if (!entry.is_regular_file() || !IsDatabaseFileName(name)) continue;
      fs::copy_file(entry.path(), target / name);
      copied.push_back({entry.path(), target / name});
    }
  }
  return copied;
}

// Puts the files of the backup back in place, each through a temporary name so that a
// file is either the copy's or the backup's, and removes what the copy left next to
// them that was not there before.
std::vector<std::string> RestoreOriginals(const std::vector<const DatabaseFile*>& files,
                                          const std::vector<BackedUpFile>& backup) {
  for (const DatabaseFile* file : files) TStdDbDatas::Instance().FreeDBdata(file->BasePath());
  std::vector<std::string> problems;
  std::set<fs::path> originals;
  std::set<fs::path> directories;
  for (const BackedUpFile& saved : backup) {
    originals.insert(saved.original);
    directories.insert(saved.original.parent_path());
    const storage::FileWriteResult restored = storage::CopyFileAtomically(
        saved.copy.string(), saved.original.string(), storage::Durability::kDurable);
    if (!restored.ok()) problems.push_back(saved.original.string() + ": " + restored.ErrorText());
  }
  for (const fs::path& directory : directories) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error)) {
      const std::string name = entry.path().filename().string();
      if (IsDatabaseFileName(name) && storage::IsRebuildLeftoverName(name) &&
          originals.count(entry.path()) == 0) {
        std::error_code removed;
        fs::remove(entry.path(), removed);
      }
    }
  }
  return problems;
}

std::vector<std::string> LoadAll(const std::vector<const DatabaseFile*>& files) {
  std::vector<std::string> problems;
  for (const DatabaseFile* file : files) {
    TStdDb db(*file);
    if (const int opened = db.DbOpen(false); opened != storage::kOk) {
      problems.push_back(file->DataFileName() + ": nicht ladbar (" + std::to_string(opened) + ")");
      continue;
    }
    for (const std::string& problem : storage::CheckKeyFile(db.Handle())) {
      problems.push_back(file->KeyFileName() + ": " + problem);
    }
    for (const std::string& problem : storage::CheckDataFile(db.Handle()).problems) {
      problems.push_back(file->DataFileName() + ": " + problem);
    }
  }
  return problems;
}

}  // namespace

TDataPhase TakeDataPhase(const std::vector<const DatabaseFile*>& files) {
  TDataPhase phase;
  for (const DatabaseFile* file : files) {
    auto& tables = phase.files[file->DataFileName()];
    ScanDataFile(file->DataFileName(), [&](const ScannedRecord& record) {
      TDataPhase::Table& table = tables[static_cast<char>(record.bytes[4])];
      ++table.records;
      table.checksum += Fnv1a(record.bytes);
    });
  }
  return phase;
}

std::vector<std::string> ComparePhases(const TDataPhase& before, const TDataPhase& after) {
  std::vector<std::string> differences;
  std::set<std::pair<std::string, char>> keys;
  for (const auto* phase : {&before, &after}) {
    for (const auto& [file, tables] : phase->files) {
      for (const auto& [letter, table] : tables) keys.insert({file, letter});
    }
  }
  auto find = [](const TDataPhase& phase, const std::pair<std::string, char>& key) {
    TDataPhase::Table none;
    auto file = phase.files.find(key.first);
    if (file == phase.files.end()) return none;
    auto table = file->second.find(key.second);
    return table == file->second.end() ? none : table->second;
  };
  for (const auto& key : keys) {
    const TDataPhase::Table old_table = find(before, key);
    const TDataPhase::Table new_table = find(after, key);
    if (old_table == new_table) continue;
    differences.push_back(key.first + " Tabelle \"" + std::string(1, key.second) + "\": vorher " +
                          std::to_string(old_table.records) + " Datensätze, nachher " +
                          std::to_string(new_table.records) +
                          (old_table.records == new_table.records ? " (Inhalt verschieden)" : ""));
  }
  return differences;
}

namespace {

// Steps 3 to 7; false when one of them failed.
bool CopyAndCompare(TdmDataRebuild& rebuild, const std::vector<const DatabaseFile*>& files,
                    const CheckSummary& before_check, const TDataPhase& before,
                    const std::function<TReorgStep&(const char*)>& step) {
  TReorgStep& copy = step("3. Daten kopieren");
  for (DatabaseRebuild& done : rebuild.RebuildAll()) {
    if (!done.ok()) copy.ok = false;
    copy.details.push_back(
        done.data_file + ": " +
        (done.ok() ? std::to_string(done.records_copied) + " Datensätze" : done.error));
    for (std::string& line : done.lines) copy.details.push_back("  " + line);
  }
  if (!copy.ok) return false;

  TDataIntegrity second_check(rebuild.Registry());
  TReorgStep& check2 = step("4. I-Check nach Kopie");
  check2.details.push_back(std::to_string(rebuild.IntegrityCheck(second_check, true)) +
                           " Problem(e)");

  TReorgStep& compare = step("5. I-Checks vergleichen");
  const CheckSummary after_check = Summarize(second_check);
  for (const auto& [table, summary] : before_check) {
    auto found = after_check.find(table);
    if (found == after_check.end() || found->second != summary) {
      compare.ok = false;
      compare.details.push_back(table + ": Ergebnis nach der Kopie verschieden");
    }
  }
  if (after_check.size() != before_check.size()) {
    compare.ok = false;
    compare.details.push_back("andere Tabellen nach der Kopie");
  }
  if (!compare.ok) return false;

  TReorgStep& phases = step("6. Phasenvergleich");
  try {
    phases.details = ComparePhases(before, TakeDataPhase(files));
  } catch (const std::exception& error) {
    phases.details.push_back(error.what());
  }
  phases.ok = phases.details.empty();
  if (!phases.ok) return false;

  TReorgStep& load = step("7. Projekt laden");
  load.details = LoadAll(files);
  load.ok = load.details.empty();
  return load.ok;
}

}  // namespace

TReorgResult doDmDataReorgWithCopy(TdmDataRebuild& rebuild, const fs::path& backup_root,
                                   const std::function<void(const std::string&)>& on_step) {
  TReorgResult result;
  const std::function<TReorgStep&(const char*)> step = [&](const char* name) -> TReorgStep& {
    if (on_step) on_step(name);
    return result.steps.emplace_back(TReorgStep{name, true, {}});
  };
  const std::vector<const DatabaseFile*> files = rebuild.ExistingFiles();

  TDataIntegrity first_check(rebuild.Registry());
  TReorgStep& check1 = step("1. I-Check");
  check1.details.push_back(std::to_string(rebuild.IntegrityCheck(first_check, true)) +
                           " Problem(e)");
  const CheckSummary before_check = Summarize(first_check);

  TReorgStep& phase_step = step("2. Phase anlegen");
  TDataPhase before;
  try {
    before = TakeDataPhase(files);
  } catch (const std::exception& error) {
    phase_step.ok = false;
    phase_step.details.push_back(error.what());
    return result;
  }

  TReorgStep& backup = step("Datensicherung vor Reorganisieren");
  std::vector<BackedUpFile> saved;
  try {
    result.backup_folder = NewStampedPath(backup_root, "Reorg_", "");
    saved = BackUp(files, result.backup_folder);
    for (const BackedUpFile& file : saved) {
      backup.details.push_back(file.original.string() + " -> " + file.copy.string());
    }
  } catch (const std::exception& error) {
    backup.ok = false;
    backup.details.push_back(error.what());
    return result;
  }

  if (!CopyAndCompare(rebuild, files, before_check, before, step)) {
    // What went wrong may have left some databases copied and others not: the data go
    // back to what they were before.
    TReorgStep& restore = step("Originaldateien wiederhergestellt");
    restore.details = RestoreOriginals(files, saved);
    restore.ok = restore.details.empty();
    if (!restore.ok) {
      restore.details.push_back("die Datensicherung liegt in \"" + result.backup_folder.string() +
                                "\"");
    }
    result.restored = restore.ok;
  }
  return result;
}

}  // namespace korvan::data
