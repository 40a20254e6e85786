#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvan::formula {

// Operator codes of the formula language; the numbers are the language's own.
enum TFormelCode : uint8_t {
  kOpen = 0,
  kClose = 1,
  kArcTan = 2,
  kCos = 3,
  kSin = 4,
  kTan = 5,
  kCot = 6,
  kArcSin = 7,
  kArcCos = 8,
  kArcCot = 9,
  kExp = 10,
  kLn = 11,
  kEex = 12,
  kLg = 13,
  kLog = 14,
  kRad = 15,
  kDeg = 16,
  kSqrt = 17,
  kWrz = 18,
  kSqr = 19,
  kQua = 20,
  kPercent = 21,
  kInt = 22,
  kTrunc = 23,
  kRound = 24,
  kCeil = 25,
  kFloor = 26,
  kAbs = 27,
  kRoundK = 28,
  kPower = 29,
  kPowerStars = 30,
  kTimes = 31,
  kDivide = 32,
  kIntDivide = 33,
  kMod = 34,
  kDiv = 35,
  kPlus = 36,
  kMinus = 37,
  kGreater = 38,
  kLess = 39,
  kEqual = 40,
  kAnd = 41,
  kOr = 42,
  kIf = 43,
};

// How an operator takes its operands.
enum class TOperatorForm : uint8_t {
  kParenthesis,
  kPrefix,   // a function: the value to its right
  kPostfix,  // "%": the value to its left
  kInfix,    // both neighbours
  kIf,       // IF(c;x;y), reduced as a whole
};

struct TOperatorInfo {
  std::string_view token;
  TFormelCode code;
  uint8_t priority;
  TOperatorForm form;
};

// The operator written as `token` (upper case), or nothing when it is none.
std::optional<TOperatorInfo> FindOperator(std::string_view token);

// The priority the operator has when applied; ROUNDK, written like a function, is applied
// in its infix form a ROUNDK b.
uint8_t PriorityOf(TFormelCode code);

// Functions whose argument is an angle in the formula's angle unit.
bool TakesAngle(TFormelCode code);

// The priority levels at which operators are applied, highest first.
inline constexpr uint8_t kPriorityLevels[] = {100, 90, 80, 70, 30};

}  // namespace korvan::formula
