#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "storage/key_file.h"

// Keys of table records. Every table enters each of its records once per index into
// the database's one B-tree; the key of index n is the table's type letter, the index
// character, the table's key string for that index cut to the key length minus 2, and
// pad bytes up to the key length. Keys of different tables and indexes therefore never
// collide, and one index of one table is one contiguous range of the tree.
namespace korvan::data {

inline constexpr char kKeyPadChar = static_cast<char>(storage::kKeyPad);

// Widths of numeric key fields.
inline constexpr int kIntegerKeyWidth = 11;  // 32-bit ids
inline constexpr int kSmallIntKeyWidth = 6;  // 16-bit ids

// A 32-bit number as a key field of `width` characters: the null id becomes `width` pad
// bytes (sorting after every real value and matching any pattern); values >= 0 are
// zero-padded to `width` digits; negative values are "-" followed by width - 1
// zero-padded digits. Negative numbers thus sort before positive ones and in reverse
// order among themselves, which existing key files rely on.
std::string KeyNumber(int32_t value, int width = kIntegerKeyWidth);
// The same for a 16-bit number, whose null value is 32767.
std::string KeyNumber16(int16_t value, int width = kSmallIntKeyWidth);
// A text field (Windows-1252 bytes) padded with blanks or cut to `width` characters.
std::string KeyText(std::string_view cp1252, int width);

// The full key of an index: type letter, index character, key string cut to
// key_length - 2, pad bytes up to key_length.
std::string BuildFullKey(char table_type, char index, std::string_view key_string, int key_length);

// A search pattern: like a full key; pad bytes inside or after it match any byte.
inline std::string BuildKeyPattern(char table_type, char index, std::string_view pattern,
                                   int key_length) {
  return BuildFullKey(table_type, index, pattern, key_length);
}

// A key entry for the kernel: the key bytes, pad bytes after them, and the position.
storage::KeyEntry MakeKeyEntry(std::string_view key, uint32_t position = 0);

// The key bytes of an entry (key_length of them).
std::string KeyOf(const storage::KeyEntry& entry, int key_length);

// Whether a found key matches a pattern of the same length: every pattern byte must be
// equal, except pad bytes, which match anything.
bool KeyMatchesPattern(std::string_view key, std::string_view pattern);

// The key string of a full key: without type letter and index character, and without
// the pad bytes at its end.
std::string KeyStringOf(std::string_view full_key);

}  // namespace korvan::data
