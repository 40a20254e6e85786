// The kernel against SQLite on a table-like workload: records of 200 bytes with two keys
// each (a unique id and a name), inserted, looked up by id and read, walked in name
// order, updated and deleted.
//
// Like is compared with like:
//   durability  Every insert, update and delete is on disk when it returns. The kernel
//               writes its data file with O_DSYNC; its key file is written back unsynced
//               after every change and, when a process is killed before the key file is
//               closed, rebuilt from the data file at the next open, so the keys of every
//               acknowledged record come back. The variant "kernel+keys" also syncs the
//               key file after each change that touched keys (iDK_DbFlush), as SQLite
//               syncs row and index together. SQLite runs with synchronous=FULL, one
//               transaction per statement, in both journal modes: "sqlite-journal" with
//               its rollback journal (journal_mode=DELETE), the mode that works where the
//               program's data lives, a data directory that several users share over a
//               network file system; "sqlite-wal" in WAL mode, faster (one sync per
//               commit), but its index of the log is shared memory, so every process must
//               run on one host (SQLite's documentation, wal.html: "WAL does not work over
//               a network filesystem"). The goals are judged against the first; the
//               second is printed beside it.
//   locking     The kernel's database is of a shared type, registered in its lock file;
//               its tree lock costs an fcntl, a read of the change stamp and an fcntl.
//               KORVAN_BENCH_LOCKING=operation (default): both engines lock once per
//               table operation. The kernel holds the tree lock (iDK_TreeLock) over a
//               record and its keys, over a lookup, over a walk; SQLite runs in its
//               normal locking mode, one statement being one transaction with its locks.
//               KORVAN_BENCH_LOCKING=call: as before, but every kernel call takes the
//               tree lock on its own (an insert with two keys three times, a walk once
//               per step), as a caller that holds nothing gets it.
//               KORVAN_BENCH_LOCKING=batch: both hold one lock over each batch. The
//               kernel holds the tree lock over the batch, SQLite runs in exclusive
//               locking mode; every operation stays durable on its own.
//   caches      Equal memory: KORVAN_BENCH_CACHE_BLOCKS 2 KB blocks for the kernel's key
//               file and as many bytes for its recently read records, the sum for
//               SQLite's page cache. Reads run on warm caches.
//   drift       The disk's sync latency drifts, so every phase runs in rounds of
//               alternating batches (kernel, kernel+keys, SQLite, kernel, …) and the table
//               gives medians and the spread (lowest–highest) over the rounds.
//
// Environment: KORVAN_BENCH_RECORDS (default 20000), KORVAN_BENCH_CHANGES (default 4000
// durable updates and as many deletes), KORVAN_BENCH_ROUNDS (default 7),
// KORVAN_BENCH_CACHE_BLOCKS (default 1000), KORVAN_BENCH_DIR (default /tmp),
// KORVAN_BENCH_WALK_BATCH (default 0: a walk reads all
// its records as one batch; 256: as the table layer's read-ahead), KORVAN_BENCH_KEY_SYNC=0 leaves
// out "kernel+keys", KORVAN_BENCH_ENGINES (e.g. "kernel,sqlite-journal": only the engines named)
// and KORVAN_BENCH_LAST_PHASE (insert, lookup, walk, update or delete: the phases after it are
// skipped) for counting system calls per phase with strace.
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "storage/db_kernel.h"
#include "storage/db_kernel_locks.h"
#include "storage/kernel_settings.h"

namespace {

using namespace korvan::storage;
using Clock = std::chrono::steady_clock;

constexpr int kRecordSize = 200;
constexpr int kKeyLength = 40;
constexpr int kNameLength = 16;
// What follows id and name in the kernel's record; SQLite stores the same bytes as a blob.
constexpr int kPayloadSize = kRecordSize - kRecordHeaderSize - 4 - kNameLength;
constexpr int kSyncWritesPerRound = 200;
constexpr char kTableType = 'T';
constexpr uint32_t kBenchUser = 4711;

int EnvCount(const char* name, int fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && std::atoi(value) > 0 ? std::atoi(value) : fallback;
}
std::string EnvText(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : fallback;
}
int Records() {
  return EnvCount("KORVAN_BENCH_RECORDS", 20000);
}
int Rounds() {
  return EnvCount("KORVAN_BENCH_ROUNDS", 7);
}
// Key-file cache blocks of 2048 bytes; the kernel keeps as many bytes of records, and
// SQLite gets the sum. The default, 1000 blocks, matches SQLite's default cache of 2 MB.
int CacheBlocks() {
  return EnvCount("KORVAN_BENCH_CACHE_BLOCKS", 1000);
}
int Changes() {
  return std::min(Records(), EnvCount("KORVAN_BENCH_CHANGES", 4000));
}

const std::string& BenchDirectory() {
  static const std::string directory = [] {
    std::string pattern = EnvText("KORVAN_BENCH_DIR", "/tmp") + "/korvan-table-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no bench directory");
    return pattern;
  }();
  return directory;
}

std::string FileSystemOf(const std::string& path) {
  struct statfs info {};
  if (statfs(path.c_str(), &info) != 0) return "unknown";
  switch (static_cast<unsigned long>(info.f_type)) {
    case 0xEF53:
      return "ext4";
    case 0x01021994:
      return "tmpfs";
    case 0x58465342:
      return "xfs";
    case 0x9123683E:
      return "btrfs";
    case 0x794C7630:
      return "overlayfs";
    default:
      return "other";
  }
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
  return std::vector<uint8_t>(kPayloadSize, static_cast<uint8_t>(id + generation));
}

// Ids in a fixed random order, the same for every engine.
const std::vector<int>& ShuffledIds() {
  static const std::vector<int> ids = [] {
    std::vector<int> shuffled(static_cast<size_t>(Records()));
    std::iota(shuffled.begin(), shuffled.end(), 0);
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(20240501));
    return shuffled;
  }();
  return ids;
}

class Table {
 public:
  virtual ~Table() = default;
  virtual void Insert(int id) = 0;
  // Looks the record up by its id and reads it; returns its last byte.
  virtual uint8_t Lookup(int id, std::vector<uint8_t>* record) = 0;
  // Every record in name order; returns how many.
  virtual int Walk() = 0;
  virtual void Update(int id) = 0;
  virtual void Delete(int id) = 0;
  // One lock over the operations up to EndBatch, where the engine offers one.
  virtual void BeginBatch(bool change) = 0;
  virtual void EndBatch() = 0;
};

// Records a walk reads at once: 256 as a walk step of the table layer reads ahead at
// most, 0 the whole walk as one batch (as the table layer's GetBatch).
size_t WalkBatch() {
  static const size_t batch = static_cast<size_t>(EnvCount("KORVAN_BENCH_WALK_BATCH", 0));
  return batch;
}

std::string Locking() {
  return EnvText("KORVAN_BENCH_LOCKING", "operation");
}
bool BatchLocking() {
  return Locking() == "batch";
}

// The tree lock over one table operation, when the benchmark locks per operation.
class OperationHold {
 public:
  OperationHold(int handle, bool change) : handle_(Locking() == "operation" ? handle : 0) {
    if (handle_ != 0 && iDK_TreeLock(handle_, change) != 0) {
      throw std::runtime_error("kernel tree lock");
    }
  }
  ~OperationHold() {
    if (handle_ != 0) iDK_TreeUnlock(handle_);
  }
  OperationHold(const OperationHold&) = delete;
  OperationHold& operator=(const OperationHold&) = delete;

 private:
  int handle_;
};

// The table on the kernel: one shared database, keys "P<id>" and "S<name>".
class KernelTable : public Table {
 public:
  KernelTable(const std::string& name, bool sync_keys) : sync_keys_(sync_keys) {
    KernelSettings settings = CurrentKernelSettings();
    settings.db_cache_size = CacheBlocks();
    ApplyKernelSettings(settings);
    iDK_SetTypeShareable(kTableType, true);
    Check(iDK_DbCreate(kTableType, BenchDirectory() + "/" + name, kKeyLength, &handle_), "create");
    int task = 0;
    Check(iDK_DbLock(handle_, kBenchUser, false, &task), "register in the lock file");
  }
  ~KernelTable() override {
    iDK_DbUnlock(handle_);
    iDK_DbClose(handle_);
  }

  void Insert(int id) override {
    std::vector<uint8_t> record = Record(id, 0);
    {
      OperationHold hold(handle_, true);
      int32_t position = 0;
      Check(iDK_RecordInsert(handle_, record.data(), kRecordSize, true, &position), "insert");
      Check(iDK_KeyInsert(handle_, IdKey(id, position)), "id key");
      Check(iDK_KeyInsert(handle_, NameKey(NameOf(id), position)), "name key");
    }
    SyncKeys();
  }

  uint8_t Lookup(int id, std::vector<uint8_t>* record) override {
    OperationHold hold(handle_, false);
    const int32_t position = Find(id);
    record->resize(kRecordSize);
    int32_t length = kRecordSize;
    iDK_RecordRead(handle_, position, record->data(), &length, true);
    return (*record)[kRecordSize - 1];
  }

  // As the table layer walks: keys read ahead in batches, the batch's records read in file
  // order with one system call for records that lie close together.
  int Walk() override {
    OperationHold hold(handle_, false);
    KeyEntry entry = Pattern("S");
    uint32_t position = 0;
    std::vector<int32_t> positions;
    RecordBatch records;
    std::vector<uint8_t> record;
    size_t failed = 0;
    int count = 0;
    // Name and payload of each record into one buffer, as the SQLite walk hands them on.
    const auto read = [&] {
      Check(iDK_RecordReadMany(handle_, positions, kRecordSize, &records, &failed), "walk read");
      for (size_t i = 0; i < records.size(); ++i) {
        record.assign(records[i].begin() + kRecordHeaderSize + 4, records[i].end());
      }
      count += static_cast<int>(records.size());
      positions.clear();
    };
    for (int rc = iDK_KeyFirstMatch(handle_, entry, &position); rc == 0 && entry.key[0] == 'S';
         rc = iDK_KeyNext(handle_, entry, &position)) {
      positions.push_back(static_cast<int32_t>(position));
      if (positions.size() == WalkBatch()) read();
    }
    read();
    return count;
  }

  // Keys do not change, so there is nothing for "kernel+keys" to sync.
  void Update(int id) override {
    OperationHold hold(handle_, true);
    const int32_t position = Find(id);
    std::vector<uint8_t> record(kRecordSize);
    int32_t length = kRecordSize;
    iDK_RecordRead(handle_, position, record.data(), &length, true);
    const std::vector<uint8_t> payload = Payload(id, 1);
    std::memcpy(record.data() + kRecordSize - kPayloadSize, payload.data(), payload.size());
    Check(iDK_RecordUpdate(handle_, record.data(), kRecordSize, position, kRecordSize), "update");
  }

  void Delete(int id) override {
    {
      OperationHold hold(handle_, true);
      const int32_t position = Find(id);
      TDbRecordHeader header{};
      Check(iDK_RecordDelete(handle_, &header, position), "delete");
      Check(iDK_KeyDelete(handle_, IdKey(id, position)), "delete id key");
      Check(iDK_KeyDelete(handle_, NameKey(NameOf(id), position)), "delete name key");
    }
    SyncKeys();
  }

  void BeginBatch(bool change) override {
    if (BatchLocking()) Check(iDK_TreeLock(handle_, change), "tree lock");
  }
  void EndBatch() override {
    if (BatchLocking()) Check(iDK_TreeUnlock(handle_), "tree unlock");
  }

 private:
  static void Check(int result, const char* what) {
    if (result != 0)
      throw std::runtime_error(std::string("kernel ") + what + ": " + std::to_string(result));
  }
  void SyncKeys() {
    if (sync_keys_) Check(iDK_DbFlush(handle_), "flush");
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

  bool sync_keys_;
  int handle_ = 0;
};

// The same table in SQLite: the id as rowid, an index on the name.
class SqliteTable : public Table {
 public:
  SqliteTable(const std::string& name, const char* journal_mode) {
    const std::string path = BenchDirectory() + "/" + name + ".db";
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) Fail("open");
    Exec(std::string("PRAGMA journal_mode=") + journal_mode);
    Exec("PRAGMA synchronous=FULL");
    Exec(std::string("PRAGMA locking_mode=") + (BatchLocking() ? "EXCLUSIVE" : "NORMAL"));
    // Kilobytes: the kernel's key blocks and its records.
    Exec("PRAGMA cache_size=-" + std::to_string(CacheBlocks() * 2 * 2));
    Exec("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT NOT NULL, payload BLOB NOT NULL)");
    Exec("CREATE INDEX t_name ON t(name)");
    insert_ = Prepare("INSERT INTO t(id, name, payload) VALUES(?, ?, ?)");
    lookup_ = Prepare("SELECT name, payload FROM t WHERE id = ?");
    walk_ = Prepare("SELECT id, name, payload FROM t ORDER BY name");
    update_ = Prepare("UPDATE t SET payload = ? WHERE id = ?");
    delete_ = Prepare("DELETE FROM t WHERE id = ?");
  }
  ~SqliteTable() override {
    for (sqlite3_stmt* statement : {insert_, lookup_, walk_, update_, delete_}) {
      sqlite3_finalize(statement);
    }
    sqlite3_close(db_);
  }

  void Insert(int id) override {
    const std::string name = NameOf(id);
    const std::vector<uint8_t> payload = Payload(id, 0);
    sqlite3_bind_int(insert_, 1, id);
    sqlite3_bind_text(insert_, 2, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    sqlite3_bind_blob(insert_, 3, payload.data(), kPayloadSize, SQLITE_STATIC);
    Done(insert_, "insert");
  }

  uint8_t Lookup(int id, std::vector<uint8_t>* record) override {
    sqlite3_bind_int(lookup_, 1, id);
    if (sqlite3_step(lookup_) != SQLITE_ROW) Fail("lookup");
    CopyRow(lookup_, 0, record);
    sqlite3_reset(lookup_);
    return record->back();
  }

  int Walk() override {
    std::vector<uint8_t> record;
    int count = 0;
    while (sqlite3_step(walk_) == SQLITE_ROW) {
      CopyRow(walk_, 1, &record);
      ++count;
    }
    sqlite3_reset(walk_);
    return count;
  }

  void Update(int id) override {
    const std::vector<uint8_t> payload = Payload(id, 1);
    sqlite3_bind_blob(update_, 1, payload.data(), kPayloadSize, SQLITE_STATIC);
    sqlite3_bind_int(update_, 2, id);
    Done(update_, "update");
  }

  void Delete(int id) override {
    sqlite3_bind_int(delete_, 1, id);
    Done(delete_, "delete");
  }

  // In exclusive locking mode SQLite keeps its lock from the first statement on.
  void BeginBatch(bool) override {}
  void EndBatch() override {}

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

struct Engine {
  std::string name;
  std::unique_ptr<Table> table;
};

bool Wanted(const std::string& engine) {
  const std::string wanted =
      EnvText("KORVAN_BENCH_ENGINES", "kernel,kernel+keys,sqlite-journal,sqlite-wal");
  size_t start = 0;
  while (start <= wanted.size()) {
    const size_t end = std::min(wanted.find(',', start), wanted.size());
    if (wanted.compare(start, end - start, engine) == 0) return true;
    start = end + 1;
  }
  return false;
}

std::vector<Engine> MakeEngines() {
  std::vector<Engine> engines;
  if (Wanted("kernel"))
    engines.push_back({"kernel", std::make_unique<KernelTable>("kernel", false)});
  if (Wanted("kernel+keys") && EnvText("KORVAN_BENCH_KEY_SYNC", "1") != "0") {
    engines.push_back({"kernel+keys", std::make_unique<KernelTable>("keys", true)});
  }
  if (Wanted("sqlite-journal")) {
    engines.push_back(
        {"sqlite-journal", std::make_unique<SqliteTable>("sqlite-journal", "DELETE")});
  }
  if (Wanted("sqlite-wal")) {
    engines.push_back({"sqlite-wal", std::make_unique<SqliteTable>("sqlite-wal", "WAL")});
  }
  return engines;
}

// Microseconds per operation, by phase, engine and round.
using Samples = std::map<std::string, std::map<std::string, std::vector<double>>>;

// One batch of a phase on one table; returns how many operations it made.
using Batch = std::function<int(Table&, int round)>;

void RunPhase(const std::string& phase, std::vector<Engine>& engines, const Batch& batch,
              Samples* samples) {
  const bool change = phase != "lookup + read" && phase != "walk in order";
  for (int round = 0; round < Rounds(); ++round) {
    for (Engine& engine : engines) {
      const auto start = Clock::now();
      engine.table->BeginBatch(change);
      const int operations = batch(*engine.table, round);
      engine.table->EndBatch();
      const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
      (*samples)[phase][engine.name].push_back(seconds * 1e6 / std::max(operations, 1));
    }
  }
}

// The ids of round `round` when `count` ids are spread over the rounds.
std::pair<int, int> RoundSlice(int count, int round) {
  return {count * round / Rounds(), count * (round + 1) / Rounds()};
}

// What one write that returns only when its bytes are on disk costs here, in rounds.
void MeasureSyncWrite(Samples* samples) {
  const std::string path = BenchDirectory() + "/sync-write";
  const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_DSYNC, 0644);
  std::vector<char> bytes(kRecordSize, 'x');
  for (int round = 0; round < Rounds(); ++round) {
    const auto start = Clock::now();
    for (int i = 0; i < kSyncWritesPerRound; ++i) {
      if (pwrite(fd, bytes.data(), bytes.size(), off_t{i} * kRecordSize) < 0) break;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    (*samples)["O_DSYNC write of 200 bytes"]["-"].push_back(seconds * 1e6 / kSyncWritesPerRound);
  }
  close(fd);
}

// Runs the phases in order up to KORVAN_BENCH_LAST_PHASE.
void RunPhases(std::vector<Engine>& engines, Samples* samples) {
  const std::string last = EnvText("KORVAN_BENCH_LAST_PHASE", "delete");
  const std::vector<int>& ids = ShuffledIds();
  std::vector<uint8_t> record;
  const auto run = [&](const std::string& phase, const Batch& batch) {
    RunPhase(phase, engines, batch, samples);
    return phase.substr(0, phase.find(' ')) != last;
  };
  if (!run("insert", [&](Table& table, int round) {
        const auto [from, to] = RoundSlice(Records(), round);
        for (int id = from; id < to; ++id) table.Insert(id);
        return to - from;
      })) {
    return;
  }
  for (Engine& engine : engines) {
    for (int id : ids) engine.table->Lookup(id, &record);  // warms the caches
  }
  volatile uint8_t sink = 0;
  if (!run("lookup + read", [&](Table& table, int) {
        for (int id : ids) sink = sink + table.Lookup(id, &record);
        return static_cast<int>(ids.size());
      })) {
    return;
  }
  if (!run("walk in order", [&](Table& table, int) {
        const int walked = table.Walk();
        if (walked != Records()) throw std::runtime_error("walk missed records");
        return walked;
      })) {
    return;
  }
  if (!run("update", [&](Table& table, int round) {
        const auto [from, to] = RoundSlice(Changes(), round);
        for (int i = from; i < to; ++i) table.Update(ids[static_cast<size_t>(i)]);
        return to - from;
      })) {
    return;
  }
  run("delete", [&](Table& table, int round) {
    const auto [from, to] = RoundSlice(Changes(), round);
    for (int i = from; i < to; ++i) table.Delete(ids[ids.size() - 1 - static_cast<size_t>(i)]);
    return to - from;
  });
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string Spread(const std::vector<double>& values) {
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  char text[64];
  std::snprintf(text, sizeof text, "%.3g–%.3g", *low, *high);
  return text;
}

bool IsSqlite(const Engine& engine) {
  return engine.name.starts_with("sqlite");
}

// Per phase: median and spread of every engine, and each SQLite variant's time over each
// kernel variant's (above 1: the kernel is faster), as the median of the rounds' ratios
// with their spread.
void PrintTable(const Samples& samples, const std::vector<Engine>& engines) {
  std::printf("\n%-28s", "phase (us per operation)");
  for (const Engine& engine : engines) std::printf(" %24s", engine.name.c_str());
  for (const Engine& sqlite : engines) {
    if (!IsSqlite(sqlite)) continue;
    for (const Engine& kernel : engines) {
      if (!IsSqlite(kernel)) std::printf(" %26s", (sqlite.name + "/" + kernel.name).c_str());
    }
  }
  std::printf("\n");
  for (const auto& [phase, by_engine] : samples) {
    if (!by_engine.contains("-")) continue;
    std::printf("%-28s %12.1f (%s)\n", phase.c_str(), Median(by_engine.at("-")),
                Spread(by_engine.at("-")).c_str());
  }
  for (const char* phase : {"insert", "lookup + read", "walk in order", "update", "delete"}) {
    const auto found = samples.find(phase);
    if (found == samples.end()) continue;
    const auto& by_engine = found->second;
    std::printf("%-28s", phase);
    for (const Engine& engine : engines) {
      const std::vector<double>& values = by_engine.at(engine.name);
      char cell[64];
      std::snprintf(cell, sizeof cell, "%.2f (%s)", Median(values), Spread(values).c_str());
      std::printf(" %24s", cell);
    }
    for (const Engine& sqlite : engines) {
      if (!IsSqlite(sqlite)) continue;
      for (const Engine& kernel : engines) {
        if (IsSqlite(kernel)) continue;
        std::vector<double> ratios;
        for (size_t round = 0; round < by_engine.at(sqlite.name).size(); ++round) {
          ratios.push_back(by_engine.at(sqlite.name)[round] / by_engine.at(kernel.name)[round]);
        }
        char cell[64];
        std::snprintf(cell, sizeof cell, "%.2f (%s)", Median(ratios), Spread(ratios).c_str());
        std::printf(" %26s", cell);
      }
    }
    std::printf("\n");
  }
  double load[3] = {};
  getloadavg(load, 3);
  std::printf(
      "records %d, updates and deletes %d each, %d rounds, cache %d KB per engine, files on %s "
      "(%s), locking per %s, load %.2f %.2f %.2f\n",
      Records(), Changes(), Rounds(), CacheBlocks() * 2 * 2, BenchDirectory().c_str(),
      FileSystemOf(BenchDirectory()).c_str(), Locking().c_str(), load[0], load[1], load[2]);
}

}  // namespace

int main() {
  Samples samples;
  std::vector<Engine> engines;
  try {
    MeasureSyncWrite(&samples);
    engines = MakeEngines();
    RunPhases(engines, &samples);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "db_table_bench: %s\n", error.what());
    std::filesystem::remove_all(BenchDirectory());
    return 1;
  }
  PrintTable(samples, engines);
  engines.clear();
  std::filesystem::remove_all(BenchDirectory());
  return 0;
}
