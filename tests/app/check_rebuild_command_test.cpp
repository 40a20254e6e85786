// `korvan check`, `korvan rebuild` and `korvan reorg` end to end on installations damaged
// by hand; what the checks find and repair in detail is the data suite's concern.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "app/program/installation.h"
#include "boq/units/tb_waehrung.h"
#include "data/db/db_groups.h"
#include "data/db/path_types.h"
#include "data/integrity/database_recovery.h"
#include "data/tables/std_db.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"
#include "testing/files.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::FileContents;
using testing::MakeInstallation;
using testing::ProgramResult;
using testing::RunKorvanBinary;

data::DatabaseFiles DatabasesOf(const fs::path& base) {
  return data::DatabaseFiles(app::LoadInstallation(base).machine.ToDatabaseDirectories());
}

std::vector<data::DatabaseFile> ExistingDatabases(const fs::path& base) {
  std::vector<data::DatabaseFile> found;
  const data::DatabaseFiles files = DatabasesOf(base);
  for (const data::DatabaseFile& file : files.all()) {
    if (file.Exists()) found.push_back(file);
  }
  return found;
}

data::DatabaseFile Stamm(const fs::path& base) {
  return *DatabasesOf(base).Find("DB_Stamm", data::kPathStammdaten);
}

// Every live record of every database, per data file, sorted: a rebuild moves records
// but must not change one byte of them.
std::map<std::string, std::vector<std::vector<uint8_t>>> DumpRecords(const fs::path& base) {
  std::map<std::string, std::vector<std::vector<uint8_t>>> dump;
  for (const data::DatabaseFile& file : ExistingDatabases(base)) {
    auto& records = dump[file.DataFileName()];
    data::ScanDataFile(file.DataFileName(),
                       [&](const data::ScannedRecord& record) { records.push_back(record.bytes); });
    std::sort(records.begin(), records.end());
  }
  return dump;
}

// The kernel's checks of the master data's files and the program's check of every table
// (which counts each table's keys against its records) find nothing.
void ExpectSound(const fs::path& base) {
  ExpectKorvan({"db", "check", Stamm(base).BasePath()}, 0);
  ExpectKorvan({"check", "-d", base.string(), "--dry-run"}, 0, {" 0 Problem(e)"});
}

TEST(CheckRebuildCommand, LostKeyFileIsRebuiltAndEveryRecordFoundByItsKeys) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  const auto before = DumpRecords(base);
  const std::string key_file = Stamm(base).KeyFileName();
  fs::remove(key_file);
  ExpectKorvan({"rebuild", "-d", base.string()}, 0, {"Schlüsseldatei fehlt, wird neu aufgebaut"});
  ExpectSound(base);
  EXPECT_EQ(DumpRecords(base), before);

  // A rebuild of one group only touches that group.
  fs::remove(key_file);
  ExpectKorvan({"rebuild", "-d", base.string(), "--group", "DB_Lv"}, 0);
  EXPECT_FALSE(fs::exists(key_file));
  ExpectKorvan({"rebuild", "-d", base.string(), "--group", "DB_Stamm"}, 0);
  ExpectSound(base);
  EXPECT_EQ(DumpRecords(base), before);
}

// The database files (data and key files) below `root`, by file name, with their content;
// a reorganisation's backups below `root` left out.
std::multiset<std::pair<std::string, std::string>> DatabaseContents(const fs::path& root) {
  std::multiset<std::pair<std::string, std::string>> contents;
  for (auto& [path, content] : FileContents(root)) {
    const std::string name = fs::path(path).filename().string();
    const bool database = name.starts_with("DB_") && (name.ends_with("0") || name.ends_with("1"));
    if (database && !Contains(fs::relative(path, root).string(), "Reorg_"))
      contents.insert({name, std::move(content)});
  }
  return contents;
}

// Where the currency with `id` is in the master data file.
int32_t CurrencyPosition(const fs::path& base, int32_t id) {
  data::TStdDb db(Stamm(base));
  EXPECT_EQ(db.DbOpen(false), storage::kOk);
  boq::TTbWaehrung currencies(db);
  EXPECT_TRUE(currencies.GetKey(data::KeyNumber(id)));
  return currencies.CurrentRecordPos();
}

constexpr int kKzBasisOffset = 181;  // of t_Waehrung

// The check shows a summary, every table only with --verbose; it logs into the system
// directory's "SYS" folder; a dry run changes nothing, a run without repairs.
TEST(CheckRebuildCommand, CheckReportsInDryRunAndRepairsOtherwise) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  const ProgramResult sound = ExpectKorvan({"check", "-d", base.string()}, 0,
                                           {" Record(s) untersucht, 0 Problem(e)", "Protokoll: "});
  EXPECT_FALSE(Contains(sound.out, "TB: ")) << sound.out;
  ExpectKorvan({"check", "-d", base.string(), "--verbose", "--group", "DB_Stamm"}, 0,
               {"TB: TTbWaehrung", "TB: TTbEinheit"});

  // A Boolean byte that is neither 0 nor 1.
  testing::PatchFile(Stamm(base).DataFileName(), CurrencyPosition(base, 41) + kKzBasisOffset,
                     "\x07");
  const auto before = FileContents(base / "STAMMDATEN");
  const fs::path sys = base / "SYSTEM/SYS";
  const ProgramResult finding =
      ExpectKorvan({"check", "-d", base.string(), "--dry-run"}, 1,
                   {"TB: TTbWaehrung", "CharSelektor: kzBasis='", " 1 Problem(e)",
                    "Nur Trockenlauf - Datensatz nicht geschrieben", "Protokoll: " + sys.string()});
  EXPECT_FALSE(Contains(finding.out, "TB: TTbEinheit")) << finding.out;
  EXPECT_EQ(FileContents(base / "STAMMDATEN"), before);
  ExpectKorvan({"check", "-d", base.string()}, 0, {"Datensatz neu geschrieben"});
  ExpectSound(base);
  ExpectKorvan({"check", "-d", dir.File("leer")}, 1, {dir.File("leer")});
}

// A record whose primary key another record of its table already has, as a crash
// between a record and its keys can leave it: the rebuild keeps the first record, sets
// the other aside in a file beside the database and says where.
TEST(CheckRebuildCommand, RebuildResolvesADuplicatePrimaryKeyAndKeepsTheOtherRecord) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  const data::DatabaseFile stamm = Stamm(base);
  const int32_t at = CurrencyPosition(base, 41);
  const std::string data = testing::ReadFile(stamm.DataFileName());
  int32_t length = 0;
  std::memcpy(&length, data.data() + at, sizeof length);
  const std::string twin = data.substr(static_cast<size_t>(at), static_cast<size_t>(length));
  testing::PatchFile(stamm.DataFileName(), static_cast<int64_t>(data.size()), twin);

  ExpectKorvan({"check", "-d", base.string(), "--dry-run"}, 1, {"RecordCount"});
  const ProgramResult rebuilt = ExpectKorvan(
      {"rebuild", "-d", base.string()}, 0,
      {"Position " + std::to_string(data.size()), "doppelt", "wie Position " + std::to_string(at)});
  std::vector<fs::path> set_aside;
  for (const auto& entry : fs::directory_iterator(stamm.directory())) {
    if (Contains(entry.path().filename().string(), "Doppelt")) set_aside.push_back(entry.path());
  }
  ASSERT_EQ(set_aside.size(), 1u) << rebuilt.out;
  EXPECT_TRUE(Contains(rebuilt.out, set_aside.front().string())) << rebuilt.out;
  EXPECT_EQ(testing::ReadFile(set_aside.front()), twin);
  ExpectSound(base);
}

// Records of a table letter no class knows are summed up per letter; the backups a rebuild
// keeps are named as they are on disk.
TEST(CheckRebuildCommand, RebuildSumsUpUnknownTablesAndNamesItsBackupsAsOnDisk) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  const std::string data_file = Stamm(base).DataFileName();
  const int32_t dollar = CurrencyPosition(base, 1);
  for (int32_t id : {41, 44}) testing::PatchFile(data_file, CurrencyPosition(base, id) + 4, "Q");
  testing::PatchFile(data_file, dollar + 4, "#");  // not valid: the old files are kept

  const ProgramResult rebuilt = ExpectKorvan({"rebuild", "-d", base.string()}, 0,
                                             {"\"Q\"", "2 Datensätze", "bleiben als \""});
  EXPECT_EQ(rebuilt.out.find("\"Q\""), rebuilt.out.rfind("\"Q\"")) << "one line per letter";
  // The text names the two backups: bleiben als "<data file>" und "<key file>".
  std::istringstream named(rebuilt.out.substr(rebuilt.out.find("bleiben als \"")));
  std::string backup[2];
  for (std::string& name : backup) {
    std::getline(named, name, '"');  // the text before the name
    std::getline(named, name, '"');
    EXPECT_TRUE(fs::exists(name)) << name << " in " << rebuilt.out;
  }
  EXPECT_EQ(testing::ReadFile(backup[0]).substr(static_cast<size_t>(dollar + 4), 1), "#");
}

TEST(CheckRebuildCommand, ReorgCopiesEverythingWithBackupAndKeepsTheOriginalsOnFailure) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  const auto before = DumpRecords(base);
  const auto originals = DatabaseContents(base);

  const ProgramResult reorg = ExpectKorvan({"reorg", "-d", base.string()}, 0);
  size_t at = 0;
  for (const char* step :
       {"1. I-Check: OK\n", "2. Phase anlegen: OK\n", "Datensicherung vor Reorganisieren: OK\n",
        "3. Daten kopieren: OK\n", "4. I-Check nach Kopie: OK\n", "5. I-Checks vergleichen: OK\n",
        "6. Phasenvergleich: OK\n", "7. Projekt laden: OK\n"}) {
    at = reorg.out.find(step, at);
    ASSERT_NE(at, std::string::npos) << step << " in order in\n" << reorg.out;
  }
  EXPECT_EQ(DumpRecords(base), before);
  ExpectSound(base);
  // The backup, a folder "Reorg_*" in SYS, holds every database file as it was.
  fs::path backup;
  for (const auto& entry : fs::directory_iterator(base / "SYSTEM/SYS")) {
    if (entry.path().filename().string().starts_with("Reorg_")) backup = entry.path();
  }
  ASSERT_FALSE(backup.empty());
  EXPECT_TRUE(Contains(reorg.out, "Datensicherung: " + backup.string())) << reorg.out;
  EXPECT_TRUE(DatabaseContents(backup) == originals) << "the backup differs from the files before";

  // A record that the copy cannot take over: the checks before and after differ, and
  // the files are put back as they were.
  testing::PatchFile(Stamm(base).DataFileName(), CurrencyPosition(base, 41) + 4, "w");
  const auto damaged = DatabaseContents(base);
  const ProgramResult failed =
      ExpectKorvan({"reorg", "-d", base.string()}, 1,
                   {"5. I-Checks vergleichen: FEHLER", "Originaldateien wiederhergestellt"});
  EXPECT_FALSE(Contains(failed.out, "7. Projekt laden")) << failed.out;
  EXPECT_TRUE(DatabaseContents(base) == damaged) << "the files differ from before the reorg";
}

}  // namespace
}  // namespace korvan
