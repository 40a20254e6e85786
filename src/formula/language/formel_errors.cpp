#include "formula/language/formel_errors.h"

#include <array>
#include <string_view>

namespace korvan::formula {
namespace {

constexpr int kFirstTextNr = 46850;

// The texts 46850 to 46870 in the order of their numbers.
constexpr std::array<std::string_view, 21> kTexts = {
    "Die Formelnummer steht nicht im Formelkatalog",                 // 9101
    "Die Formel ist zu lang",                                        // 9102
    "Die Formel hat zu viele Bestandteile",                          // 9103
    "Die Formel ist zu tief verschachtelt",                          // 9104
    "Unzulässiges Zeichen in der Formel",                            // 9110
    "Ein Bestandteil der Formel ist länger als 127 Zeichen",         // 9111
    "Ungültige Zahl in der Formel",                                  // 9112
    "Eine Klammer ist nicht geschlossen",                            // 9113
    "Mehrere Klammern sind nicht geschlossen",                       // 9114
    "Eine schließende Klammer zu viel",                              // 9115
    "Mehrere schließende Klammern zu viel",                          // 9116
    "Auf einen Operator folgt ein Operator",                         // 9117
    "Die Formel endet mit einem Operator",                           // 9118
    "Das Ergebnis liegt außerhalb des Zahlenbereichs",               // 9119
    "Eine Variable hat keinen Wert",                                 // 9120
    "Ganzzahlige Division durch 0",                                  // 9121
    "Die Basis einer Potenz muss größer als 0 sein",                 // 9122
    "Der Logarithmus verlangt ein Argument größer als 0",            // 9123
    "Unzulässiges Argument einer Funktion",                          // 9124
    "Fehlendes Argument einer Funktion",                             // 9125
    "Tangens oder Kotangens ist für diesen Winkel nicht definiert",  // 9126
};

}  // namespace

int FehlerTextNr(int code) {
  if (code >= 9101 && code <= 9104) return kFirstTextNr + (code - 9101);
  if (code >= 9110 && code <= 9126) return kFirstTextNr + 4 + (code - 9110);
  return 0;
}

std::string FehlerText(int code) {
  const int nr = FehlerTextNr(code);
  if (nr == 0) return "unbekannter Fehler";
  return std::string(kTexts[static_cast<size_t>(nr - kFirstTextNr)]);
}

}  // namespace korvan::formula
