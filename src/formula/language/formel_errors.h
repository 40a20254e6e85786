#pragma once

#include <string>

namespace korvan::formula {

// Error codes of the formula language. 0 is no error.
inline constexpr int kFormelOk = 0;
inline constexpr int kFormelNoMemory = 2;
inline constexpr int kFormelNoValueLeft = 10;  // what remains is not a value
inline constexpr int kFormelStuck = 16;        // nothing more can be applied
inline constexpr int kFormelNotInCatalogue = 9101;
inline constexpr int kFormelTokenTooLong = 9111;
inline constexpr int kFormelBadNumber = 9112;
inline constexpr int kFormelOneOpen = 9113;
inline constexpr int kFormelManyOpen = 9114;
inline constexpr int kFormelOneSurplusClose = 9115;
inline constexpr int kFormelManySurplusClose = 9116;
inline constexpr int kFormelOperatorAfterOperator = 9117;
inline constexpr int kFormelOperatorAtEnd = 9118;
inline constexpr int kFormelOutOfRange = 9119;
inline constexpr int kFormelUnknownVariable = 9120;
inline constexpr int kFormelDivisionByZero = 9121;
inline constexpr int kFormelPowerBase = 9122;
inline constexpr int kFormelLogarithm = 9123;
inline constexpr int kFormelTangent = 9126;
inline constexpr int kFormelNotWhole = 9127;

// The number of the program text that carries a code's message: 9101 to 9104 are 46850
// to 46853, 9110 to 9126 are 46854 to 46870; other codes have none (0).
int FehlerTextNr(int code);

// The message of a code (`GetFehler`); codes without a text read "unbekannter Fehler".
std::string FehlerText(int code);

}  // namespace korvan::formula
