#include "data/undo/virtual_stack.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "data/undo/test_kill_point.h"

namespace korvan::data {

namespace {

constexpr std::array<char, 8> kMagic = {'K', 'o', 'r', 'v', 'U', 'n', 'd', 'o'};
constexpr uint32_t kFormatVersion = 1;
constexpr int64_t kHeaderSize = TVirtualStack::kEmptyLength;
constexpr int64_t kFrameHead = 5;  // kind and data length
constexpr int64_t kFrameTail = 4;  // CRC-32
constexpr const char* kSetAsideSuffix = ".defekt";

std::string ErrnoText() {
  return std::strerror(errno);
}

// A write lock on the whole file, held by this open file description: other processes
// (and other descriptions in this one) cannot take it while the stack lives.
bool TryLockWhole(int fd) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = 0;
  lock.l_len = 0;
  return fcntl(fd, F_OFD_SETLK, &lock) == 0;
}

uint32_t LoadU32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 |
         uint32_t{bytes[3]} << 24;
}

void StoreU32(uint8_t* bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}

bool IsJournalName(const std::string& name) {
  return name.size() >= 5 && name.front() == '~' && name.ends_with(".tmp");
}

}  // namespace

TVirtualStack::TVirtualStack(const std::string& directory) {
  std::string pattern = (directory.empty() ? std::string(".") : directory) + "/~XXXXXX.tmp";
  // mkstemps creates the file new (O_EXCL) under a name no other file has.
  FStream = mkstemps(pattern.data(), 4);
  if (FStream < 0) {
    throw UndoJournalError("Rückgängig-Journal kann in \"" + directory +
                           "\" nicht angelegt werden: " + ErrnoText());
  }
  FFileName = pattern;
  fcntl(FStream, F_SETFD, FD_CLOEXEC);
  try {
    LockOrThrow();
    WriteHeader();
  } catch (...) {
    unlink(FFileName.c_str());
    close(FStream);
    throw;
  }
}

TVirtualStack::TVirtualStack(const std::string& path, TDamagedFile damaged,
                             const TLengthAfterLock& length_after_lock, PersistentTag)
    : FTemporary(false) {
  FFileName = path;
  try {
    OpenNamed(length_after_lock);
  } catch (const UndoJournalError& error) {
    if (!error.Damaged() || damaged != TDamagedFile::kSetAside) {
      CloseStream();
      throw;
    }
    MoveAside(error);
    CloseStream();
    try {
      OpenNamed({});
    } catch (...) {
      CloseStream();
      throw;
    }
  }
}

void TVirtualStack::CloseStream() {
  if (FStream >= 0) close(FStream);
  FStream = -1;
}

// Opens the named file and takes its lock. The file may have been removed or replaced by
// its holder while this process waited to open it (an empty journal is removed when it
// is closed); the lock then guards a file nobody else will see, so it is opened again.
void TVirtualStack::OpenLocked() {
  for (int attempt = 0;; ++attempt) {
    FStream = open(FFileName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (FStream < 0) Fail("kann nicht geöffnet werden: " + ErrnoText());
    LockOrThrow();
    struct stat held {};
    struct stat named {};
    if (fstat(FStream, &held) != 0) Fail("kann nicht gelesen werden: " + ErrnoText());
    if (stat(FFileName.c_str(), &named) == 0 && named.st_ino == held.st_ino &&
        named.st_dev == held.st_dev) {
      return;
    }
    if (attempt == 10) Fail("wird ständig ersetzt");
    CloseStream();
  }
}

// Opens the named file, takes its lock and reads it back; an empty or new file gets the
// header. On failure the descriptor is left for the caller to close.
void TVirtualStack::OpenNamed(const TLengthAfterLock& length_after_lock) {
  FStartList.clear();
  FLastStartItem.reset();
  FSize = 0;
  OpenLocked();
  struct stat info {};
  if (fstat(FStream, &info) != 0) Fail("kann nicht gelesen werden: " + ErrnoText());
  if (!S_ISREG(info.st_mode)) Fail("ist keine gewöhnliche Datei");
  FSize = info.st_size;
  const int64_t valid = length_after_lock ? length_after_lock() : -1;
  if (valid >= 0 && FSize > valid) {
    TestKillPoint();
    if (ftruncate(FStream, valid) != 0) Fail("kann nicht gekürzt werden: " + ErrnoText());
    FSize = valid;
  }
  if (FSize == 0) {
    WriteHeader();
    return;
  }
  ReadBack();
  // Left by a process that died before it recorded anything in its step.
  if (!FStartList.empty() && FStartList.back().kind == TStackEntryKind::kStart) {
    CutAt(FStartList.size() - 1);
  }
}

// Renamed while this process holds the lock, so nobody else reads or writes the damaged
// bytes in the meantime; an older damaged copy of the same name is replaced.
void TVirtualStack::MoveAside(const UndoJournalError& damage) {
  const std::string target = FFileName + kSetAsideSuffix;
  if (rename(FFileName.c_str(), target.c_str()) != 0) {
    Fail(std::string("ist beschädigt und kann nicht nach \"") + target +
         "\" umbenannt werden: " + ErrnoText() + " (" + damage.what() + ")");
  }
  FSetAside = TSetAsideFile{FFileName, target, damage.what(), damage.Position()};
}

std::unique_ptr<TVirtualStack> TVirtualStack::OpenPersistent(
    const std::string& path, TDamagedFile damaged, const TLengthAfterLock& length_after_lock) {
  return std::unique_ptr<TVirtualStack>(
      new TVirtualStack(path, damaged, length_after_lock, PersistentTag{}));
}

int64_t TVirtualStack::LastTransactionPosition() const {
  const int index = LastStartTransaction();
  return index < 0 ? FSize : FStartList[static_cast<size_t>(index)].position;
}

void TVirtualStack::Sync() {
  if (fdatasync(FStream) != 0) Fail("kann nicht auf die Platte geschrieben werden: " + ErrnoText());
}

void TVirtualStack::RemoveFile() {
  TestKillPoint();
  if (unlink(FFileName.c_str()) != 0 && errno != ENOENT) {
    Fail("kann nicht gelöscht werden: " + ErrnoText());
  }
}

std::vector<std::string> TVirtualStack::RemovePersistent(const std::vector<std::string>& paths) {
  std::vector<int> held;
  std::vector<std::string> existing;
  const auto release = [&] {
    for (int fd : held) close(fd);
  };
  for (const std::string& path : paths) {
    const int fd = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0 && errno == ENOENT) continue;
    if (fd < 0) {
      release();
      throw UndoJournalError("Rückgängig-Journal \"" + path +
                             "\" kann nicht geöffnet werden: " + ErrnoText());
    }
    held.push_back(fd);
    existing.push_back(path);
    if (!TryLockWhole(fd)) {
      release();
      throw UndoJournalError(
          "Rückgängig-Journal \"" + path + "\" wird gerade von einem anderen Programm verwendet",
          UndoJournalError::Reason::kInUse);
    }
  }
  // All are locked by this call now: nobody can open them until they are gone.
  std::string failed;
  for (const std::string& path : paths) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) failed = path + "\" (" + ErrnoText() + ")";
  }
  release();
  if (!failed.empty()) {
    throw UndoJournalError("Rückgängig-Journal \"" + failed + " kann nicht gelöscht werden");
  }
  return existing;
}

TVirtualStack::~TVirtualStack() {
  if (FTemporary) unlink(FFileName.c_str());
  CloseStream();
}

int TVirtualStack::RemoveLeftoverFiles(const std::string& directory) {
  int removed = 0;
  std::error_code error;
  const std::filesystem::path dir = directory.empty() ? "." : directory;
  for (const auto& entry : std::filesystem::directory_iterator(dir, error)) {
    if (!IsJournalName(entry.path().filename().string())) continue;
    if (!entry.is_regular_file(error)) continue;
    const int fd = open(entry.path().c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0) continue;
    // A live journal holds its lock; only a file nobody holds is a leftover. Files of
    // other programs that happen to match the pattern are left alone.
    if (TryLockWhole(fd)) {
      std::array<char, 8> magic{};
      const ssize_t got = pread(fd, magic.data(), magic.size(), 0);
      if (got == 0 || (got == static_cast<ssize_t>(magic.size()) && magic == kMagic)) {
        if (unlink(entry.path().c_str()) == 0) ++removed;
      }
    }
    close(fd);
  }
  return removed;
}

void TVirtualStack::Fail(const std::string& problem) const {
  throw UndoJournalError("Rückgängig-Journal \"" + FFileName + "\" " + problem);
}

void TVirtualStack::Damaged(const std::string& problem, int64_t position) const {
  throw UndoJournalError("Rückgängig-Journal \"" + FFileName + "\" ist beschädigt: " + problem +
                             " (Byte " + std::to_string(position) + ")",
                         UndoJournalError::Reason::kDamaged, position);
}

// How the reader of an item names it when its data is damaged.
std::string TVirtualStack::DamagedWhat(int64_t position, const char* entry) const {
  return "Rückgängig-Journal \"" + FFileName + "\" ist beschädigt: " + entry + " bei Byte " +
         std::to_string(position);
}

void TVirtualStack::LockOrThrow() {
  if (!TryLockWhole(FStream)) {
    throw UndoJournalError(
        "Rückgängig-Journal \"" + FFileName + "\" wird gerade von einem anderen Programm verwendet",
        UndoJournalError::Reason::kInUse);
  }
}

void TVirtualStack::WriteHeader() {
  std::array<uint8_t, kHeaderSize> header{};
  std::memcpy(header.data(), kMagic.data(), kMagic.size());
  StoreU32(header.data() + 8, kFormatVersion);
  TestKillPoint();
  if (ftruncate(FStream, 0) != 0) Fail("kann nicht geleert werden: " + ErrnoText());
  FSize = 0;
  WriteAt(0, header.data(), header.size());
  FSize = kHeaderSize;
}

void TVirtualStack::WriteAt(int64_t position, const void* data, size_t size) {
  TestKillPoint();
  const auto* bytes = static_cast<const uint8_t*>(data);
  size_t done = 0;
  while (done < size) {
    const ssize_t wrote =
        pwrite(FStream, bytes + done, size - done, position + static_cast<int64_t>(done));
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) Fail("kann nicht geschrieben werden: " + ErrnoText());
    done += static_cast<size_t>(wrote);
  }
}

void TVirtualStack::ReadAt(int64_t position, void* data, size_t size) const {
  auto* bytes = static_cast<uint8_t*>(data);
  size_t done = 0;
  while (done < size) {
    const ssize_t got =
        pread(FStream, bytes + done, size - done, position + static_cast<int64_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail("kann nicht gelesen werden: " + ErrnoText());
    if (got == 0) Damaged("die Datei endet zu früh", position + static_cast<int64_t>(done));
    done += static_cast<size_t>(got);
  }
}

// Rebuilds the entry list of an existing file, checking every frame and every item, so
// that damage is found on opening, not halfway through taking a step back.
void TVirtualStack::ReadBack() {
  if (FSize < kHeaderSize) Damaged("die Datei ist zu kurz für ihren Kopf", FSize);
  std::array<uint8_t, kHeaderSize> header{};
  ReadAt(0, header.data(), header.size());
  if (std::memcmp(header.data(), kMagic.data(), kMagic.size()) != 0) {
    Damaged("die Datei ist kein Rückgängig-Journal (Kennung fehlt)", 0);
  }
  if (LoadU32(header.data() + 8) != kFormatVersion) {
    Damaged("unbekannte Formatversion " + std::to_string(LoadU32(header.data() + 8)), 8);
  }
  if (LoadU32(header.data() + 12) != 0) Damaged("der Dateikopf ist beschädigt", 12);
  int64_t position = kHeaderSize;
  while (position < FSize) {
    if (FSize - position < kFrameHead + kFrameTail) {
      Damaged("der Eintrag ist abgeschnitten", position);
    }
    std::array<uint8_t, kFrameHead> head{};
    ReadAt(position, head.data(), head.size());
    if (head[0] > static_cast<uint8_t>(TStackEntryKind::kCData)) {
      Damaged("Eintrag unbekannter Art " + std::to_string(head[0]), position);
    }
    if (FStartList.empty() && head[0] != static_cast<uint8_t>(TStackEntryKind::kStart)) {
      Damaged("Änderungen vor dem Beginn des ersten Schritts", position);
    }
    const int64_t length = LoadU32(head.data() + 1);
    if (length > FSize - position - kFrameHead - kFrameTail) {
      Damaged("die Länge des Eintrags (" + std::to_string(length) +
                  " Bytes) reicht über das Dateiende hinaus",
              position + 1);
    }
    FStartList.push_back({static_cast<TStackEntryKind>(head[0]), position});
    position += kFrameHead + length + kFrameTail;
  }
  for (size_t i = 0; i < FStartList.size(); ++i) {
    if (FStartList[i].kind == TStackEntryKind::kStart) {
      LoadStart(i);
    } else {
      LoadEntry(i);
    }
  }
}

std::vector<uint8_t> TVirtualStack::MakeFrame(TStackEntryKind kind,
                                              const std::vector<uint8_t>& data) {
  return MakeJournalFrame(static_cast<uint8_t>(kind), data);
}

int64_t TVirtualStack::AppendFrame(TStackEntryKind kind, const std::vector<uint8_t>& data) {
  const std::vector<uint8_t> frame = MakeFrame(kind, data);
  const int64_t position = FSize;
  WriteAt(position, frame.data(), frame.size());
  FSize += static_cast<int64_t>(frame.size());
  FStartList.push_back({kind, position});
  FModified = true;
  return position;
}

std::vector<uint8_t> TVirtualStack::ReadFrameData(size_t index) const {
  const Entry& entry = FStartList[index];
  const int64_t end = index + 1 < FStartList.size() ? FStartList[index + 1].position : FSize;
  if (end - entry.position < kFrameHead + kFrameTail) {
    Damaged("der Eintrag ist abgeschnitten", entry.position);
  }
  std::vector<uint8_t> frame(static_cast<size_t>(end - entry.position));
  ReadAt(entry.position, frame.data(), frame.size());
  const size_t length = LoadU32(frame.data() + 1);
  if (frame[0] != static_cast<uint8_t>(entry.kind) ||
      length != frame.size() - kFrameHead - kFrameTail) {
    Damaged("der Rahmen des Eintrags ist beschädigt", entry.position);
  }
  const uint32_t crc = Crc32({frame.data(), kFrameHead + length});
  if (crc != LoadU32(frame.data() + kFrameHead + length)) {
    Damaged("Prüfsummenfehler im Eintrag", entry.position);
  }
  return {frame.begin() + kFrameHead, frame.begin() + kFrameHead + static_cast<int64_t>(length)};
}

std::unique_ptr<TCustomUndoRedoItem> TVirtualStack::LoadEntry(size_t index) const {
  const std::vector<uint8_t> data = ReadFrameData(index);
  const int64_t position = FStartList[index].position;
  TUndoReader in(data, DamagedWhat(position, "Eintrag"), position + kFrameHead);
  return LoadUndoRedoItem(FStartList[index].kind, in);
}

TStartItem TVirtualStack::LoadStart(size_t index) const {
  const std::vector<uint8_t> data = ReadFrameData(index);
  const int64_t position = FStartList[index].position;
  TUndoReader in(data, DamagedWhat(position, "Beginn eines Schritts"), position + kFrameHead);
  TStartItem start;
  start.LoadFromStream(in);
  in.ExpectEnd();
  return start;
}

void TVirtualStack::CutAt(size_t index) {
  const int64_t position = FStartList[index].position;
  TestKillPoint();
  if (ftruncate(FStream, position) != 0) Fail("kann nicht gekürzt werden: " + ErrnoText());
  FSize = position;
  FStartList.resize(index);
  FModified = true;
  if (LastStartTransaction() < 0) FLastStartItem.reset();
}

void TVirtualStack::Clear() {
  WriteHeader();
  FStartList.clear();
  FLastStartItem.reset();
  FModified = true;
}

bool TVirtualStack::Normalize() {
  if (FStartList.empty() || FStartList.back().kind != TStackEntryKind::kStart) return false;
  CutAt(FStartList.size() - 1);
  FLastStartItem.reset();
  return true;
}

void TVirtualStack::Push(const TCustomUndoRedoItem& item) {
  TUndoWriter out;
  item.SaveToStream(out);
  AppendFrame(item.EntryKind(), out.Bytes());
}

std::optional<TStackEntryKind> TVirtualStack::PurePeek() const {
  if (FStartList.empty()) return std::nullopt;
  return FStartList.back().kind;
}

std::unique_ptr<TCustomUndoRedoItem> TVirtualStack::Peek() const {
  if (PurePeek().value_or(TStackEntryKind::kStart) == TStackEntryKind::kStart) return nullptr;
  return LoadEntry(FStartList.size() - 1);
}

std::unique_ptr<TCustomUndoRedoItem> TVirtualStack::Pop() {
  std::unique_ptr<TCustomUndoRedoItem> item = Peek();
  if (item) CutAt(FStartList.size() - 1);
  return item;
}

void TVirtualStack::StartTransaction(const TStartItem& item) {
  FLastStartItem.reset();
  // A start with nothing after it is reused rather than left as an empty transaction.
  if (!FStartList.empty() && FStartList.back().kind == TStackEntryKind::kStart) {
    CutAt(FStartList.size() - 1);
  }
  TUndoWriter out;
  item.SaveToStream(out);
  AppendFrame(TStackEntryKind::kStart, out.Bytes());
  FLastStartItem = std::make_unique<TStartItem>(item);
}

void TVirtualStack::UpdateLastStartItem() {
  const int index = LastStartTransaction();
  if (index < 0 || !FLastStartItem) return;
  const TStartItem copy = *FLastStartItem;
  UpdateStartItemAtStackItem(static_cast<size_t>(index), copy);
}

// The start item may change size, so the entries after it are moved along, in pieces,
// so that a large transaction is not held in memory.
void TVirtualStack::UpdateStartItemAtStackItem(size_t index, const TStartItem& item) {
  if (index >= FStartList.size() || FStartList[index].kind != TStackEntryKind::kStart) {
    Fail("hat an Eintrag " + std::to_string(index) + " keinen Beginn eines Schritts");
  }
  const int64_t start = FStartList[index].position;
  const int64_t tail_start = index + 1 < FStartList.size() ? FStartList[index + 1].position : FSize;
  const int64_t tail_size = FSize - tail_start;
  TUndoWriter out;
  item.SaveToStream(out);
  const std::vector<uint8_t> frame = MakeFrame(TStackEntryKind::kStart, out.Bytes());
  const int64_t new_tail_start = start + static_cast<int64_t>(frame.size());
  MoveBytes(tail_start, new_tail_start, tail_size);
  WriteAt(start, frame.data(), frame.size());
  FSize = new_tail_start + tail_size;
  if (ftruncate(FStream, FSize) != 0) Fail("kann nicht gekürzt werden: " + ErrnoText());
  for (size_t i = index + 1; i < FStartList.size(); ++i) {
    FStartList[i].position += new_tail_start - tail_start;
  }
  FModified = true;
  if (static_cast<int>(index) == LastStartTransaction()) {
    FLastStartItem = std::make_unique<TStartItem>(item);
  }
}

void TVirtualStack::MoveBytes(int64_t from, int64_t to, int64_t count) {
  if (from == to || count == 0) return;
  constexpr int64_t kPiece = 64 * 1024;
  std::vector<uint8_t> piece(static_cast<size_t>(std::min(kPiece, count)));
  // Moving towards the end starts with the last piece, so nothing is overwritten unread.
  const bool backwards = to > from;
  for (int64_t done = 0; done < count;) {
    const int64_t size = std::min(kPiece, count - done);
    const int64_t offset = backwards ? count - done - size : done;
    ReadAt(from + offset, piece.data(), static_cast<size_t>(size));
    WriteAt(to + offset, piece.data(), static_cast<size_t>(size));
    done += size;
  }
}

int TVirtualStack::LastStartTransaction() const {
  for (size_t i = FStartList.size(); i-- > 0;) {
    if (FStartList[i].kind == TStackEntryKind::kStart) return static_cast<int>(i);
  }
  return -1;
}

TStartItem* TVirtualStack::LastStartItem() {
  const int index = LastStartTransaction();
  if (index < 0) return nullptr;
  if (!FLastStartItem)
    FLastStartItem = std::make_unique<TStartItem>(LoadStart(static_cast<size_t>(index)));
  return FLastStartItem.get();
}

int TVirtualStack::TransactionCount() const {
  int count = 0;
  for (const Entry& entry : FStartList) count += entry.kind == TStackEntryKind::kStart ? 1 : 0;
  return count;
}

std::vector<std::string> TVirtualStack::GetTransactions() const {
  std::vector<std::string> captions;
  for (size_t i = FStartList.size(); i-- > 0;) {
    if (FStartList[i].kind == TStackEntryKind::kStart) captions.push_back(LoadStart(i).Caption());
  }
  return captions;
}

TUndoTransaction TVirtualStack::ReadLastTransaction() const {
  const int index = LastStartTransaction();
  if (index < 0) Fail("enthält keinen Schritt");
  TUndoTransaction transaction;
  transaction.start = LoadStart(static_cast<size_t>(index));
  for (size_t i = static_cast<size_t>(index) + 1; i < FStartList.size(); ++i) {
    transaction.items.push_back(LoadEntry(i));
  }
  return transaction;
}

void TVirtualStack::DropLastTransaction() {
  const int index = LastStartTransaction();
  if (index >= 0) CutAt(static_cast<size_t>(index));
  FLastStartItem.reset();
}

}  // namespace korvan::data
