#pragma once

#include "data/records/rounding_type.h"

namespace korvan::boq {

// Rounds to `decimals` places (clamped to 0..15) by a rounding type. Not-a-number and
// exactly zero give 0; values too large to carry digits at that place (2^52 and more once
// scaled), infinities and rounding types this program does not know return the value.
//  - rtTillV2015: a small allowance is added away from zero (0.00001 up to 3 places,
//    else 10^-(decimals+2)), then the value is printed with fixed places and read back,
//    so halves go away from zero and binary representation errors are absorbed.
//  - rtCommercial: halves away from zero, with an allowance of 5.481726184209375e-16 of
//    the value for representation errors.
//  - rtArithmetic: halves to even, with the same allowance on either side.
double RoundValue(double value, int decimals, data::TRoundingType type);

}  // namespace korvan::boq
