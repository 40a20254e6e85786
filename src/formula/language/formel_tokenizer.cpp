#include "formula/language/formel_tokenizer.h"

#include <cctype>
#include <optional>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_operators.h"

namespace korvan::formula {
namespace {

constexpr std::string_view kDelimiters = "()+-*/^\\<=>; %";

bool IsDelimiter(char c) {
  return kDelimiters.find(c) != std::string_view::npos;
}

size_t Utf8Length(std::string_view text) {
  size_t length = 0;
  for (char c : text) length += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return length;
}

// Blanks for control characters, comments in braces (nested) left out.
std::string WithoutComments(std::string_view text) {
  std::string plain;
  int depth = 0;
  for (char c : text) {
    if (c == '{') {
      ++depth;
    } else if (c == '}' && depth > 0) {
      --depth;
    } else if (depth == 0) {
      plain += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  return plain;
}

std::string_view Trimmed(std::string_view text) {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<double> ConstantValue(std::string_view name) {
  if (name == "PI") return kPi;
  if (name == "E§") return kEulerShort;
  if (name == "EPSILON") return kEpsilon;
  return std::nullopt;
}

TFormelItem OperatorItem(const TOperatorInfo& info) {
  TFormelItem item;
  item.Text = std::string(info.token);
  item.Code = info.code;
  switch (info.form) {
    case TOperatorForm::kPrefix:
      item.Klasse = kClassFunction;
      break;
    case TOperatorForm::kPostfix:
    case TOperatorForm::kInfix:
      item.Klasse = kClassBinary;
      break;
    case TOperatorForm::kIf:
      item.Klasse = kClassIf;
      break;
    case TOperatorForm::kParenthesis:
      break;
  }
  return item;
}

TFormelItem ValueItem(std::string text, double value) {
  TFormelItem item;
  item.Text = std::move(text);
  item.SetDouble(value);
  return item;
}

class Tokenizer {
 public:
  explicit Tokenizer(TTokenized& out) : out_(out) {}

  void Split(std::string_view text) {
    size_t i = 0;
    while (i < text.size() && out_.error == 0) {
      const char c = text[i];
      if (c == ' ') {
        ++i;
      } else if ((c == '+' || c == '-') && SignMayStandHere() && i + 1 < text.size() &&
                 !IsDelimiter(text[i + 1])) {
        i = Word(text, i, i + 1);
      } else if (c == '*' && i + 1 < text.size() && text[i + 1] == '*') {
        SetTerm("**");
        i += 2;
      } else if (IsDelimiter(c)) {
        SetTerm(std::string(1, c));
        ++i;
      } else {
        i = Word(text, i, i);
      }
    }
  }

 private:
  // The token from `start` up to the next delimiter (searched from `from`).
  size_t Word(std::string_view text, size_t start, size_t from) {
    size_t end = from;
    while (end < text.size() && !IsDelimiter(text[end])) ++end;
    SetTerm(text.substr(start, end - start));
    return end;
  }

  // A "+" or "-" is a sign where no left operand can stand: at the beginning, after "(",
  // ";", an operator or a function. After a value, a name, ")" or "%" it is an operator.
  bool SignMayStandHere() const {
    if (out_.items.empty()) return true;
    const TFormelItem& last = out_.items.back();
    if (last.IsValue() || last.IsVariable()) return false;
    return last.Code != kClose && last.Code != kPercent;
  }

  void SetTerm(std::string_view token) {
    if (Utf8Length(token) > kMaxTokenLength) {
      out_.error = kFormelTokenTooLong;
      return;
    }
    if (token == ";") {
      TFormelItem separator;
      separator.Text = ";";
      separator.Code = kCodeSeparator;
      out_.items.push_back(std::move(separator));
      return;
    }
    if (std::optional<TOperatorInfo> info = FindOperator(token)) {
      out_.items.push_back(OperatorItem(*info));
      return;
    }
    const bool negative = token.front() == '-';
    const std::string_view name = token.front() == '+' || negative ? token.substr(1) : token;
    const double sign = negative ? -1 : 1;
    if (std::isdigit(static_cast<unsigned char>(name.front())) || name.front() == ',') {
      const std::optional<double> number = ParseFormelNumber(name);
      if (!number) {
        out_.error = kFormelBadNumber;
        return;
      }
      out_.items.push_back(ValueItem(std::string(token), sign * *number));
    } else if (std::optional<double> constant = ConstantValue(name)) {
      out_.items.push_back(ValueItem(std::string(token), sign * *constant));
    } else if (std::optional<TOperatorInfo> info = FindOperator(name)) {
      // A signed function, "-SIN(30)", is the function times -1.
      if (negative) {
        out_.items.push_back(ValueItem("-1", -1));
        out_.items.push_back(OperatorItem(*FindOperator("*")));
      }
      out_.items.push_back(OperatorItem(*info));
    } else {
      TFormelItem variable;
      variable.Text = std::string(name);
      variable.Code = kCodeVariable;
      variable.Negative = negative;
      out_.items.push_back(std::move(variable));
    }
  }

  TTokenized& out_;
};

}  // namespace

std::string UpperFormel(std::string_view text) {
  std::string upper(text);
  for (size_t i = 0; i < upper.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(upper[i]);
    if (c < 0x80) {
      upper[i] = static_cast<char>(std::toupper(c));
    } else if (c == 0xC3 && i + 1 < upper.size()) {
      // ä ö ü (UTF-8 C3 A4, C3 B6, C3 BC) to Ä Ö Ü (C3 84, C3 96, C3 9C).
      const unsigned char next = static_cast<unsigned char>(upper[i + 1]);
      if (next == 0xA4 || next == 0xB6 || next == 0xBC)
        upper[i + 1] = static_cast<char>(next - 0x20);
      ++i;
    }
  }
  return upper;
}

TTokenized TokenizeFormel(std::string_view text, bool gon) {
  TTokenized out;
  const std::string upper = UpperFormel(text);
  const std::string_view formula = Trimmed(upper);
  out.angle_factor = formula.find("RAD") != std::string_view::npos ? 1
                     : gon                                         ? kPi / 200
                                                                   : kPi / 180;
  // Comments go first, so that "3*2= {Wand}" still ends with its "=".
  const std::string plain = WithoutComments(formula);
  std::string_view body = Trimmed(plain);
  if (!body.empty() && body.back() == '=') body.remove_suffix(1);
  Tokenizer(out).Split(body);
  if (out.error != 0) out.items.clear();
  return out;
}

}  // namespace korvan::formula
