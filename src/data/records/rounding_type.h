#pragma once

#include <cstdint>

namespace korvan::data {

// How amounts and quantities are rounded; stored in the system configuration as the
// ordinal.
enum class TRoundingType : uint8_t {
  rtTillV2015 = 0,   // the rounding of the versions up to 2015
  rtCommercial = 1,  // decimal rounding, ties away from zero
  rtArithmetic = 2,  // ties to even
};

}  // namespace korvan::data
