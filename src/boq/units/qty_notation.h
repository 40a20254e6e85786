#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "boq/units/unit_record.h"

namespace korvan::boq {

// Quantities in the imperial notations a unit can ask for (the decimal ones are the value
// converter's). They keep the value in the unit itself: feet for vfFtIn64 and vfFtIn10
// (12.5 → 12' 6"), inches for vfInFrc (37.203125 → 37 13/64"), and write whole 64ths or
// tenths of an inch, so a value is first rounded to that resolution; fractions are
// reduced (32/64 → 1/2), tenths written with a decimal comma (3' 1,2").
bool IsImperial(TValFormat format);
std::string FormatImperialQty(double value, TValFormat format);

// Reads what FormatImperialQty writes, and the looser forms people type: "12'", "6\"",
// "12' 6 1/2\"", "12'6-1/2", "12 ft 6 in", "3' 1.2\"", a plain number (in the unit's own
// measure). Inches of 12 and more and fractions of 1 and more are taken as written
// (12' 14" is 13' 2"). Nullopt for anything else: a text that is not a quantity is never
// read as 0.
std::optional<double> ParseImperialQty(std::string_view text, TValFormat format);

}  // namespace korvan::boq
