#include "boq/units/rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace korvan::boq {
namespace {

using data::TRoundingType;

// The relative error a double may carry after the arithmetic amounts go through.
constexpr double kAllowedError = 5.481726184209375e-16;

// 10^n, exact for these n: a look-up instead of std::pow, which took a quarter of a sum run.
double PowerOfTen(int n) {
  static constexpr double kPowers[] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,
                                       1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};
  return kPowers[n];
}

double RoundTillV2015(double value, int decimals) {
  const double allowance = decimals <= 3 ? 0.00001 : 1.0 / PowerOfTen(decimals + 2);
  const double shifted = value > 0 ? value + allowance : value - allowance;
  char text[400];
  std::snprintf(text, sizeof text, "%.*f", decimals, shifted);
  return std::strtod(text, nullptr);
}

double RoundCommercial(double value, int decimals) {
  const double scale = PowerOfTen(decimals);
  const double magnitude = std::fabs(value);
  const double rounded =
      std::nearbyint(magnitude * scale + magnitude * kAllowedError * scale) / scale;
  return value < 0 ? -rounded : rounded;
}

double RoundArithmetic(double value, int decimals) {
  const double scale = PowerOfTen(decimals);
  const double scaled = value * scale;
  const double error = value * kAllowedError * scale;
  const double lower = std::nearbyint(scaled - error);
  const double upper = std::nearbyint(scaled + error);
  const bool lower_is_odd = std::fmod(lower, 2.0) != 0.0;
  return (lower_is_odd ? upper : lower) / scale;
}

}  // namespace

double RoundValue(double value, int decimals, TRoundingType type) {
  if (std::isnan(value) || value == 0.0) return 0.0;
  decimals = std::clamp(decimals, 0, 15);
  // A double this large has no digits left below the place rounded to.
  if (!(std::fabs(value) * PowerOfTen(decimals) < 4503599627370496.0)) return value;
  switch (type) {
    case TRoundingType::rtTillV2015:
      return RoundTillV2015(value, decimals);
    case TRoundingType::rtCommercial:
      return RoundCommercial(value, decimals);
    case TRoundingType::rtArithmetic:
      return RoundArithmetic(value, decimals);
  }
  return value;
}

}  // namespace korvan::boq
