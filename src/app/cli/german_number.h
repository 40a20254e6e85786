#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::app {

// A number as people type it on the command line, "12,5" or "12.5": the value, or nothing
// when the text is empty, holds anything after the number, or is out of range.
std::optional<double> ParseGermanNumber(std::string_view text);

// The number `text` says, for a command's option or field named `what` ("--qty", "Feld
// qty"): every numeric value of a command goes through here, so that a wrong one is
// refused alike, with UsageError "\"<text>\" ist keine Zahl (<what>)." (exit code 2).
double RequireGermanNumber(const std::string& text, const std::string& what);

// A number written with printf's `format` ("%.3f", "%g") and a decimal comma.
std::string GermanFigure(double value, const char* format);

// An amount of money as people read it: two decimals and a decimal comma.
std::string GermanMoney(double value);

}  // namespace korvan::app
