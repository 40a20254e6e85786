#pragma once

#include <cstdint>
#include <string>

namespace korvan::formula {

// What a token of a formula is. The operator codes are those of the operator table
// (formel_operators.h); the other kinds have codes of their own above it.
inline constexpr uint8_t kCodeValue = 200;
inline constexpr uint8_t kCodeVariable = 201;
inline constexpr uint8_t kCodeSeparator = 202;  // ";" between the arguments of IF and ROUNDK

// The class of an operator token.
inline constexpr uint16_t kClassNone = 0;  // values, variables, parentheses, ";"
inline constexpr uint16_t kClassFunction = 1;
inline constexpr uint16_t kClassBinary = 2;
inline constexpr uint16_t kClassIf = 3;

// One token of a formula: its text as written (upper-cased), its code, and for values
// the number. A variable written with a leading "-" keeps the sign in `Negative` and its
// name without it.
struct TFormelItem {
  std::string Text;
  uint8_t Code = kCodeValue;
  double Value = 0;
  bool Negative = false;
  uint16_t Klasse = kClassNone;

  bool IsValue() const { return Code == kCodeValue; }
  bool IsVariable() const { return Code == kCodeVariable; }

  void SetDouble(double value) {
    Code = kCodeValue;
    Klasse = kClassNone;
    Value = value;
  }
};

}  // namespace korvan::formula
