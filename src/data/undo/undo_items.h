#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/tables/table_change_journal.h"
#include "data/undo/undo_stream.h"

namespace korvan::data {

// Result codes of the journal; the restorers may also return kernel codes.
inline constexpr int kUndoOk = 0;
inline constexpr int kUndoNothingToDo = -1;    // the stack holds no transaction
inline constexpr int kUndoNoTarget = -2;       // nobody to write records or rows back
inline constexpr int kUndoConflict = -3;       // the stored data changed meanwhile
inline constexpr int kUndoDamaged = -4;        // the journal cannot be read
inline constexpr int kUndoInTransaction = -5;  // a transaction is still open
inline constexpr int kUndoBadImage = -6;       // an image that does not fit its table
inline constexpr int kUndoRowMismatch = -7;    // a list's rows are not as the journal left them
inline constexpr int kUndoListAmbiguous = -8;  // several open lists carry the component id

// Whether an item takes a change back (undo) or makes it again (redo).
enum class TUndoRedoItemKind : uint8_t { ikUndo = 0, ikRedo = 1 };

// The kind of user action a transaction records.
enum class TOperationKind : uint8_t {
  okNone = 0,
  okEdit = 1,
  okInsert = 2,
  okDelete = 3,
  okMove = 4,
  okCopy = 5,
  okPaste = 6,
  okImport = 7,
  okCalculate = 8,
  okOther = 9,
};
inline constexpr uint8_t kLastOperationKind = 9;

// The kinds of stack entries, as stored in the journal.
enum class TStackEntryKind : uint8_t { kStart = 0, kRecord = 1, kCData = 2 };

// How many records one transaction inserted, updated and deleted in one table.
struct TCounterItem {
  int32_t FInsert = 0;
  int32_t FUpdate = 0;
  int32_t FDelete = 0;
  void SaveToStream(TUndoWriter& out) const;
  void LoadFromStream(TUndoReader& in);
  bool operator==(const TCounterItem&) const = default;
};

// The counters of one table within a transaction.
struct TTableCounter {
  char db_type = 0;
  char table_type = 0;
  TCounterItem counters;
  bool operator==(const TTableCounter&) const = default;
};

enum class TRecordChange { kInsert, kUpdate, kDelete };

// The start of a transaction: who started it, what the user did, and how many records
// of each table it changed.
class TStartItem {
 public:
  TStartItem() = default;
  TStartItem(int32_t id, TOperationKind operation, std::string text)
      : FID(id), FOperation(operation), FText(std::move(text)) {}

  const std::string& Caption() const { return FText; }
  TOperationKind Action() const { return FOperation; }
  int32_t Modul() const { return FID; }
  int32_t Tag() const { return FTag; }
  bool ReloadAll() const { return FReloadAll; }
  void SetModul(int32_t id) { FID = id; }
  void SetTag(int32_t tag) { FTag = tag; }
  void SetReloadAll(bool reload) { FReloadAll = reload; }

  void ClearCounters() { FCounters.clear(); }
  void AddCounterInfo(char db_type, char table_type, TRecordChange change);
  const std::vector<TTableCounter>& GetCounterItems() const { return FCounters; }
  void SetCounterItems(std::vector<TTableCounter> counters) { FCounters = std::move(counters); }
  void Assign(const TStartItem& other) { *this = other; }

  void SaveToStream(TUndoWriter& out) const;
  void LoadFromStream(TUndoReader& in);
  bool operator==(const TStartItem&) const = default;

 private:
  int32_t FID = 0;
  int32_t FTag = 0;
  std::vector<TTableCounter> FCounters;
  TOperationKind FOperation = TOperationKind::okNone;
  std::string FText;
  bool FReloadAll = false;
};

// Where items put their effect: the tables and the rows of data components.
class TCDataRowRestorer;
struct TUndoTargets {
  RecordRestorer* records = nullptr;
  TCDataRowRestorer* rows = nullptr;
};

// The base of all recorded changes.
class TCustomUndoRedoItem {
 public:
  virtual ~TCustomUndoRedoItem() = default;
  TUndoRedoItemKind Kind() const { return FKind; }
  virtual TStackEntryKind EntryKind() const = 0;
  virtual std::unique_ptr<TCustomUndoRedoItem> Clone() const = 0;
  // Writes the item's effect in its current direction; 0 or a code with `error` set.
  // On success the item's kind is turned around, so that applying it again takes the
  // effect back.
  int Reverse(const TUndoTargets& targets, std::string& error);
  void SaveToStream(TUndoWriter& out) const;
  void LoadFromStream(TUndoReader& in);

 protected:
  virtual int Apply(const TUndoTargets& targets, std::string& error) = 0;
  virtual void SaveData(TUndoWriter& out) const = 0;
  virtual void LoadData(TUndoReader& in) = 0;

  TUndoRedoItemKind FKind = TUndoRedoItemKind::ikUndo;
};

// One record change: the record's bytes before and after it. An empty before-image
// means the record was inserted, an empty after-image that it was deleted.
class TDBUndoRedoItem : public TCustomUndoRedoItem {
 public:
  TDBUndoRedoItem() = default;
  TDBUndoRedoItem(const TableTarget& table, JournalImage before, JournalImage after);

  TStackEntryKind EntryKind() const override { return TStackEntryKind::kRecord; }
  std::unique_ptr<TCustomUndoRedoItem> Clone() const override;
  TableTarget Target() const { return {FDBFile, FDBType, FTBType, FStaticLen}; }
  const std::vector<uint8_t>& Before() const { return FBeforeData; }
  const std::vector<uint8_t>& After() const { return FAfterData; }

 protected:
  int Apply(const TUndoTargets& targets, std::string& error) override;
  void SaveData(TUndoWriter& out) const override;
  void LoadData(TUndoReader& in) override;

 private:
  void CheckImage(const TUndoReader& in, const std::vector<uint8_t>& image) const;

  std::string FDBFile;
  std::vector<uint8_t> FAfterData;
  std::vector<uint8_t> FBeforeData;
  char FTBType = 0;
  char FDBType = 0;
  int32_t FStaticLen = 0;
};

// How the rows of data components are moved back and restored; TCDataRegistry
// implements it for the open lists. Rows are numbered from 1 as they stand when the call
// is made; `row` of RestoreRow is the number the row gets.
class TCDataRowRestorer {
 public:
  virtual ~TCDataRowRestorer() = default;
  virtual int MoveRow(int32_t cdata_id, int32_t from_row, int32_t to_row, std::string& error) = 0;
  virtual int RemoveRow(int32_t cdata_id, const std::string& key, int32_t row,
                        std::string& error) = 0;
  virtual int RestoreRow(int32_t cdata_id, const std::string& key, int32_t row,
                         std::string& error) = 0;
};

struct TCDataMoveItem {
  int32_t SourceRow = 0;
  int32_t TargetRow = 0;
};
struct TCDataDeleteItem {
  std::string SourceKey;
  int32_t SourceRow = 0;
};
// A row that appeared: pasted, copied in or given its key by an edit.
struct TCDataInsertItem {
  std::string TargetKey;
  int32_t TargetRow = 0;
};
struct TCDataCustomItem {
  enum class Kind : uint8_t { kMove = 1, kDelete = 2, kInsert = 3 } kind = Kind::kMove;
  TCDataMoveItem move;
  TCDataDeleteItem deleted;
  TCDataInsertItem inserted;
};

// Changes to the rows of one data component: rows moved, removed and added, in the order
// they happened, each numbered as the rows stood at that moment.
class TCDataUndoRedoItem : public TCustomUndoRedoItem {
 public:
  TCDataUndoRedoItem() = default;
  explicit TCDataUndoRedoItem(int32_t cdata_id) : FCDataId(cdata_id) {}

  TStackEntryKind EntryKind() const override { return TStackEntryKind::kCData; }
  std::unique_ptr<TCustomUndoRedoItem> Clone() const override;
  void AddMove(int32_t source_row, int32_t target_row);
  void AddDelete(std::string source_key, int32_t source_row);
  void AddInsert(std::string target_key, int32_t target_row);
  int32_t CDataId() const { return FCDataId; }
  const std::vector<TCDataCustomItem>& Infos() const { return FCDataInfos; }

 protected:
  int Apply(const TUndoTargets& targets, std::string& error) override;
  void SaveData(TUndoWriter& out) const override;
  void LoadData(TUndoReader& in) override;

 private:
  int ApplyOne(TCDataRowRestorer& rows, const TCDataCustomItem& info, bool backwards,
               std::string& error) const;

  int32_t FCDataId = 0;
  std::vector<TCDataCustomItem> FCDataInfos;
};

// An item of the given stack entry kind with its data read from `in`.
std::unique_ptr<TCustomUndoRedoItem> LoadUndoRedoItem(TStackEntryKind kind, TUndoReader& in);

}  // namespace korvan::data
