#pragma once

#include <string>
#include <string_view>

// The coded fields of a variable and the word older records use for a percentage.
namespace korvan::boq {

// Owner kinds (`KzBezug`).
inline constexpr char kOwnerCostElement = 'O';
inline constexpr char kOwnerComponent = 'B';
inline constexpr char kOwnerPartialQty = 'T';
inline constexpr char kOwnerLvItem = 'L';
inline constexpr char kOwnerLvPartialQty = 'M';
inline constexpr std::string_view kVariableOwnerCodes = "OBTLM";
inline constexpr std::string_view kVariableOwnerText =
    "O=Lkt., B=Bauteil, T=Teilmenge, L=Teilleistung,LV-Position, M=LV-Teilmenge";

// Variable types (`Typ`).
inline constexpr char kTypeInput = 'E';
inline constexpr char kTypeItemQuantity = 'T';
inline constexpr std::string_view kVariableTypeCodes = "BAPEDCT";
inline constexpr std::string_view kVariableTypeText =
    "B=Bauteilmenge, A=Äußere Variable, P=Ausgabeparameter, E=Eingabevariable, D=DIN277, "
    "C=CadVariable, T=Teilleistungsmenge";

// The reference kind of a variable's description lines in the short texts.
inline constexpr char kVariableTextKind = 'V';

// The unit of a percentage.
inline constexpr std::string_view kPercentUnit = "%";

// The unit as stored: "PROZENT" (any case, as older records and people write it) becomes
// "%"; any other unit is kept as given.
std::string NormalizedVariableUnit(std::string_view unit);

// Whether a variable of this unit holds a percentage.
bool IsPercentUnit(std::string_view unit);

}  // namespace korvan::boq
