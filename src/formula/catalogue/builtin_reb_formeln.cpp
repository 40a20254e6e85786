#include "formula/catalogue/builtin_reb_formeln.h"

#include <array>
#include <string>

namespace korvan::formula {
namespace {

// The formulas of the published list with their values. Angles are in the unit the
// project measures in (gon after the list, or degrees): the share of the full circle
// divides by the half turn of that unit, IF(COS(200)>-0,999;180;200), which is 200 in
// gon and 180 in degrees. Formula 20 puts sign 1 between its squares, so that "+" gives
// the hypotenuse and "-" a cathetus. The numbers that stand for several lines (0, 21,
// 22, 23, 25, 30, 31, 32, 91, 98) are built by the 23.003 interpreter from their run of
// lines; their rows give what one line contributes where a variant reads the catalogue:
// the formula text itself (0, 91), the segment or Gauss strip to a following point held
// in values 3 and 4 (21, 22), the cross-section of a station (23, 25, 98), the root and
// the means of one line's values (30, 31, 32).
constexpr std::array<TBuiltInRebFormel, 26> kBuiltIn = {{
    {"0", "Schreibweise mit Rechenzeichen", "<1>", "Formel"},
    {"1", "Dreieck/Prisma (über Seite und Höhe)", "<1>*<2>/2*<3>", "Seite a|Höhe h|Länge H"},
    {"2", "Dreieck/Prisma (über zwei Seiten und Innenwinkel)", "<1>*<2>*SIN(<3>)/2*<4>",
     "Seite a|Seite b|Winkel|Länge H"},
    {"3", "Dreieck/Prisma (über drei Seiten)",
     "SQRT((<1>+<2>+<3>)*(<2>+<3>-<1>)*(<1>+<3>-<2>)*(<1>+<2>-<3>))/4*<4>",
     "Seite a|Seite b|Seite c|Länge H"},
    {"4", "Rechteck/Quader", "<1>*<2>*<3>", "Seite a|Seite b|Höhe H"},
    {"5", "Trapez/Trapezprisma - Menge zwischen zwei Flächen", "(<1>+<2>)/2*<3>*<4>",
     "Seite a (Fläche 1)|Seite b (Fläche 2)|Höhe h (Abstand)|Länge H"},
    {"6", "Kreisbogen/Zylindermantel", "<1>*<2>*PI/IF(COS(200)>-0,999;180;200)*<3>",
     "Radius|Winkel|Höhe H"},
    {"7", "Kreissektor/Zylindersektor", "SQR(<1>)*<2>*PI/(2*IF(COS(200)>-0,999;180;200))*<3>",
     "Radius|Winkel|Höhe H"},
    {"8", "Kreisringsektor/Hohlzylindersektor",
     "(SQR(<1>)-SQR(<2>))*<3>*PI/(2*IF(COS(200)>-0,999;180;200))*<4>",
     "Radius außen|Radius innen|Winkel|Höhe H"},
    {"9", "Parabelsegment/Parabelsegmentkörper", "2/3*<1>*<2>*<3>", "Sehne s|Höhe h|Länge H"},
    {"10", "Tangenteneck/Tangenteneckkörper",
     "SQR(<1>)*(TAN(<2>/2)-<2>*PI/(2*IF(COS(200)>-0,999;180;200)))*<3>", "Radius|Winkel|Länge H"},
    {"11", "Kegelstumpfsektormantel",
     "(<1>+<2>)*SQRT(SQR(<1>-<2>)+SQR(<4>))*<3>*PI/(2*IF(COS(200)>-0,999;180;200))",
     "Radius unten|Radius oben|Winkel|Höhe H"},
    {"12", "Kegelstumpfsektor",
     "(SQR(<1>)+<1>*<2>+SQR(<2>))*<3>*<4>*PI/(6*IF(COS(200)>-0,999;180;200))",
     "Radius unten|Radius oben|Winkel|Höhe H"},
    {"13", "Prisma", "<1>*<2>", "Grundfläche|Höhe"},
    {"14", "Dreieckspyramidenstumpf", "(<1>+<2>+SQRT(<1>*<2>))*<3>/3",
     "Grundfläche|Deckfläche|Höhe"},
    {"15", "Rechteckpyramidenstumpf", "(<1>*<2>+<3>*<4>+(<1>+<3>)*(<2>+<4>))*<5>/6",
     "Länge unten|Breite unten|Länge oben|Breite oben|Höhe"},
    {"20", "Pythagoras (Seiten im rechtwinkligen Dreieck)", "SQRT(SQR(<1>)<-1>SQR(<2>))",
     "Seite a|Seite b"},
    {"21", "Geraden aus Koordinaten", "SQRT(SQR(<3>-<1>)+SQR(<4>-<2>))",
     "x|y|x Folgepunkt|y Folgepunkt"},
    {"22", "Fläche aus Koordinaten", "(<1>+<3>)*(<2>-<4>)/2", "x|y|x Folgepunkt|y Folgepunkt"},
    {"23", "Mengen aus Querprofilen (Summe der Teilflächen)", "<2>+<3>+<4>+<5>",
     "Station|Fläche 1|Fläche 2|Fläche 3|Fläche 4"},
    {"25", "Mengen aus Querprofilen (Trapez)", "<2>*(<3>+<4>)/2",
     "Station|Breite|Höhe links|Höhe rechts"},
    {"30", "Wurzel aus Formel", "SQRT(<1>)", "Formel"},
    {"31", "Arithmetisches Mittel", "(<1>+<2>+<3>+<4>+<5>)/5",
     "Wert 1|Wert 2|Wert 3|Wert 4|Wert 5"},
    {"32", "Quadratisches Mittel", "SQRT((SQR(<1>)+SQR(<2>)+SQR(<3>)+SQR(<4>)+SQR(<5>))/5)",
     "Wert 1|Wert 2|Wert 3|Wert 4|Wert 5"},
    {"91", "Formel über mehrere Zeilen", "<1>", "Formel"},
    {"98", "Mengen aus Querprofilen (mittlere Höhe)", "<2>*(<3>+<4>+<5>)/3",
     "Station|Breite|Höhe 1|Höhe 2|Höhe 3"},
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
