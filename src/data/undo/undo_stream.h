#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace korvan::data {

// A journal file or item that cannot be read or written: the message names the file or
// the item and what was wrong, in words for the user.
class UndoJournalError : public std::runtime_error {
 public:
  // Damaged: the bytes are not a journal this program wrote (cut, scrambled, foreign);
  // in use: another process holds the file; failed: the system refused a read or write.
  enum class Reason { kDamaged, kInUse, kFailed };

  explicit UndoJournalError(const std::string& message, Reason reason = Reason::kFailed,
                            int64_t position = -1)
      : std::runtime_error(message), reason_(reason), position_(position) {}
  Reason reason() const { return reason_; }
  bool Damaged() const { return reason_ == Reason::kDamaged; }
  // The byte of the file where the damage was found; -1 when not known.
  int64_t Position() const { return position_; }

 private:
  Reason reason_;
  int64_t position_;
};

// Little-endian writer of the journal's item data.
class TUndoWriter {
 public:
  void WriteU8(uint8_t value) { bytes_.push_back(value); }
  void WriteI32(int32_t value) { WriteU32(static_cast<uint32_t>(value)); }
  void WriteU32(uint32_t value);
  void WriteBytes(std::span<const uint8_t> bytes);
  // A length in characters (32-bit) followed by the text in UTF-16.
  void WriteUtf16(std::string_view utf8);
  // A length in bytes (32-bit) followed by the bytes.
  void WriteBlob(std::span<const uint8_t> bytes);
  const std::vector<uint8_t>& Bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

// Reader of item data; anything past the end or out of range throws UndoJournalError
// (damaged) naming `what` and the byte, so a damaged item is reported, never trusted.
// `base` is the position of the data in its file, so that bytes are counted in the file.
class TUndoReader {
 public:
  TUndoReader(std::span<const uint8_t> data, std::string what, int64_t base = 0)
      : data_(data), what_(std::move(what)), base_(base) {}
  uint8_t ReadU8();
  int32_t ReadI32() { return static_cast<int32_t>(ReadU32()); }
  uint32_t ReadU32();
  std::string ReadUtf16();
  std::vector<uint8_t> ReadBlob();
  bool AtEnd() const { return offset_ == data_.size(); }
  // Throws when bytes are left over: an item must use its data exactly.
  void ExpectEnd();
  [[noreturn]] void Fail(const std::string& problem) const;

 private:
  std::span<const uint8_t> Take(size_t count);

  std::span<const uint8_t> data_;
  std::string what_;
  int64_t base_;
  size_t offset_ = 0;
};

// Paths and captions are kept as UTF-8 in memory and UTF-16 in the journal. Bytes of a
// path that are not UTF-8 travel as the code units 0xDC80..0xDCFF and come back unchanged.
std::u16string Utf8ToUtf16(std::string_view utf8);
std::string Utf16ToUtf8(std::u16string_view utf16);

// CRC-32 (the polynomial of zip files) of a byte range, continuing from `crc`.
uint32_t Crc32(std::span<const uint8_t> bytes, uint32_t crc = 0);

// One frame of a journal file: kind (1 byte), data length (32-bit), the data, and the
// CRC-32 of all that.
inline constexpr size_t kJournalFrameHead = 5;
inline constexpr size_t kJournalFrameTail = 4;
std::vector<uint8_t> MakeJournalFrame(uint8_t kind, std::span<const uint8_t> data);

}  // namespace korvan::data
