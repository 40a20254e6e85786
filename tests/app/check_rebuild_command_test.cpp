// `korvan check`, `korvan rebuild` and `korvan reorg` end to end: through the binary, on
// installations damaged by hand and by a writer that is killed in the middle of its work.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "app/program/installation.h"
#include "app/program/program_tables.h"
#include "boq/units/tb_einheit.h"
#include "boq/units/tb_waehrung.h"
#include "data/db/db_groups.h"
#include "data/db/path_types.h"
#include "data/integrity/database_recovery.h"
#include "data/tables/std_db.h"
#include "data/tables/table_key.h"
#include "data/tables/table_registry.h"
#include "storage/data_file_check.h"
#include "storage/db_kernel.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "testing/child_process.h"
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

// A writer killed in the middle of its work.

// What the writer tells the test about each write: once before it starts ('B') and once
// after the table layer returned success ('E'). Small enough to be written atomically.
struct WriteReport {
  char phase;  // 'B' or 'E'
  char op;     // 'I' insert, 'U' update, 'D' delete
  char table;  // 'W' currency, 'E' unit
  int32_t id;
  int32_t version;  // the content the record gets; 0 for a delete
};

using RecordId = std::pair<char, int32_t>;  // table letter, id
// The version of each record the writer touched; nullopt when deleted.
using WrittenState = std::map<RecordId, std::optional<int32_t>>;
using UnderWay = std::optional<std::pair<RecordId, std::optional<int32_t>>>;

constexpr int16_t kGerman = 49;

std::string NameOf(const RecordId& id, int32_t version) {
  return std::string(id.first == 'W' ? "Währung " : "Einheit ") + std::to_string(id.second) + "/" +
         std::to_string(version);
}

std::string KeyOf(const RecordId& id) {
  return id.first == 'W'
             ? data::KeyNumber(id.second)
             : data::KeyNumber16(kGerman) + data::KeyNumber16(static_cast<int16_t>(id.second));
}

// The master data's currency and unit tables, opened for writing or reading.
struct MasterTables {
  explicit MasterTables(const fs::path& base, bool write)
      : db(Stamm(base)), opened(db.DbOpen(write)) {}
  data::TStdDb db;
  int opened;
  boq::TTbWaehrung currencies{db};
  boq::TTbEinheit units{db};
  data::TStdTB& Of(char table) {
    return table == 'W' ? static_cast<data::TStdTB&>(currencies) : units;
  }
};

// The writer: inserts, updates and deletes currencies and units of the master data
// through the table objects until it is killed. Runs in the forked child.
int RunWriter(const fs::path& base, WrittenState state, uint32_t seed,
              const testing::Channel& parent) {
  MasterTables tables(base, true);
  if (tables.opened != storage::kOk) return 3;
  parent.KeepCloseBehind();
  std::mt19937 random(seed);
  std::map<char, std::vector<int32_t>> live;
  std::map<char, int32_t> next_id = {{'W', 1000}, {'E', 100}};
  for (const auto& [key, version] : state) {
    if (version) live[key.first].push_back(key.second);
    next_id[key.first] = std::max(next_id[key.first], key.second + 1);
  }
  const auto report = [&parent](const WriteReport& r) {
    if (!parent.SendMessage(r)) _exit(4);
  };
  for (int write = 0; write < 1000000; ++write) {
    const char table = random() % 2 == 0 ? 'W' : 'E';
    std::vector<int32_t>& ids = live[table];
    const unsigned roll = random() % 100;
    WriteReport r{'B', roll < 55 || ids.size() < 3 ? 'I' : roll < 80 ? 'U' : 'D', table, 0, 0};
    const size_t pick = r.op == 'I' ? 0 : random() % ids.size();
    r.id = r.op == 'I' ? next_id[table]++ : ids[pick];
    const RecordId id{table, r.id};
    r.version = r.op == 'I' ? 1 : r.op == 'U' ? state[id].value() + 1 : 0;
    report(r);
    data::TStdTB& tb = tables.Of(table);
    if (r.op == 'I') {
      tb.InitRecord();
    } else if (!tb.GetKey(KeyOf(id))) {
      return 5;
    }
    int result = 0;
    if (r.op == 'D') {
      result = tb.DeleteRec();
      ids.erase(ids.begin() + static_cast<std::ptrdiff_t>(pick));
      state[id] = std::nullopt;
    } else {
      if (table == 'W') {
        tables.currencies.Rec().ID = r.id;
        tables.currencies.Rec().Bez.Set(NameOf(id, r.version));
        tables.currencies.Rec().Faktor = r.version * 0.25;
        tables.currencies.Rec().IdLand = r.version;
      } else {
        tables.units.Rec().IdLang = kGerman;
        tables.units.Rec().IdEinheit = static_cast<int16_t>(r.id);
        tables.units.Rec().Bezeichnung.Set(NameOf(id, r.version));
        tables.units.Rec().Sz = static_cast<int16_t>(r.version);
      }
      result = tb.UpDateRec();
      if (r.op == 'I') ids.push_back(r.id);
      state[id] = r.version;
    }
    if (result != storage::kOk) return 6;
    r.phase = 'E';
    report(r);
  }
  return 0;
}

// The version the master data hold of `id`, nullopt when there is none; -1 when its
// content is no version the writer wrote.
std::optional<int32_t> StoredVersion(MasterTables& tables, const RecordId& id) {
  if (!tables.Of(id.first).GetKey(KeyOf(id))) return std::nullopt;
  if (id.first == 'W') {
    const auto& rec = tables.currencies.Rec();
    const int32_t version = rec.IdLand;
    const bool matches =
        rec.ID == id.second && rec.Bez.Get() == NameOf(id, version) && rec.Faktor == version * 0.25;
    return matches ? version : -1;
  }
  const auto& rec = tables.units.Rec();
  const bool matches = rec.IdEinheit == id.second && rec.Bezeichnung.Get() == NameOf(id, rec.Sz);
  return matches ? std::optional<int32_t>(rec.Sz) : -1;
}

// How many records of the table the index "1" leads to.
int CountRecords(data::TStdTB& table) {
  int count = 0;
  for (bool found = table.GetFirstKey(""); found; found = table.GetNextKey()) ++count;
  return count;
}

// One round: fork the writer, kill it after `kill_after` finished writes, and take over
// what it reported. Returns the write that was under way, if any.
UnderWay RunAndKillWriter(const fs::path& base, WrittenState& state, uint32_t seed,
                          int kill_after) {
  testing::ChildProcess writer(
      [&](const testing::Channel& parent) { return RunWriter(base, state, seed, parent); });
  UnderWay under_way;
  int finished = 0;
  bool killed = false;
  // After the kill, the reports still on their way are taken over.
  for (WriteReport r{}; writer.ReceiveMessage(&r, killed ? 0 : 10000);) {
    const RecordId id{r.table, r.id};
    const std::optional<int32_t> version =
        r.op == 'D' ? std::nullopt : std::optional<int32_t>(r.version);
    if (r.phase == 'B') {
      under_way = {{id, version}};
      continue;
    }
    under_way.reset();
    state[id] = version;
    if (++finished == kill_after) {
      killed = true;
      EXPECT_TRUE(writer.Kill()) << "the writer ended by itself";
    }
  }
  return under_way;
}

// Every record the writer reported is there with its content, deleted ones are gone, the
// one under way is in its old or its new state (which `state` then takes over), and the
// tables hold nothing else.
void ExpectWrittenRecords(const fs::path& base, WrittenState& state, const UnderWay& under_way,
                          std::map<char, int> sample, const std::string& round) {
  MasterTables tables(base, false);
  ASSERT_EQ(tables.opened, storage::kOk) << round;
  if (under_way) {
    const auto& [id, new_version] = *under_way;
    const std::optional<int32_t> stored = StoredVersion(tables, id);
    const std::optional<int32_t> old = state.count(id) ? state[id] : std::nullopt;
    EXPECT_TRUE(stored == old || stored == new_version)
        << round << ": record " << id.first << id.second << " under way is " << stored.value_or(0);
    state[id] = stored;
  }
  for (const auto& [id, version] : state) {
    EXPECT_EQ(StoredVersion(tables, id), version) << round << ": record " << id.first << id.second;
    if (version) ++sample[id.first];
  }
  EXPECT_EQ(CountRecords(tables.currencies), sample['W']) << round;
  EXPECT_EQ(CountRecords(tables.units), sample['E']) << round;
}

TEST(CheckRebuildCommand, WriterKilledMidRunLosesNoReportedWriteAfterRebuild) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeInstallation(dir);
  std::map<char, int> sample;
  {
    MasterTables tables(base, false);
    ASSERT_EQ(tables.opened, storage::kOk);
    sample = {{'W', CountRecords(tables.currencies)}, {'E', CountRecords(tables.units)}};
    ASSERT_GT(sample['W'], 0);
  }
  const std::string stamm = Stamm(base).BasePath();
  // Other kill points on each run; a failure names the seed (--gtest_random_seed=N).
  const int seed = ::testing::UnitTest::GetInstance()->random_seed();
  std::mt19937 random(static_cast<uint32_t>(seed));
  WrittenState state;
  const auto started = std::chrono::steady_clock::now();
  for (int round = 1; round <= 3; ++round) {
    const int kill_after = std::uniform_int_distribution<int>(1, 120 * round * round)(random);
    const std::string name = "round " + std::to_string(round) + " (killed after " +
                             std::to_string(kill_after) + ", seed " + std::to_string(seed) + ")";
    const UnderWay under_way =
        RunAndKillWriter(base, state, static_cast<uint32_t>(random()), kill_after);

    // The first round checks and rebuilds everything, the others only the master data,
    // which is all the writer touches.
    const auto korvan = [&](std::vector<std::string> args) {
      args.insert(args.end(), {"-d", base.string()});
      if (round > 1) args.insert(args.end(), {"--group", "DB_Stamm"});
      return RunKorvanBinary(args);
    };
    // The check on the crashed data may find problems, but it must end and leave a log.
    const ProgramResult check = korvan({"check"});
    EXPECT_FALSE(testing::Crashed(check)) << name << ": " << check.err;
    EXPECT_TRUE(check.exit_code == 0 || check.exit_code == 1) << name << ": " << check.err;
    EXPECT_TRUE(Contains(check.out, "Record(s) untersucht")) << name << ": " << check.out;
    EXPECT_TRUE(Contains(check.out, "Protokoll: ")) << name << ": " << check.out;

    EXPECT_EQ(korvan({"rebuild"}).exit_code, 0) << name;
    ExpectKorvan({"db", "check", stamm}, 0);
    ExpectWrittenRecords(base, state, under_way, sample, name);
    EXPECT_EQ(korvan({"check"}).exit_code, 0) << name;
    if (::testing::Test::HasFailure()) break;
    // Further rounds only while the whole test stays short.
    if (std::chrono::steady_clock::now() - started > std::chrono::seconds(5)) break;
  }
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
  MasterTables tables(base, false);
  EXPECT_TRUE(tables.currencies.GetKey(data::KeyNumber(id)));
  return tables.currencies.CurrentRecordPos();
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
