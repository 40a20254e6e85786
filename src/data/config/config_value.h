#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvan::data {

// The text forms of the values in configuration files. Every parser takes the text of
// one key (already trimmed by the ini reader) and gives nullopt for a text that is not a
// value of its type; the caller then keeps the field's default.

// "1"/"0" as written; on reading any integer (non-zero is true) and "true"/"false".
std::optional<bool> ParseConfigBool(std::string_view text);
std::string FormatConfigBool(bool value);

// Decimal, or hexadecimal with "$" or "0x"; nullopt outside [min, max].
std::optional<int64_t> ParseConfigInteger(std::string_view text, int64_t min, int64_t max);

// Accepts "." or "," as the decimal separator (files written under a German locale use
// the comma); written with "." and as many digits as needed to read back the same value.
std::optional<double> ParseConfigDouble(std::string_view text);
std::string FormatConfigDouble(double value);

// One comma-separated line of values. Items that contain a comma, a double quote or
// blanks at either end are written between double quotes with inner quotes doubled.
// nullopt when a quoted item is not closed.
std::optional<std::vector<std::string>> SplitConfigList(std::string_view text);
std::string JoinConfigList(const std::vector<std::string>& items);

}  // namespace korvan::data
