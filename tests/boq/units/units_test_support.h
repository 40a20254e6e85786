#pragma once

#include <cstdint>
#include <string>

#include "boq/units/builtin_currencies.h"
#include "boq/units/currency_list.h"

namespace korvan::boq::testing {

// The Deutsche Mark, converted to and from the euro by its fixed rate.
inline constexpr int16_t kDem = 49;

// The built-in currencies as a list, without a currency table.
inline TCurrencyList BuiltInList() {
  TCurrencyList list;
  for (const TBuiltInCurrency& row : BuiltInCurrencies()) {
    list.Add(TCurrency{row.id_land, std::string(row.symbol), row.faktor, row.nachkomma,
                       row.nachkomma2, row.id_land});
  }
  return list;
}

}  // namespace korvan::boq::testing
