#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// A small JSON reader for tests of the --json output: it checks that a text is one valid
// JSON value (strict: no trailing commas, no comments, nothing after the value) and gives
// access to its parts, so that tests assert fields rather than substrings.
namespace korvan::testing {

class JsonValue {
 public:
  using Array = std::vector<JsonValue>;
  using Object = std::map<std::string, JsonValue, std::less<>>;

  JsonValue() = default;
  explicit JsonValue(bool value) : value_(value) {}
  explicit JsonValue(double value) : value_(value) {}
  explicit JsonValue(std::string value) : value_(std::move(value)) {}
  explicit JsonValue(Array value) : value_(std::move(value)) {}
  explicit JsonValue(Object value) : value_(std::move(value)) {}

  bool IsNull() const { return std::holds_alternative<std::monostate>(value_); }
  bool IsObject() const { return std::holds_alternative<Object>(value_); }
  bool IsArray() const { return std::holds_alternative<Array>(value_); }

  // The typed accessors throw std::runtime_error when the value is of another kind.
  bool Bool() const;
  double Number() const;
  const std::string& String() const;
  const Array& Items() const;
  const Object& Members() const;
  // A member of an object; throws when it is missing.
  const JsonValue& operator[](std::string_view key) const;
  bool Has(std::string_view key) const;

 private:
  std::variant<std::monostate, bool, double, std::string, Array, Object> value_;
};

// Parses `text` as one JSON value (surrounding white space allowed); throws
// std::runtime_error naming the byte position and what was expected.
JsonValue ParseJson(std::string_view text);

}  // namespace korvan::testing
