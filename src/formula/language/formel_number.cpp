#include "formula/language/formel_number.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace korvan::formula {
namespace {

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The whole part without its grouping points, or nothing when a point groups wrongly.
std::optional<std::string> UngroupedWholePart(std::string_view whole) {
  if (whole.find('.') == std::string_view::npos) return std::string(whole);
  std::string digits;
  size_t group_start = 0;
  bool first = true;
  while (true) {
    const size_t point = whole.find('.', group_start);
    const std::string_view group = whole.substr(group_start, point - group_start);
    const bool fits = first ? (!group.empty() && group.size() <= 3) : group.size() == 3;
    if (!fits) return std::nullopt;
    digits += group;
    if (point == std::string_view::npos) return digits;
    group_start = point + 1;
    first = false;
  }
}

}  // namespace

std::optional<double> ParseFormelNumber(std::string_view text) {
  const size_t comma = text.find(',');
  const std::string_view whole = text.substr(0, comma);
  const std::string_view fraction =
      comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
  for (char c : whole) {
    if (!IsDigit(c) && c != '.') return std::nullopt;
  }
  for (char c : fraction) {
    if (!IsDigit(c)) return std::nullopt;
  }
  const std::optional<std::string> digits = UngroupedWholePart(whole);
  if (!digits || (digits->empty() && fraction.empty())) return std::nullopt;
  const std::string plain = (digits->empty() ? "0" : *digits) + "." + std::string(fraction) + "0";
  double value = 0;
  const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (error != std::errc() || end != plain.data() + plain.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::string FormatFormelNumber(double value) {
  if (value == 0) value = 0;  // no "-0"
  char text[64];
  std::snprintf(text, sizeof text, "%.15g", value);
  std::string result = text;
  for (char& c : result) c = c == '.' ? ',' : c;
  return result;
}

}  // namespace korvan::formula
