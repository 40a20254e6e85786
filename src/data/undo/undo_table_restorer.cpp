#include "data/undo/undo_table_restorer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "data/common/cp1252.h"
#include "data/common/date_time.h"
#include "data/tables/table_key.h"
#include "data/undo/journal_path.h"
#include "data/undo/undo_items.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_exception.h"
#include "storage/result_codes.h"

namespace korvan::data {

using storage::kOk;
using storage::kRecordHeaderSize;
using storage::TDbRecordHeader;

namespace {

// The kernel stamps the change time on every write and the creation time on an insert,
// after the journal took the image: an inserted record is found with a creation time
// its image does not have.
constexpr size_t kStampBegin = offsetof(TDbRecordHeader, LastModified);
constexpr size_t kStampEnd = offsetof(TDbRecordHeader, CreationDate) + sizeof(double);
static_assert(offsetof(TDbRecordHeader, CreationDate) == kStampBegin + sizeof(double));
constexpr size_t kLengthEnd = sizeof(int32_t);
constexpr size_t kMaxSlack = 3;

// Kernel writes without the conflict check with other users' copies: the restorer
// compares the stored record with the journal itself before it writes.
class TNoConflictCheck {
 public:
  TNoConflictCheck() : previous_(TStdDb::DisableConcurrencyDetection()) {}
  ~TNoConflictCheck() { TStdDb::RestoreConcurrencyDetection(previous_); }
  TNoConflictCheck(const TNoConflictCheck&) = delete;
  TNoConflictCheck& operator=(const TNoConflictCheck&) = delete;

 private:
  bool previous_;
};

int Guarded(const std::function<int()>& write) {
  try {
    return write();
  } catch (const storage::EDbKernelException& error) {
    return error.FErrorCode;
  }
}

// "der Tabelle "Waehrung" (W) in "/daten/STAMMDATEN/DB_Stamm""
std::string Describe(const TStdTB& table) {
  return "der Tabelle \"" + table.TableName() + "\" (" + std::string(1, table.TableType()) +
         ") in \"" + table.Db().BasePath() + "\"";
}

int KernelFailure(const TStdTB& table, const char* step, int code, std::string& error) {
  error = std::string("Fehler beim ") + step + " " + Describe(table) + " (Code " +
          std::to_string(code) + ")";
  return code;
}

// Who wrote a stored record last and when, from its header: " (zuletzt am 03.02.2025
// 14:05 von "BOB")"; empty when the header is too short to tell.
std::string LastWriter(const TStdTB& table, const std::vector<uint8_t>& stored) {
  if (stored.size() < sizeof(TDbRecordHeader)) return {};
  TDbRecordHeader header{};
  std::memcpy(&header, stored.data(), sizeof header);
  const size_t length = std::min<size_t>(header.ModifiedById[0], sizeof header.ModifiedById - 1);
  const std::string id =
      Cp1252ToUtf8({reinterpret_cast<const char*>(header.ModifiedById + 1), length});
  return " (zuletzt am " + FormatDateTime(header.LastModified) + " von \"" +
         table.Db().UserName(id) + "\")";
}

// Replaces the keys whose string changed; on failure the old keys are back in place.
int ReplaceKeys(TStdDb& db, const TRecordKeys& old_keys, const TRecordKeys& new_keys,
                int32_t position) {
  const auto at = static_cast<uint32_t>(position);
  std::vector<size_t> done;
  int result = kOk;
  for (size_t i = 0; i < new_keys.keys.size() && result == kOk; ++i) {
    if (old_keys.keys[i] == new_keys.keys[i] && old_keys.entered[i] == new_keys.entered[i])
      continue;
    if (old_keys.entered[i])
      result = storage::iDK_KeyDelete(db.Handle(), MakeKeyEntry(old_keys.keys[i], at));
    if (result == kOk && new_keys.entered[i]) {
      result = storage::iDK_KeyInsert(db.Handle(), MakeKeyEntry(new_keys.keys[i], at));
      if (result != kOk && old_keys.entered[i])
        storage::iDK_KeyInsert(db.Handle(), MakeKeyEntry(old_keys.keys[i], at));
    }
    if (result == kOk) done.push_back(i);
  }
  if (result == kOk) return kOk;
  for (size_t i : done) {
    if (new_keys.entered[i])
      storage::iDK_KeyDelete(db.Handle(), MakeKeyEntry(new_keys.keys[i], at));
    if (old_keys.entered[i])
      storage::iDK_KeyInsert(db.Handle(), MakeKeyEntry(old_keys.keys[i], at));
  }
  return result;
}

}  // namespace

TableTarget TableTargetOf(const TStdTB& table) {
  return {table.Db().BasePath(), table.Db().DbType(), table.TableType(), table.PhysRecLen()};
}

bool SameRecordContent(JournalImage stored, JournalImage image) {
  if (stored.size() < image.size() || stored.size() > image.size() + kMaxSlack) return false;
  if (image.size() < kStampEnd) return std::equal(image.begin(), image.end(), stored.begin());
  const auto same = [&](size_t from, size_t to) {
    return std::equal(image.begin() + static_cast<std::ptrdiff_t>(from),
                      image.begin() + static_cast<std::ptrdiff_t>(to),
                      stored.begin() + static_cast<std::ptrdiff_t>(from));
  };
  return same(kLengthEnd, kStampBegin) && same(kStampEnd, image.size()) &&
         std::all_of(stored.begin() + static_cast<std::ptrdiff_t>(image.size()), stored.end(),
                     [](uint8_t byte) { return byte == 0; });
}

TTableRecordRestorer::TTableRecordRestorer(std::vector<TStdDb*> databases, TTableRegistry tables,
                                           std::string journal_dir)
    : resolver_([this](const TableTarget& target) { return TableOf(target); }),
      databases_(std::move(databases)),
      tables_(std::move(tables)),
      journal_dir_(std::move(journal_dir)) {}

TStdTB* TTableRecordRestorer::TableOf(const TableTarget& target) {
  TStdDb* found = nullptr;
  for (TStdDb* db : databases_) {
    if (db->DbType() == target.db_type &&
        IsJournalPathOf(target.db_file, db->BasePath(), journal_dir_)) {
      found = db;
      break;
    }
  }
  if (found == nullptr && opener_) {
    found = opener_(target);
    if (found != nullptr) databases_.push_back(found);
  }
  if (found == nullptr) return nullptr;
  if (TStdTB* table = found->GetTable(target.table_type)) return table;
  const TTableRegistry::Factory* factory = tables_.Find(found->DbType(), target.table_type);
  if (factory == nullptr) return nullptr;
  created_.push_back((*factory)(*found));
  return created_.back().get();
}

std::vector<const TStdDb*> TTableRecordRestorer::DatabasesOf(
    const std::vector<TableTarget>& tables) {
  std::vector<const TStdDb*> found;
  for (const TableTarget& target : tables) {
    const TStdTB* table = resolver_ ? resolver_(target) : nullptr;
    if (table == nullptr || !table->Db().IsOpen()) continue;
    if (std::find(found.begin(), found.end(), &table->Db()) == found.end()) {
      found.push_back(&table->Db());
    }
  }
  return found;
}

int TTableRecordRestorer::RestoreRecord(const TableTarget& target, JournalImage expected,
                                        JournalImage image, std::string& error) {
  TStdTB* table = resolver_ ? resolver_(target) : nullptr;
  if (table == nullptr || !table->Db().IsOpen()) {
    error = std::string("die Tabelle vom Typ \"") + target.table_type + "\" in \"" +
            target.db_file +
            "\" ist nicht geöffnet; ihre Datensätze können nicht zurückgeschrieben werden";
    return kUndoNoTarget;
  }
  for (JournalImage one : {expected, image}) {
    if (!one.empty() &&
        (one.size() < static_cast<size_t>(kRecordHeaderSize) ||
         static_cast<char>(one[offsetof(TDbRecordHeader, RecTyp)]) != table->TableType())) {
      error = "ein Datensatzabbild im Journal passt nicht zu " + Describe(*table);
      return kUndoBadImage;
    }
  }
  const JournalImage identity = expected.empty() ? image : expected;
  if (identity.empty()) {
    error = "eine Datensatzänderung ohne Abbilder im Journal, " + Describe(*table);
    return kUndoBadImage;
  }
  const TRecordKeys keys = table->BuildKeys(identity);
  const size_t unique = static_cast<size_t>(table->UniqueIndex() - '1');
  if (unique >= keys.keys.size() || !keys.entered[unique]) {
    error = "ein Datensatz ohne eindeutigen Schlüssel im Journal, " + Describe(*table);
    return kUndoBadImage;
  }
  bool found = false;
  uint32_t position = 0;
  if (int result = table->Db().FindExactKey(keys.keys[unique], &found, &position); result != kOk) {
    return KernelFailure(*table, "Suchen des Datensatzes", result, error);
  }
  const std::string record_name =
      "der Datensatz \"" + KeyStringOf(keys.keys[unique]) + "\" " + Describe(*table);
  if (expected.empty()) {
    if (found) {
      error = record_name + " wurde inzwischen neu angelegt";
      return kUndoConflict;
    }
    return Insert(*table, image, error);
  }
  if (!found) {
    error = record_name + " wurde inzwischen gelöscht";
    return kUndoConflict;
  }
  std::vector<uint8_t> stored;
  const auto at = static_cast<int32_t>(position);
  if (int result = table->Db().ReadRaw(at, stored); result != kOk) {
    return KernelFailure(*table, "Lesen des Datensatzes", result, error);
  }
  if (!SameRecordContent(stored, expected)) {
    error = record_name + " wurde inzwischen geändert" + LastWriter(*table, stored);
    return kUndoConflict;
  }
  return image.empty() ? Delete(*table, at, stored, error)
                       : Replace(*table, at, stored, image, error);
}

// Inserts the image as it is; the kernel stamps creation and change time, so the
// creation time is written back with a second write.
int TTableRecordRestorer::Insert(TStdTB& table, JournalImage image, std::string& error) {
  TStdDb& db = table.Db();
  const TRecordKeys keys = table.BuildKeys(image);
  if (int result = db.CheckUniqueKeys(keys, 0); result != kOk) {
    return KernelFailure(table, "Prüfen der Schlüssel", result, error);
  }
  std::vector<uint8_t> record(image.begin(), image.end());
  const auto length = static_cast<int32_t>(record.size());
  int32_t position = 0;
  const TNoConflictCheck no_check;
  int result = Guarded([&] {
    return storage::iDK_RecordInsert(db.Handle(), record.data(), length, true, &position);
  });
  if (result != kOk) return KernelFailure(table, "Einfügen des Datensatzes", result, error);
  result = db.iIO_KeysInsert(keys, position);
  if (result == kOk) {
    std::copy(image.begin(), image.end(), record.begin());
    result = Guarded([&] {
      return storage::iDK_RecordUpdate(db.Handle(), record.data(), length, position, length);
    });
    if (result != kOk) db.iIO_KeysDelete(keys, position);
  }
  if (result != kOk) {
    std::vector<uint8_t> header(image.begin(), image.begin() + kRecordHeaderSize);
    Guarded([&] { return storage::iDK_RecordDelete(db.Handle(), header.data(), position); });
    return KernelFailure(table, "Einfügen des Datensatzes", result, error);
  }
  return kOk;
}

int TTableRecordRestorer::Replace(TStdTB& table, int32_t position,
                                  const std::vector<uint8_t>& stored, JournalImage image,
                                  std::string& error) {
  TStdDb& db = table.Db();
  const TRecordKeys old_keys = table.BuildKeys(stored);
  const TRecordKeys new_keys = table.BuildKeys(image);
  std::vector<bool> changed(new_keys.keys.size());
  for (size_t i = 0; i < changed.size(); ++i) changed[i] = new_keys.keys[i] != old_keys.keys[i];
  if (int result = db.CheckUniqueKeys(new_keys, position, changed); result != kOk) {
    return KernelFailure(table, "Prüfen der Schlüssel", result, error);
  }
  std::vector<uint8_t> record(image.begin(), image.end());
  const auto length = static_cast<int32_t>(record.size());
  const TNoConflictCheck no_check;
  int result = Guarded([&] {
    return storage::iDK_RecordUpdate(db.Handle(), record.data(),
                                     static_cast<int32_t>(stored.size()), position, length);
  });
  if (result == storage::kDkCannotReplace) {
    // The image does not fit the slot: it goes in anew and the old slot is freed.
    if (int deleted = Delete(table, position, stored, error); deleted != kOk) return deleted;
    if (int inserted = Insert(table, image, error); inserted != kOk) {
      std::string ignored;
      Insert(table, stored, ignored);
      return inserted;
    }
    return kOk;
  }
  if (result != kOk) return KernelFailure(table, "Ändern des Datensatzes", result, error);
  if (result = ReplaceKeys(db, old_keys, new_keys, position); result != kOk) {
    std::vector<uint8_t> back = stored;
    Guarded([&] {
      return storage::iDK_RecordUpdate(db.Handle(), back.data(), static_cast<int32_t>(back.size()),
                                       position, static_cast<int32_t>(back.size()));
    });
    return KernelFailure(table, "Ersetzen der Schlüssel", result, error);
  }
  return kOk;
}

int TTableRecordRestorer::Delete(TStdTB& table, int32_t position,
                                 const std::vector<uint8_t>& stored, std::string& error) {
  TStdDb& db = table.Db();
  const TRecordKeys keys = table.BuildKeys(stored);
  std::vector<uint8_t> header(stored.begin(), stored.begin() + kRecordHeaderSize);
  const TNoConflictCheck no_check;
  const int result =
      Guarded([&] { return storage::iDK_RecordDelete(db.Handle(), header.data(), position); });
  if (result != kOk) return KernelFailure(table, "Löschen des Datensatzes", result, error);
  if (int removed = db.iIO_KeysDelete(keys, position); removed != kOk) {
    return KernelFailure(table, "Entfernen der Schlüssel", removed, error);
  }
  return kOk;
}

}  // namespace korvan::data
