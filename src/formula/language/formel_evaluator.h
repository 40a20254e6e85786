#pragma once

#include <vector>

#include "formula/language/formel_item.h"

namespace korvan::formula {

// The result of a formula and its error code (0 when it has none; the result is then 0).
struct TFormelResult {
  double value = 0;
  int error = 0;
  bool cut = false;  // ended at an operator without a value beside it (result 0, no error)
};

// The checks made before a formula is evaluated: parentheses that are not closed (9113,
// 9114) or closed too often (9115, 9116), an operator right after a binary operator
// (9117), an operator at the end (9118). 0 when the formula passes.
int CheckFormelSyntax(const std::vector<TFormelItem>& items);

// Evaluates tokens whose variables all carry values: the innermost parenthesis first
// (the last "("), within it the operator of highest priority (the leftmost of equal
// ones), until one value is left. IF(c;x;y) and ROUNDK(a;b) are reduced once their
// arguments are single values; "()" is 0. A binary operator without a value beside it
// ends the evaluation with 0 and no error; a step where nothing applies is error 16.
// Works without recursion, in time linear in the number of tokens.
TFormelResult EvaluateFormel(const std::vector<TFormelItem>& items, double angle_factor);

}  // namespace korvan::formula
