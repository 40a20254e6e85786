#include "exchange/gaeb_xml/gaeb_decimal.h"

#include <charconv>
#include <cmath>

namespace korvan::exchange::gaeb_xml {

std::string FormatGaebDecimal(double value, int decimals) {
  if (!std::isfinite(value)) value = 0.0;
  char buffer[400];
  const auto [end, error] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
  std::string text = error == std::errc() ? std::string(buffer, end) : std::string("0");
  if (text.front() == '-' && text.find_first_not_of("0.", 1) == std::string::npos) {
    text.erase(0, 1);
  }
  return text;
}

std::optional<double> ParseGaebDecimal(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n' ||
                           text.front() == '\r')) {
    text.remove_prefix(1);
  }
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\n' ||
                           text.back() == '\r')) {
    text.remove_suffix(1);
  }
  std::string_view digits = text;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  bool any_digit = false;
  bool seen_point = false;
  for (const char c : digits) {
    if (c >= '0' && c <= '9') {
      any_digit = true;
    } else if (c == '.' && !seen_point) {
      seen_point = true;
    } else {
      return std::nullopt;
    }
  }
  if (!any_digit) return std::nullopt;
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace korvan::exchange::gaeb_xml
