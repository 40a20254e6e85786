#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvan::app {

// Keys and other raw bytes as one line of text: printable ASCII stays as it is, the
// pad byte 0x04 shows as ".", every other byte as "\xNN" (two lowercase hex digits).
// A real "." or "\" is written "\x2e" / "\x5c" so that the text reads back unambiguously.
std::string KeyToText(std::span<const uint8_t> key);

// The bytes a typed key stands for: "\xNN" (exactly two hex digits) is the byte NN,
// every other character is itself (a typed "." is a dot, not the pad byte). Empty when
// the text holds a broken escape; *error then says why.
std::optional<std::vector<uint8_t>> KeyFromText(const std::string& text, std::string* error);

// A key entry as one line of a listing: the record position, a blank, the key as text.
std::string KeyEntryLine(uint32_t position, std::span<const uint8_t> key);

}  // namespace korvan::app
