#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvan::formula {

// Line marks (`KZ`) the interpreter treats apart.
inline constexpr char kMarkNone = ' ';
inline constexpr char kMarkComment = '*';
inline constexpr char kMarkAuxiliary = 'H';
inline constexpr char kMarkItemSum = 'P';
inline constexpr char kMarkSubTotal = 'Z';
inline constexpr char kMarkE = 'E';

// One measurement line as the interpreter sees it (the fields of the stored REB line that
// evaluation reads). `Formel` is a free formula, or for a numbered formula the values 1
// to 5 and the arithmetic signs 1 to 5, separated by "|"; an "=" anywhere in it makes the
// line complete an expression.
struct TRebLine {
  int32_t Id = 0;
  char KZ = kMarkNone;
  std::string Erlaeuterung;
  char Vorzeichen = ' ';  // "-": a deduction
  double Faktor = 0;      // 0: no factor
  std::string FormelNr;   // empty for a free formula
  std::string Formel;
  double Ergebnis = 0;
  std::string Adresse;  // the line's address, by which formulas name its result
  std::string VarName;

  bool Completes() const { return Formel.find('=') != std::string::npos; }
  bool IsComment() const { return KZ == kMarkComment; }
  // Blank and "E" lines count in the item's quantity as they are.
  bool IsQuantityLine() const { return KZ == kMarkNone || KZ == kMarkE; }
};

// The value holder: value n (1 to 5) or sign n of a line, as written.
struct tValue {
  std::string Text;

  bool IsEmpty() const { return Text.empty(); }

  // Value n of the line; blanks and "=" around it are dropped.
  static tValue Of(const TRebLine& line, int n);
  // Sign n of the line (field n + 5); blank when none is written.
  static char SignOf(const TRebLine& line, int n);
};

// The field `index` (0-based) of a "|"-separated text.
std::string_view FieldOf(std::string_view text, int index);

}  // namespace korvan::formula
