#include "data/integrity/database_recovery.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>

#include "data/common/message_format.h"
#include "data/common/stamped_path.h"
#include "data/integrity/duplicate_guids.h"
#include "data/tables/table_key.h"
#include "storage/data_file_reader.h"
#include "storage/db_error_translate.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/file/atomic_file.h"
#include "storage/file/file_names.h"
#include "storage/file/file_sync.h"
#include "storage/file/unique_fd.h"
#include "storage/record_header.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace fs = std::filesystem;
namespace {

constexpr int64_t kDataStart = 80;
constexpr int kVersionOffset = 40;
constexpr int kVersionAndStampSize = 12;  // file version and time stamp

using storage::UniqueFd;

// The files a rebuild replaces, named from a base path.
using FileNameOf = std::string (*)(const std::string&);
constexpr FileNameOf kRebuiltFiles[] = {storage::DataFileName, storage::KeyFileName};

std::string SystemError(const std::string& what, const std::string& path, int error = errno) {
  return what + " \"" + path + "\": " + std::strerror(error);
}

bool ReadFully(int fd, int64_t offset, void* buffer, size_t length) {
  auto* bytes = static_cast<uint8_t*>(buffer);
  size_t done = 0;
  while (done < length) {
    const ssize_t n = ::pread(fd, bytes + done, length - done, static_cast<off_t>(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

bool WriteFully(int fd, int64_t offset, const void* buffer, size_t length) {
  const auto* bytes = static_cast<const uint8_t*>(buffer);
  size_t done = 0;
  while (done < length) {
    const ssize_t n = ::pwrite(fd, bytes + done, length - done, static_cast<off_t>(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

void SyncPath(const std::string& path, bool directory) {
  if (const int error = directory ? storage::SyncDirectory(path) : storage::SyncFile(path);
      error != 0) {
    throw std::runtime_error(SystemError("Synchronisieren fehlgeschlagen",
                                         directory && path.empty() ? "." : path, error));
  }
}

void SyncDirectory(const std::string& directory) {
  SyncPath(directory, true);
}

bool Exists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

void RemoveIfExists(const std::string& path) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
    throw std::runtime_error(SystemError("Löschen fehlgeschlagen", path));
  }
}

void Rename(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) {
    throw std::runtime_error(SystemError("Umbenennen nach \"" + to + "\" fehlgeschlagen", from));
  }
}

// A backup that shares the old file's content: a hard link, or a synced copy where the
// file system has none.
void MakeBackup(const std::string& file, const std::string& backup) {
  RemoveIfExists(backup);
  if (::link(file.c_str(), backup.c_str()) == 0) return;
  std::error_code error;
  fs::copy_file(file, backup, fs::copy_options::overwrite_existing, error);
  if (error) throw std::runtime_error("Sicherung \"" + backup + "\": " + error.message());
  SyncPath(backup, false);
}

std::string KernelText(int code) {
  return std::to_string(code) + " (" + storage::TDBErrorTranslate().GetErrorString(code) + ")";
}

// Collects what the reader skipped.
class SkippedRanges : public storage::DataFileReader::Reporter {
 public:
  explicit SkippedRanges(DataFileScan& scan) : scan_(scan) {}
  void Damaged(int64_t position, int64_t length, storage::BlockDamage damage) override {
    scan_.skipped.push_back({position, length, storage::BlockDamageText(damage)});
  }

 private:
  DataFileScan& scan_;
};

}  // namespace

DataFileScan ScanDataFile(const std::string& data_file,
                          const std::function<void(const ScannedRecord&)>& on_record) {
  // Without O_NONBLOCK a named pipe in the file's place would block the walk.
  UniqueFd fd(::open(data_file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info {};
  if (!fd.valid() || ::fstat(fd.get(), &info) != 0) {
    throw std::runtime_error(SystemError("Datendatei nicht lesbar", data_file));
  }
  if (!S_ISREG(info.st_mode)) {
    throw std::runtime_error("Datendatei \"" + data_file + "\" ist keine gewöhnliche Datei");
  }
  DataFileScan scan;
  SkippedRanges skipped(scan);
  storage::DataFileReader reader(fd.get(), &skipped);
  scan.file_size = reader.file_size();
  ScannedRecord record;
  storage::DataFileBlock block;
  while (reader.ReadBlock(&block)) {
    if (!block.live) {
      ++scan.free_blocks;
      continue;
    }
    record.position = block.position;
    if (!reader.ReadRecord(block, &record.bytes)) break;
    ++scan.live_records;
    on_record(record);
  }
  if (reader.io_error()) {
    throw std::runtime_error(SystemError("Datendatei nicht lesbar", data_file));
  }
  return scan;
}

namespace {

// A record to be copied and the keys it gets.
struct CopiedRecord {
  int32_t position;
  TRecordKeys keys;
  bool has_keys;
};

class DatabaseCopier {
 public:
  DatabaseCopier(const std::string& directory, const std::string& group, char type_letter,
                 int key_length, const TTableRegistry& registry, DatabaseRebuild& report)
      : directory_(directory),
        type_letter_(type_letter),
        key_length_(key_length),
        base_(storage::DatabaseBasePath(directory, group, type_letter)),
        temp_base_(storage::RebuildTempBasePath(directory, type_letter)),
        registry_(registry),
        keys_db_(storage::kRebuildTempGroup, directory, type_letter, key_length),
        report_(report) {}

  // Writes DB_TEMP completely; false with report.error when it could not.
  bool Copy() {
    for (FileNameOf name : kRebuiltFiles) RemoveIfExists(name(temp_base_));
    if (!CreateEmpty()) return false;
    if (!CopyRecords()) return false;
    return EnterKeys();
  }

  const std::string& base() const { return base_; }
  const std::string& temp_base() const { return temp_base_; }

 private:
  bool Fail(std::string error) {
    report_.error = std::move(error);
    return false;
  }

  bool CreateEmpty() {
    int handle = 0;
    if (const int created = storage::iDK_DbCreate(type_letter_, temp_base_, key_length_, &handle);
        created != storage::kOk) {
      return Fail(temp_base_ + "0: " + KernelText(created));
    }
    if (const int closed = storage::iDK_DbClose(handle); closed != storage::kOk) {
      return Fail(temp_base_ + "0: " + KernelText(closed));
    }
    return true;
  }

  TStdTB* TableFor(char table_type) {
    auto found = tables_.find(table_type);
    if (found != tables_.end()) return found->second.get();
    const TTableRegistry::Factory* factory = registry_.Find(type_letter_, table_type);
    std::unique_ptr<TStdTB> table = factory ? (*factory)(keys_db_) : nullptr;
    return (tables_[table_type] = std::move(table)).get();
  }

  // The keys of a record, built from its current layout; false when the record is
  // not valid for its table.
  bool KeysOf(TStdTB& table, const std::vector<uint8_t>& bytes, TRecordKeys& keys) {
    storage::TDbRecordHeader header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    const RecordView view(bytes.data(), bytes.size());
    if (!table.NeedsConversion(header, static_cast<int>(bytes.size()))) {
      keys = table.BuildKeys(view);
      return true;
    }
    std::vector<uint8_t> current;
    if (table.Convert(view, current) != storage::kOk) return false;
    keys = table.BuildKeys(RecordView(current.data(), current.size()));
    return true;
  }

  void Take(const ScannedRecord& record, int fd, int64_t& end) {
    const char letter = static_cast<char>(record.bytes[4]);
    if (letter < 'A' || letter > 'Z') {
      NotValid(record, letter);
      return;
    }
    CopiedRecord copied{static_cast<int32_t>(end), {}, false};
    std::optional<std::vector<uint8_t>> renewed;  // the record with a fresh GUID
    if (TStdTB* table = TableFor(letter)) {
      if (!KeysOf(*table, record.bytes, copied.keys)) {
        NotValid(record, letter);
        return;
      }
      renewed = guids_.ReplaceDuplicateGUIDs(*table, record.bytes, record.position, report_.lines);
      if (renewed) KeysOf(*table, *renewed, copied.keys);
      if (IsDuplicate(record, copied.keys)) return;
      copied.has_keys = true;
      ++report_.records_with_keys;
    } else {
      // Kept byte for byte but without keys: its keys cannot be built without its
      // class, and dropping it would lose data a newer program version may own. The
      // integrity check reports such records per type letter.
      ++report_.records_without_keys;
      unknown_tables_.try_emplace(letter, UnknownTable{record.position, 0}).first->second.count++;
    }
    const std::vector<uint8_t>& bytes = renewed ? *renewed : record.bytes;
    if (end + static_cast<int64_t>(bytes.size()) >= 2147483647) {
      throw std::runtime_error(temp_base_ + "0: " + KernelText(storage::kDkFileWouldExceed2GB));
    }
    if (!WriteFully(fd, end, bytes.data(), bytes.size())) {
      throw std::runtime_error(
          SystemError("Schreiben fehlgeschlagen", storage::DataFileName(temp_base_)));
    }
    end += static_cast<int64_t>(bytes.size());
    ++report_.records_copied;
    records_.push_back(std::move(copied));
  }

  // Whether another record copied before holds one of the record's unique keys. Such a
  // record is set aside: the first one keeps the key, so that every unique key leads to
  // one record again, and the other is written to a file beside the database, where the
  // user finds it, instead of being dropped.
  bool IsDuplicate(const ScannedRecord& record, const TRecordKeys& keys) {
    for (size_t i = 0; i < keys.keys.size(); ++i) {
      if (!keys.entered[i] || !keys.unique[i]) continue;
      const auto first = unique_keys_.find(keys.keys[i]);
      if (first == unique_keys_.end()) continue;
      SetAside(record, keys.keys[i][0], keys.IndexChar(i), first->second);
      return true;
    }
    for (size_t i = 0; i < keys.keys.size(); ++i) {
      if (keys.entered[i] && keys.unique[i]) unique_keys_.emplace(keys.keys[i], record.position);
    }
    return false;
  }

  void SetAside(const ScannedRecord& record, char table, char index, int32_t first_position) {
    if (set_aside_file_.empty()) {
      set_aside_file_ =
          NewStampedPath(directory_, fs::path(base_).filename().string() + "0.Doppelt_", ".dat")
              .string();
    }
    set_aside_.insert(set_aside_.end(), record.bytes.begin(), record.bytes.end());
    ++report_.records_set_aside;
    report_.lines.push_back(
        Printf("Datensatz an Position %d: Schlüssel %c%c doppelt (wie Position "
               "%d), beiseitegelegt in \"%s\"",
               record.position, table, index, first_position, set_aside_file_.c_str()));
  }

  // The records set aside, as they were in the data file (each with its length field
  // first), written and synced before the old files are replaced.
  void WriteSetAside() {
    if (set_aside_.empty()) return;
    UniqueFd fd(::open(set_aside_file_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!fd.valid() || !WriteFully(fd.get(), 0, set_aside_.data(), set_aside_.size()) ||
        ::fsync(fd.get()) != 0 || fd.Close() != 0) {
      throw std::runtime_error(SystemError("Schreiben fehlgeschlagen", set_aside_file_));
    }
    SyncDirectory(directory_);
  }

  void NotValid(const ScannedRecord& record, char letter) {
    ++report_.records_not_valid;
    report_.lines.push_back(Printf("Datensatz an Position %d (Typ $%x)", record.position,
                                   static_cast<unsigned>(static_cast<uint8_t>(letter))) +
                            " - Not converted, because it not valid!");
  }

  bool CopyRecords() {
    const std::string temp_data = storage::DataFileName(temp_base_);
    UniqueFd fd(::open(temp_data.c_str(), O_RDWR | O_CLOEXEC));
    if (!fd.valid()) return Fail(SystemError("nicht beschreibbar", temp_data));
    // The new file keeps the old one's version and time stamp.
    UniqueFd old(::open(storage::DataFileName(base_).c_str(), O_RDONLY | O_CLOEXEC));
    uint8_t stamp[kVersionAndStampSize];
    if (!old.valid() || !ReadFully(old.get(), kVersionOffset, stamp, sizeof stamp) ||
        !WriteFully(fd.get(), kVersionOffset, stamp, sizeof stamp)) {
      return Fail(SystemError("Dateikopf nicht übertragbar", storage::DataFileName(base_)));
    }
    int64_t end = kDataStart;
    const DataFileScan scan =
        ScanDataFile(storage::DataFileName(base_),
                     [&](const ScannedRecord& record) { Take(record, fd.get(), end); });
    for (const auto& [letter, table] : unknown_tables_) {
      report_.lines.push_back(
          Printf("Tabelle \"%c\" unbekannt: %d Datensätze ohne Schlüssel "
                 "übernommen (der erste an Position %d)",
                 letter, table.count, table.first_position));
    }
    for (const DataFileScan::Skipped& skipped : scan.skipped) {
      report_.bytes_lost += skipped.length;
      report_.lines.push_back(
          Printf("Datendatei \"%s\": ab Position %lld %lld Bytes übersprungen (%s)",
                 (base_ + "0").c_str(), static_cast<long long>(skipped.position),
                 static_cast<long long>(skipped.length), skipped.reason.c_str()));
    }
    if (::fsync(fd.get()) != 0 || fd.Close() != 0) {
      return Fail(SystemError("Schreiben fehlgeschlagen", temp_data));
    }
    WriteSetAside();
    return true;
  }

  void EnterRecordKeys(const CopiedRecord& record) {
    const TRecordKeys& keys = record.keys;
    for (size_t i = 0; i < keys.keys.size(); ++i) {
      if (!keys.entered[i]) continue;
      if (keys.unique[i]) {
        bool found = false;
        uint32_t at = 0;
        const int looked = keys_db_.FindExactKey(keys.keys[i], &found, &at);
        if (looked != storage::kOk)
          throw std::runtime_error(temp_base_ + "1: " + KernelText(looked));
        if (found) {
          ++report_.keys_not_entered;
          report_.lines.push_back(
              Printf("Datensatz an Position %d: Schlüssel %c%c doppelt (wie Position %u), nicht "
                     "eingetragen",
                     record.position, keys.keys[i][0], keys.IndexChar(i), at));
          continue;
        }
      }
      const int inserted =
          storage::iDK_KeyInsert(keys_db_.Handle(), MakeKeyEntry(keys.keys[i], record.position));
      if (inserted != storage::kOk)
        throw std::runtime_error(temp_base_ + "1: " + KernelText(inserted));
    }
  }

  bool EnterKeys() {
    if (const int opened = keys_db_.DbOpen(true); opened != storage::kOk) {
      return Fail(temp_base_ + "0: " + KernelText(opened));
    }
    for (const CopiedRecord& record : records_) {
      if (record.has_keys) EnterRecordKeys(record);
    }
    if (const int closed = keys_db_.DbClose(); closed != storage::kOk) {
      return Fail(temp_base_ + "0: " + KernelText(closed));
    }
    SyncPath(storage::DataFileName(temp_base_), false);
    SyncPath(storage::KeyFileName(temp_base_), false);
    SyncDirectory(directory_);
    return true;
  }

  std::string directory_;
  char type_letter_;
  int key_length_;
  std::string base_;
  std::string temp_base_;
  const TTableRegistry& registry_;
  TStdDb keys_db_;  // DB_TEMP, for the table objects and the key inserts
  std::map<char, std::unique_ptr<TStdTB>> tables_;
  TDuplicateGuidReplacer guids_;
  std::vector<CopiedRecord> records_;
  struct UnknownTable {
    int32_t first_position;
    int count;
  };
  std::map<char, UnknownTable> unknown_tables_;  // records of letters no class is known for
  std::map<std::string, int32_t> unique_keys_;   // unique key -> position of its record
  std::vector<uint8_t> set_aside_;               // records with a unique key taken already
  std::string set_aside_file_;
  DatabaseRebuild& report_;
};

void WriteCommitMark(const std::string& mark, const std::string& group) {
  const storage::FileWriteResult written =
      storage::WriteFileAtomically(mark, group + "\n", storage::Durability::kDurable);
  if (!written.ok()) {
    throw std::runtime_error(SystemError("Schreiben fehlgeschlagen", mark, written.error));
  }
}

// The group a commit mark names, or "" when the mark is incomplete.
std::string ReadCommitMark(const std::string& mark) {
  std::error_code error;
  const auto size = fs::file_size(mark, error);
  if (error || size == 0 || size > 256) return "";
  UniqueFd fd(::open(mark.c_str(), O_RDONLY | O_CLOEXEC));
  std::string content(static_cast<size_t>(size), '\0');
  if (!fd.valid() || !ReadFully(fd.get(), 0, content.data(), content.size())) return "";
  if (content.back() != '\n') return "";
  content.pop_back();
  const bool plain = !content.empty() && std::all_of(content.begin(), content.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
  });
  return plain ? content : "";
}

// Steps 2 to 5 of the protocol.
void ReplaceFiles(const std::string& directory, const std::string& group, char type_letter,
                  const std::string& base, const std::string& temp_base, bool keep_backup) {
  for (FileNameOf name : kRebuiltFiles) {
    if (Exists(name(base))) MakeBackup(name(base), storage::BackupFileName(name(base)));
  }
  SyncDirectory(directory);
  const std::string mark = storage::RebuildCommitMarkName(directory, type_letter);
  WriteCommitMark(mark, group);
  SyncDirectory(directory);
  for (FileNameOf name : kRebuiltFiles) Rename(name(temp_base), name(base));
  SyncDirectory(directory);
  RemoveIfExists(mark);
  if (!keep_backup) {
    for (FileNameOf name : kRebuiltFiles) RemoveIfExists(storage::BackupFileName(name(base)));
  }
  SyncDirectory(directory);
}

}  // namespace

DatabaseRebuild RebuildDatabase(const std::string& directory, const std::string& group,
                                char type_letter, int key_length, const TTableRegistry& registry) {
  DatabaseRebuild report;
  const std::string base = storage::DatabaseBasePath(directory, group, type_letter);
  report.data_file = storage::DataFileName(base);
  try {
    for (std::string& line : FinishInterruptedRebuilds(directory)) report.lines.push_back(line);
    if (!Exists(report.data_file)) {
      report.error = report.data_file + ": " + KernelText(storage::kDkDataFileMissing);
      return report;
    }
    if (const int format = storage::iDK_DbCheckFile(type_letter, report.data_file);
        format != storage::kDkFormatCurrent) {
      report.error = report.data_file + ": " + KernelText(format);
      return report;
    }
    if (!Exists(storage::KeyFileName(base)))
      report.lines.push_back("Schlüsseldatei fehlt, wird neu aufgebaut");
    DatabaseCopier copier(directory, group, type_letter, key_length, registry, report);
    if (!copier.Copy()) {
      for (FileNameOf name : kRebuiltFiles) RemoveIfExists(name(copier.temp_base()));
      return report;
    }
    report.backup_kept = report.bytes_lost > 0 || report.records_not_valid > 0;
    ReplaceFiles(directory, group, type_letter, base, copier.temp_base(), report.backup_kept);
    report.replaced = true;
    report.lines.push_back(Printf("%d Datensätze übernommen, %d mit Schlüsseln",
                                  report.records_copied, report.records_with_keys));
    if (report.backup_kept) {
      report.lines.push_back("alte Dateien bleiben als \"" +
                             storage::BackupFileName(storage::DataFileName(base)) + "\" und \"" +
                             storage::BackupFileName(storage::KeyFileName(base)) + "\" erhalten");
    }
  } catch (const std::exception& error) {
    report.error = error.what();
  }
  return report;
}

std::vector<std::string> FinishInterruptedRebuilds(const std::string& directory) {
  std::vector<std::string> lines;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string temp_base = storage::RebuildTempBasePath(directory, letter);
    const std::string mark = storage::RebuildCommitMarkName(directory, letter);
    if (Exists(mark)) {
      const std::string group = ReadCommitMark(mark);
      if (!group.empty()) {
        const std::string base = storage::DatabaseBasePath(directory, group, letter);
        for (FileNameOf name : kRebuiltFiles) {
          if (Exists(name(temp_base))) Rename(name(temp_base), name(base));
        }
        SyncDirectory(directory);
        lines.push_back("unterbrochener Neuaufbau von \"" + storage::DataFileName(base) +
                        "\" abgeschlossen");
      }
      RemoveIfExists(mark);
    }
    // What is left of DB_TEMP was never committed.
    for (FileNameOf name : {storage::DataFileName, storage::KeyFileName, storage::LockFileName}) {
      if (Exists(name(temp_base))) {
        RemoveIfExists(name(temp_base));
        lines.push_back("unvollständige Kopie \"" + name(temp_base) + "\" gelöscht");
      }
    }
  }
  return lines;
}

}  // namespace korvan::data
