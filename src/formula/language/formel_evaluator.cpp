#include "formula/language/formel_evaluator.h"

#include <cmath>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_functions.h"
#include "formula/language/formel_operators.h"

namespace korvan::formula {
namespace {

constexpr int kNone = -1;

bool IsInfix(const TFormelItem& item) {
  return item.Klasse == kClassBinary && item.Code != kPercent;
}

double Snapped(double x) {
  return std::fabs(x) < kZeroSnap ? 0 : x;
}

// The tokens as a doubly linked list, so that replacing an operator and its operands by
// the result costs the same wherever it happens. A group is the part between a "(" and
// its ")", or the whole formula (bounds kNone).
class Reducer {
 public:
  Reducer(const std::vector<TFormelItem>& items, double angle_factor)
      : angle_factor_(angle_factor) {
    nodes_.reserve(items.size());
    for (size_t i = 0; i < items.size(); ++i) {
      nodes_.push_back({items[i], static_cast<int>(i) - 1,
                        i + 1 < items.size() ? static_cast<int>(i) + 1 : kNone});
    }
    first_ = items.empty() ? kNone : 0;
  }

  TFormelResult Run() {
    std::vector<int> opens;
    std::vector<int> close_of(nodes_.size(), kNone);
    std::vector<int> open_stack;
    for (int i = 0; i < static_cast<int>(nodes_.size()); ++i) {
      if (nodes_[i].item.Code == kOpen) {
        opens.push_back(i);
        open_stack.push_back(i);
      } else if (nodes_[i].item.Code == kClose && !open_stack.empty()) {
        close_of[open_stack.back()] = i;
        open_stack.pop_back();
      }
    }
    // The last "(" is always an innermost one.
    for (auto open = opens.rbegin(); open != opens.rend(); ++open) {
      if (!ApplyOperators(*open, close_of[*open])) return outcome_;
      if (!CloseGroup(*open, close_of[*open])) return outcome_;
    }
    if (!ApplyOperators(kNone, kNone)) return outcome_;
    return TopResult();
  }

 private:
  struct Node {
    TFormelItem item;
    int prev;
    int next;
  };

  int Next(int i) const { return i == kNone ? first_ : nodes_[i].next; }
  int Prev(int i) const { return nodes_[i].prev; }
  bool IsValueAt(int i, int bound) const {
    return i != kNone && i != bound && nodes_[i].item.IsValue();
  }
  double ValueAt(int i) const { return Snapped(nodes_[i].item.Value); }

  void Unlink(int i) {
    const int prev = nodes_[i].prev;
    const int next = nodes_[i].next;
    if (prev == kNone) {
      first_ = next;
    } else {
      nodes_[prev].next = next;
    }
    if (next != kNone) nodes_[next].prev = prev;
  }

  // Ends the evaluation; false so that callers can return it.
  bool Finish(TFormelResult result) {
    outcome_ = result;
    return false;
  }

  bool Store(int at, TFormelResult result) {
    if (result.error != 0) return Finish({0, result.error});
    nodes_[at].item.SetDouble(result.value);
    return true;
  }

  // Applies every applicable operator of the group, level by level, leftmost first.
  bool ApplyOperators(int open, int close) {
    for (uint8_t level : kPriorityLevels) {
      int at = Next(open);
      while (at != close && at != kNone) {
        const TFormelItem& item = nodes_[at].item;
        const bool operates = item.Klasse == kClassFunction || item.Klasse == kClassBinary;
        if (!operates || PriorityOf(static_cast<TFormelCode>(item.Code)) != level) {
          at = Next(at);
          continue;
        }
        if (item.Klasse == kClassFunction) {
          if (!ApplyFunctionAt(at, open, close)) return false;
        } else if (!ApplyBinaryAt(at, open, close)) {
          return false;
        }
      }
    }
    return true;
  }

  // A function whose right neighbour is a value is applied; the function before it, if
  // any, may now have a value to its right and is looked at next. `at` moves on.
  bool ApplyFunctionAt(int& at, int open, int close) {
    const int operand = Next(at);
    // ROUNDK in its written form waits for its arguments; it is applied as infix.
    if (nodes_[at].item.Code == kRoundK || !IsValueAt(operand, close)) {
      at = Next(at);
      return true;
    }
    const auto code = static_cast<TFormelCode>(nodes_[at].item.Code);
    if (!Store(at, ApplyFunction(code, ValueAt(operand), angle_factor_))) return false;
    Unlink(operand);
    const int before = Prev(at);
    const bool function_before =
        before != kNone && before != open && nodes_[before].item.Klasse == kClassFunction;
    at = function_before ? before : Next(at);
    return true;
  }

  // A binary operator (or "%") without values where it needs them ends the evaluation
  // with 0 and no error.
  bool ApplyBinaryAt(int& at, int open, int close) {
    const int left = Prev(at);
    if (!IsValueAt(left, open)) return Finish({0, 0, true});
    const auto code = static_cast<TFormelCode>(nodes_[at].item.Code);
    if (code == kPercent) {
      if (!Store(left, ApplyBinary(code, ValueAt(left), 0))) return false;
      Unlink(at);
      at = Next(left);
      return true;
    }
    const int right = Next(at);
    if (!IsValueAt(right, close)) return Finish({0, 0, true});
    if (!Store(left, ApplyBinary(code, ValueAt(left), ValueAt(right)))) return false;
    Unlink(at);
    Unlink(right);
    at = Next(left);
    return true;
  }

  // The tokens between open and close (at most `limit` of them).
  std::vector<int> Content(int open, int close, size_t limit) const {
    std::vector<int> content;
    for (int at = Next(open); at != close && at != kNone && content.size() < limit; at = Next(at)) {
      content.push_back(at);
    }
    return content;
  }

  bool IsArgumentList(const std::vector<int>& content, size_t values) const {
    if (content.size() != 2 * values - 1) return false;
    for (size_t i = 0; i < content.size(); ++i) {
      const TFormelItem& item = nodes_[content[i]].item;
      if (i % 2 == 0 ? !item.IsValue() : item.Code != kCodeSeparator) return false;
    }
    return true;
  }

  // A group that holds no applicable operator any more: one value loses its
  // parentheses, "()" is 0, IF(c;x;y) and ROUNDK(a;b) are reduced; anything else is
  // stuck.
  bool CloseGroup(int open, int close) {
    const std::vector<int> content = Content(open, close, 6);
    if (content.empty()) {
      nodes_[open].item.SetDouble(0);
      Unlink(close);
      return true;
    }
    if (content.size() == 1 && nodes_[content[0]].item.IsValue()) {
      Unlink(open);
      Unlink(close);
      return true;
    }
    const int before = Prev(open);
    const uint8_t caller = before == kNone ? kCodeValue : nodes_[before].item.Code;
    if (caller == kIf && IsArgumentList(content, 3)) {
      // The condition is tested exactly, without the tolerance of "=".
      const double condition = nodes_[content[0]].item.Value;
      nodes_[before].item.SetDouble(nodes_[content[condition != 0 ? 2 : 4]].item.Value);
      for (int at : content) Unlink(at);
      Unlink(open);
      Unlink(close);
      return true;
    }
    if (caller == kRoundK && nodes_[before].item.Klasse == kClassFunction &&
        IsArgumentList(content, 2)) {
      // ROUNDK ( a ; b ) becomes a ROUNDK b.
      TFormelItem infix = nodes_[before].item;
      infix.Klasse = kClassBinary;
      nodes_[before].item.SetDouble(nodes_[content[0]].item.Value);
      nodes_[open].item = infix;
      nodes_[close].item.SetDouble(nodes_[content[2]].item.Value);
      for (int at : content) Unlink(at);
      return true;
    }
    return Finish({0, kFormelStuck});
  }

  TFormelResult TopResult() const {
    const std::vector<int> content = Content(kNone, kNone, 2);
    if (content.empty()) return {0, 0};
    if (content.size() > 1) return {0, kFormelStuck};
    const TFormelItem& last = nodes_[content[0]].item;
    if (!last.IsValue()) return {0, kFormelNoValueLeft};
    return {last.Value, 0};
  }

  std::vector<Node> nodes_;
  int first_ = kNone;
  double angle_factor_;
  TFormelResult outcome_;
};

}  // namespace

int CheckFormelSyntax(const std::vector<TFormelItem>& items) {
  int depth = 0;
  int surplus = 0;
  for (const TFormelItem& item : items) {
    if (item.Code == kOpen) ++depth;
    if (item.Code == kClose) depth > 0 ? --depth : ++surplus;
  }
  if (depth > 0) return depth == 1 ? kFormelOneOpen : kFormelManyOpen;
  if (surplus > 0) return surplus == 1 ? kFormelOneSurplusClose : kFormelManySurplusClose;
  for (size_t i = 0; i + 1 < items.size(); ++i) {
    const TFormelItem& next = items[i + 1];
    if (IsInfix(items[i]) && (next.Klasse == kClassBinary || next.Code == kClose)) {
      return kFormelOperatorAfterOperator;
    }
  }
  if (!items.empty()) {
    const TFormelItem& last = items.back();
    if (IsInfix(last) || last.Klasse == kClassFunction || last.Klasse == kClassIf) {
      return kFormelOperatorAtEnd;
    }
  }
  return 0;
}

TFormelResult EvaluateFormel(const std::vector<TFormelItem>& items, double angle_factor) {
  return Reducer(items, angle_factor).Run();
}

}  // namespace korvan::formula
