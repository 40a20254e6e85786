#include "formula/language/formel_operators.h"

#include <array>

namespace korvan::formula {
namespace {

using F = TOperatorForm;

constexpr std::array<TOperatorInfo, 44> kOperators = {{
    {"(", kOpen, 255, F::kParenthesis},   {")", kClose, 255, F::kParenthesis},
    {"ARCTAN", kArcTan, 100, F::kPrefix}, {"COS", kCos, 100, F::kPrefix},
    {"SIN", kSin, 100, F::kPrefix},       {"TAN", kTan, 100, F::kPrefix},
    {"COT", kCot, 100, F::kPrefix},       {"ARCSIN", kArcSin, 100, F::kPrefix},
    {"ARCCOS", kArcCos, 100, F::kPrefix}, {"ARCCOT", kArcCot, 100, F::kPrefix},
    {"EXP", kExp, 100, F::kPrefix},       {"LN", kLn, 100, F::kPrefix},
    {"EEX", kEex, 100, F::kPrefix},       {"LG", kLg, 100, F::kPrefix},
    {"LOG", kLog, 100, F::kPrefix},       {"RAD", kRad, 100, F::kPrefix},
    {"DEG", kDeg, 100, F::kPrefix},       {"SQRT", kSqrt, 100, F::kPrefix},
    {"WRZ", kWrz, 100, F::kPrefix},       {"SQR", kSqr, 100, F::kPrefix},
    {"QUA", kQua, 100, F::kPrefix},       {"%", kPercent, 100, F::kPostfix},
    {"INT", kInt, 100, F::kPrefix},       {"TRUNC", kTrunc, 100, F::kPrefix},
    {"ROUND", kRound, 100, F::kPrefix},   {"CEIL", kCeil, 100, F::kPrefix},
    {"FLOOR", kFloor, 100, F::kPrefix},   {"ABS", kAbs, 100, F::kPrefix},
    {"ROUNDK", kRoundK, 100, F::kPrefix}, {"^", kPower, 90, F::kInfix},
    {"**", kPowerStars, 90, F::kInfix},   {"*", kTimes, 80, F::kInfix},
    {"/", kDivide, 80, F::kInfix},        {"\\", kIntDivide, 80, F::kInfix},
    {"MOD", kMod, 80, F::kInfix},         {"DIV", kDiv, 80, F::kInfix},
    {"+", kPlus, 70, F::kInfix},          {"-", kMinus, 70, F::kInfix},
    {">", kGreater, 30, F::kInfix},       {"<", kLess, 30, F::kInfix},
    {"=", kEqual, 30, F::kInfix},         {"AND", kAnd, 30, F::kInfix},
    {"OR", kOr, 30, F::kInfix},           {"IF", kIf, 10, F::kIf},
}};

}  // namespace

std::optional<TOperatorInfo> FindOperator(std::string_view token) {
  for (const TOperatorInfo& info : kOperators) {
    if (info.token == token) return info;
  }
  return std::nullopt;
}

uint8_t PriorityOf(TFormelCode code) {
  for (const TOperatorInfo& info : kOperators) {
    if (info.code == code) return info.priority;
  }
  return 0;
}

bool TakesAngle(TFormelCode code) {
  switch (code) {
    case kSin:
    case kCos:
    case kTan:
    case kCot:
    case kArcTan:
    case kArcSin:
    case kArcCos:
    case kArcCot:
      return true;
    default:
      return false;
  }
}

}  // namespace korvan::formula
