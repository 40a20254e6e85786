#include "formula/language/formel_obj.h"

#include <algorithm>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_evaluator.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_simplify.h"

namespace korvan::formula {

TFormelObj TFormelObj::CreateNeugrad() {
  TFormelObj formula;
  formula.gon_ = true;
  return formula;
}

int TFormelObj::SetFormel(std::string_view text) {
  tokens_ = TokenizeFormel(text, gon_);
  unknown_cursor_ = 0;
  var_cursor_ = 0;
  return tokens_.error;
}

void TFormelObj::SetVariable(std::string_view name, double value) {
  variables_[UpperFormel(name)] = value;
}

std::vector<std::string> TFormelObj::Unknowns() const {
  std::vector<std::string> names = Variables();
  std::erase_if(names, [&](const std::string& name) { return variables_.count(name) != 0; });
  return names;
}

std::vector<std::string> TFormelObj::Variables() const {
  std::vector<std::string> names;
  for (const TFormelItem& item : tokens_.items) {
    if (!item.IsVariable()) continue;
    if (std::find(names.begin(), names.end(), item.Text) == names.end()) {
      names.push_back(item.Text);
    }
  }
  return names;
}

bool TFormelObj::GetFirstVar(std::string& name) {
  var_cursor_ = 0;
  return GetNextVar(name);
}

bool TFormelObj::GetNextVar(std::string& name) {
  const std::vector<std::string> names = Variables();
  if (var_cursor_ >= names.size()) return false;
  name = names[var_cursor_++];
  return true;
}

int TFormelObj::ExchangeVar() {
  int exchanged = 0;
  for (TFormelItem& item : tokens_.items) {
    if (!item.IsVariable()) continue;
    const auto found = variables_.find(item.Text);
    if (found == variables_.end()) continue;
    const double value = item.Negative ? -found->second : found->second;
    item.SetDouble(value);
    item.Text = FormatFormelNumber(value);
    item.Negative = false;
    ++exchanged;
  }
  return exchanged;
}

int TFormelObj::Simplify() {
  if (tokens_.error != 0) return 0;
  return SimplifyFormel(tokens_.items, tokens_.angle_factor);
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
  var_cursor_ = 0;
}

void TFormelObj::Clear() {
  ClearFormel();
  ClearVar();
}

}  // namespace korvan::formula
