#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formula/language/formel_item.h"

namespace korvan::formula {

// The longest token in characters.
inline constexpr size_t kMaxTokenLength = 127;

inline constexpr double kPi = 3.141592653589793;
// "E§" has exactly this value, eleven decimals and no more.
inline constexpr double kEulerShort = 2.71828182845;
inline constexpr double kEpsilon = 1e-11;

// A formula split into tokens: the tokens, the angle factor of its trigonometric
// functions, and an error code (0 when every token could be read).
struct TTokenized {
  std::vector<TFormelItem> items;
  double angle_factor = 1;
  int error = 0;
};

// Splits a formula (`SetFormel`): upper-cases and trims it, drops one trailing "=" and
// comments in braces, and reads each token. Angles are in degrees, or in gon when `gon`;
// a formula that contains "RAD" anywhere takes its angles in radians.
TTokenized TokenizeFormel(std::string_view text, bool gon);

// The formula text upper-cased (ASCII letters and the German umlauts).
std::string UpperFormel(std::string_view text);

}  // namespace korvan::formula
