#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "formula/reb/reb_interpreter.h"
#include "formula/reb/reb_line.h"

namespace korvan::formula {

// What evaluating one line gave: its result (stored in the line's `Ergebnis`), the error
// code, the expression that was evaluated, and what it adds to the item's quantity.
struct TRebLineOutcome {
  double result = 0;
  int error = 0;
  std::string expression;
  double contribution = 0;
};

// The outcome of all lines of one owner and the quantity they add up to.
struct TRebSheetOutcome {
  std::vector<TRebLineOutcome> lines;
  double sum = 0;
};

// The value of a name a formula uses that belongs to the owner of the lines (its
// variables), or nothing.
using TRebVariableLookup = std::function<std::optional<double>(const std::string& name)>;

// Where the lines of the measurement protocol go; nothing when it is not active.
using TRebProtocol = std::function<void(const std::string& line)>;

// Evaluates the lines of one owner in their order, as the measurement sheet does: each
// line's expression from the interpreter, its names from the owner's variables or from
// earlier lines' addresses, factor and sign applied, sub-totals and item sums formed,
// and the contributions added up. Comment lines are not evaluated. An expression that
// ends in an error gives one protocol line (RebProtocolLine).
TRebSheetOutcome EvaluateRebLines(TREBFormelInterpreter& interpreter, std::vector<TRebLine>& lines,
                                  const TRebVariableLookup& variables = {},
                                  const TRebProtocol& protocol = {});

// The protocol line of an expression that ended in an error: the error text, the line
// (position + 1 among the owner's lines) and the expression with its "=".
std::string RebProtocolLine(int error, size_t position, const std::string& expression);

// Whether the line holds a formula text rather than the values of a numbered formula:
// no number, 0, 30, or a number ending in 91.
bool IsFreeFormula(const TRebLine& line);

// Completes a free line ending in ")" or a digit with "=" (FREBAutoIstGleich).
void CompleteWithEquals(TRebLine& line);

}  // namespace korvan::formula
