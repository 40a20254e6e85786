#include "formula/reb/reb_line.h"

namespace korvan::formula {

std::string_view FieldOf(std::string_view text, int index) {
  for (int i = 0; i < index; ++i) {
    const size_t bar = text.find('|');
    if (bar == std::string_view::npos) return {};
    text.remove_prefix(bar + 1);
  }
  return text.substr(0, text.find('|'));
}

tValue tValue::Of(const TRebLine& line, int n) {
  std::string_view field = FieldOf(line.Formel, n - 1);
  const auto drop = [](char c) { return c == ' ' || c == '='; };
  while (!field.empty() && drop(field.front())) field.remove_prefix(1);
  while (!field.empty() && drop(field.back())) field.remove_suffix(1);
  return {std::string(field)};
}

char tValue::SignOf(const TRebLine& line, int n) {
  const std::string_view field = FieldOf(line.Formel, n + 4);
  for (char c : field) {
    if (c != ' ' && c != '=') return c;
  }
  return ' ';
}

}  // namespace korvan::formula
