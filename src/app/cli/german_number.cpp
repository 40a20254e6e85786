#include "app/cli/german_number.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "app/cli/command_error.h"

namespace korvan::app {

std::optional<double> ParseGermanNumber(std::string_view text) {
  std::string plain(text);
  for (char& c : plain) c = c == ',' ? '.' : c;
  if (plain.empty()) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(plain.c_str(), &end);
  if (end != plain.c_str() + plain.size() || errno == ERANGE) return std::nullopt;
  // strtod also reads "inf" and "nan", which no quantity or price can be.
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

double RequireGermanNumber(const std::string& text, const std::string& what) {
  if (const std::optional<double> value = ParseGermanNumber(text)) return *value;
  throw UsageError("\"" + text + "\" ist keine Zahl (" + what + ").");
}

std::string GermanFigure(double value, const char* format) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  std::string result = text;
  for (char& c : result) c = c == '.' ? ',' : c;
  return result;
}

std::string GermanMoney(double value) {
  return GermanFigure(value, "%.2f");
}

}  // namespace korvan::app
