#pragma once

#include <vector>

#include "formula/language/formel_item.h"

namespace korvan::formula {

// Folds the parts of a formula that do not depend on a variable into their values
// (`Simplify`): parentheses and function calls whose content holds no variable, and an
// operator between two values where the evaluation would apply it to just these values
// (no operator beside them binds first). The result of the formula stays the same, to
// the last bit: a part stays as written when evaluating it gives an error, so that the
// formula still reports it. A formula that does not pass the syntax checks is left
// alone. The number of folds.
int SimplifyFormel(std::vector<TFormelItem>& items, double angle_factor);

}  // namespace korvan::formula
