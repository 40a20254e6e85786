#include "data/tables/table_key.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "data/records/null_values.h"

namespace korvan::data {

std::string KeyNumber(int32_t value, int width) {
  if (value == kNullId) return std::string(static_cast<size_t>(width), kKeyPadChar);
  const int precision = value < 0 ? width - 1 : width;
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%*.*d", width, precision, value);
  return std::string(text, static_cast<size_t>(std::max(length, 0)));
}

std::string KeyNumber16(int16_t value, int width) {
  if (value == kNullId16) return std::string(static_cast<size_t>(width), kKeyPadChar);
  return KeyNumber(value, width);
}

std::string KeyText(std::string_view cp1252, int width) {
  std::string text(cp1252.substr(0, static_cast<size_t>(width)));
  text.resize(static_cast<size_t>(width), ' ');
  return text;
}

std::string BuildFullKey(char table_type, char index, std::string_view key_string, int key_length) {
  std::string key;
  key.reserve(static_cast<size_t>(key_length));
  key.push_back(table_type);
  key.push_back(index);
  key.append(key_string.substr(0, static_cast<size_t>(std::max(key_length - 2, 0))));
  key.resize(static_cast<size_t>(key_length), kKeyPadChar);
  return key;
}

storage::KeyEntry MakeKeyEntry(std::string_view key, uint32_t position) {
  storage::KeyEntry entry;
  entry.position = position;
  std::memset(entry.key, storage::kKeyPad, sizeof entry.key);
  std::memcpy(entry.key, key.data(), std::min(key.size(), sizeof entry.key));
  return entry;
}

std::string KeyOf(const storage::KeyEntry& entry, int key_length) {
  const auto length = std::clamp<size_t>(static_cast<size_t>(key_length), 0, sizeof entry.key);
  return std::string(reinterpret_cast<const char*>(entry.key), length);
}

bool KeyMatchesPattern(std::string_view key, std::string_view pattern) {
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == kKeyPadChar) continue;
    if (i >= key.size() || key[i] != pattern[i]) return false;
  }
  return true;
}

std::string KeyStringOf(std::string_view full_key) {
  if (full_key.size() <= 2) return {};
  std::string_view rest = full_key.substr(2);
  while (!rest.empty() && rest.back() == kKeyPadChar) rest.remove_suffix(1);
  return std::string(rest);
}

}  // namespace korvan::data
