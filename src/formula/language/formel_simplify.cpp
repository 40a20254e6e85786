#include "formula/language/formel_simplify.h"

#include <algorithm>
#include <optional>

#include "formula/language/formel_evaluator.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_operators.h"

namespace korvan::formula {
namespace {

using Items = std::vector<TFormelItem>;

bool IsInfix(const TFormelItem& item) {
  return item.Klasse == kClassBinary && item.Code != kPercent;
}

bool IsFunction(const TFormelItem& item) {
  return item.Klasse == kClassFunction || item.Klasse == kClassIf;
}

uint8_t Priority(const TFormelItem& item) {
  return PriorityOf(static_cast<TFormelCode>(item.Code));
}

// Where a part ends: nothing that could take its value follows.
bool EndsPart(const Items& items, size_t at) {
  return at >= items.size() || items[at].Code == kClose || items[at].Code == kCodeSeparator;
}

// The value of items [from, to) evaluated alone, when that gives a value cleanly.
std::optional<double> ValueOf(const Items& items, size_t from, size_t to, double angle_factor) {
  const TFormelResult result =
      EvaluateFormel(Items(items.begin() + from, items.begin() + to), angle_factor);
  if (result.error != 0 || result.cut) return std::nullopt;
  return result.value;
}

void Replace(Items& items, size_t from, size_t to, double value) {
  TFormelItem folded;
  folded.SetDouble(value);
  folded.Text = FormatFormelNumber(value);
  items.erase(items.begin() + from + 1, items.begin() + to);
  items[from] = std::move(folded);
}

size_t ClosingOf(const Items& items, size_t open) {
  int depth = 0;
  for (size_t at = open; at < items.size(); ++at) {
    if (items[at].Code == kOpen) ++depth;
    if (items[at].Code == kClose && --depth == 0) return at;
  }
  return items.size();
}

// A parenthesis without variables, with the function or IF that takes it.
bool FoldGroup(Items& items, size_t open, double angle_factor) {
  const size_t close = ClosingOf(items, open);
  if (close == items.size()) return false;
  const auto begin = items.begin() + static_cast<std::ptrdiff_t>(open);
  const auto end = items.begin() + static_cast<std::ptrdiff_t>(close);
  if (std::any_of(begin, end, [](const TFormelItem& item) { return item.IsVariable(); })) {
    return false;
  }
  const size_t from = open > 0 && IsFunction(items[open - 1]) ? open - 1 : open;
  const std::optional<double> value = ValueOf(items, from, close + 1, angle_factor);
  if (!value) return false;
  Replace(items, from, close + 1, *value);
  return true;
}

// A function applied to a value, "%" after a value, or an infix operator between two
// values that binds before its neighbours.
bool FoldOperator(Items& items, size_t at, double angle_factor) {
  const TFormelItem& item = items[at];
  const bool value_after = at + 1 < items.size() && items[at + 1].IsValue();
  const bool value_before = at > 0 && items[at - 1].IsValue();
  if (item.Klasse == kClassFunction && item.Code != kRoundK && value_after) {
    if (!EndsPart(items, at + 2) && !(items[at + 2].Klasse == kClassBinary)) return false;
    const std::optional<double> value = ValueOf(items, at, at + 2, angle_factor);
    if (!value) return false;
    Replace(items, at, at + 2, *value);
    return true;
  }
  if (item.Code == kPercent && value_before) {
    if (at >= 2 && IsFunction(items[at - 2])) return false;
    const std::optional<double> value = ValueOf(items, at - 1, at + 1, angle_factor);
    if (!value) return false;
    Replace(items, at - 1, at + 1, *value);
    return true;
  }
  if (!IsInfix(item) || !value_before || !value_after) return false;
  const uint8_t priority = Priority(item);
  if (at >= 2) {
    const TFormelItem& left = items[at - 2];
    const bool free = left.Code == kOpen || left.Code == kCodeSeparator ||
                      (IsInfix(left) && Priority(left) < priority);
    if (!free) return false;
  }
  if (!EndsPart(items, at + 2)) {
    const TFormelItem& right = items[at + 2];
    if (right.Klasse != kClassBinary || Priority(right) > priority) return false;
  }
  const std::optional<double> value = ValueOf(items, at - 1, at + 2, angle_factor);
  if (!value) return false;
  Replace(items, at - 1, at + 2, *value);
  return true;
}

int FoldOnce(Items& items, double angle_factor) {
  int folds = 0;
  for (size_t at = 0; at < items.size(); ++at) {
    if (items[at].Code == kOpen && FoldGroup(items, at, angle_factor)) {
      ++folds;
    } else if (FoldOperator(items, at, angle_factor)) {
      ++folds;
      at = at > 1 ? at - 2 : 0;  // the value may now fold with what stands before it
    }
  }
  return folds;
}

}  // namespace

int SimplifyFormel(Items& items, double angle_factor) {
  if (CheckFormelSyntax(items) != 0) return 0;
  int folds = 0;
  for (int round = FoldOnce(items, angle_factor); round > 0;
       round = FoldOnce(items, angle_factor)) {
    folds += round;
  }
  return folds;
}

}  // namespace korvan::formula
