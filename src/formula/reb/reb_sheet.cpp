#include "formula/reb/reb_sheet.h"

#include <cctype>
#include <cmath>

#include "boq/units/rounding.h"
#include "data/common/text_catalogue.h"
#include "formula/language/formel_errors.h"
#include "formula/language/formel_obj.h"

namespace korvan::formula {
namespace {

// The program text that names the line in a protocol line.
constexpr int kTextInZeile = 1670;

// The stored text of a line holds at most 70 characters with its "=".
constexpr size_t kMaxAutoCompleteLength = 69;

bool FactorApplies(double factor) {
  return factor != 0 && factor != 1 && std::isfinite(factor);
}

// A name without a variable of the owner may be a line address: padded with leading
// "0" to six characters, the last earlier line of that address gives its result. A
// numeric address whose result is 0 stays unknown.
std::optional<double> AddressValue(const std::vector<TRebLine>& lines, size_t index,
                                   std::string name) {
  if (!name.empty() && name[0] == '#') name.erase(0, 1);
  if (name.empty()) return std::nullopt;
  const auto padded = [](std::string text) {
    return text.size() < 6 ? std::string(6 - text.size(), '0') + text : text;
  };
  const std::string address = padded(name);
  std::optional<double> found;
  for (size_t i = 0; i < index; ++i) {
    if (lines[i].Id < lines[index].Id && !lines[i].Adresse.empty() &&
        padded(lines[i].Adresse) == address) {
      found = lines[i].Ergebnis;
    }
  }
  const bool letter = std::isalpha(static_cast<unsigned char>(name[0])) != 0;
  if (found && (letter || std::fabs(*found) > 0.0001)) return found;
  return std::nullopt;
}

TRebLineOutcome Evaluate(const TREBFormelInterpreter& interpreter, const TRebExpression& built,
                         const std::vector<TRebLine>& lines, size_t index,
                         const TRebVariableLookup& variables, const TRebProtocol& protocol) {
  TRebLineOutcome outcome;
  outcome.expression = built.expression;
  if (built.keep_result) {
    outcome.result = lines[index].Ergebnis;
  } else if (built.result) {
    outcome.result = *built.result;
    outcome.error = built.error;
  } else if (!built.expression.empty()) {
    TFormelObj formula =
        interpreter.Settings().altgrad ? TFormelObj() : TFormelObj::CreateNeugrad();
    formula.SetFormel(built.expression);
    for (const std::string& name : formula.Unknowns()) {
      std::optional<double> value = variables ? variables(name) : std::nullopt;
      if (!value) value = AddressValue(lines, index, name);
      if (value) formula.SetVariable(name, *value);
    }
    outcome.result = formula.GetResult(outcome.error);
    if (outcome.error != 0 && protocol) {
      protocol(RebProtocolLine(outcome.error, index, built.expression));
    }
  }
  return outcome;
}

// The 23.003 variant applies factor and sign of "H", "P" and "Z" lines itself and adds
// what sub-totals and item sums sum up.
double MarkedResult(const std::vector<TRebLine>& lines, const std::vector<double>& own_results,
                    size_t index) {
  const double own = own_results[index];
  const char mark = lines[index].KZ;
  double result = own;
  if (mark == kMarkSubTotal || mark == kMarkItemSum) {
    for (size_t i = index; i-- > 0;) {
      const TRebLine& before = lines[i];
      if (before.KZ == kMarkItemSum || (mark == kMarkSubTotal && before.KZ == kMarkSubTotal)) {
        break;
      }
      if (before.IsQuantityLine()) result += before.Ergebnis;
      if (mark == kMarkItemSum && before.KZ == kMarkSubTotal) result += own_results[i];
    }
  }
  return result;
}

}  // namespace

bool IsFreeFormula(const TRebLine& line) {
  const std::string& nr = line.FormelNr;
  if (nr.empty()) return true;
  if (nr.find_first_not_of("0123456789") != std::string::npos || nr.size() > 3) return false;
  const int number = std::stoi(nr);
  return number == 0 || number == 30 || number % 100 == 91;
}

void CompleteWithEquals(TRebLine& line) {
  if (!IsFreeFormula(line)) return;
  if (line.Formel.empty() || line.Formel.size() >= kMaxAutoCompleteLength) return;
  const char last = line.Formel.back();
  if (last == ')' || std::isdigit(static_cast<unsigned char>(last))) line.Formel += '=';
}

std::string RebProtocolLine(int error, size_t position, const std::string& expression) {
  return FehlerText(error) + " " + data::TTextCatalogue::German().cLoadStr(kTextInZeile) +
         std::to_string(position + 1) + ": " + expression + "=";
}

TRebSheetOutcome EvaluateRebLines(TREBFormelInterpreter& interpreter, std::vector<TRebLine>& lines,
                                  const TRebVariableLookup& variables,
                                  const TRebProtocol& protocol) {
  TRebSheetOutcome sheet;
  std::vector<double> own_results(lines.size(), 0);
  const bool v003 = interpreter.Version() == TRebVersion::k23003;
  if (interpreter.Settings().auto_ist_gleich) {
    for (TRebLine& line : lines) CompleteWithEquals(line);
  }
  for (size_t i = 0; i < lines.size(); ++i) {
    TRebLine& line = lines[i];
    if (line.IsComment()) {
      sheet.lines.emplace_back();
      continue;
    }
    const TRebExpression built = interpreter.Execute(lines, i);
    if (built.mark) line.KZ = *built.mark;
    TRebLineOutcome outcome = Evaluate(interpreter, built, lines, i, variables, protocol);
    double own = outcome.result;
    const bool marked_total =
        line.KZ == kMarkAuxiliary || line.KZ == kMarkItemSum || line.KZ == kMarkSubTotal;
    if (outcome.error == 0 && !built.keep_result &&
        (line.IsQuantityLine() || (v003 && marked_total) || !v003)) {
      if (FactorApplies(built.factor)) own *= built.factor;
      const bool deduction =
          built.negative && (!line.IsQuantityLine() || std::fabs(own) > 0.000001);
      if (deduction) own = -own;
    }
    // Lines show their result with three decimals; rounded lines add up to what they show.
    if (interpreter.Settings().zeilen_runden) {
      own = boq::RoundValue(own, 3, data::TRoundingType::rtCommercial);
    }
    own_results[i] = own;
    outcome.result = v003 ? MarkedResult(lines, own_results, i) : own;
    line.Ergebnis = outcome.result;
    if (line.IsQuantityLine()) {
      outcome.contribution = line.Ergebnis;
    } else if (line.KZ == kMarkItemSum || line.KZ == kMarkSubTotal) {
      outcome.contribution = own;
    }
    sheet.sum += outcome.contribution;
    sheet.lines.push_back(std::move(outcome));
  }
  return sheet;
}

}  // namespace korvan::formula
