#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::exchange::gaeb_xml {

// A number as the schema's decimal types write it: fixed point with "." and exactly
// `decimals` places, never an exponent, never a thousands separator, no "-0". Values
// beyond what a decimal of the schemas holds are refused by the caller's range check,
// not written in another form.
std::string FormatGaebDecimal(double value, int decimals);

// A decimal as a file writes it: optional sign, digits, optional "." and digits. No
// exponent, no comma; nothing for anything else.
std::optional<double> ParseGaebDecimal(std::string_view text);

}  // namespace korvan::exchange::gaeb_xml
