#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::formula {

// A number as the formula language writes it: digits with a decimal comma ("3,50",
// ",5"), thousands grouped by points ("1.250,5"). A point that does not group three digits
// makes the text no number, so "2.5" is refused rather than read as 25 or 2,5.
std::optional<double> ParseFormelNumber(std::string_view text);

// A value as formulas and measurement lines print it: up to 15 significant digits,
// decimal comma, no exponent for ordinary magnitudes, "0" for minus zero.
std::string FormatFormelNumber(double value);

}  // namespace korvan::formula
