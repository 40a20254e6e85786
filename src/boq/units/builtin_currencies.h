#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "boq/units/tb_waehrung.h"
#include "data/tables/table_registry.h"

namespace korvan::boq {

// A row of the currency list a new currency table starts with: the euro as the base and
// the former national currencies of the euro countries with their fixed rates. A row's
// ID is its country number, the euro's the euro id.
struct TBuiltInCurrency {
  std::string_view symbol;
  double faktor;  // units per euro
  int32_t nachkomma;
  int32_t nachkomma2;
  bool basis;
  bool national;
  int32_t id_land;
  std::string_view land;
  std::string_view bez;
};

std::span<const TBuiltInCurrency> BuiltInCurrencies();

// Fills an empty currency table with the built-in list; a table that holds any currency
// is left alone. The number of rows entered, or a negative kernel code.
int FillBuiltInCurrencies(TTbWaehrung& table);

// The built-in list as the first rows of a new master-data database, reported with the
// symbols entered ("Gelesene Währungen: " and a line break before them).
data::TInitialRowsResult FillBuiltInCurrencyRows(data::TStdDb& db);

}  // namespace korvan::boq
