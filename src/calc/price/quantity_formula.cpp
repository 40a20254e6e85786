#include "calc/price/quantity_formula.h"

#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "calc/price/lv_calculation.h"
#include "formula/language/formel_obj.h"

namespace korvan::calc {

TFormulaVariables ItemVariables(data::TStdDb& lv_db, int32_t item_id) {
  TFormulaVariables variables;
  boq::TTbVariable table(lv_db);
  for (const boq::t_Variable_2600& variable : table.ListOf(item_id, boq::kOwnerLvItem)) {
    if (variable.InAktiv == 0) variables[variable.Name.Get()] = variable.Menge;
  }
  return variables;
}

double EvaluateFormula(std::string_view formula, const TFormulaVariables& variables) {
  formula::TFormelObj evaluator;
  int error = evaluator.SetFormel(formula);
  double result = 0.0;
  if (error == 0) {
    for (const auto& [name, value] : variables) evaluator.SetVariable(name, value);
    result = evaluator.GetResult(error);
  }
  if (error != 0) {
    throw ECalcError("Formel \"" + std::string(formula) +
                     "\": " + formula::TFormelObj::GetFehler(error));
  }
  return result;
}

}  // namespace korvan::calc
