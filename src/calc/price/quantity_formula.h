#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "data/tables/std_db.h"

// Quantities and amounts of the calculation given as formulas ("3,50*2,10", "L*B" with
// the item's variables), evaluated by the formula language.
namespace korvan::calc {

using TFormulaVariables = std::map<std::string, double>;

// The values of an LV item's variables by name (the item's entry id).
TFormulaVariables ItemVariables(data::TStdDb& lv_db, int32_t item_id);

// The value of `formula` with `variables`; ECalcError (lv_calculation.h) naming the
// formula and the formula language's error.
double EvaluateFormula(std::string_view formula, const TFormulaVariables& variables);

}  // namespace korvan::calc
