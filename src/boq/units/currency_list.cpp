#include "boq/units/currency_list.h"

#include <algorithm>

#include "data/common/ascii_text.h"
#include "data/common/message_format.h"

namespace korvan::boq {

TCurrencyList TCurrencyList::Load(TTbWaehrung& table) {
  TCurrencyList list;
  for (bool more = table.GetFirstKey(""); more; more = table.GetNextKey("")) {
    const t_Waehrung& row = table.Rec();
    list.Add(
        TCurrency{row.ID, row.Symbol.Get(), row.Faktor, row.Nachkomma, row.Nachkomma2, row.IdLand});
  }
  return list;
}

void TCurrencyList::Add(TCurrency currency) {
  currencies_.push_back(std::move(currency));
}

const TCurrency* TCurrencyList::Find(int32_t id) const {
  const auto found = std::find_if(currencies_.begin(), currencies_.end(),
                                  [&](const TCurrency& c) { return c.id == id; });
  return found == currencies_.end() ? nullptr : &*found;
}

const TCurrency* TCurrencyList::FindSymbol(std::string_view symbol) const {
  const auto found = std::find_if(currencies_.begin(), currencies_.end(), [&](const TCurrency& c) {
    return data::EqualsIgnoringCase(c.symbol, symbol);
  });
  return found == currencies_.end() ? nullptr : &*found;
}

void TCurrencyList::ApplyProjectRates(TTbPrjWaeFaktor& rates, std::string_view prj_nr,
                                      int32_t date) {
  for (TCurrency& currency : currencies_) {
    if (const auto rate = rates.RateOn(prj_nr, currency.id_land, date)) {
      currency.factor = rate->Faktor;
      currency.decimals = rate->NachKomma;
    }
  }
}

std::string TCurrencyList::DescribeRead() const {
  std::string text = "Gelesene Währungen: \n";
  for (const TCurrency& currency : currencies_) {
    text += data::Printf("%s (%d): Faktor %.6g, %d Nachkommastellen\n", currency.symbol.c_str(),
                         currency.id, currency.factor, currency.decimals);
  }
  return text;
}

}  // namespace korvan::boq
