// The kernel against SQLite on a table-like workload: records of 200 bytes with two keys
// each (a unique id and a name), inserted, looked up by id and read, walked in name
// order, updated and deleted. Durability is equal on both sides: every insert, update
// and delete is on disk when it returns (the kernel's data file is written with O_DSYNC;
// SQLite runs in WAL mode with synchronous=FULL and one transaction per statement).
// Reads run on warm caches of equal size.
//
// KORVAN_BENCH_RECORDS (default 100000) sets the table size, KORVAN_BENCH_CHANGES
// (default 10000) the number of durable updates and deletes, KORVAN_BENCH_CACHE_BLOCKS
// (default 1000) the cache of both engines in 2 KB units, KORVAN_BENCH_DIR the
// directory the files go to (default /tmp). After the Google Benchmark table the
// program prints microseconds per operation of both engines and their ratio.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "storage/db_kernel.h"
#include "storage/kernel_settings.h"

namespace {

using namespace korvan::storage;
using Clock = std::chrono::steady_clock;

constexpr int kRecordSize = 200;
constexpr int kKeyLength = 40;
constexpr int kNameLength = 16;
// What follows id and name in the kernel's record; SQLite stores the same bytes as a blob.
constexpr int kPayloadSize = kRecordSize - kRecordHeaderSize - 4 - kNameLength;
constexpr int kSyncWriteSamples = 2000;

int EnvCount(const char* name, int fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && std::atoi(value) > 0 ? std::atoi(value) : fallback;
}
int Records() {
  return EnvCount("KORVAN_BENCH_RECORDS", 100000);
}
// Key-file cache blocks of 2048 bytes; SQLite gets the same memory. The default, 1000
// blocks, matches SQLite's default cache of 2 MB.
int CacheBlocks() {
  return EnvCount("KORVAN_BENCH_CACHE_BLOCKS", 1000);
}
int Changes() {
  return std::min(Records(), EnvCount("KORVAN_BENCH_CHANGES", 10000));
}

const std::string& BenchDirectory() {
  static const std::string directory = [] {
    const char* root = std::getenv("KORVAN_BENCH_DIR");
    std::string pattern = std::string(root ? root : "/tmp") + "/korvan-table-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no bench directory");
    return pattern;
  }();
  return directory;
}

// The name of record `id`: letters spread by a multiplicative hash, so that name order
// and id order differ, made unique by the id's last digits.
std::string NameOf(int id) {
  uint32_t mixed = static_cast<uint32_t>(id) * 2654435761u;
  std::string name(kNameLength, 'a');
  for (int i = 0; i < 8; ++i, mixed /= 26) name[static_cast<size_t>(i)] = 'a' + mixed % 26;
  std::snprintf(name.data() + 8, 9, "%08d", id);
  return name;
}

std::vector<uint8_t> Payload(int id, uint8_t generation) {
  std::vector<uint8_t> payload(kPayloadSize, static_cast<uint8_t>(id + generation));
  return payload;
}

// Ids in a fixed random order, the same for both engines.
std::vector<int> ShuffledIds() {
  std::vector<int> ids(static_cast<size_t>(Records()));
  std::iota(ids.begin(), ids.end(), 0);
  std::shuffle(ids.begin(), ids.end(), std::mt19937(20240501));
  return ids;
}

// The table on the kernel: one database, keys "P<id>" and "S<name>".
class KernelTable {
 public:
  KernelTable() {
    KernelSettings settings = CurrentKernelSettings();
    settings.db_cache_size = CacheBlocks();
    ApplyKernelSettings(settings);
    Check(iDK_DbCreate('T', BenchDirectory() + "/kernel", kKeyLength, &handle_), "create");
  }
  ~KernelTable() { iDK_DbClose(handle_); }

  void Insert(int id) {
    std::vector<uint8_t> record = Record(id, 0);
    int32_t position = 0;
    Check(iDK_RecordInsert(handle_, record.data(), kRecordSize, true, &position), "insert");
    Check(iDK_KeyInsert(handle_, IdKey(id, position)), "id key");
    Check(iDK_KeyInsert(handle_, NameKey(NameOf(id), position)), "name key");
  }

  // Looks the record up by its id and reads it; returns its first payload byte.
  uint8_t Lookup(int id, std::vector<uint8_t>* record) {
    const int32_t position = Find(id);
    record->resize(kRecordSize);
    int32_t length = kRecordSize;
    iDK_RecordRead(handle_, position, record->data(), &length, true);
    return (*record)[kRecordSize - 1];
  }

  // Every record in name order; returns how many.
  int Walk() {
    KeyEntry entry = Pattern("S");
    uint32_t position = 0;
    std::vector<uint8_t> record(kRecordSize);
    int count = 0;
    for (int rc = iDK_KeyFirstMatch(handle_, entry, &position); rc == 0 && entry.key[0] == 'S';
         rc = iDK_KeyNext(handle_, entry, &position)) {
      int32_t length = kRecordSize;
      iDK_RecordRead(handle_, static_cast<int32_t>(position), record.data(), &length, true);
      ++count;
    }
    return count;
  }

  void Update(int id) {
    const int32_t position = Find(id);
    std::vector<uint8_t> record(kRecordSize);
    int32_t length = kRecordSize;
    iDK_RecordRead(handle_, position, record.data(), &length, true);
    const std::vector<uint8_t> payload = Payload(id, 1);
    std::memcpy(record.data() + kRecordSize - kPayloadSize, payload.data(), payload.size());
    Check(iDK_RecordUpdate(handle_, record.data(), kRecordSize, position, kRecordSize), "update");
  }

  void Delete(int id) {
    const int32_t position = Find(id);
    TDbRecordHeader header{};
    Check(iDK_RecordDelete(handle_, &header, position), "delete");
    Check(iDK_KeyDelete(handle_, IdKey(id, position)), "delete id key");
    Check(iDK_KeyDelete(handle_, NameKey(NameOf(id), position)), "delete name key");
  }

 private:
  static void Check(int result, const char* what) {
    if (result != 0)
      throw std::runtime_error(std::string("kernel ") + what + ": " + std::to_string(result));
  }
  static KeyEntry Pattern(const std::string& text) {
    KeyEntry entry;
    std::memset(entry.key, kKeyPad, sizeof entry.key);
    std::memcpy(entry.key, text.data(), text.size());
    return entry;
  }
  static KeyEntry IdKey(int id, int32_t position) {
    char text[16];
    std::snprintf(text, sizeof text, "P%08d", id);
    KeyEntry entry = Pattern(text);
    entry.position = static_cast<uint32_t>(position);
    return entry;
  }
  static KeyEntry NameKey(const std::string& name, int32_t position) {
    KeyEntry entry = Pattern("S" + name);
    entry.position = static_cast<uint32_t>(position);
    return entry;
  }
  static std::vector<uint8_t> Record(int id, uint8_t generation) {
    std::vector<uint8_t> record(kRecordSize, 0);
    TDbRecordHeader header{};
    header.RecLen = kRecordSize;
    header.RecTyp = 'A';
    header.Size = kRecordSize;
    header.Version = 1;
    std::memcpy(record.data(), &header, sizeof header);
    std::memcpy(record.data() + kRecordHeaderSize, &id, sizeof id);
    const std::string name = NameOf(id);
    std::memcpy(record.data() + kRecordHeaderSize + 4, name.data(), name.size());
    const std::vector<uint8_t> payload = Payload(id, generation);
    std::memcpy(record.data() + kRecordSize - kPayloadSize, payload.data(), payload.size());
    return record;
  }
  int32_t Find(int id) {
    KeyEntry entry = IdKey(id, 0);
    uint32_t position = 0;
    Check(iDK_KeyFirstMatch(handle_, entry, &position), "find");
    return static_cast<int32_t>(position);
  }

  int handle_ = 0;
};

// The same table in SQLite: the id as rowid, an index on the name.
class SqliteTable {
 public:
  SqliteTable() {
    const std::string path = BenchDirectory() + "/sqlite.db";
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) Fail("open");
    Exec("PRAGMA journal_mode=WAL");
    Exec("PRAGMA synchronous=FULL");
    Exec("PRAGMA cache_size=-" + std::to_string(CacheBlocks() * 2));
    Exec("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT NOT NULL, payload BLOB NOT NULL)");
    Exec("CREATE INDEX t_name ON t(name)");
    insert_ = Prepare("INSERT INTO t(id, name, payload) VALUES(?, ?, ?)");
    lookup_ = Prepare("SELECT name, payload FROM t WHERE id = ?");
    walk_ = Prepare("SELECT id, name, payload FROM t ORDER BY name");
    update_ = Prepare("UPDATE t SET payload = ? WHERE id = ?");
    delete_ = Prepare("DELETE FROM t WHERE id = ?");
  }
  ~SqliteTable() {
    for (sqlite3_stmt* statement : {insert_, lookup_, walk_, update_, delete_}) {
      sqlite3_finalize(statement);
    }
    sqlite3_close(db_);
  }

  void Insert(int id) {
    const std::string name = NameOf(id);
    const std::vector<uint8_t> payload = Payload(id, 0);
    sqlite3_bind_int(insert_, 1, id);
    sqlite3_bind_text(insert_, 2, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    sqlite3_bind_blob(insert_, 3, payload.data(), kPayloadSize, SQLITE_STATIC);
    Done(insert_, "insert");
  }

  uint8_t Lookup(int id, std::vector<uint8_t>* record) {
    sqlite3_bind_int(lookup_, 1, id);
    if (sqlite3_step(lookup_) != SQLITE_ROW) Fail("lookup");
    CopyRow(lookup_, 0, record);
    sqlite3_reset(lookup_);
    return record->back();
  }

  int Walk() {
    std::vector<uint8_t> record;
    int count = 0;
    while (sqlite3_step(walk_) == SQLITE_ROW) {
      CopyRow(walk_, 1, &record);
      ++count;
    }
    sqlite3_reset(walk_);
    return count;
  }

  void Update(int id) {
    const std::vector<uint8_t> payload = Payload(id, 1);
    sqlite3_bind_blob(update_, 1, payload.data(), kPayloadSize, SQLITE_STATIC);
    sqlite3_bind_int(update_, 2, id);
    Done(update_, "update");
  }

  void Delete(int id) {
    sqlite3_bind_int(delete_, 1, id);
    Done(delete_, "delete");
  }

 private:
  // Name and payload into one buffer, as a caller of either engine gets its record.
  static void CopyRow(sqlite3_stmt* statement, int first_column, std::vector<uint8_t>* record) {
    record->resize(kNameLength + kPayloadSize);
    std::memcpy(record->data(), sqlite3_column_text(statement, first_column), kNameLength);
    std::memcpy(record->data() + kNameLength, sqlite3_column_blob(statement, first_column + 1),
                kPayloadSize);
  }
  void Exec(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sql.c_str());
  }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK) Fail(sql);
    return statement;
  }
  void Done(sqlite3_stmt* statement, const char* what) {
    if (sqlite3_step(statement) != SQLITE_DONE) Fail(what);
    sqlite3_reset(statement);
  }
  [[noreturn]] void Fail(const char* what) {
    throw std::runtime_error(std::string("sqlite ") + what + ": " + sqlite3_errmsg(db_));
  }

  sqlite3* db_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* lookup_ = nullptr;
  sqlite3_stmt* walk_ = nullptr;
  sqlite3_stmt* update_ = nullptr;
  sqlite3_stmt* delete_ = nullptr;
};

// Both tables live from their first phase to the end of the program.
template <class Table>
Table& TheTable() {
  static Table table;
  return table;
}

// Microseconds per operation of every phase, by "<phase>/<engine>".
std::map<std::string, double>& Figures() {
  static std::map<std::string, double> figures;
  return figures;
}

template <class Work>
void TimePhase(benchmark::State& state, const std::string& name, int operations, Work work) {
  for (auto _ : state) {
    const auto start = Clock::now();
    work();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(seconds);
    state.counters["us_per_op"] = seconds * 1e6 / operations;
    Figures()[name] = seconds * 1e6 / operations;
  }
  state.SetItemsProcessed(operations);
}

template <class Table>
void BM_Insert(benchmark::State& state, const char* engine) {
  const int records = Records();
  TimePhase(state, std::string("durable insert/") + engine, records, [&] {
    for (int id = 0; id < records; ++id) TheTable<Table>().Insert(id);
  });
}

template <class Table>
void BM_Lookup(benchmark::State& state, const char* engine) {
  const std::vector<int> ids = ShuffledIds();
  std::vector<uint8_t> record;
  for (int id : ids) TheTable<Table>().Lookup(id, &record);  // warms the caches
  TimePhase(state, std::string("lookup by key + read/") + engine, static_cast<int>(ids.size()),
            [&] {
              for (int id : ids) benchmark::DoNotOptimize(TheTable<Table>().Lookup(id, &record));
            });
}

template <class Table>
void BM_Walk(benchmark::State& state, const char* engine) {
  TimePhase(state, std::string("in-order walk (per record)/") + engine, Records(), [&] {
    if (TheTable<Table>().Walk() != Records()) state.SkipWithError("walk missed records");
  });
}

template <class Table>
void BM_Update(benchmark::State& state, const char* engine) {
  const std::vector<int> ids = ShuffledIds();
  TimePhase(state, std::string("durable update/") + engine, Changes(), [&] {
    for (int i = 0; i < Changes(); ++i) TheTable<Table>().Update(ids[static_cast<size_t>(i)]);
  });
}

template <class Table>
void BM_Delete(benchmark::State& state, const char* engine) {
  const std::vector<int> ids = ShuffledIds();
  TimePhase(state, std::string("durable delete/") + engine, Changes(), [&] {
    for (int i = 0; i < Changes(); ++i) {
      TheTable<Table>().Delete(ids[ids.size() - 1 - static_cast<size_t>(i)]);
    }
  });
}

// What one write that returns only when its bytes are on disk costs on this machine.
void BM_SyncWrite(benchmark::State& state, bool append) {
  const std::string path = BenchDirectory() + (append ? "/append" : "/overwrite");
  const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_DSYNC, 0644);
  std::vector<char> bytes(kRecordSize, 'x');
  if (!append) {
    for (int i = 0; i < kSyncWriteSamples; ++i) {
      if (pwrite(fd, bytes.data(), bytes.size(), off_t{i} * kRecordSize) < 0) break;
    }
  }
  TimePhase(state, append ? "O_DSYNC write, append/" : "O_DSYNC write, in place/",
            kSyncWriteSamples, [&] {
              for (int i = 0; i < kSyncWriteSamples; ++i) {
                if (pwrite(fd, bytes.data(), bytes.size(), off_t{i} * kRecordSize) < 0) {
                  state.SkipWithError("write failed");
                  return;
                }
              }
            });
  close(fd);
}

void RegisterPhases() {
  const auto once = [](benchmark::internal::Benchmark* b) {
    b->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
  };
  once(benchmark::RegisterBenchmark("SyncWrite/append", BM_SyncWrite, true));
  once(benchmark::RegisterBenchmark("SyncWrite/in_place", BM_SyncWrite, false));
  once(benchmark::RegisterBenchmark("Insert/kernel", BM_Insert<KernelTable>, "kernel"));
  once(benchmark::RegisterBenchmark("Insert/sqlite", BM_Insert<SqliteTable>, "sqlite"));
  once(benchmark::RegisterBenchmark("Lookup/kernel", BM_Lookup<KernelTable>, "kernel"));
  once(benchmark::RegisterBenchmark("Lookup/sqlite", BM_Lookup<SqliteTable>, "sqlite"));
  once(benchmark::RegisterBenchmark("Walk/kernel", BM_Walk<KernelTable>, "kernel"));
  once(benchmark::RegisterBenchmark("Walk/sqlite", BM_Walk<SqliteTable>, "sqlite"));
  once(benchmark::RegisterBenchmark("Update/kernel", BM_Update<KernelTable>, "kernel"));
  once(benchmark::RegisterBenchmark("Update/sqlite", BM_Update<SqliteTable>, "sqlite"));
  once(benchmark::RegisterBenchmark("Delete/kernel", BM_Delete<KernelTable>, "kernel"));
  once(benchmark::RegisterBenchmark("Delete/sqlite", BM_Delete<SqliteTable>, "sqlite"));
}

void PrintComparison() {
  std::printf("\n%-30s %12s %12s %16s\n", "phase (us per operation)", "kernel", "sqlite",
              "sqlite / kernel");
  for (const char* phase : {"durable insert", "lookup by key + read", "in-order walk (per record)",
                            "durable update", "durable delete"}) {
    const auto kernel = Figures().find(std::string(phase) + "/kernel");
    const auto sqlite = Figures().find(std::string(phase) + "/sqlite");
    if (kernel == Figures().end() || sqlite == Figures().end()) continue;
    std::printf("%-30s %12.2f %12.2f %16.2f\n", phase, kernel->second, sqlite->second,
                sqlite->second / kernel->second);
  }
  for (const char* write : {"O_DSYNC write, append/", "O_DSYNC write, in place/"}) {
    if (const auto figure = Figures().find(write); figure != Figures().end()) {
      std::printf("%-30s %12.2f\n", std::string(write).substr(0, std::strlen(write) - 1).c_str(),
                  figure->second);
    }
  }
  std::printf("records %d, durable updates and deletes %d each, cache %d KB per engine\n",
              Records(), Changes(), CacheBlocks() * 2);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RegisterPhases();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  PrintComparison();
  std::filesystem::remove_all(BenchDirectory());
  return 0;
}
