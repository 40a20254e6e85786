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
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "app/installation.h"
#include "data/control_list.h"
#include "data/database_recovery.h"
#include "data/db_groups.h"
#include "data/path_types.h"
#include "data/std_db.h"
#include "data/table_key.h"
#include "data/table_registry.h"
#include "data/tb_einheit.h"
#include "data/tb_waehrung.h"
#include "storage/data_file_check.h"
#include "storage/db_kernel.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ProgramResult;
using testing::RunKorvanBinary;

// What a sanitizer or an uncaught exception leaves on standard error.
bool Crashed(const ProgramResult& result) {
  return result.exit_code >= 128 || Contains(result.err, "Sanitizer") ||
         Contains(result.err, "runtime error") || Contains(result.err, "terminate called");
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// An installation with sample master data, made by `korvan demo`.
fs::path MakeSample(const korvan::testing::TempDir& dir) {
  const fs::path base = dir.path() / "ava";
  const ProgramResult demo = RunKorvanBinary({"demo", "-d", base.string()});
  EXPECT_EQ(demo.exit_code, 0) << demo.err;
  return base;
}

// The database files of an installation.
class InstallationFiles {
 public:
  explicit InstallationFiles(const fs::path& base)
      : installation_(app::LoadInstallation(base)),
        files_(installation_.machine.ToDatabaseDirectories()) {}

  std::vector<const data::DatabaseFile*> Existing() const {
    std::vector<const data::DatabaseFile*> found;
    for (const data::DatabaseFile& file : files_.all()) {
      if (file.Exists()) found.push_back(&file);
    }
    return found;
  }
  const data::DatabaseFile& Stamm() const {
    return *files_.Find("DB_Stamm", data::kPathStammdaten);
  }
  std::string SysFolder() const {
    return data::DirectoryOfPathType(data::kPathSystemSys,
                                     installation_.machine.ToDatabaseDirectories());
  }

 private:
  app::Installation installation_;
  data::DatabaseFiles files_;
};

// Every live record of every database, per data file, sorted: a rebuild moves records
// but must not change one byte of them.
using RecordDump = std::map<std::string, std::vector<std::vector<uint8_t>>>;

RecordDump DumpRecords(const fs::path& base) {
  RecordDump dump;
  const InstallationFiles files(base);
  for (const data::DatabaseFile* file : files.Existing()) {
    auto& records = dump[file->DataFileName()];
    data::ScanDataFile(file->DataFileName(),
                       [&](const data::ScannedRecord& record) { records.push_back(record.bytes); });
    std::sort(records.begin(), records.end());
  }
  return dump;
}

// Every key that its table gives a record of the database must lead to that very record;
// returns one line per key that does not.
std::vector<std::string> MissingKeys(const data::DatabaseFile& file) {
  data::TStdDb db(file);
  if (const int opened = db.DbOpen(false); opened != storage::kOk) {
    return {file.DataFileName() + ": not opened (" + std::to_string(opened) + ")"};
  }
  const data::TTableRegistry registry = data::StandardTableRegistry();
  std::map<char, std::unique_ptr<data::TStdTB>> tables;
  std::vector<std::string> missing;
  data::ScanDataFile(file.DataFileName(), [&](const data::ScannedRecord& record) {
    const char letter = static_cast<char>(record.bytes[4]);
    const data::TTableRegistry::Factory* factory = registry.Find(file.type_letter(), letter);
    if (factory == nullptr) return;
    if (!tables[letter]) tables[letter] = (*factory)(db);
    const data::TRecordKeys keys = tables[letter]->BuildKeys(data::RecordView(record.bytes));
    for (size_t i = 0; i < keys.keys.size(); ++i) {
      if (!keys.entered[i]) continue;
      storage::KeyEntry entry = data::MakeKeyEntry(keys.keys[i], record.position);
      bool found = false;
      const int matched = storage::iDK_KeyMatchEx(db.Handle(), entry, file.key_length(), &found);
      if (matched != storage::kOk || !found) {
        missing.push_back(file.DataFileName() + ": record at " + std::to_string(record.position) +
                          " has no key of index " + std::string(1, keys.IndexChar(i)));
      }
    }
  });
  tables.clear();
  db.DbClose();
  return missing;
}

// Every database passes the kernel's checks of its key and data file and every record is
// found by its keys; `korvan db check` is run on the master data, or on every database
// when `all_by_binary`.
void ExpectEveryDatabaseSound(const fs::path& base, const std::string& when,
                              bool all_by_binary = false) {
  const InstallationFiles files(base);
  for (const data::DatabaseFile* file : files.Existing()) {
    if (all_by_binary || file == &files.Stamm()) {
      const ProgramResult check = RunKorvanBinary({"db", "check", file->BasePath()});
      EXPECT_EQ(check.exit_code, 0) << when << ": " << check.out << check.err;
    }
    data::TStdDb db(*file);
    ASSERT_EQ(db.DbOpen(false), storage::kOk) << when << ": " << file->DataFileName();
    const std::vector<std::string> tree = storage::CheckKeyFile(db.Handle());
    EXPECT_TRUE(tree.empty()) << when << ": " << file->KeyFileName() << ": " << tree.front();
    const std::vector<std::string> blocks = storage::CheckDataFile(db.Handle()).problems;
    EXPECT_TRUE(blocks.empty()) << when << ": " << file->DataFileName() << ": " << blocks.front();
    db.DbClose();
    const std::vector<std::string> missing = MissingKeys(*file);
    EXPECT_TRUE(missing.empty()) << when << ": " << missing.front();
  }
}

// ---------------------------------------------------------------------------------------
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

constexpr int16_t kGerman = 49;
constexpr int32_t kFirstCurrencyId = 1000;
constexpr int32_t kFirstUnitId = 100;

std::string CurrencyName(int32_t id, int32_t version) {
  return "Währung " + std::to_string(id) + "/" + std::to_string(version);
}
std::string UnitName(int32_t id, int32_t version) {
  return "Einheit " + std::to_string(id) + "/" + std::to_string(version);
}

void Report(int fd, const WriteReport& report) {
  if (::write(fd, &report, sizeof report) != static_cast<ssize_t>(sizeof report)) _exit(4);
}

// The writer: inserts, updates and deletes currencies and units of the master data
// through the table objects until it is killed. Runs in the forked child; ends with
// _exit only.
[[noreturn]] void RunWriter(const fs::path& base, WrittenState state, uint32_t seed, int fd) {
  InstallationFiles files(base);
  data::TStdDb db(files.Stamm());
  if (db.DbOpen(true) != storage::kOk) _exit(3);
  data::TTbWaehrung currencies(db);
  data::TTbEinheit units(db);
  std::mt19937 random(seed);
  std::map<char, std::vector<int32_t>> live;
  std::map<char, int32_t> next_id = {{'W', kFirstCurrencyId}, {'E', kFirstUnitId}};
  for (const auto& [key, version] : state) {
    if (version) live[key.first].push_back(key.second);
    next_id[key.first] = std::max(next_id[key.first], key.second + 1);
  }
  for (int write = 0; write < 1000000; ++write) {
    const char table = random() % 2 == 0 ? 'W' : 'E';
    std::vector<int32_t>& ids = live[table];
    const unsigned roll = random() % 100;
    WriteReport report{'B', roll < 55 || ids.size() < 3 ? 'I' : roll < 80 ? 'U' : 'D', table, 0, 0};
    size_t pick = 0;
    if (report.op == 'I') {
      report.id = next_id[table]++;
      report.version = 1;
    } else {
      pick = random() % ids.size();
      report.id = ids[pick];
      report.version = report.op == 'U' ? state[{table, report.id}].value() + 1 : 0;
    }
    Report(fd, report);
    data::TStdTB& tb = table == 'W' ? static_cast<data::TStdTB&>(currencies) : units;
    const std::string key = table == 'W' ? data::KeyNumber(report.id)
                                         : data::KeyNumber16(kGerman) +
                                               data::KeyNumber16(static_cast<int16_t>(report.id));
    if (report.op == 'I') {
      tb.InitRecord();
    } else if (!tb.GetKey(key)) {
      _exit(5);
    }
    int result = 0;
    if (report.op == 'D') {
      result = tb.DeleteRec();
      ids.erase(ids.begin() + static_cast<std::ptrdiff_t>(pick));
      state[{table, report.id}] = std::nullopt;
    } else {
      if (table == 'W') {
        currencies.Rec().ID = report.id;
        currencies.Rec().Bez.Set(CurrencyName(report.id, report.version));
        currencies.Rec().Faktor = report.version * 0.25;
        currencies.Rec().IdLand = report.version;
      } else {
        units.Rec().IdLang = kGerman;
        units.Rec().IdEinheit = static_cast<int16_t>(report.id);
        units.Rec().Bezeichnung.Set(UnitName(report.id, report.version));
        units.Rec().Sz = static_cast<int16_t>(report.version);
      }
      result = tb.UpDateRec();
      if (report.op == 'I') ids.push_back(report.id);
      state[{table, report.id}] = report.version;
    }
    if (result != storage::kOk) _exit(6);
    report.phase = 'E';
    Report(fd, report);
  }
  _exit(0);
}

// The record of `id` as the master data hold it now: its version, nullopt when there is
// none; -1 when its content is no version the writer wrote.
std::optional<int32_t> StoredVersion(data::TTbWaehrung& currencies, data::TTbEinheit& units,
                                     const RecordId& id) {
  if (id.first == 'W') {
    if (!currencies.GetKey(data::KeyNumber(id.second))) return std::nullopt;
    const int32_t version = currencies.Rec().IdLand;
    const bool matches = currencies.Rec().ID == id.second &&
                         currencies.Rec().Bez.Get() == CurrencyName(id.second, version) &&
                         currencies.Rec().Faktor == version * 0.25;
    return matches ? version : -1;
  }
  if (!units.GetKey(data::KeyNumber16(kGerman) +
                    data::KeyNumber16(static_cast<int16_t>(id.second)))) {
    return std::nullopt;
  }
  const int32_t version = units.Rec().Sz;
  const bool matches = units.Rec().IdEinheit == id.second &&
                       units.Rec().Bezeichnung.Get() == UnitName(id.second, version);
  return matches ? version : -1;
}

// How many records of the table the index "1" leads to.
int CountRecords(data::TStdTB& table) {
  int count = 0;
  for (bool found = table.GetFirstKey(""); found; found = table.GetNextKey()) ++count;
  return count;
}

// One round: fork the writer, kill it after `kill_after` finished writes, and take over
// what it reported. Returns the record whose write was under way, if any, with the
// version it was to get.
std::optional<std::pair<RecordId, std::optional<int32_t>>> RunAndKillWriter(const fs::path& base,
                                                                            WrittenState& state,
                                                                            uint32_t seed,
                                                                            int kill_after) {
  int pipe_fds[2];
  if (::pipe(pipe_fds) != 0) ADD_FAILURE() << "pipe: " << std::strerror(errno);
  // A small pipe keeps the writer close behind what the test has read.
  ::fcntl(pipe_fds[0], F_SETPIPE_SZ, 4096);
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::close(pipe_fds[0]);
    RunWriter(base, state, seed, pipe_fds[1]);
  }
  ::close(pipe_fds[1]);
  std::optional<std::pair<RecordId, std::optional<int32_t>>> under_way;
  int finished = 0;
  bool killed = false;
  WriteReport report{};
  while (true) {
    const ssize_t n = ::read(pipe_fds[0], &report, sizeof report);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    EXPECT_EQ(n, static_cast<ssize_t>(sizeof report));
    const RecordId id{report.table, report.id};
    const std::optional<int32_t> version =
        report.op == 'D' ? std::nullopt : std::optional<int32_t>(report.version);
    if (report.phase == 'B') {
      under_way = {{id, version}};
      continue;
    }
    under_way.reset();
    state[id] = version;
    if (++finished == kill_after && !killed) {
      ::kill(pid, SIGKILL);
      killed = true;
    }
  }
  ::close(pipe_fds[0]);
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
      << "writer ended by itself with " << (WIFEXITED(status) ? WEXITSTATUS(status) : -1);
  return under_way;
}

// Every record the writer reported is there with its content, deleted ones are gone, the
// one under way is in its old or its new state (which `state` then takes over), and the
// tables hold nothing else.
void ExpectWrittenRecords(
    const fs::path& base, WrittenState& state,
    const std::optional<std::pair<RecordId, std::optional<int32_t>>>& under_way,
    int sample_currencies, int sample_units, const std::string& round) {
  InstallationFiles files(base);
  data::TStdDb db(files.Stamm());
  ASSERT_EQ(db.DbOpen(false), storage::kOk) << round;
  data::TTbWaehrung currencies(db);
  data::TTbEinheit units(db);
  if (under_way) {
    const std::optional<int32_t> stored = StoredVersion(currencies, units, under_way->first);
    const auto before = state.find(under_way->first);
    const std::optional<int32_t> old = before == state.end() ? std::nullopt : before->second;
    EXPECT_TRUE(stored == old || stored == under_way->second)
        << round << ": record " << under_way->first.first << under_way->first.second
        << " under way has version " << stored.value_or(0);
    state[under_way->first] = stored;
  }
  std::map<char, int> live;
  for (const auto& [id, version] : state) {
    EXPECT_EQ(StoredVersion(currencies, units, id), version)
        << round << ": record " << id.first << id.second;
    if (version) ++live[id.first];
  }
  EXPECT_EQ(CountRecords(currencies), sample_currencies + live['W']) << round;
  EXPECT_EQ(CountRecords(units), sample_units + live['E']) << round;
}

TEST(CheckRebuildCommand, WriterKilledMidRunLosesNoReportedWriteAfterRebuild) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeSample(dir);
  int sample_currencies = 0;
  int sample_units = 0;
  {
    InstallationFiles files(base);
    data::TStdDb db(files.Stamm());
    ASSERT_EQ(db.DbOpen(false), storage::kOk);
    data::TTbWaehrung currencies(db);
    data::TTbEinheit units(db);
    sample_currencies = CountRecords(currencies);
    sample_units = CountRecords(units);
    ASSERT_GT(sample_currencies, 0);
  }
  const std::string stamm = InstallationFiles(base).Stamm().BasePath();
  // Other kill points on each run; a failure names the seed (--gtest_random_seed=N).
  const int seed = ::testing::UnitTest::GetInstance()->random_seed();
  std::mt19937 random(static_cast<uint32_t>(seed));
  WrittenState state;
  const auto started = std::chrono::steady_clock::now();
  for (int round = 1; round <= 6; ++round) {
    const int kill_after = std::uniform_int_distribution<int>(1, 60 * round * round)(random);
    const std::string name = "round " + std::to_string(round) + " (killed after " +
                             std::to_string(kill_after) + ", seed " + std::to_string(seed) + ")";
    const auto under_way =
        RunAndKillWriter(base, state, static_cast<uint32_t>(random()), kill_after);

    // The first round checks and rebuilds everything, the others only the master data,
    // which is all the writer touches.
    std::vector<std::string> scope = {"-d", base.string()};
    if (round > 1) scope.insert(scope.end(), {"--group", "DB_Stamm"});
    const auto korvan = [&](std::vector<std::string> args) {
      args.insert(args.end(), scope.begin(), scope.end());
      return RunKorvanBinary(args);
    };
    // The check on the crashed data may find problems, but it must come to an end and
    // leave a log.
    const ProgramResult check = korvan({"check"});
    EXPECT_FALSE(Crashed(check)) << name << ": " << check.err;
    EXPECT_TRUE(check.exit_code == 0 || check.exit_code == 1) << name << ": " << check.err;
    EXPECT_TRUE(Contains(check.out, "Record(s) untersucht")) << name << ": " << check.out;
    EXPECT_TRUE(Contains(check.out, "Protokoll: ")) << name << ": " << check.out;

    const ProgramResult rebuild = korvan({"rebuild"});
    EXPECT_EQ(rebuild.exit_code, 0) << name << ": " << rebuild.out << rebuild.err;
    const ProgramResult db_check = RunKorvanBinary({"db", "check", stamm});
    EXPECT_EQ(db_check.exit_code, 0) << name << ": " << db_check.out << db_check.err;
    EXPECT_TRUE(MissingKeys(InstallationFiles(base).Stamm()).empty()) << name;
    ExpectWrittenRecords(base, state, under_way, sample_currencies, sample_units, name);

    const ProgramResult after = korvan({"check"});
    EXPECT_EQ(after.exit_code, 0) << name << ": " << after.out << after.err;
    if (::testing::Test::HasFailure()) break;
    // Further rounds only while the whole test stays short.
    if (std::chrono::steady_clock::now() - started > std::chrono::seconds(12)) break;
  }
}

// ---------------------------------------------------------------------------------------

TEST(CheckRebuildCommand, LostKeyFileIsRebuiltAndEveryRecordFoundByItsKeys) {
  korvan::testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  ASSERT_EQ(RunKorvanBinary({"init", "-d", base.string()}).exit_code, 0);
  // Master data to find by their keys afterwards.
  ASSERT_EQ(RunKorvanBinary({"demo", "-d", base.string()}).exit_code, 0);
  const RecordDump before = DumpRecords(base);
  const std::string key_file = InstallationFiles(base).Stamm().KeyFileName();
  fs::remove(key_file);

  const ProgramResult rebuild = RunKorvanBinary({"rebuild", "-d", base.string()});
  EXPECT_EQ(rebuild.exit_code, 0) << rebuild.out << rebuild.err;
  EXPECT_TRUE(Contains(rebuild.out, "Schlüsseldatei fehlt, wird neu aufgebaut")) << rebuild.out;
  EXPECT_TRUE(fs::exists(key_file));
  ExpectEveryDatabaseSound(base, "after the rebuild", true);
  EXPECT_EQ(DumpRecords(base), before);

  // A rebuild of one group only touches that group.
  fs::remove(key_file);
  const ProgramResult other = RunKorvanBinary({"rebuild", "-d", base.string(), "--group", "DB_Lv"});
  EXPECT_EQ(other.exit_code, 0) << other.out << other.err;
  EXPECT_FALSE(fs::exists(key_file));
  const ProgramResult stamm =
      RunKorvanBinary({"rebuild", "-d", base.string(), "--group", "DB_Stamm"});
  EXPECT_EQ(stamm.exit_code, 0) << stamm.out << stamm.err;
  ExpectEveryDatabaseSound(base, "after the group rebuild");
  EXPECT_EQ(DumpRecords(base), before);
}

// ---------------------------------------------------------------------------------------

// Every file below `root` with its content.
std::map<std::string, std::string> Contents(const fs::path& root) {
  std::map<std::string, std::string> contents;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) contents[entry.path().string()] = ReadFile(entry.path());
  }
  return contents;
}

// The database files (data and key files) below `root` with their content.
std::map<std::string, std::string> DatabaseContents(const fs::path& root) {
  std::map<std::string, std::string> contents;
  for (auto& [path, content] : Contents(root)) {
    const std::string name = fs::path(path).filename().string();
    if (name.rfind("DB_", 0) == 0 && name.size() > 4 && name[name.size() - 4] == '.' &&
        name[name.size() - 3] == 'Q' && (name.back() == '0' || name.back() == '1')) {
      contents[path] = std::move(content);
    }
  }
  return contents;
}

// Overwrites bytes of a file.
void Patch(const std::string& path, int64_t offset, const std::string& bytes) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(offset);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Where the currency with `id` is in the master data file.
int32_t CurrencyPosition(const fs::path& base, int32_t id) {
  InstallationFiles files(base);
  data::TStdDb db(files.Stamm());
  EXPECT_EQ(db.DbOpen(false), storage::kOk);
  data::TTbWaehrung currencies(db);
  EXPECT_TRUE(currencies.GetKey(data::KeyNumber(id)));
  return currencies.CurrentRecordPos();
}

constexpr int kKzBasisOffset = 181;  // of t_Waehrung

TEST(CheckRebuildCommand, CheckReportsInDryRunAndRepairsOtherwise) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeSample(dir);
  const ProgramResult clean = RunKorvanBinary({"check", "-d", base.string()});
  EXPECT_EQ(clean.exit_code, 0) << clean.out << clean.err;

  // A Boolean byte that is neither 0 nor 1.
  const std::string data_file = InstallationFiles(base).Stamm().DataFileName();
  Patch(data_file, CurrencyPosition(base, 41) + kKzBasisOffset, "\x07");
  const auto before = Contents(base / "STAMMDATEN");

  const ProgramResult dry = RunKorvanBinary({"check", "-d", base.string(), "--dry-run"});
  EXPECT_EQ(dry.exit_code, 1) << dry.out << dry.err;
  EXPECT_TRUE(Contains(dry.out, "CharSelektor: kzBasis='")) << dry.out;
  EXPECT_TRUE(Contains(dry.out, "Nur Trockenlauf - Datensatz nicht geschrieben")) << dry.out;
  EXPECT_TRUE(Contains(dry.out, "(Trockenlauf)")) << dry.out;
  EXPECT_EQ(Contents(base / "STAMMDATEN"), before);
  const ProgramResult dry_again = RunKorvanBinary({"check", "-d", base.string(), "--dry-run"});
  EXPECT_EQ(dry_again.exit_code, 1) << dry_again.out;

  // The log lands in the system directory's "SYS" folder.
  const fs::path sys = InstallationFiles(base).SysFolder();
  std::vector<fs::path> logs;
  for (const auto& entry : fs::directory_iterator(sys)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("Integrity_", 0) == 0 && entry.path().extension() == ".log") {
      logs.push_back(entry.path());
    }
  }
  ASSERT_FALSE(logs.empty()) << sys;
  EXPECT_TRUE(Contains(dry.out, "Protokoll: " + sys.string())) << dry.out;
  bool logged = false;
  for (const fs::path& log : logs) {
    const std::string text = ReadFile(log);
    logged = logged || (Contains(text, "  DB: ") && Contains(text, "CharSelektor: kzBasis"));
  }
  EXPECT_TRUE(logged);

  const ProgramResult repair = RunKorvanBinary({"check", "-d", base.string()});
  EXPECT_EQ(repair.exit_code, 0) << repair.out << repair.err;
  EXPECT_TRUE(Contains(repair.out, "Datensatz neu geschrieben")) << repair.out;
  EXPECT_NE(Contents(base / "STAMMDATEN"), before);
  const ProgramResult second = RunKorvanBinary({"check", "-d", base.string()});
  EXPECT_EQ(second.exit_code, 0) << second.out << second.err;
  EXPECT_TRUE(Contains(second.out, " 0 Problem(e)")) << second.out;
  ExpectEveryDatabaseSound(base, "after the repair");

  // Only the databases of one group; an unknown group is a usage error that names it.
  const ProgramResult group =
      RunKorvanBinary({"check", "-d", base.string(), "--group", "DB_Stamm"});
  EXPECT_EQ(group.exit_code, 0) << group.out << group.err;
  EXPECT_TRUE(Contains(group.out, "TB: TTbWaehrung")) << group.out;
  EXPECT_FALSE(Contains(group.out, "DB_Lv")) << group.out;
  const ProgramResult unknown =
      RunKorvanBinary({"check", "-d", base.string(), "--group", "DB_Gibtsnicht"});
  EXPECT_EQ(unknown.exit_code, 2);
  EXPECT_TRUE(Contains(unknown.err, "DB_Gibtsnicht")) << unknown.err;
  const ProgramResult nowhere = RunKorvanBinary({"check", "-d", dir.File("leer")});
  EXPECT_EQ(nowhere.exit_code, 1);
  EXPECT_TRUE(Contains(nowhere.err, dir.File("leer"))) << nowhere.err;
}

// ---------------------------------------------------------------------------------------

const char* const kReorgSteps[] = {"1. I-Check: OK\n",
                                   "2. Phase anlegen: OK\n",
                                   "Datensicherung vor Reorganisieren: OK\n",
                                   "3. Daten kopieren: OK\n",
                                   "4. I-Check nach Kopie: OK\n",
                                   "5. I-Checks vergleichen: OK\n",
                                   "6. Phasenvergleich: OK\n",
                                   "7. Projekt laden: OK\n"};

// The folder "Reorg_*" below the SYS folder that is not in `known`.
fs::path NewBackupFolder(const fs::path& sys, std::set<fs::path>& known) {
  for (const auto& entry : fs::directory_iterator(sys)) {
    if (entry.path().filename().string().rfind("Reorg_", 0) == 0 &&
        known.insert(entry.path()).second) {
      return entry.path();
    }
  }
  return {};
}

TEST(CheckRebuildCommand, ReorgCopiesEverythingWithBackupAndKeepsTheOriginalsOnFailure) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeSample(dir);
  const fs::path sys = InstallationFiles(base).SysFolder();
  std::set<fs::path> backups;
  const RecordDump before = DumpRecords(base);
  const auto originals = DatabaseContents(base);

  const ProgramResult reorg = RunKorvanBinary({"reorg", "-d", base.string()});
  EXPECT_EQ(reorg.exit_code, 0) << reorg.out << reorg.err;
  size_t at = 0;
  for (const char* step : kReorgSteps) {
    const size_t found = reorg.out.find(step, at);
    EXPECT_NE(found, std::string::npos) << step << " in order in\n" << reorg.out;
    if (found != std::string::npos) at = found;
  }
  EXPECT_EQ(DumpRecords(base), before);
  ExpectEveryDatabaseSound(base, "after the reorganisation");
  // The backup holds every database file as it was.
  const fs::path backup = NewBackupFolder(sys, backups);
  ASSERT_FALSE(backup.empty());
  EXPECT_TRUE(Contains(reorg.out, "Datensicherung: " + backup.string())) << reorg.out;
  std::map<std::string, std::multiset<std::string>> saved;  // by file name
  for (const auto& [path, content] : DatabaseContents(backup)) {
    saved[fs::path(path).filename().string()].insert(content);
  }
  EXPECT_EQ(DatabaseContents(backup).size(), originals.size());
  for (const auto& [path, content] : originals) {
    EXPECT_GE(saved[fs::path(path).filename().string()].count(content), 1u)
        << path << " is not in the backup";
  }

  // A record that the copy cannot take over: the checks before and after differ, and
  // the files are put back as they were.
  const std::string data_file = InstallationFiles(base).Stamm().DataFileName();
  Patch(data_file, CurrencyPosition(base, 41) + 4, "w");
  const auto damaged = DatabaseContents(base);
  const ProgramResult failed = RunKorvanBinary({"reorg", "-d", base.string()});
  EXPECT_EQ(failed.exit_code, 1) << failed.out << failed.err;
  EXPECT_TRUE(Contains(failed.out, "5. I-Checks vergleichen: FEHLER")) << failed.out;
  EXPECT_FALSE(Contains(failed.out, "7. Projekt laden")) << failed.out;
  EXPECT_TRUE(Contains(failed.out, "Originaldateien wiederhergestellt")) << failed.out;
  for (const auto& [path, content] : DatabaseContents(base)) {
    if (path.find("/Reorg_") != std::string::npos) continue;
    const auto original = damaged.find(path);
    ASSERT_NE(original, damaged.end()) << path << " is new";
    EXPECT_TRUE(original->second == content) << path << " differs from before the reorganisation";
  }
}

// ---------------------------------------------------------------------------------------

std::map<std::string, std::string> WithoutControlFiles(
    std::map<std::string, std::string> contents) {
  std::erase_if(contents, [](const auto& entry) {
    return fs::path(entry.first).filename() == data::kControlFileName;
  });
  return contents;
}

TEST(CheckRebuildCommand, RebuildRefusesWhileAnotherUserWorksInADirectory) {
  korvan::testing::TempDir dir;
  const fs::path base = MakeSample(dir);
  const std::string stamm_dir = InstallationFiles(base).Stamm().directory();
  const std::string key_file = InstallationFiles(base).Stamm().KeyFileName();
  fs::remove(key_file);
  const auto before = Contents(base);

  for (const bool exclusive : {false, true}) {
    data::TControlList other(stamm_dir);
    ASSERT_TRUE(other.Open({"Meier", "buero-2"}, exclusive));
    const ProgramResult refused = RunKorvanBinary({"rebuild", "-d", base.string()});
    EXPECT_EQ(refused.exit_code, 1) << refused.out << refused.err;
    EXPECT_TRUE(Contains(refused.err, "Meier")) << refused.err;
    EXPECT_TRUE(Contains(refused.err, stamm_dir)) << refused.err;
    EXPECT_TRUE(Contains(refused.err, "wird benutzt von")) << refused.err;
    other.Close();
    // The control file of the directory is read; nothing else may change.
    EXPECT_EQ(WithoutControlFiles(Contents(base)), WithoutControlFiles(before))
        << (exclusive ? "exclusive" : "shared");
  }

  // Nobody else: the rebuild goes ahead.
  const ProgramResult rebuild = RunKorvanBinary({"rebuild", "-d", base.string()});
  EXPECT_EQ(rebuild.exit_code, 0) << rebuild.out << rebuild.err;
  EXPECT_TRUE(fs::exists(key_file));
  ExpectEveryDatabaseSound(base, "after the rebuild");
}

}  // namespace
}  // namespace korvan
