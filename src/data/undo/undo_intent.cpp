#include "data/undo/undo_intent.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "data/undo/test_kill_point.h"

namespace korvan::data {

namespace {

constexpr std::array<char, 8> kMagic = {'K', 'o', 'r', 'v', 'P', 'e', 'n', 'd'};
constexpr uint32_t kFormatVersion = 1;
constexpr size_t kHeaderSize = 16;
constexpr uint8_t kBeginFrame = 0;
constexpr uint8_t kChangeFrame = 1;
constexpr uint8_t kCommitFrame = 2;

uint32_t LoadU32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 |
         uint32_t{bytes[3]} << 24;
}

void WriteI64(TUndoWriter& out, int64_t value) {
  out.WriteU32(static_cast<uint32_t>(static_cast<uint64_t>(value)));
  out.WriteU32(static_cast<uint32_t>(static_cast<uint64_t>(value) >> 32));
}

int64_t ReadLength(TUndoReader& in) {
  const uint64_t low = in.ReadU32();
  const uint64_t high = in.ReadU32();
  const auto value = static_cast<int64_t>(low | high << 32);
  if (value < 0) in.Fail("negative file length");
  return value;
}

std::vector<uint8_t> ReadWhole(const std::string& path, bool* exists) {
  std::vector<uint8_t> bytes;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  *exists = fd >= 0;
  if (fd < 0) {
    if (errno == ENOENT) return bytes;
    throw UndoJournalError("Rückgängig-Journal \"" + path +
                           "\" kann nicht gelesen werden: " + std::strerror(errno));
  }
  std::array<uint8_t, 65536> piece{};
  for (;;) {
    const ssize_t got = read(fd, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      const std::string problem = std::strerror(errno);
      close(fd);
      throw UndoJournalError("Rückgängig-Journal \"" + path +
                             "\" kann nicht gelesen werden: " + problem);
    }
    if (got == 0) break;
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + got);
  }
  close(fd);
  return bytes;
}

// The data of the frame at `position`, or nothing when the frame is cut short or its
// checksum is wrong (the process died while writing it).
std::optional<std::span<const uint8_t>> FrameAt(const std::vector<uint8_t>& bytes, size_t position,
                                                uint8_t* kind) {
  if (bytes.size() - position < kJournalFrameHead + kJournalFrameTail) return std::nullopt;
  const size_t length = LoadU32(bytes.data() + position + 1);
  if (length > bytes.size() - position - kJournalFrameHead - kJournalFrameTail) {
    return std::nullopt;
  }
  const size_t end = position + kJournalFrameHead + length;
  if (Crc32({bytes.data() + position, kJournalFrameHead + length}) != LoadU32(bytes.data() + end)) {
    return std::nullopt;
  }
  *kind = bytes[position];
  return std::span<const uint8_t>(bytes.data() + position + kJournalFrameHead, length);
}

}  // namespace

TUndoIntent::~TUndoIntent() {
  Close();
}

void TUndoIntent::Close() {
  if (FStream >= 0) close(FStream);
  FStream = -1;
}

void TUndoIntent::Fail(const std::string& problem) const {
  throw UndoJournalError("Rückgängig-Journal \"" + FFileName + "\" " + problem + ": " +
                         std::strerror(errno));
}

std::optional<TUnfinishedStep> TUndoIntent::Read(const std::string& path) {
  bool exists = false;
  const std::vector<uint8_t> bytes = ReadWhole(path, &exists);
  // A file cut inside its header was being created: the step had not begun.
  if (!exists || bytes.size() < kHeaderSize) return std::nullopt;
  if (std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) != 0 ||
      LoadU32(bytes.data() + 8) != kFormatVersion) {
    throw UndoJournalError("Rückgängig-Journal \"" + path +
                               "\" ist beschädigt: die Datei ist keine Absichtsdatei (Byte 0)",
                           UndoJournalError::Reason::kDamaged, 0);
  }
  std::optional<TUnfinishedStep> step;
  size_t position = kHeaderSize;
  uint8_t kind = 0;
  while (const auto data = FrameAt(bytes, position, &kind)) {
    const std::string what = "Rückgängig-Journal \"" + path +
                             "\" ist beschädigt: Eintrag bei Byte " + std::to_string(position);
    TUndoReader in(*data, what, static_cast<int64_t>(position + kJournalFrameHead));
    if (kind == kBeginFrame && !step) {
      step.emplace();
      const uint8_t operation = in.ReadU8();
      if (operation > static_cast<uint8_t>(TIntentOperation::kRedo)) in.Fail("unknown operation");
      step->operation = static_cast<TIntentOperation>(operation);
      step->undo_length = ReadLength(in);
      step->redo_length = ReadLength(in);
    } else if (kind == kChangeFrame && step && !step->committed) {
      auto item = LoadUndoRedoItem(TStackEntryKind::kRecord, in);
      step->changes.emplace_back(static_cast<TDBUndoRedoItem*>(item.release()));
    } else if (kind == kCommitFrame && step && !step->committed) {
      step->undo_final = ReadLength(in);
      step->redo_final = ReadLength(in);
      step->committed = true;
    } else {
      in.Fail("frame of kind " + std::to_string(kind) + " out of order");
    }
    in.ExpectEnd();
    position += kJournalFrameHead + data->size() + kJournalFrameTail;
  }
  return step;
}

void TUndoIntent::Append(uint8_t kind, const std::vector<uint8_t>& data) {
  const std::vector<uint8_t> frame = MakeJournalFrame(kind, data);
  TestKillPoint();
  size_t done = 0;
  while (done < frame.size()) {
    const ssize_t wrote = pwrite(FStream, frame.data() + done, frame.size() - done,
                                 FSize + static_cast<int64_t>(done));
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) Fail("kann nicht geschrieben werden");
    done += static_cast<size_t>(wrote);
  }
  FSize += static_cast<int64_t>(frame.size());
}

void TUndoIntent::Begin(TIntentOperation operation, int64_t undo_length, int64_t redo_length) {
  Close();
  TestKillPoint();
  FStream = open(FFileName.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (FStream < 0) Fail("kann nicht angelegt werden");
  FSize = 0;
  std::array<uint8_t, kHeaderSize> header{};
  std::memcpy(header.data(), kMagic.data(), kMagic.size());
  header[8] = static_cast<uint8_t>(kFormatVersion);
  TUndoWriter out;
  out.WriteU8(static_cast<uint8_t>(operation));
  WriteI64(out, undo_length);
  WriteI64(out, redo_length);
  // Header and first frame in one write: a file that holds a header holds the step's
  // beginning, unless that write was cut.
  std::vector<uint8_t> start(header.begin(), header.end());
  const std::vector<uint8_t> frame = MakeJournalFrame(kBeginFrame, out.Bytes());
  start.insert(start.end(), frame.begin(), frame.end());
  size_t done = 0;
  while (done < start.size()) {
    const ssize_t wrote =
        pwrite(FStream, start.data() + done, start.size() - done, static_cast<int64_t>(done));
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) Fail("kann nicht geschrieben werden");
    done += static_cast<size_t>(wrote);
  }
  FSize = static_cast<int64_t>(start.size());
}

void TUndoIntent::AddChange(const TDBUndoRedoItem& change) {
  TUndoWriter out;
  change.SaveToStream(out);
  Append(kChangeFrame, out.Bytes());
}

void TUndoIntent::Sync() {
  if (fdatasync(FStream) != 0) Fail("kann nicht auf die Platte geschrieben werden");
}

void TUndoIntent::Commit(int64_t undo_final, int64_t redo_final) {
  TUndoWriter out;
  WriteI64(out, undo_final);
  WriteI64(out, redo_final);
  Append(kCommitFrame, out.Bytes());
  Sync();
}

void TUndoIntent::Finish() {
  TestKillPoint();
  if (unlink(FFileName.c_str()) != 0 && errno != ENOENT) Fail("kann nicht gelöscht werden");
  Close();
}

}  // namespace korvan::data
