#include "boq/units/qty_notation.h"

#include <cmath>
#include <numeric>

namespace korvan::boq {
namespace {

constexpr int64_t kInchesPerFoot = 12;
// Beyond this many steps of resolution a double no longer holds whole steps.
constexpr double kLargestSteps = 9.0e15;

int64_t StepsPerInch(TValFormat format) {
  return format == TValFormat::vfFtIn10 ? 10 : 64;
}

// "13/64", reduced; empty for no fraction.
std::string Fraction(int64_t numerator, int64_t denominator) {
  if (numerator == 0) return {};
  const int64_t divisor = std::gcd(numerator, denominator);
  return std::to_string(numerator / divisor) + "/" + std::to_string(denominator / divisor);
}

// Whole inches and the rest of an inch in steps, as written after the feet.
std::string InchText(int64_t steps, TValFormat format) {
  const int64_t per_inch = StepsPerInch(format);
  const int64_t whole = steps / per_inch;
  const int64_t rest = steps % per_inch;
  if (format == TValFormat::vfFtIn10) {
    return std::to_string(whole) + (rest == 0 ? "" : "," + std::to_string(rest)) + "\"";
  }
  if (whole == 0 && rest != 0) return Fraction(rest, per_inch) + "\"";
  return std::to_string(whole) + (rest == 0 ? "" : " " + Fraction(rest, per_inch)) + "\"";
}

// A small scanner over what people type for a length.
class QtyScanner {
 public:
  explicit QtyScanner(std::string_view text) : text_(text) {}

  void SkipBlanks() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
  }
  bool AtEnd() {
    SkipBlanks();
    return pos_ == text_.size();
  }
  bool AtDigit() const { return pos_ < text_.size() && text_[pos_] >= '0' && text_[pos_] <= '9'; }
  bool Sees(std::string_view token) const { return text_.substr(pos_, token.size()) == token; }
  bool Eat(std::string_view token) {
    if (!Sees(token)) return false;
    pos_ += token.size();
    return true;
  }
  bool EatFootMark() {
    SkipBlanks();
    if (Sees("''")) return false;  // two apostrophes are the inch mark of a plain keyboard
    return Eat("feet") || Eat("foot") || Eat("ft") || Eat("\xE2\x80\xB2") || Eat("'");
  }
  bool EatInchMark() {
    SkipBlanks();
    return Eat("inches") || Eat("inch") || Eat("in") || Eat("\"") || Eat("''") ||
           Eat("\xE2\x80\xB3");
  }
  // Digits with an optional decimal comma or point.
  std::optional<double> Decimal(bool* whole) {
    std::string plain;
    while (AtDigit()) plain += text_[pos_++];
    *whole = true;
    if (pos_ < text_.size() && (text_[pos_] == ',' || text_[pos_] == '.') && !plain.empty()) {
      ++pos_;
      plain += '.';
      *whole = false;
      if (!AtDigit()) return std::nullopt;
      while (AtDigit()) plain += text_[pos_++];
    }
    if (plain.empty() || plain.size() > 18) return std::nullopt;
    return std::stod(plain);
  }
  // "a/b" at the cursor; nullopt (cursor unchanged) when there is none.
  std::optional<double> FractionHere() {
    const size_t start = pos_;
    bool whole = false;
    const std::optional<double> numerator = Decimal(&whole);
    if (numerator && whole && Eat("/")) {
      const std::optional<double> denominator = Decimal(&whole);
      if (denominator && whole && *denominator > 0) return *numerator / *denominator;
    }
    pos_ = start;
    return std::nullopt;
  }
  // A number of inches: "6", "6,5", "6 1/2", "6-1/2", "1/2".
  std::optional<double> Inches() {
    SkipBlanks();
    if (const std::optional<double> fraction = FractionHere()) return fraction;
    bool whole = false;
    const std::optional<double> number = Decimal(&whole);
    if (!number) return std::nullopt;
    if (!whole) return number;
    const size_t before = pos_;
    if (Eat("-") || (pos_ < text_.size() && text_[pos_] == ' ')) {
      SkipBlanks();
      if (const std::optional<double> fraction = FractionHere()) return *number + *fraction;
    }
    pos_ = before;
    return number;
  }

 private:
  std::string_view text_;
  size_t pos_ = 0;
};

// Inches of a text with marks; `plain` is set when the text is a bare number.
std::optional<double> ReadInches(QtyScanner& scan, bool* plain) {
  *plain = false;
  const std::optional<double> first = scan.Inches();
  if (!first) return std::nullopt;
  if (scan.EatFootMark()) {
    if (scan.AtEnd()) return *first * kInchesPerFoot;
    const std::optional<double> inches = scan.Inches();
    if (!inches) return std::nullopt;
    scan.EatInchMark();
    return *first * kInchesPerFoot + *inches;
  }
  if (!scan.EatInchMark()) *plain = true;
  return first;
}

}  // namespace

bool IsImperial(TValFormat format) {
  return format == TValFormat::vfFtIn64 || format == TValFormat::vfFtIn10 ||
         format == TValFormat::vfInFrc;
}

std::string FormatImperialQty(double value, TValFormat format) {
  const bool in_inches = format == TValFormat::vfInFrc;
  const double inches = std::fabs(in_inches ? value : value * kInchesPerFoot);
  const double steps_exact = inches * static_cast<double>(StepsPerInch(format));
  if (!std::isfinite(steps_exact) || steps_exact > kLargestSteps) return "####";
  const auto steps = static_cast<int64_t>(std::llround(steps_exact));
  const std::string sign = value < 0 && steps > 0 ? "-" : "";
  if (in_inches) return sign + InchText(steps, format);
  const int64_t per_foot = kInchesPerFoot * StepsPerInch(format);
  const int64_t rest = steps % per_foot;
  return sign + std::to_string(steps / per_foot) + "'" +
         (rest == 0 ? "" : " " + InchText(rest, format));
}

std::optional<double> ParseImperialQty(std::string_view text, TValFormat format) {
  QtyScanner scan(text);
  scan.SkipBlanks();
  const bool negative = scan.Eat("-");
  bool plain = false;
  const std::optional<double> inches = ReadInches(scan, &plain);
  if (!inches || !scan.AtEnd()) return std::nullopt;
  double value = *inches;
  if (!plain && format != TValFormat::vfInFrc) value /= kInchesPerFoot;
  return negative ? -value : value;
}

}  // namespace korvan::boq
