#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "data/tables/table_registry.h"
#include "formula/catalogue/reb_formel_row.h"
#include "formula/catalogue/tb_reb_formel.h"

namespace korvan::formula {

// A formula of the REB 23.003 list as a new catalogue starts with it.
struct TBuiltInRebFormel {
  std::string_view nr;
  std::string_view bezeichnung;
  std::string_view formel;
  std::string_view spaltentext;
};

// The numbered formulas of REB 23.003 (numbers, names and values after the published
// list, the formulas written out with their value references). Angles are in the unit the
// project measures in, gon or degrees, also where they give a share of the circle.
std::span<const TBuiltInRebFormel> BuiltInRebFormeln();

// The built-in list as a formula source.
class TBuiltInRebFormelSource : public TRebFormelSource {
 public:
  std::optional<TRebFormelRow> Find(std::string_view nr) override;
};

// Fills an empty catalogue with the built-in list; a catalogue that holds any formula is
// left alone. The number of formulas entered, or a negative kernel code.
int FillBuiltInRebFormeln(TTbRebFormel& table);

// The built-in list as the first rows of a new master-data database.
data::TInitialRowsResult FillBuiltInRebFormelRows(data::TStdDb& db);

}  // namespace korvan::formula
