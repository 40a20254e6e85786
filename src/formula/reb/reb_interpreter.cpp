#include "formula/reb/reb_interpreter.h"

#include <cctype>

namespace korvan::formula {

TRebExpression TREBFormelInterpreter::Execute(const std::vector<TRebLine>& lines, size_t index) {
  TRebExpression out = Build(lines, index);
  std::string& text = out.expression;
  const size_t first = text.find_first_not_of(' ');
  text = first == std::string::npos ? std::string() : text.substr(first);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  // The evaluator reads "-(" as an operator without left operand; "-1*(" is meant.
  if (text.rfind("-(", 0) == 0) text.insert(1, "1*");
  if (!text.empty() && text.back() == '=') text.pop_back();
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return out;
}

std::optional<std::string> TREBFormelInterpreter::CatalogueExpression(
    const TRebLine& line, const std::string& nr, const std::function<std::string(int)>& value) {
  const std::optional<TRebFormelRow> row = catalogue_.Find(CatalogueNumberOf(nr));
  if (!row || row->formel.empty()) return std::nullopt;
  return PutInValues(row->formel, line, value);
}

std::string CatalogueNumberOf(std::string nr) {
  if (nr.size() == 3 && nr[0] == '7') nr[0] = '1';
  if (nr.size() == 3 && nr[0] == '8') nr[0] = '2';
  return nr;
}

std::string PutInValues(const std::string& formel, const TRebLine& line,
                        const std::function<std::string(int)>& value) {
  std::string text;
  size_t at = 0;
  while (at < formel.size()) {
    const size_t open = formel.find('<', at);
    const size_t close = open == std::string::npos ? open : formel.find('>', open);
    if (close == std::string::npos) break;
    const std::string inside = formel.substr(open + 1, close - open - 1);
    const bool negative = !inside.empty() && inside[0] == '-';
    const std::string digits = negative ? inside.substr(1) : inside;
    const bool reference = !digits.empty() && digits.size() <= 2 &&
                           std::isdigit(static_cast<unsigned char>(digits[0])) &&
                           std::isdigit(static_cast<unsigned char>(digits.back()));
    text += formel.substr(at, open - at);
    if (!reference) {
      // A "<" that is a comparison stays as it is.
      text += '<';
      at = open + 1;
      continue;
    }
    const int n = std::stoi(digits);
    if (n >= 1 && !negative) {
      text += value(n);
    } else {
      const char sign = tValue::SignOf(line, n == 0 ? 1 : n);
      text += sign == ' ' ? '+' : sign;
    }
    at = close + 1;
  }
  return text + formel.substr(at);
}

std::unique_ptr<TREBFormelInterpreter> CoREB003FormelInterpreter::Create(
    TRebFormelSource& catalogue, TRebSettings settings) {
  return std::make_unique<TREB003FormelInterpreter>(catalogue, settings);
}

std::unique_ptr<TREBFormelInterpreter> CoREB004FormelInterpreter::Create(
    TRebFormelSource& catalogue, TRebSettings settings) {
  return std::make_unique<TREB004FormelInterpreter>(catalogue, settings);
}

std::unique_ptr<TREBFormelInterpreter> CreateRebFormelInterpreter(TRebFormelSource& catalogue,
                                                                  TRebSettings settings) {
  if (settings.version == TRebVersion::k23004) {
    return CoREB004FormelInterpreter::Create(catalogue, settings);
  }
  return CoREB003FormelInterpreter::Create(catalogue, settings);
}

}  // namespace korvan::formula
