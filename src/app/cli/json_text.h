#pragma once

#include <string>
#include <string_view>

// Values in JSON for the `--json` output of commands (UTF-8 text, numbers).
namespace korvan::app {

// The text as a JSON string, quoted, with quotes, backslashes and control characters
// escaped.
std::string JsonString(std::string_view utf8);

// A number as JSON writes it: integral values without a fraction, others with up to 15
// significant digits; values that are not finite as null.
std::string JsonNumber(double value);

}  // namespace korvan::app
