#include "boq/units/builtin_currencies.h"

#include <array>

namespace korvan::boq {
namespace {

constexpr std::array<TBuiltInCurrency, 13> kBuiltIn = {{
    {"DEM", 1.95583, 2, 2, false, true, 49, "Deutschland", "Deutsche Mark"},
    {"BEF", 40.3399, 0, 0, false, false, 32, "Belgien", "Belgischer Franken"},
    {"FIM", 5.94573, 2, 2, false, false, 358, "Finnland", "Finnmark"},
    {"FRF", 6.55957, 2, 2, false, false, 33, "Frankreich", "Französischer Franc"},
    {"IEP", 0.787564, 2, 2, false, false, 353, "Irland", "Irisches Pfund"},
    {"ITL", 1936.27, 0, 2, false, false, 39, "Italien", "Italienische Lira"},
    {"LUF", 40.3399, 2, 2, false, false, 352, "Luxemburg", "Luxemburgischer Franken"},
    {"NLG", 2.20371, 2, 2, false, false, 31, "Niederlande", "Niederländischer Gulden"},
    {"ATS", 13.7603, 2, 2, false, false, 43, "Österreich", "Österreichischer Schilling"},
    {"PTE", 200.482, 2, 2, false, false, 351, "Portugal", "Portugiesischer Escudo"},
    {"ESP", 166.386, 0, 2, false, false, 34, "Spanien", "Spanische Peseta"},
    {"GRD", 340.75, 0, 0, false, false, 30, "Griechenland", "Griechische Drachme"},
    {"EUR", 1.0, 2, 2, true, false, kEuroCurrencyId, "Europäische Währungsunion", "Euro"},
}};

}  // namespace

std::span<const TBuiltInCurrency> BuiltInCurrencies() {
  return kBuiltIn;
}

int FillBuiltInCurrencies(TTbWaehrung& table) {
  if (table.GetFirstKey("")) return 0;
  int entered = 0;
  for (const TBuiltInCurrency& row : kBuiltIn) {
    table.InitRecord();
    t_Waehrung& currency = table.Rec();
    currency.ID = row.id_land;
    currency.Land.Set(row.land);
    currency.Bez.Set(row.bez);
    currency.Symbol.Set(row.symbol);
    currency.Faktor = row.faktor;
    currency.Nachkomma = row.nachkomma;
    currency.Nachkomma2 = row.nachkomma2;
    currency.kzBasis = row.basis ? 1 : 0;
    currency.kzLand = row.national ? 1 : 0;
    currency.IdLand = row.id_land;
    if (int result = table.UpDateRec(); result != 0) return -result;
    ++entered;
  }
  return entered;
}

data::TInitialRowsResult FillBuiltInCurrencyRows(data::TStdDb& db) {
  TTbWaehrung table(db);
  const int entered = FillBuiltInCurrencies(table);
  if (entered < 0) return {-entered, table.LastErrorText()};
  if (entered == 0) return {};
  std::string symbols;
  for (const TBuiltInCurrency& row : kBuiltIn) {
    symbols += (symbols.empty() ? "" : ", ") + std::string(row.symbol);
  }
  return {0, "Gelesene Währungen: \n" + symbols};
}

}  // namespace korvan::boq
