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

// The value of items [from, to) evaluated alone, when that gives a value cleanly.
std::optional<double> ValueOf(const Items& items, size_t from, size_t to, double angle_factor) {
  const TFormelResult result =
      EvaluateFormel(Items(items.begin() + from, items.begin() + to), angle_factor);
  if (result.error != 0 || result.cut) return std::nullopt;
  return result.value;
}

TFormelItem ValueItem(double value) {
  TFormelItem folded;
  folded.SetDouble(value);
  folded.Text = FormatFormelNumber(value);
  return folded;
}

// Whether the token that follows a value lets a fold end at that value: nothing, ")",
// ";" or an operator of at most `priority`.
bool FreeAfter(const TFormelItem* next, uint8_t priority) {
  if (next == nullptr || next->Code == kClose || next->Code == kCodeSeparator) return true;
  return next->Klasse == kClassBinary && Priority(*next) <= priority;
}

// Builds the simplified formula token by token: whatever ends at the token just put
// out is folded at once, so each token is looked at a bounded number of times.
class Folder {
 public:
  explicit Folder(double angle_factor) : angle_factor_(angle_factor) {}

  void Put(const TFormelItem& item, const TFormelItem* next) {
    out_.push_back(item);
    if (item.Code == kOpen) {
      groups_.push_back({out_.size() - 1, false, false});
    } else if (item.IsVariable() && !groups_.empty()) {
      groups_.back().has_variable = true;
    } else if (item.Code == kClose && !groups_.empty()) {
      CloseGroup();
    }
    FoldAtEnd(next);
  }

  Items Take() { return std::move(out_); }
  int Folds() const { return folds_; }

 private:
  struct Group {
    size_t open;
    bool has_variable;
    bool blocked;  // holds a part that cannot be folded
  };

  const TFormelItem& Back(size_t n) const { return out_[out_.size() - 1 - n]; }
  bool Has(size_t n) const { return out_.size() > n; }

  bool Fold(size_t from) {
    const std::optional<double> value = ValueOf(out_, from, out_.size(), angle_factor_);
    if (!value) return false;
    out_.resize(from);
    out_.push_back(ValueItem(*value));
    ++folds_;
    return true;
  }

  void CloseGroup() {
    const Group group = groups_.back();
    groups_.pop_back();
    bool folded = false;
    if (!group.has_variable && !group.blocked) {
      const bool called = group.open > 0 && IsFunction(out_[group.open - 1]);
      folded = Fold(called ? group.open - 1 : group.open);
    }
    if (!groups_.empty()) {
      groups_.back().has_variable |= group.has_variable;
      groups_.back().blocked |= !folded && !group.has_variable;
    }
  }

  void FoldAtEnd(const TFormelItem* next) {
    for (bool again = true; again;) {
      again = FoldFunction(next) || FoldPercent() || FoldInfix(next);
    }
  }

  bool FoldFunction(const TFormelItem* next) {
    if (!Has(1) || !Back(0).IsValue()) return false;
    const TFormelItem& function = Back(1);
    if (function.Klasse != kClassFunction || function.Code == kRoundK) return false;
    return FreeAfter(next, 100) && Fold(out_.size() - 2);
  }

  bool FoldPercent() {
    if (!Has(1) || Back(0).Code != kPercent || !Back(1).IsValue()) return false;
    if (Has(2) && IsFunction(Back(2))) return false;
    return Fold(out_.size() - 2);
  }

  bool FoldInfix(const TFormelItem* next) {
    if (!Has(2) || !Back(0).IsValue() || !IsInfix(Back(1)) || !Back(2).IsValue()) return false;
    const uint8_t priority = Priority(Back(1));
    if (Has(3)) {
      const TFormelItem& left = Back(3);
      const bool free = left.Code == kOpen || left.Code == kCodeSeparator ||
                        (IsInfix(left) && Priority(left) < priority);
      if (!free) return false;
    }
    return FreeAfter(next, priority) && Fold(out_.size() - 3);
  }

  double angle_factor_;
  Items out_;
  std::vector<Group> groups_;
  int folds_ = 0;
};

}  // namespace

int SimplifyFormel(Items& items, double angle_factor) {
  if (CheckFormelSyntax(items) != 0) return 0;
  Folder folder(angle_factor);
  for (size_t at = 0; at < items.size(); ++at) {
    folder.Put(items[at], at + 1 < items.size() ? &items[at + 1] : nullptr);
  }
  items = folder.Take();
  return folder.Folds();
}

}  // namespace korvan::formula
