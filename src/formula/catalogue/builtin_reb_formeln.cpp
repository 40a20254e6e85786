#include "formula/catalogue/builtin_reb_formeln.h"

#include <array>
#include <string>

namespace korvan::formula {
namespace {

// Formulas 0, 21, 22, 23, 25, 30, 31, 32, 91 and 98 are built by the interpreter from
// several lines; their rows carry name and captions only.
constexpr std::array<TBuiltInRebFormel, 26> kBuiltIn = {{
    {"0", "Schreibweise mit Rechenzeichen", "", "Formel"},
    {"1", "Dreieck/Prisma (über Seite und Höhe)", "<1>*<2>/2*<3>", "Seite|Höhe|Länge"},
    {"2", "Dreieck/Prisma (über zwei Seiten und Innenwinkel)", "<1>*<2>*SIN(<3>)/2*<4>",
     "Seite a|Seite b|Winkel|Länge"},
    {"3", "Dreieck/Prisma (über drei Seiten)",
     "SQRT((<1>+<2>+<3>)*(<2>+<3>-<1>)*(<1>+<3>-<2>)*(<1>+<2>-<3>))/4*<4>",
     "Seite a|Seite b|Seite c|Länge"},
    {"4", "Rechteck/Quader", "<1>*<2>*<3>", "Länge|Breite|Höhe"},
    {"5", "Trapez/Trapezprisma - Menge zwischen zwei Flächen", "(<1>+<2>)/2*<3>*<4>",
     "Seite a|Seite c|Höhe|Länge"},
    {"6", "Kreisbogen/Zylindermantel", "<1>*PI*<2>/180*<3>", "Radius|Winkel (Grad)|Länge"},
    {"7", "Kreissektor/Zylindersektor", "SQR(<1>)*PI*<2>/360*<3>", "Radius|Winkel (Grad)|Länge"},
    {"8", "Kreisringsektor/Hohlzylindersektor", "(SQR(<1>)-SQR(<2>))*PI*<3>/360*<4>",
     "Radius außen|Radius innen|Winkel (Grad)|Länge"},
    {"9", "Parabelsegment/Parabelsegmentkörper", "2/3*<1>*<2>*<3>", "Sehne|Höhe|Länge"},
    {"10", "Tangenteneck/Tangenteneckkörper", "SQR(<1>)*(TAN(<2>/2)-PI*<2>/360)*<3>",
     "Radius|Winkel|Länge"},
    {"11", "Kegelstumpfsektormantel", "(<1>+<2>)*PI*<3>*<4>/360",
     "Radius unten|Radius oben|Mantellinie|Winkel (Grad)"},
    {"12", "Kegelstumpfsektor", "(SQR(<1>)+<1>*<2>+SQR(<2>))*PI*<3>/3*<4>/360",
     "Radius unten|Radius oben|Höhe|Winkel (Grad)"},
    {"13", "Prisma", "<1>*<2>", "Grundfläche|Höhe"},
    {"14", "Dreieckspyramidenstumpf", "(<1>+<2>+SQRT(<1>*<2>))*<3>/3",
     "Grundfläche|Deckfläche|Höhe"},
    {"15", "Rechteckpyramidenstumpf", "(<1>*<2>+<3>*<4>+(<1>+<3>)*(<2>+<4>))*<5>/6",
     "Länge unten|Breite unten|Länge oben|Breite oben|Höhe"},
    {"20", "Pythagoras (Seiten im rechtwinkligen Dreieck)", "SQRT(SQR(<1>)+SQR(<2>))",
     "Kathete a|Kathete b"},
    {"21", "Geraden aus Koordinaten (Streckenzug)", "", "x|y"},
    {"22", "Fläche aus Koordinaten", "", "x|y"},
    {"23", "Mengen aus Querprofilen (Summe der Teilflächen)", "",
     "Station|Fläche 1|Fläche 2|Fläche 3|Fläche 4"},
    {"25", "Mengen aus Querprofilen (Trapez)", "", "Station|Breite|Höhe links|Höhe rechts"},
    {"30", "Wurzel aus Formel", "", "Formel"},
    {"31", "Arithmetisches Mittel", "", "Wert 1|Wert 2|Wert 3|Wert 4|Wert 5"},
    {"32", "Quadratisches Mittel", "", "Wert 1|Wert 2|Wert 3|Wert 4|Wert 5"},
    {"91", "Formel über mehrere Zeilen", "", "Formel"},
    {"98", "Mengen aus Querprofilen (mittlere Höhe)", "", "Station|Breite|Höhe 1|Höhe 2|Höhe 3"},
}};

TRebFormelRow RowOf(const TBuiltInRebFormel& row) {
  return {std::string(row.nr), std::string(row.bezeichnung), std::string(row.formel),
          std::string(row.spaltentext)};
}

}  // namespace

std::span<const TBuiltInRebFormel> BuiltInRebFormeln() {
  return kBuiltIn;
}

std::optional<TRebFormelRow> TBuiltInRebFormelSource::Find(std::string_view nr) {
  const std::optional<std::string> key = CatalogueKeyOf(nr);
  if (!key) return std::nullopt;
  for (const TBuiltInRebFormel& row : kBuiltIn) {
    if (CatalogueKeyOf(row.nr) == key) return RowOf(row);
  }
  return std::nullopt;
}

int FillBuiltInRebFormeln(TTbRebFormel& table) {
  if (table.GetFirstKey("")) return 0;
  int entered = 0;
  for (const TBuiltInRebFormel& row : kBuiltIn) {
    table.InitRecord();
    table.Rec().FormelNr.Set(row.nr);
    table.Rec().Bezeichnung.Set(row.bezeichnung);
    table.Rec().Formel.Set(row.formel);
    table.Rec().Spaltentext.Set(row.spaltentext);
    if (int result = table.UpDateRec(); result != 0) return -result;
    ++entered;
  }
  return entered;
}

data::TInitialRowsResult FillBuiltInRebFormelRows(data::TStdDb& db) {
  TTbRebFormel table(db);
  const int entered = FillBuiltInRebFormeln(table);
  if (entered < 0) return {-entered, table.LastErrorText()};
  if (entered == 0) return {};
  return {0, "REB-Formeln (23.003): " + std::to_string(entered)};
}

}  // namespace korvan::formula
