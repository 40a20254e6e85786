#include "formula/language/formel_obj.h"

#include <algorithm>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_evaluator.h"

namespace korvan::formula {

TFormelObj TFormelObj::CreateNeugrad() {
  TFormelObj formula;
  formula.gon_ = true;
  return formula;
}

int TFormelObj::SetFormel(std::string_view text) {
  tokens_ = TokenizeFormel(text, gon_);
  unknown_cursor_ = 0;
  return tokens_.error;
}

void TFormelObj::SetVariable(std::string_view name, double value) {
  variables_[UpperFormel(name)] = value;
}

std::vector<std::string> TFormelObj::Unknowns() const {
  std::vector<std::string> names;
  for (const TFormelItem& item : tokens_.items) {
    if (!item.IsVariable() || variables_.count(item.Text) != 0) continue;
    if (std::find(names.begin(), names.end(), item.Text) == names.end()) {
      names.push_back(item.Text);
    }
  }
  return names;
}

bool TFormelObj::GetFirstUnknown(std::string& name) {
  unknown_cursor_ = 0;
  return GetNextUnknown(name);
}

bool TFormelObj::GetNextUnknown(std::string& name) {
  const std::vector<std::string> names = Unknowns();
  if (unknown_cursor_ >= names.size()) return false;
  name = names[unknown_cursor_++];
  return true;
}

double TFormelObj::GetResult(int& error) {
  error = tokens_.error;
  if (error == 0 && !Unknowns().empty()) error = kFormelUnknownVariable;
  if (error == 0) error = CheckFormelSyntax(tokens_.items);
  TFormelResult result;
  if (error == 0) {
    std::vector<TFormelItem> items = tokens_.items;
    for (TFormelItem& item : items) {
      if (!item.IsVariable()) continue;
      const double value = variables_.at(item.Text);
      item.SetDouble(item.Negative ? -value : value);
    }
    result = EvaluateFormel(items, tokens_.angle_factor);
    error = result.error;
  }
  if (error != 0) {
    ClearFormel();
    return 0;
  }
  return result.value;
}

std::string TFormelObj::GetFehler(int code) {
  return FehlerText(code);
}

std::string TFormelObj::GetFormel() const {
  std::string text;
  for (const TFormelItem& item : tokens_.items) {
    const bool word = item.Text.size() > 1 && item.Klasse == kClassBinary;
    if (word) text += ' ';
    text += item.Negative ? "-" + item.Text : item.Text;
    if (word) text += ' ';
  }
  return text;
}

void TFormelObj::ClearFormel() {
  tokens_ = TTokenized();
  unknown_cursor_ = 0;
}

void TFormelObj::Clear() {
  ClearFormel();
  ClearVar();
}

}  // namespace korvan::formula
