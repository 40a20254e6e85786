#include "testing/json_value.h"

#include <cstdlib>
#include <stdexcept>

#include "data/common/cp1252.h"

namespace korvan::testing {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  JsonValue Document() {
    JsonValue value = Value();
    SkipSpace();
    if (at_ != text_.size()) Fail("the end of the text");
    return value;
  }

 private:
  [[noreturn]] void Fail(const std::string& expected) const {
    throw std::runtime_error("JSON at byte " + std::to_string(at_) + ": " + expected + " expected");
  }

  void SkipSpace() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t')) {
      ++at_;
    }
  }

  bool Take(char c) {
    SkipSpace();
    if (at_ < text_.size() && text_[at_] == c) {
      ++at_;
      return true;
    }
    return false;
  }

  void Expect(char c) {
    if (!Take(c)) Fail(std::string("'") + c + "'");
  }

  bool TakeWord(std::string_view word) {
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
  }

  JsonValue Value() {
    SkipSpace();
    if (at_ >= text_.size()) Fail("a value");
    const char c = text_[at_];
    if (c == '{') return ObjectValue();
    if (c == '[') return ArrayValue();
    if (c == '"') return JsonValue(StringValue());
    if (TakeWord("true")) return JsonValue(true);
    if (TakeWord("false")) return JsonValue(false);
    if (TakeWord("null")) return JsonValue();
    return JsonValue(NumberValue());
  }

  JsonValue ObjectValue() {
    Expect('{');
    JsonValue::Object members;
    if (Take('}')) return JsonValue(std::move(members));
    do {
      SkipSpace();
      std::string key = StringValue();
      Expect(':');
      if (!members.emplace(key, Value()).second) Fail("a key not used before (\"" + key + "\")");
    } while (Take(','));
    Expect('}');
    return JsonValue(std::move(members));
  }

  JsonValue ArrayValue() {
    Expect('[');
    JsonValue::Array items;
    if (Take(']')) return JsonValue(std::move(items));
    do {
      items.push_back(Value());
    } while (Take(','));
    Expect(']');
    return JsonValue(std::move(items));
  }

  std::string StringValue() {
    if (at_ >= text_.size() || text_[at_] != '"') Fail("'\"'");
    ++at_;
    std::string value;
    while (at_ < text_.size() && text_[at_] != '"') {
      const char c = text_[at_++];
      if (static_cast<unsigned char>(c) < 0x20) Fail("no control character in a string");
      if (c != '\\') {
        value += c;
        continue;
      }
      if (at_ >= text_.size()) Fail("an escape");
      const char escape = text_[at_++];
      switch (escape) {
        case '"':
          value += '"';
          break;
        case '\\':
          value += '\\';
          break;
        case '/':
          value += '/';
          break;
        case 'b':
          value += '\b';
          break;
        case 'f':
          value += '\f';
          break;
        case 'n':
          value += '\n';
          break;
        case 'r':
          value += '\r';
          break;
        case 't':
          value += '\t';
          break;
        case 'u':
          AppendUtf8(value, HexUnit());
          break;
        default:
          Fail("a valid escape");
      }
    }
    if (at_ >= text_.size()) Fail("the end of the string");
    ++at_;
    return value;
  }

  unsigned HexUnit() {
    if (at_ + 4 > text_.size()) Fail("four hex digits");
    unsigned unit = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = text_[at_++];
      unit <<= 4;
      if (c >= '0' && c <= '9') {
        unit |= static_cast<unsigned>(c - '0');
      } else if (c >= 'a' && c <= 'f') {
        unit |= static_cast<unsigned>(c - 'a' + 10);
      } else if (c >= 'A' && c <= 'F') {
        unit |= static_cast<unsigned>(c - 'A' + 10);
      } else {
        Fail("a hex digit");
      }
    }
    return unit;
  }

  void AppendUtf8(std::string& out, unsigned unit) {
    unsigned code = unit;
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (!TakeWord("\\u")) Fail("the second half of a surrogate pair");
      const unsigned low = HexUnit();
      if (low < 0xDC00 || low > 0xDFFF) Fail("a low surrogate");
      code = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      Fail("no lone low surrogate");
    }
    data::AppendUtf8(static_cast<char32_t>(code), &out);
  }

  // The JSON grammar: -? (0 | [1-9][0-9]*) (. [0-9]+)? ([eE] [+-]? [0-9]+)?
  double NumberValue() {
    const std::size_t start = at_;
    auto digits = [this] {
      const std::size_t first = at_;
      while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') ++at_;
      return at_ - first;
    };
    if (at_ < text_.size() && text_[at_] == '-') ++at_;
    if (at_ < text_.size() && text_[at_] == '0') {
      ++at_;
    } else if (digits() == 0) {
      at_ = start;
      Fail("a value");
    }
    if (at_ < text_.size() && text_[at_] == '.') {
      ++at_;
      if (digits() == 0) Fail("digits after the decimal point");
    }
    if (at_ < text_.size() && (text_[at_] == 'e' || text_[at_] == 'E')) {
      ++at_;
      if (at_ < text_.size() && (text_[at_] == '+' || text_[at_] == '-')) ++at_;
      if (digits() == 0) Fail("digits of the exponent");
    }
    return std::strtod(std::string(text_.substr(start, at_ - start)).c_str(), nullptr);
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

[[noreturn]] void WrongKind(const char* wanted) {
  throw std::runtime_error(std::string("JSON value is not ") + wanted);
}

}  // namespace

bool JsonValue::Bool() const {
  if (const bool* value = std::get_if<bool>(&value_)) return *value;
  WrongKind("a Boolean");
}

double JsonValue::Number() const {
  if (const double* value = std::get_if<double>(&value_)) return *value;
  WrongKind("a number");
}

const std::string& JsonValue::String() const {
  if (const std::string* value = std::get_if<std::string>(&value_)) return *value;
  WrongKind("a string");
}

const JsonValue::Array& JsonValue::Items() const {
  if (const Array* value = std::get_if<Array>(&value_)) return *value;
  WrongKind("an array");
}

const JsonValue::Object& JsonValue::Members() const {
  if (const Object* value = std::get_if<Object>(&value_)) return *value;
  WrongKind("an object");
}

const JsonValue& JsonValue::operator[](std::string_view key) const {
  const Object& members = Members();
  const auto found = members.find(key);
  if (found == members.end())
    throw std::runtime_error("JSON member \"" + std::string(key) + "\" missing");
  return found->second;
}

bool JsonValue::Has(std::string_view key) const {
  return IsObject() && Members().find(key) != Members().end();
}

JsonValue ParseJson(std::string_view text) {
  return Parser(text).Document();
}

}  // namespace korvan::testing
