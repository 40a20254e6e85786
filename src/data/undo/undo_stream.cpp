#include "data/undo/undo_stream.h"

#include <algorithm>
#include <array>

#include "data/common/cp1252.h"

namespace korvan::data {

namespace {

constexpr char16_t kEscapeBase = 0xDC00;  // a lone low surrogate carries one raw byte

std::array<uint32_t, 256> MakeCrcTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t n = 0; n < 256; ++n) {
    uint32_t c = n;
    for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    table[n] = c;
  }
  return table;
}

}  // namespace

void TUndoWriter::WriteU32(uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8)
    bytes_.push_back(static_cast<uint8_t>(value >> shift));
}

void TUndoWriter::WriteBytes(std::span<const uint8_t> bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

void TUndoWriter::WriteUtf16(std::string_view utf8) {
  const std::u16string text = Utf8ToUtf16(utf8);
  WriteU32(static_cast<uint32_t>(text.size()));
  for (char16_t unit : text) {
    bytes_.push_back(static_cast<uint8_t>(unit));
    bytes_.push_back(static_cast<uint8_t>(unit >> 8));
  }
}

void TUndoWriter::WriteBlob(std::span<const uint8_t> bytes) {
  WriteU32(static_cast<uint32_t>(bytes.size()));
  WriteBytes(bytes);
}

void TUndoReader::Fail(const std::string& problem) const {
  const int64_t position = base_ + static_cast<int64_t>(offset_);
  throw UndoJournalError(what_ + ": " + problem + " (Byte " + std::to_string(position) + ")",
                         UndoJournalError::Reason::kDamaged, position);
}

std::span<const uint8_t> TUndoReader::Take(size_t count) {
  if (count > data_.size() - offset_) {
    Fail("die Daten enden zu früh (" + std::to_string(count) + " Bytes erwartet, " +
         std::to_string(data_.size() - offset_) + " vorhanden)");
  }
  const std::span<const uint8_t> part = data_.subspan(offset_, count);
  offset_ += count;
  return part;
}

uint8_t TUndoReader::ReadU8() {
  return Take(1)[0];
}

uint32_t TUndoReader::ReadU32() {
  const std::span<const uint8_t> bytes = Take(4);
  return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 |
         uint32_t{bytes[3]} << 24;
}

std::string TUndoReader::ReadUtf16() {
  const uint32_t count = ReadU32();
  if (count > (data_.size() - offset_) / 2)
    Fail("Textlänge " + std::to_string(count) + " ist zu groß");
  const std::span<const uint8_t> bytes = Take(size_t{count} * 2);
  std::u16string text(count, u'\0');
  for (size_t i = 0; i < count; ++i) {
    text[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
  }
  return Utf16ToUtf8(text);
}

std::vector<uint8_t> TUndoReader::ReadBlob() {
  const uint32_t count = ReadU32();
  const std::span<const uint8_t> bytes = Take(count);
  return {bytes.begin(), bytes.end()};
}

void TUndoReader::ExpectEnd() {
  if (!AtEnd())
    Fail(std::to_string(data_.size() - offset_) + " überzählige Bytes nach dem Eintrag");
}

std::u16string Utf8ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (size_t at = 0; at < utf8.size();) {
    size_t length = 0;
    const std::optional<char32_t> decoded = DecodeUtf8(utf8.substr(at), &length);
    if (!decoded) {
      out += static_cast<char16_t>(kEscapeBase | static_cast<uint8_t>(utf8[at]));
      ++at;
      continue;
    }
    const char32_t code = *decoded;
    at += length;
    if (code >= 0x10000) {
      out += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
      out += static_cast<char16_t>(code);
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    const char16_t unit = utf16[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] <= 0xDFFF) {
      AppendUtf8(0x10000 + ((char32_t{unit} - 0xD800) << 10) + (utf16[i + 1] - 0xDC00), &out);
      ++i;
    } else if (unit >= 0xDC80 && unit <= 0xDCFF) {
      out += static_cast<char>(unit & 0xFF);  // an escaped raw byte
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      AppendUtf8(0xFFFD, &out);  // a lone surrogate from elsewhere
    } else {
      AppendUtf8(unit, &out);
    }
  }
  return out;
}

uint32_t Crc32(std::span<const uint8_t> bytes, uint32_t crc) {
  static const std::array<uint32_t, 256> table = MakeCrcTable();
  crc = ~crc;
  for (uint8_t byte : bytes) crc = table[(crc ^ byte) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

std::vector<uint8_t> MakeJournalFrame(uint8_t kind, std::span<const uint8_t> data) {
  std::vector<uint8_t> frame(kJournalFrameHead + data.size() + kJournalFrameTail);
  frame[0] = kind;
  const auto length = static_cast<uint32_t>(data.size());
  for (int i = 0; i < 4; ++i) frame[1 + i] = static_cast<uint8_t>(length >> (8 * i));
  std::copy(data.begin(), data.end(), frame.begin() + kJournalFrameHead);
  const uint32_t crc = Crc32({frame.data(), kJournalFrameHead + data.size()});
  for (int i = 0; i < 4; ++i) {
    frame[kJournalFrameHead + data.size() + i] = static_cast<uint8_t>(crc >> (8 * i));
  }
  return frame;
}

}  // namespace korvan::data
