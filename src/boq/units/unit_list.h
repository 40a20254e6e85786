#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "boq/units/unit_record.h"
#include "data/tables/std_db.h"

namespace korvan::boq {

// The units of one language of the unit table, looked up by symbol or id. Entries carry
// their unit by symbol; a symbol found here links the entry to the unit's decimals and
// notation, one that is not stays free text (exchange files allow any symbol).
class TUnitList {
 public:
  // Every unit of `language` in the unit table of `master_db`; EStoredLvError (naming the
  // database) when the table cannot be read.
  static TUnitList Load(data::TStdDb& master_db, int16_t language);

  void Add(const t_Einheit& unit) { units_.push_back(unit); }
  // The unit whose symbol is `symbol` (UTF-8, exact: "m" and "M" are different units).
  const t_Einheit* FindSymbol(std::string_view symbol) const;
  const t_Einheit* FindId(int16_t id) const;
  // The unit of an entry: by its id, else by its symbol.
  const t_Einheit* Of(int16_t id, std::string_view symbol) const;

 private:
  std::vector<t_Einheit> units_;
};

}  // namespace korvan::boq
