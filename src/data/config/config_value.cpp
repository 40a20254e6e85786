#include "data/config/config_value.h"

#include <charconv>
#include <cmath>

#include "data/common/ascii_text.h"

namespace korvan::data {
namespace {

bool NeedsQuotes(std::string_view item) {
  if (item.find_first_of(",\"") != std::string_view::npos) return true;
  return !item.empty() && Trim(item).size() != item.size();
}

}  // namespace

std::optional<bool> ParseConfigBool(std::string_view text) {
  if (EqualsIgnoringCase(text, "true")) return true;
  if (EqualsIgnoringCase(text, "false")) return false;
  const auto number = ParseConfigInteger(text, INT64_MIN, INT64_MAX);
  if (!number) return std::nullopt;
  return *number != 0;
}

std::string FormatConfigBool(bool value) {
  return value ? "1" : "0";
}

std::optional<int64_t> ParseConfigInteger(std::string_view text, int64_t min, int64_t max) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.starts_with('$')) {
    base = 16, text.remove_prefix(1);
  } else if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16, text.remove_prefix(2);
  }
  if (text.empty() || text.front() == '-' || text.front() == '+') return std::nullopt;
  uint64_t magnitude = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (magnitude > static_cast<uint64_t>(INT64_MAX) + (negative ? 1 : 0)) return std::nullopt;
  const int64_t value =
      negative ? static_cast<int64_t>(0 - magnitude) : static_cast<int64_t>(magnitude);
  if (value < min || value > max) return std::nullopt;
  return value;
}

std::optional<double> ParseConfigDouble(std::string_view text) {
  std::string normalized(text);
  const auto comma = normalized.find(',');
  if (comma != std::string::npos) {
    if (normalized.find_first_of(".,", comma + 1) != std::string::npos ||
        normalized.find('.') != std::string::npos) {
      return std::nullopt;
    }
    normalized[comma] = '.';
  }
  std::string_view digits = normalized;
  if (digits.starts_with('+')) digits.remove_prefix(1);
  if (digits.empty() || digits.front() == '+' || (digits.front() == '-' && digits.size() == 1)) {
    return std::nullopt;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::string FormatConfigDouble(double value) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  if (error != std::errc()) return "0";
  return std::string(buffer, end);
}

std::optional<std::vector<std::string>> SplitConfigList(std::string_view text) {
  std::vector<std::string> items;
  if (Trim(text).empty()) return items;
  std::size_t pos = 0;
  for (;;) {
    std::string item;
    while (pos < text.size() && text[pos] == ' ') ++pos;
    if (pos < text.size() && text[pos] == '"') {
      for (++pos;; ++pos) {
        if (pos >= text.size()) return std::nullopt;
        if (text[pos] == '"') {
          if (pos + 1 < text.size() && text[pos + 1] == '"') {
            item += '"', ++pos;
            continue;
          }
          ++pos;
          break;
        }
        item += text[pos];
      }
      while (pos < text.size() && text[pos] == ' ') ++pos;
      if (pos < text.size() && text[pos] != ',') return std::nullopt;
    } else {
      const auto comma = text.find(',', pos);
      item = std::string(
          Trim(text.substr(pos, comma == std::string_view::npos ? comma : comma - pos)));
      pos = comma == std::string_view::npos ? text.size() : comma;
    }
    items.push_back(std::move(item));
    if (pos >= text.size()) return items;
    ++pos;  // the comma
  }
}

std::string JoinConfigList(const std::vector<std::string>& items) {
  std::string line;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) line += ',';
    if (!NeedsQuotes(items[i])) {
      line += items[i];
      continue;
    }
    line += '"';
    for (char c : items[i]) {
      if (c == '"') line += '"';
      line += c;
    }
    line += '"';
  }
  return line;
}

}  // namespace korvan::data
