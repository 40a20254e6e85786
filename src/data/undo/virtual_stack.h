#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/undo/undo_items.h"

namespace korvan::data {

// What opening a persistent stack does with a file that is damaged.
enum class TDamagedFile {
  kReport,    // throw UndoJournalError (damaged), leave the file as it is
  kSetAside,  // rename it to "<name>.defekt" and start an empty stack in its place
};

// A damaged journal file that opening moved aside.
struct TSetAsideFile {
  std::string file;       // the journal's name
  std::string set_aside;  // where the damaged bytes are now
  std::string problem;    // what was wrong with them, as UndoJournalError said
  int64_t position = -1;  // the byte where the damage was found
};

// The items of one transaction, oldest first, with its start item.
struct TUndoTransaction {
  TStartItem start;
  std::vector<std::unique_ptr<TCustomUndoRedoItem>> items;
};

// A stack of journal items kept in a file, so that the journal does not grow in memory.
//
// File form: the 16-byte header "KorvUndo", version (32-bit), zero (32-bit); then one
// frame per stack entry: entry kind (1 byte), data length (32-bit), the item's data, and
// the CRC-32 of kind, length and data. Every frame is checked when read, and a persistent
// file is checked whole, frames and items, when it is opened; a damaged or cut file is
// reported with UndoJournalError (damaged, with the byte) and never applied.
//
// A temporary stack lives in a new file "~*.tmp" that only this process may write: the
// file carries a write lock on an open file description for as long as the stack lives,
// and is removed with it. A persistent stack keeps a named file between runs.
class TVirtualStack {
 public:
  // A temporary stack in `directory` ("." when empty).
  explicit TVirtualStack(const std::string& directory = ".");
  // The length of the file of an empty stack (its header).
  static constexpr int64_t kEmptyLength = 16;
  // Tells, once the file's lock is held and before it is read, the length the file must
  // have (a longer file is cut there: the rest belongs to a step that was not
  // finished), or -1 to keep it as it is.
  using TLengthAfterLock = std::function<int64_t()>;

  // A stack in a named file that outlives the process; an existing file is read back
  // and checked. An empty file (as a crash right after creating it leaves) is an empty
  // stack, and a transaction start with nothing after it at the end is dropped. A
  // damaged file is reported or set aside as `damaged` says.
  static std::unique_ptr<TVirtualStack> OpenPersistent(
      const std::string& path, TDamagedFile damaged = TDamagedFile::kReport,
      const TLengthAfterLock& length_after_lock = {});
  // Deletes persistent stacks' files without reading them (damaged ones too) and returns
  // those that existed. When another process has one of them open, UndoJournalError is
  // thrown and none is deleted.
  static std::vector<std::string> RemovePersistent(const std::vector<std::string>& paths);
  ~TVirtualStack();
  TVirtualStack(const TVirtualStack&) = delete;
  TVirtualStack& operator=(const TVirtualStack&) = delete;

  // Removes the "~*.tmp" journal files in `directory` left by processes that died; a
  // file whose owner still runs is kept (its lock tells). Returns the number removed.
  static int RemoveLeftoverFiles(const std::string& directory);

  void Clear();
  // Drops a transaction start with nothing recorded after it; whether one was dropped.
  bool Normalize();
  void Push(const TCustomUndoRedoItem& item);
  // The newest item, removed from the stack; nullptr when the newest entry is a start
  // (which ends the items of a transaction) or the stack is empty.
  std::unique_ptr<TCustomUndoRedoItem> Pop();
  // The newest item, left on the stack; nullptr as for Pop.
  std::unique_ptr<TCustomUndoRedoItem> Peek() const;
  // The kind of the newest entry, without reading it.
  std::optional<TStackEntryKind> PurePeek() const;
  void StartTransaction(const TStartItem& item);
  // Writes the cached newest start item back into the file.
  void UpdateLastStartItem();
  // Replaces the start item of entry `index`.
  void UpdateStartItemAtStackItem(size_t index, const TStartItem& item);
  // The entry index of the newest transaction start, or -1.
  int LastStartTransaction() const;
  // The newest start item (cached), or nullptr when the stack holds none.
  TStartItem* LastStartItem();
  bool Empty() const { return FStartList.empty(); }
  int TransactionCount() const;
  // The captions of the stored transactions, newest first.
  std::vector<std::string> GetTransactions() const;

  // The newest transaction, read and checked whole, left on the stack.
  TUndoTransaction ReadLastTransaction() const;
  // Removes the newest transaction (its start and all its items).
  void DropLastTransaction();

  const std::string& FileName() const { return FFileName; }
  // The length of the file now, and where the newest transaction begins in it (the
  // length when there is none).
  int64_t FileSize() const { return FSize; }
  int64_t LastTransactionPosition() const;
  // Makes what was written durable.
  void Sync();
  // Removes the file of a persistent stack while its lock is still held; the stack is
  // then closed with the object.
  void RemoveFile();
  // The damaged file that opening moved aside, if it did.
  const std::optional<TSetAsideFile>& SetAside() const { return FSetAside; }
  bool Modified() const { return FModified; }
  void SetModified(bool modified) { FModified = modified; }

 private:
  struct Entry {
    TStackEntryKind kind;
    int64_t position;
  };
  struct PersistentTag {};
  TVirtualStack(const std::string& path, TDamagedFile damaged,
                const TLengthAfterLock& length_after_lock, PersistentTag);

  void OpenNamed(const TLengthAfterLock& length_after_lock);
  void OpenLocked();
  void CloseStream();
  void MoveAside(const UndoJournalError& damage);
  void LockOrThrow();
  void WriteHeader();
  void ReadBack();
  static std::vector<uint8_t> MakeFrame(TStackEntryKind kind, const std::vector<uint8_t>& data);
  int64_t AppendFrame(TStackEntryKind kind, const std::vector<uint8_t>& data);
  void MoveBytes(int64_t from, int64_t to, int64_t count);
  std::vector<uint8_t> ReadFrameData(size_t index) const;
  std::unique_ptr<TCustomUndoRedoItem> LoadEntry(size_t index) const;
  TStartItem LoadStart(size_t index) const;
  void CutAt(size_t index);
  void WriteAt(int64_t position, const void* data, size_t size);
  void ReadAt(int64_t position, void* data, size_t size) const;
  [[noreturn]] void Fail(const std::string& problem) const;
  [[noreturn]] void Damaged(const std::string& problem, int64_t position) const;
  std::string DamagedWhat(int64_t position, const char* entry) const;

  int FStream = -1;  // file descriptor
  std::vector<Entry> FStartList;
  bool FModified = false;
  bool FTemporary = true;
  std::string FFileName;
  int64_t FSize = 0;
  std::unique_ptr<TStartItem> FLastStartItem;
  std::optional<TSetAsideFile> FSetAside;
};

}  // namespace korvan::data
