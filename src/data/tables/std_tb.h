#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/tables/std_db.h"
#include "storage/key_file.h"
#include "storage/record_header.h"

namespace korvan::data {

class TDataCheck;
class TTreeHold;

// Where a record keeps its GUID: a short string field (a length byte, then up to
// `capacity` Windows-1252 characters) at `offset` from the start of the record.
struct TGuidField {
  int offset = 0;
  int capacity = 0;  // 38 for the registry form with braces, 36 for the bare form
  // Whether every record must have a GUID: an empty one is then replaced like a
  // duplicate. Where it is optional, empty GUIDs are left alone.
  bool mandatory = false;
};

// A table object: one table (one record layout, one type letter) of a database. It holds
// the current record, builds the record's keys for each of its indexes, walks an index
// in key order within a key pattern, reads, inserts, updates and deletes records,
// converts records of older layouts and validates records. Derived classes define the
// layout (`InitRecord`), the indexes (`GetMaxIndex`, `GetKeyString`) and, where needed,
// validation, conversion and delete cascades.
//
// Operations report through their result (true/false or a kernel code, also kept in
// nLastError) and show failures through the database's message sink with the texts users
// know; they do not throw for kernel failures.
class TStdTB {
 public:
  using TNotifyEvent = std::function<void(TStdTB&)>;

  TStdTB(TStdDb& db, char table_type, int phys_rec_len, uint16_t version, std::string table_name);
  virtual ~TStdTB();
  TStdTB(const TStdTB&) = delete;
  TStdTB& operator=(const TStdTB&) = delete;

  // --- What a table defines --------------------------------------------------------
  // Zeroes the current record and sets the header (RecTyp, Size, Version); derived
  // classes then set their defaults (null ids, default letters).
  virtual void InitRecord();
  // The last index character ("1" for one index, "2" for two, ...).
  virtual char GetMaxIndex() const = 0;
  // The key string of an index for a record; the result is its length, or negative when
  // the record is not entered in that index.
  virtual int GetKeyString(RecordView record, char index, std::string& key) const = 0;
  // Whether an index admits only one record per key (default: the unique index).
  virtual bool IsUniqueIndex(char index) const { return index == FUniqueIndex; }
  // Checks before writing; a nonzero code stops the write.
  virtual int ValidateRecordBeforeUpdate() { return 0; }
  virtual int DoValidateRecord() { return 0; }
  // The table's integrity rules for the current record: the table calls the rule
  // operations of `check` for its fields (see data_check.h). Default: no rules.
  virtual void DoValidateRecord(TDataCheck& check) { (void)check; }
  virtual void ValidateRecordAfterRead() {}
  // The GUID field of a stored record, or none (the default: most tables carry no
  // GUID). The record may be of an older layout than the table's, so the table answers
  // for the record's own layout. A rebuild keeps the GUIDs of a table unique by it.
  virtual std::optional<TGuidField> GuidField(RecordView record) const {
    (void)record;
    return std::nullopt;
  }
  // The length of a record in this layout (tables with a variable tail override).
  virtual int RecordLength(RecordView record) const;
  // Whether a stored record must be converted before use: its Version is older.
  virtual bool NeedsConversion(const storage::TDbRecordHeader& stored, int stored_length) const;
  // Converts a record of an older layout into the current one. The default starts from
  // an initialised record and keeps the fields the old record has (the common prefix).
  // 0 or a code; "Unexpected Record Size %d" for an old record the table cannot read.
  virtual int Convert(RecordView old_record, std::vector<uint8_t>& new_record);
  // The record as users name it in messages.
  virtual std::string CurrentRecordToString() const;
  virtual int UpDateRec();
  virtual int DeleteRec();
  // Deletes, through DeleteRec and its cascade, every record whose key of index `index`
  // matches `pattern`; 0 or the first failure's kernel code.
  int DeleteMatching(std::string_view pattern, char index = '1');
  virtual void ClearTbRecord();

  // --- Key walks -------------------------------------------------------------------
  // First record of index `index` whose key string matches `pattern` (pad bytes match
  // anything, an empty pattern every record of the table); the record becomes current.
  virtual bool GetFirstKey(std::string_view pattern, char index = '1');
  // Next record of the running walk; only while `pattern` and `index` are the walk's.
  virtual bool GetNextKey(std::string_view pattern, char index = '1');
  virtual bool GetLastKey(std::string_view pattern, char index = '1');
  virtual bool GetPreviousKey(std::string_view pattern, char index = '1');
  // The same, also giving the full key found in the walked index.
  virtual bool GetFirstKeyEx(std::string_view pattern, char index, std::string& found_key);
  virtual bool GetNextKeyEx(std::string_view pattern, char index, std::string& found_key);
  virtual bool GetLastKeyEx(std::string_view pattern, char index, std::string& found_key);
  virtual bool GetPreviousKeyEx(std::string_view pattern, char index, std::string& found_key);
  // Continues the running walk, whatever its pattern.
  bool GetNextKey() { return GetNextKey(FCurrentFilterKey, FFilterIndex); }
  bool GetPreviousKey() { return GetPreviousKey(FCurrentFilterKey, FFilterIndex); }
  // Unique lookup: the first record matching the pattern becomes current; the walk is
  // not disturbed.
  bool GetKey(std::string_view pattern, char index = '1');
  virtual bool ExistsRec(std::string_view pattern, char index = '1');
  // Reads the record at a data-file position into the current record.
  virtual bool GetRec(int32_t position);

  // --- Batches ---------------------------------------------------------------------
  // All records of a walk at once, in key order, read in data-file order; at most
  // max_count (0: all). The current record is not disturbed.
  int GetBatch(std::string_view pattern, char index, std::vector<std::vector<uint8_t>>& records,
               size_t max_count = 0);
  // The full keys and positions of a walk, without reading records.
  int GetKeyBatch(std::string_view pattern, char index, std::vector<std::string>& keys,
                  std::vector<int32_t>& positions, size_t max_count = 0);
  // Reads the records at the given positions, in the given order.
  int GetBatchFromPositions(const std::vector<int32_t>& positions,
                            std::vector<std::vector<uint8_t>>& records);
  // Records of the table, counted through its unique index.
  int GetRecCount(uint32_t* count) const;

  // --- Record locks ----------------------------------------------------------------
  // Locks the current record exclusively for this user; 4317 when another user holds it.
  virtual int LockRec(storage::LockWaitHandler* handler = nullptr);
  virtual int UnLockRec();
  // The lock name of the current record: its unique key (31 bytes at most).
  std::string RecordLockName() const;

  // --- Whole-table conversion -----------------------------------------------------
  // Converts every record of an older layout, scanning the data file record by record
  // ("Convert by records ...") or walking the first index ("Convert by keys ...").
  // The number of records converted, or a negative kernel code.
  int ConvertTable(bool by_records);
  void BeginConversion() { FInConversion = true; }
  void EndConversion() { FInConversion = false; }

  // --- State -----------------------------------------------------------------------
  char TableType() const { return FTableType; }
  const std::string& TableName() const { return FTableName; }
  uint16_t Version() const { return FVersion; }
  int PhysRecLen() const { return FTbPhysRecLen; }
  TStdDb& Db() const { return FDbOwner; }
  int32_t CurrentRecordPos() const { return FCurrentRecordPos; }
  bool HasPosition() const { return FCurrentRecordPos > 0; }
  const std::vector<uint8_t>& CurrentRecord() const { return FCurrentRecord; }
  std::vector<uint8_t>& CurrentRecord() { return FCurrentRecord; }
  // Makes a record current as a new record (no position): for inserts of copies.
  void SetTbRecord(RecordView record);
  bool IsChanged() const { return FCurrentRecord != FLastRecord; }
  bool GetForceUpdate() const { return FForceUpdate; }
  bool IsLocked() const { return bTbIsLocked; }
  char FilterIndex() const { return FFilterIndex; }
  char UniqueIndex() const { return FUniqueIndex; }
  const std::string& UniqueResultKey() const { return sUniqueResultKey; }
  const std::string& FilterResultKey() const { return sFilterResultKey; }
  int LastError() const { return nLastError; }
  const std::string& LastErrorText() const { return FLastErrorText; }
  // Where the record lies whose read failed last; -1 when the last failure was no read
  // of a record (a key walk, a write).
  int32_t FailedPosition() const { return FFailedPosition; }
  int TBRealRecLen() const { return FTBRealRecLen; }

  // All keys of a record.
  TRecordKeys BuildKeys(RecordView record) const;
  // The full key of one index for the current record ("" when it is not entered).
  std::string CurrentKey(char index) const;

  TNotifyEvent FOnAfterInsert;
  TNotifyEvent FOnAfterDelete;

 protected:
  // The record as read from a position, converted to the current layout.
  struct StoredRecord {
    std::vector<uint8_t> raw;      // the slot as stored
    std::vector<uint8_t> current;  // in the current layout
    bool converted = false;
  };
  int ReadStored(int32_t position, StoredRecord& stored, const char* function);
  // Checks and converts a record read as stored.raw into stored.current.
  int DecodeStored(int32_t position, StoredRecord& stored, const char* function);
  // Makes a decoded record the current record.
  bool TakeStored(int32_t position, StoredRecord stored);
  void SetHeaderForWrite(std::vector<uint8_t>& record) const;
  // Shows and keeps an error in the "Error in Database Operation" text.
  int Fail(std::string_view operation, int code);
  void FailWithText(int code, const std::string& text);
  const std::vector<uint8_t>& InitTemplate();

  bool FForceUpdate = false;
  bool FInternInit = false;
  bool FInConversion = false;
  bool FLastReadConverted = false;
  std::string FCurrentFilterKey;
  TStdDb& FDbOwner;
  int FActualRecordSize = 0;
  int FVariantRecordSize = 0;
  int FStaticRecordSize;
  int FTbPhysRecLen;
  char FTableType;
  int FTBRealRecLen = 0;
  std::string FLastFilterKey;
  int32_t FCurrentRecordPos = 0;
  std::vector<uint8_t> FCurrentRecord;
  std::vector<uint8_t> FLastRecord;
  std::vector<uint8_t> FInitRecord;
  char FFilterIndex = '1';
  char FUniqueIndex = '1';
  bool bTbIsLocked = false;
  std::string FLockedName;
  int nLastError = 0;
  std::string FLastErrorText;
  int32_t FFailedPosition = -1;
  std::string sUniqueResultKey;
  std::string sFilterResultKey;

 private:
  enum class Direction { kForward, kBackward };
  bool StartWalk(std::string_view pattern, char index, Direction direction);
  bool StepWalk(std::string_view pattern, char index, Direction direction);
  int Reseek(Direction direction, storage::KeyEntry* cursor, uint32_t* position);
  int StepKey(Direction direction, storage::KeyEntry* cursor, uint32_t* position);
  bool LoadFound(uint32_t position);
  int GetBatchOneByOne(const std::vector<int32_t>& positions,
                       std::vector<std::vector<uint8_t>>& records);
  // Read-ahead of a walk: the pairs that follow the current one, with their records.
  bool AheadIsCurrent(Direction direction);
  int FillAhead(Direction direction);
  void ReadAheadRecords();
  bool ServeAhead();
  void DropAhead();
  int InsertCurrent();
  int UpdateCurrent();
  int MoveRecord(const StoredRecord& stored, const TRecordKeys& old_keys,
                 const TRecordKeys& new_keys);
  int ReplaceKeys(const TRecordKeys& old_keys, const TRecordKeys& new_keys, int32_t position);
  // Runs a kernel write; when another user changed the record meanwhile, lets go of the hold,
  // asks this user and, on yes, takes it again and writes without the check.
  int WriteAsked(const char* operation, TTreeHold& hold, const std::function<int()>& write);
  void AcceptWritten(int32_t position);

  std::string FTableName;
  uint16_t FVersion;
  bool FWalkActive = false;
  std::string FWalkPattern;  // the full key pattern of the running walk
  storage::KeyEntry FWalkCursor;
  uint32_t FWalkPosition = 0;

  // The next pairs of the walk and their records, read under one hold. They answer the
  // following steps while the database's change mark is the one they were read under;
  // any change (by this process or another) drops them and the walk steps on from the
  // last pair it returned, as a walk without read-ahead would.
  struct AheadPair {
    storage::KeyEntry cursor;
    uint32_t position = 0;
    std::vector<uint8_t> raw;  // empty: read when it is returned (its read failed ahead)
  };
  std::deque<AheadPair> FAhead;
  Direction FAheadDirection = Direction::kForward;
  bool FAheadReachesEnd = false;  // no pair of the walk follows the last one in FAhead
  uint64_t FAheadMark = 0;
  size_t FAheadWindow = 1;  // pairs the next read-ahead reads; grows while nothing changes
};

// A table whose records are one packed layout T: typed access to the current record.
template <class T>
class TTypedTB : public TStdTB {
 public:
  TTypedTB(TStdDb& db, char table_type, uint16_t version, std::string table_name)
      : TStdTB(db, table_type, static_cast<int>(sizeof(T)), version, std::move(table_name)) {}

  T& Rec() { return *reinterpret_cast<T*>(FCurrentRecord.data()); }
  const T& Rec() const { return *reinterpret_cast<const T*>(FCurrentRecord.data()); }

  // A copy of a record of this layout (missing bytes zero).
  static T Of(RecordView record) {
    T value{};
    std::memcpy(&value, record.data(), std::min(record.size(), sizeof(T)));
    return value;
  }
};

}  // namespace korvan::data
