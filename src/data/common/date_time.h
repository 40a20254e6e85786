#pragma once

#include <optional>
#include <string>

namespace korvan::data {

// Record date-times (TDateTime) are IEEE doubles counting days since 30 December 1899;
// the fraction is the time of day. Values before the epoch keep the time of day as the
// absolute fraction (-1.25 is 29 December 1899, 06:00).

struct CivilDate {
  int year = 0;
  int month = 0;
  int day = 0;

  friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

struct CivilDateTime {
  CivilDate date;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// Years 1 to 9999, months 1 to 12, days within the month (leap years included).
bool IsValidCivilDate(const CivilDate& date);

// The date-time of midnight on `date`; nullopt for an invalid date.
std::optional<double> EncodeDate(const CivilDate& date);

// Splits a stored date-time; nullopt for NaN, infinities and values outside the years 1
// to 9999 (such values come only from damaged records).
std::optional<CivilDateTime> DecodeDateTime(double value);

// The order of day, month and year and the separator of the user's short date format.
struct ShortDateFormat {
  enum class Order { kDayMonthYear, kMonthDayYear, kYearMonthDay };
  Order order = Order::kDayMonthYear;
  char separator = '.';
};

inline constexpr ShortDateFormat kGermanDateFormat{};

// Formats year with 4 digits, month and day with 2, in the given order. Parts are printed
// as they are, so that a display never fails, even for parts that are not a real date.
std::string FormatDateParts(const CivilDate& parts, const ShortDateFormat& format);

// A date-time for diagnostics: the date, then " hh:mm:ss" unless it is midnight.
// Undecodable values print as "<ungültig: value>".
std::string FormatDateTime(double value, const ShortDateFormat& format = kGermanDateFormat);

}  // namespace korvan::data
