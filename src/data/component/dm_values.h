#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvan::data {

// What a column of a master-data list accepts, so that a value can be checked before it
// is stored and a refusal can say what form was expected.
struct TValueRule {
  enum class Kind { Integer, Real, Text, JaNein, OneOf };
  Kind kind = Kind::Text;
  int64_t min = 0;                // Integer
  int64_t max = 0;                // Integer
  int length = 0;                 // Text: at most this many characters
  std::string_view allowed = {};  // OneOf: the allowed single characters
};

// The expected form in words, e.g. "ganze Zahl von 0 bis 15".
std::string ExpectedForm(const TValueRule& rule);
bool FitsRule(const TValueRule& rule, std::string_view value);

// Parsing and formatting of list values. Reals are shown with a decimal comma and read
// with comma or point; they keep every digit needed to read back the same number.
std::optional<int64_t> ParseListInteger(std::string_view value);
std::optional<double> ParseListReal(std::string_view value);
std::optional<bool> ParseJaNein(std::string_view value);
std::string FormatListReal(double value);
inline std::string FormatJaNein(bool value) {
  return value ? "J" : "N";
}

}  // namespace korvan::data
