#include "formula/language/formel_functions.h"

#include <cmath>

#include "boq/units/rounding.h"
#include "formula/language/formel_errors.h"
#include "formula/language/formel_tokenizer.h"

namespace korvan::formula {
namespace {

TFormelResult Value(double value) {
  if (!std::isfinite(value)) return {0, kFormelOutOfRange};
  return {value, 0};
}

TFormelResult Error(int code) {
  return {0, code};
}

bool IsWhole(double x) {
  return std::trunc(x) == x;
}

// INT rounds a fraction away from the whole part upwards: 2,3 to 3 and -2,3 to -1.
double IntOf(double x) {
  return IsWhole(x) ? x : std::trunc(x) + 1;
}

// The quotient of "\" and MOD: b = 0 and fractions are refused, a fractional quotient
// is rounded like INT.
TFormelResult WholeQuotient(double a, double b) {
  if (b == 0) return Error(kFormelDivisionByZero);
  if (!IsWhole(a) || !IsWhole(b)) return Error(kFormelNotWhole);
  return Value(IntOf(a / b));
}

TFormelResult Trigonometric(TFormelCode code, double angle) {
  switch (code) {
    case kSin:
      return Value(std::sin(angle));
    case kCos:
      return Value(std::cos(angle));
    case kTan:
      if (std::fabs(std::cos(angle)) <= 1e-10) return Error(kFormelTangent);
      return Value(std::sin(angle) / std::cos(angle));
    case kCot:
      // The guard looks at the cosine, as the language always has.
      if (std::fabs(std::cos(angle)) <= 1e-10) return Error(kFormelTangent);
      return Value(std::cos(angle) / std::sin(angle));
    case kArcTan:
      return Value(std::atan(angle));
    case kArcSin:
      return Value(std::asin(angle));
    case kArcCos:
      return Value(std::acos(angle));
    default:  // kArcCot
      return Value(1 / std::atan(angle));
  }
}

}  // namespace

TFormelResult ApplyFunction(TFormelCode code, double x, double angle_factor) {
  if (TakesAngle(code)) return Trigonometric(code, angle_factor * x);
  switch (code) {
    case kExp:
      return Value(std::exp(x));
    case kLn:
      return x <= 0 ? Error(kFormelLogarithm) : Value(std::log(x));
    case kEex:
      return Value(std::pow(10.0, x));
    case kLg:
      // LG has always given 10^x, like EEX; kept so stored results stay as they were.
      return x <= 0 ? Error(kFormelLogarithm) : Value(std::pow(10.0, x));
    case kLog:
      return Value(0);
    case kRad:
      return Value(kPi * x / 180);
    case kDeg:
      return Value(x * 180 / kPi);
    case kSqrt:
    case kWrz:
      return std::fabs(x) <= kZeroSnap ? Value(0) : Value(std::sqrt(x));
    case kSqr:
    case kQua:
      return Value(x * x);
    case kInt:
      return Value(IntOf(x));
    case kTrunc:
      return Value(std::trunc(x));
    case kRound:
      return Value(x < 0 ? std::trunc(x - 0.5) : std::trunc(x + 0.5));
    case kCeil:
      return Value(std::ceil(x));
    case kFloor:
      return Value(std::floor(x));
    case kAbs:
      return Value(std::fabs(x));
    default:
      return Error(kFormelStuck);
  }
}

TFormelResult ApplyBinary(TFormelCode code, double a, double b) {
  switch (code) {
    case kPercent:
      return Value(a / 100);
    case kRoundK:
      return Value(
          boq::RoundValue(a, static_cast<int>(std::trunc(b)), data::TRoundingType::rtCommercial));
    case kPower:
    case kPowerStars:
      return a <= 0 ? Error(kFormelPowerBase) : Value(std::exp(b * std::log(a)));
    case kTimes:
      return Value(a * b);
    case kDivide:
      return std::fabs(b) <= kZeroSnap ? Value(0) : Value(a / b);
    case kIntDivide:
    case kDiv:
      return WholeQuotient(a, b);
    case kMod: {
      const TFormelResult q = WholeQuotient(a, b);
      return q.error != 0 ? q : Value(a - q.value * b);
    }
    case kPlus:
      return Value(a + b);
    case kMinus:
      return Value(a - b);
    case kGreater:
      return Value(a > b && std::fabs(a - b) >= kZeroSnap ? 1 : 0);
    case kLess:
      return Value(a < b && std::fabs(a - b) >= kZeroSnap ? 1 : 0);
    case kEqual:
      return Value(std::fabs(a - b) <= kZeroSnap ? 1 : 0);
    case kAnd:
      return Value(a != 0 && b != 0 ? 1 : 0);
    case kOr:
      return Value(a != 0 || b != 0 ? 1 : 0);
    default:
      return Error(kFormelStuck);
  }
}

}  // namespace korvan::formula
