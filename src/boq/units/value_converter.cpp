#include "boq/units/value_converter.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>

#include "boq/units/currency_records.h"
#include "boq/units/qty_notation.h"
#include "boq/units/rounding.h"
#include "data/common/message_format.h"
#include "data/records/null_values.h"

namespace korvan::boq {

using data::kAmountTolerance;
using data::Printf;
using data::TRoundingType;

TAvaUiValueConverter::TAvaUiValueConverter(TCurrencyList currencies,
                                           TValueConverterSettings settings)
    : currencies_(std::move(currencies)), settings_(settings) {}

TRoundingType TAvaUiValueConverter::CurrencyRounding() const {
  return settings_.rounding_types_available ? settings_.currency_rounding
                                            : TRoundingType::rtTillV2015;
}

double TAvaUiValueConverter::RoundCurrencyValue(double value, int decimals) const {
  return RoundValue(value, decimals, CurrencyRounding());
}

double TAvaUiValueConverter::RoundCurrencyValueEx(double value, int decimals, bool force) const {
  if (!settings_.round_amounts && !force) return value;
  return RoundCurrencyValue(value, decimals);
}

double TAvaUiValueConverter::RoundQtyValue(double value, int decimals) const {
  return RoundValue(
      value, decimals,
      settings_.rounding_types_available ? settings_.qty_rounding : TRoundingType::rtTillV2015);
}

int32_t TAvaUiValueConverter::Resolve(int32_t id) const {
  return id == data::kOwnerCurrencyId ? settings_.project_currency : id;
}

const TCurrency& TAvaUiValueConverter::Require(int32_t id) const {
  const TCurrency* currency = currencies_.Find(Resolve(id));
  if (currency == nullptr) {
    throw ECurrencyError(Printf("Währung %d ist in der Währungstabelle nicht eingetragen", id));
  }
  return *currency;
}

std::optional<double> TAvaUiValueConverter::TryConvertCurrencyValue(double value, int32_t from,
                                                                    int32_t to, bool round) const {
  if (from == kUnconvertedCurrencyId || std::fabs(value) < kAmountTolerance) return value;
  const TCurrency* source = currencies_.Find(Resolve(from));
  const TCurrency* target = currencies_.Find(Resolve(to));
  if (source == nullptr || target == nullptr) return std::nullopt;
  if (source->id == target->id) return value;
  double result = 0.0;
  if (source->id == kEuroCurrencyId) {
    result = value * target->factor;
  } else {
    result = (source->factor == 0.0 ? value : value / source->factor) * target->factor;
  }
  return round ? RoundCurrencyValueEx(result, target->decimals, false) : result;
}

double TAvaUiValueConverter::ConvertCurrencyValue(double value, int32_t from, int32_t to,
                                                  bool round) const {
  if (const auto converted = TryConvertCurrencyValue(value, from, to, round)) return *converted;
  Require(from);
  Require(to);
  return value;  // not reached: one of the two is unknown
}

void TAvaUiValueConverter::ConvertCurrency(data::t_WaeBetrag& amount, bool round) const {
  amount.Betrag =
      ConvertCurrencyValue(amount.Betrag, amount.IdWaehrung, settings_.project_currency, round);
  amount.IdWaehrung = static_cast<int16_t>(settings_.project_currency);
}

double TAvaUiValueConverter::CurrencyBrutto(double net, double vat_percent) const {
  const int decimals = settings_.amount_decimals;
  const double rounded_net = RoundCurrencyValueEx(net, decimals, false);
  return rounded_net + RoundCurrencyValue(rounded_net * vat_percent / 100.0, decimals);
}

double TAvaUiValueConverter::ClassicCurrencyBrutto(double net, double vat_percent) const {
  const int decimals = settings_.amount_decimals;
  const double rounded_net = RoundValue(net, decimals, TRoundingType::rtTillV2015);
  return rounded_net +
         RoundValue(rounded_net * vat_percent / 100.0, decimals, TRoundingType::rtTillV2015);
}

namespace {

// "%.*f" with thousands points and a decimal comma.
std::string GermanNumber(double value, int decimals) {
  const std::string plain = Printf("%.*f", std::clamp(decimals, 0, 15), value);
  const size_t point = plain.find('.');
  const size_t digits_end = point == std::string::npos ? plain.size() : point;
  const size_t digits_begin = plain[0] == '-' ? 1 : 0;
  std::string out = plain.substr(0, digits_begin);
  for (size_t i = digits_begin; i < digits_end; ++i) {
    if (i > digits_begin && (digits_end - i) % 3 == 0) out += '.';
    out += plain[i];
  }
  if (point != std::string::npos) out += ',' + plain.substr(point + 1);
  return out;
}

}  // namespace

std::string TAvaUiValueConverter::CurrencyValueToString(double value, int decimals) const {
  return GermanNumber(RoundCurrencyValue(value, decimals), decimals);
}

std::string TAvaUiValueConverter::CurrencyToString(const data::t_WaeBetrag& amount) const {
  const TCurrency* currency = currencies_.Find(Resolve(amount.IdWaehrung));
  const int decimals = currency ? currency->decimals : settings_.amount_decimals;
  std::string text = CurrencyValueToString(amount.Betrag, decimals);
  if (currency != nullptr) text += " " + currency->symbol;
  return text;
}

std::string TAvaUiValueConverter::EPToStr(double value, int ep_decimals) const {
  const TCurrency* currency = currencies_.Find(settings_.project_currency);
  const int decimals = std::max(ep_decimals, currency ? currency->unit_price_decimals : 2);
  return CurrencyValueToString(value, decimals);
}

std::optional<double> TAvaUiValueConverter::StrToCurrencyValue(std::string_view text) {
  std::string plain;
  bool comma = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.') {
      // A thousands point stands before exactly three digits.
      const bool digits_follow = i + 3 < text.size() &&
                                 std::isdigit(static_cast<unsigned char>(text[i + 1])) &&
                                 std::isdigit(static_cast<unsigned char>(text[i + 2])) &&
                                 std::isdigit(static_cast<unsigned char>(text[i + 3]));
      const bool group_ends =
          digits_follow && (i + 4 == text.size() || text[i + 4] == ',' || text[i + 4] == '.');
      const bool grouping = !comma && i > 0 && digits_follow && group_ends;
      if (!grouping) return std::nullopt;
      continue;
    }
    if (c == ',') {
      if (comma) return std::nullopt;
      comma = true;
      plain += '.';
      continue;
    }
    if ((c < '0' || c > '9') && !(c == '-' && i == 0)) return std::nullopt;
    plain += c;
  }
  if (plain.empty() || plain == "-" || plain == ".") return std::nullopt;
  char* end = nullptr;
  const double value = std::strtod(plain.c_str(), &end);
  if (end != plain.c_str() + plain.size()) return std::nullopt;
  return value;
}

std::string TAvaUiValueConverter::QtyToString(double value, int decimals) const {
  return GermanNumber(RoundQtyValue(value, decimals), decimals);
}

std::string TAvaUiValueConverter::QtyToStringNull(double value, int decimals) const {
  return std::fabs(value) < kAmountTolerance ? std::string() : QtyToString(value, decimals);
}

std::string TAvaUiValueConverter::QtyToStringQU(double value, int decimals,
                                                std::string_view unit) const {
  return QtyToString(value, decimals) + " " + std::string(unit);
}

std::string TAvaUiValueConverter::QtyToStringFmt(double value, int decimals,
                                                 TValFormat format) const {
  return IsImperial(format) ? FormatImperialQty(value, format) : QtyToString(value, decimals);
}

std::optional<double> TAvaUiValueConverter::StrToQtyQU(std::string_view text, TValFormat format) {
  return IsImperial(format) ? ParseImperialQty(text, format) : StrToQty(text);
}

}  // namespace korvan::boq
