#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "boq/units/tb_prj_wae_faktor.h"
#include "boq/units/tb_waehrung.h"

namespace korvan::boq {

// A currency as conversions need it.
struct TCurrency {
  int32_t id = 0;
  std::string symbol;
  double factor = 1.0;  // units per unit of the base currency
  int decimals = 2;     // of amounts
  int unit_price_decimals = 2;
  int32_t id_land = 0;
};

// The currencies known to a run, read once from the currency table.
class TCurrencyList {
 public:
  // Every currency of the table, in id order.
  static TCurrencyList Load(TTbWaehrung& table);

  void Add(TCurrency currency);
  const TCurrency* Find(int32_t id) const;
  // By symbol, ignoring the case of ASCII letters.
  const TCurrency* FindSymbol(std::string_view symbol) const;
  const std::vector<TCurrency>& All() const { return currencies_; }

  // A project's own rates replace factor and decimals of the currencies of their country
  // number: the rate valid on `date`.
  void ApplyProjectRates(TTbPrjWaeFaktor& rates, std::string_view prj_nr, int32_t date);

  // "Gelesene Währungen: " and a line break, then one line per currency.
  std::string DescribeRead() const;

 private:
  std::vector<TCurrency> currencies_;
};

}  // namespace korvan::boq
