#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "boq/units/currency_list.h"
#include "boq/units/unit_record.h"
#include "data/records/rounding_type.h"
#include "data/records/wae_betrag.h"

namespace korvan::boq {

// The id of an amount that is never converted.
inline constexpr int16_t kUnconvertedCurrencyId = -2;

// An amount names a currency the currency list does not hold.
class ECurrencyError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the converter rounds by: the settings of the project and the system.
struct TValueConverterSettings {
  bool round_amounts = true;  // FRundenWaehrung: round amounts at all
  // Whether the project may use the rounding types below; otherwise rtTillV2015 applies
  // (projects of 2015 and before, unless the system allows it).
  bool rounding_types_available = true;
  data::TRoundingType currency_rounding = data::TRoundingType::rtCommercial;
  data::TRoundingType qty_rounding = data::TRoundingType::rtCommercial;
  int amount_decimals = 2;  // FWaehrungsGenauigkeit
  int32_t project_currency = 32766;
};

// The one service for rounding, currency conversion, gross amounts and the formatting of
// amounts and quantities.
class TAvaUiValueConverter {
 public:
  TAvaUiValueConverter(TCurrencyList currencies, TValueConverterSettings settings);

  const TCurrencyList& Currencies() const { return currencies_; }
  const TValueConverterSettings& Settings() const { return settings_; }

  // --- Rounding ------------------------------------------------------------------------
  // Always rounds, by the project's currency rounding type.
  double RoundCurrencyValue(double value, int decimals) const;
  // Rounds only when the project rounds amounts or `force` is set.
  double RoundCurrencyValueEx(double value, int decimals, bool force) const;
  double RoundQtyValue(double value, int decimals) const;

  // --- Currencies ----------------------------------------------------------------------
  // A value from one currency into another (ids; -1 is the project's currency): unchanged
  // for the id -2, for a value below 0.0001 and for equal currencies; else through the
  // factors against the base, rounded to the target's decimals when `round`. Throws
  // ECurrencyError for an id the list does not hold.
  double ConvertCurrencyValue(double value, int32_t from, int32_t to, bool round) const;
  // The same; nullopt instead of the exception.
  std::optional<double> TryConvertCurrencyValue(double value, int32_t from, int32_t to,
                                                bool round) const;
  // Converts an amount into the project's currency and sets its currency id.
  void ConvertCurrency(data::t_WaeBetrag& amount, bool round) const;
  // Net plus VAT: the net rounded (unless the project does not round), the VAT rounded
  // always, both to the amount decimals.
  double CurrencyBrutto(double net, double vat_percent) const;
  // The same with the rounding of the versions up to 2015 for both steps.
  double ClassicCurrencyBrutto(double net, double vat_percent) const;

  // --- Text ----------------------------------------------------------------------------
  // German notation: thousands points, decimal comma ("1.234,56").
  std::string CurrencyValueToString(double value, int decimals) const;
  // With the symbol of the amount's currency: "1.234,56 EUR".
  std::string CurrencyToString(const data::t_WaeBetrag& amount) const;
  // A unit price with the larger of `ep_decimals` and the currency's unit-price decimals.
  std::string EPToStr(double value, int ep_decimals) const;
  // Reads German notation (thousands points optional); nullopt for anything else.
  static std::optional<double> StrToCurrencyValue(std::string_view text);
  static std::optional<double> StrToEP(std::string_view text) { return StrToCurrencyValue(text); }
  std::string QtyToString(double value, int decimals) const;
  // Empty for a quantity of 0.
  std::string QtyToStringNull(double value, int decimals) const;
  // With the unit symbol: "12,500 m2".
  std::string QtyToStringQU(double value, int decimals, std::string_view unit) const;
  static std::optional<double> StrToQty(std::string_view text) { return StrToCurrencyValue(text); }
  // In the unit's notation: decimal, or feet and inches / inch fractions (qty_notation.h).
  std::string QtyToStringFmt(double value, int decimals, TValFormat format) const;
  static std::optional<double> StrToQtyQU(std::string_view text, TValFormat format);

 private:
  data::TRoundingType CurrencyRounding() const;
  int32_t Resolve(int32_t id) const;
  const TCurrency& Require(int32_t id) const;

  TCurrencyList currencies_;
  TValueConverterSettings settings_;
};

}  // namespace korvan::boq
