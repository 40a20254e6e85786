#include "data/component/dm_values.h"

#include <charconv>
#include <cmath>

namespace korvan::data {
namespace {

// Characters as a short string stores them: one per UTF-8 sequence.
size_t CharacterCount(std::string_view utf8) {
  size_t count = 0;
  for (const char c : utf8) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++count;
  }
  return count;
}

}  // namespace

std::optional<int64_t> ParseListInteger(std::string_view value) {
  int64_t result = 0;
  if (!value.empty() && value.front() == '+') value.remove_prefix(1);
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), result);
  if (value.empty() || error != std::errc() || end != value.data() + value.size()) return {};
  return result;
}

std::optional<double> ParseListReal(std::string_view value) {
  std::string text(value);
  for (char& c : text) {
    if (c == ',') c = '.';
  }
  double result = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(first, last, result);
  if (text.empty() || error != std::errc() || end != last || !std::isfinite(result)) return {};
  return result;
}

std::optional<bool> ParseJaNein(std::string_view value) {
  if (value == "J" || value == "j" || value == "ja" || value == "Ja") return true;
  if (value == "N" || value == "n" || value == "nein" || value == "Nein") return false;
  return {};
}

std::string FormatListReal(double value) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  std::string text(buffer, error == std::errc() ? end : buffer);
  for (char& c : text) {
    if (c == '.') c = ',';
  }
  return text;
}

std::string ExpectedForm(const TValueRule& rule) {
  switch (rule.kind) {
    case TValueRule::Kind::Integer:
      return "ganze Zahl von " + std::to_string(rule.min) + " bis " + std::to_string(rule.max);
    case TValueRule::Kind::Real:
      return "Zahl (z. B. 1,95583)";
    case TValueRule::Kind::Text:
      return "Text mit höchstens " + std::to_string(rule.length) + " Zeichen";
    case TValueRule::Kind::JaNein:
      return "J oder N";
    case TValueRule::Kind::OneOf: {
      std::string form = "eines der Zeichen";
      for (const char c : rule.allowed) form += std::string(" ") + c;
      return form;
    }
  }
  return {};
}

bool FitsRule(const TValueRule& rule, std::string_view value) {
  switch (rule.kind) {
    case TValueRule::Kind::Integer: {
      const std::optional<int64_t> number = ParseListInteger(value);
      return number && *number >= rule.min && *number <= rule.max;
    }
    case TValueRule::Kind::Real:
      return ParseListReal(value).has_value();
    case TValueRule::Kind::Text:
      return CharacterCount(value) <= static_cast<size_t>(rule.length);
    case TValueRule::Kind::JaNein:
      return ParseJaNein(value).has_value();
    case TValueRule::Kind::OneOf:
      return value.size() == 1 && rule.allowed.find(value.front()) != std::string_view::npos;
  }
  return false;
}

}  // namespace korvan::data
