#include "app/cli/german_number.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace korvan::app {

std::optional<double> ParseGermanNumber(std::string_view text) {
  std::string plain(text);
  for (char& c : plain) c = c == ',' ? '.' : c;
  if (plain.empty()) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(plain.c_str(), &end);
  if (end != plain.c_str() + plain.size() || errno == ERANGE) return std::nullopt;
  return value;
}

std::string GermanFigure(double value, const char* format) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  std::string result = text;
  for (char& c : result) c = c == '.' ? ',' : c;
  return result;
}

}  // namespace korvan::app
