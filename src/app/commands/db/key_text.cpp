#include "app/commands/db/key_text.h"

#include "storage/key_file.h"

namespace korvan::app {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

bool ShownAsItself(uint8_t byte) {
  return byte >= 0x20 && byte < 0x7f && byte != '.' && byte != '\\';
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string KeyToText(std::span<const uint8_t> key) {
  std::string text;
  text.reserve(key.size());
  for (const uint8_t byte : key) {
    if (byte == storage::kKeyPad) {
      text += '.';
    } else if (ShownAsItself(byte)) {
      text += static_cast<char>(byte);
    } else {
      text += "\\x";
      text += kHexDigits[byte >> 4];
      text += kHexDigits[byte & 0x0f];
    }
  }
  return text;
}

std::optional<std::vector<uint8_t>> KeyFromText(const std::string& text, std::string* error) {
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      bytes.push_back(static_cast<uint8_t>(text[i]));
      continue;
    }
    const bool complete = i + 3 < text.size();
    const int high = complete && text[i + 1] == 'x' ? HexValue(text[i + 2]) : -1;
    const int low = high >= 0 ? HexValue(text[i + 3]) : -1;
    if (low < 0) {
      *error = "broken escape at character " + std::to_string(i + 1) + " of '" + text +
               "' (expected \\xNN)";
      return std::nullopt;
    }
    bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    i += 3;
  }
  return bytes;
}

std::string KeyEntryLine(uint32_t position, std::span<const uint8_t> key) {
  return std::to_string(position) + " " + KeyToText(key);
}

}  // namespace korvan::app
