#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "data/tables/concurrency_question.h"
#include "data/tables/std_db_datas.h"
#include "storage/key_file.h"
#include "storage/lock_wait.h"

namespace korvan::data {

class DatabaseFile;
class TStdTB;

using RecordView = std::span<const uint8_t>;

// Where the table layer's user messages and diagnostic lines go: the shell shows the
// errors, the protocol keeps the lines. Tests collect both.
class TDbMessages {
 public:
  virtual ~TDbMessages() = default;
  virtual void ShowError(const std::string& text) = 0;
  virtual void Log(const std::string& line) = 0;
};

class TCollectedMessages : public TDbMessages {
 public:
  void ShowError(const std::string& text) override { errors.push_back(text); }
  void Log(const std::string& line) override { lines.push_back(line); }
  std::vector<std::string> errors;
  std::vector<std::string> lines;
};

// The full keys of one record, by index ("1" first); an empty optional marks an index
// the record is not entered in.
struct TRecordKeys {
  std::vector<std::string> keys;  // full keys, key length bytes each
  std::vector<bool> entered;      // whether the index is entered for the record
  std::vector<bool> unique;       // whether the index admits one record per key
  char IndexChar(size_t i) const { return static_cast<char>('1' + i); }
};

// A database object: one database (group, directory, type letter, key length) as the
// table objects see it. The kernel handle is shared with every other database object of
// the same file through TStdDbDatas.
class TStdDb {
 public:
  TStdDb(std::string group_name, std::string directory, char type_letter, int key_length);
  explicit TStdDb(const DatabaseFile& file);
  ~TStdDb();
  TStdDb(const TStdDb&) = delete;
  TStdDb& operator=(const TStdDb&) = delete;

  // --- Files ---------------------------------------------------------------------
  const std::string& Name() const { return FGroupName; }
  const std::string& Directory() const { return FDirectory; }
  char DbType() const { return FTypeLetter; }
  int KeyLength() const { return FKeyLength; }
  std::string BasePath() const;  // directory + group + ".Q" + letter
  bool Shareable() const { return FShareable; }
  void SetShareable(bool shareable) { FShareable = shareable; }

  // Creates the database files and opens them (4304 when they exist).
  int DbCreate();
  // Opens the database (or joins this process's open handle for it).
  int DbOpen(bool write_wanted = true);
  int DbClose();
  bool IsOpen() const { return FDbData != nullptr && FDbData->Handle() != 0; }
  int Handle() const { return FDbData ? FDbData->Handle() : 0; }
  bool HasDbData() const { return FDbData != nullptr; }
  TStdDbData* DbData() const { return FDbData; }
  int Flush();
  // Live records of a type letter (0: all), by scanning the data file.
  int RecordCount(char table_type, int32_t* count) const;

  // --- Who writes ------------------------------------------------------------------
  // The identity written into ModifiedById of every record this object writes.
  void SetModifiedById(std::string id) { FModifiedById = std::move(id); }
  const std::string& ModifiedById() const { return FModifiedById; }
  // The identity number under which this process registers in the lock file.
  void SetUserIdentity(uint32_t identity) { FUserIdentity = identity; }
  uint32_t UserIdentity() const { return FUserIdentity; }
  // Who answers the overwrite question (nobody: the answer is no).
  void SetConcurrencyQuestion(IConcurrencyQuestion* question) { FQuestion = question; }
  IConcurrencyQuestion* ConcurrencyQuestion() const { return FQuestion; }
  // Resolves a stored ModifiedById to the user's name (the user table); default: the id.
  void SetUserNameLookup(std::function<std::string(const std::string&)> lookup) {
    FUserNameLookup = std::move(lookup);
  }
  std::string UserName(const std::string& modified_by_id) const;
  void SetMessages(TDbMessages* messages) { FMessages = messages; }

  // --- Messages --------------------------------------------------------------------
  // "Error in Database Operation "%s": [DB: %s, TB: %s]: \r\n%s"
  std::string ErrorText(std::string_view operation, std::string_view table,
                        std::string_view kernel_text) const;
  void ShowError(const std::string& text) const;
  void Log(const std::string& line) const;

  // --- Tables ----------------------------------------------------------------------
  void AddTable(TStdTB* table);
  void RemoveTable(TStdTB* table);
  // The first table object of this database for a type letter, or nullptr.
  TStdTB* GetTable(char table_type) const;

  // --- Records and keys ------------------------------------------------------------
  // Writes a new record (header completed by the table) and enters its keys; when a key
  // cannot be entered the keys entered so far and the record are removed again and the
  // code returned (4291 for a duplicate in a unique index).
  int InsertRec(TStdTB& table, std::vector<uint8_t>& record, int32_t length, int32_t* position);
  // Enters all keys of a record, in index order; on failure removes those it entered.
  int iIO_KeysInsert(const TRecordKeys& keys, int32_t position);
  // Removes all keys of a record; a missing key is reported (4314) but the others are
  // still removed.
  int iIO_KeysDelete(const TRecordKeys& keys, int32_t position);
  // Whether exactly this key is in the tree; its position when found.
  int FindExactKey(const std::string& key, bool* found, uint32_t* position) const;
  // 4291 when another record holds one of the unique keys in `keys` that `changed`
  // marks (all when empty).
  int CheckUniqueKeys(const TRecordKeys& keys, int32_t own_position,
                      const std::vector<bool>& changed = {}) const;

  // The raw record at a position (the whole slot as stored); kernel code.
  int ReadRaw(int32_t position, std::vector<uint8_t>& record) const;

  // --- Locks -----------------------------------------------------------------------
  // Registers this process as a task of the database (once; later calls count).
  int LockDb();
  int UnLockDb();
  // Locks/unlocks a name. For a database that is not shared, nobody else can open it:
  // the lock is granted without the lock file.
  int Lock(std::string_view name, bool exclusive, storage::LockWaitHandler* handler = nullptr);
  int UnLock(std::string_view name);
  // Whether another user holds a lock on the name (tries without waiting).
  bool OtherUserLocked(std::string_view name);

  // Conflict detection off for a mass update; returns the previous state.
  static bool DisableConcurrencyDetection();
  static void RestoreConcurrencyDetection(bool previous);

 private:
  bool SharedLocking() const;

  std::string FGroupName;
  std::string FDirectory;
  char FTypeLetter;
  int FKeyLength;
  bool FShareable = true;
  TStdDbData* FDbData = nullptr;
  std::vector<TStdTB*> FTables;
  std::string FModifiedById;
  uint32_t FUserIdentity;
  IConcurrencyQuestion* FQuestion = nullptr;
  std::function<std::string(const std::string&)> FUserNameLookup;
  TDbMessages* FMessages = nullptr;
  int FDbLocks = 0;
};

}  // namespace korvan::data
