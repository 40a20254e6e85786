#pragma once

#include "formula/language/formel_evaluator.h"
#include "formula/language/formel_operators.h"

namespace korvan::formula {

// Operands closer to 0 than this count as exactly 0, and divisors as none.
inline constexpr double kZeroSnap = 1e-11;

// A function of the language applied to `x` (angles multiplied by `angle_factor`).
TFormelResult ApplyFunction(TFormelCode code, double x, double angle_factor);

// A binary operator (also "%" with b unused, and the infix ROUNDK) applied to a and b.
TFormelResult ApplyBinary(TFormelCode code, double a, double b);

}  // namespace korvan::formula
