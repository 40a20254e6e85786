#include "data/common/date_time.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace korvan::data {
namespace {

// Day number of 30 December 1899 counted from 1 January 1970.
constexpr long kEpochOffsetDays = -25569;
// The date-times of 1 January 0001 and the last instant of 31 December 9999.
constexpr double kMinDateTime = -693593.0;
constexpr double kMaxDateTimeExclusive = 2958466.0;

std::string Pad(int value, int width) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%0*d", width, value);
  return buffer;
}

}  // namespace

bool IsValidCivilDate(const CivilDate& date) {
  if (date.year < 1 || date.year > 9999) return false;
  if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31) return false;
  const std::chrono::year_month_day ymd{std::chrono::year{date.year},
                                        std::chrono::month{static_cast<unsigned>(date.month)},
                                        std::chrono::day{static_cast<unsigned>(date.day)}};
  return ymd.ok();
}

std::optional<double> EncodeDate(const CivilDate& date) {
  if (!IsValidCivilDate(date)) return std::nullopt;
  const std::chrono::sys_days days{std::chrono::year_month_day{
      std::chrono::year{date.year}, std::chrono::month{static_cast<unsigned>(date.month)},
      std::chrono::day{static_cast<unsigned>(date.day)}}};
  return static_cast<double>(days.time_since_epoch().count() - kEpochOffsetDays);
}

std::optional<CivilDateTime> DecodeDateTime(double value) {
  if (!std::isfinite(value) || value < kMinDateTime || value >= kMaxDateTimeExclusive) {
    return std::nullopt;
  }
  const double whole_days = std::trunc(value);
  const double fraction = std::fabs(value - whole_days);
  const std::chrono::sys_days days{
      std::chrono::days{static_cast<long>(whole_days) + kEpochOffsetDays}};
  const std::chrono::year_month_day ymd{days};

  CivilDateTime result;
  result.date = {static_cast<int>(ymd.year()), static_cast<int>(unsigned(ymd.month())),
                 static_cast<int>(unsigned(ymd.day()))};
  // Round to whole seconds, but never into the next day.
  const long seconds = std::min(static_cast<long>(std::lround(fraction * 86400.0)), 86399L);
  result.hour = static_cast<int>(seconds / 3600);
  result.minute = static_cast<int>(seconds / 60 % 60);
  result.second = static_cast<int>(seconds % 60);
  return result;
}

std::string FormatDateParts(const CivilDate& parts, const ShortDateFormat& format) {
  const std::string year = Pad(parts.year, 4);
  const std::string month = Pad(parts.month, 2);
  const std::string day = Pad(parts.day, 2);
  const std::string sep(1, format.separator);
  switch (format.order) {
    case ShortDateFormat::Order::kMonthDayYear:
      return month + sep + day + sep + year;
    case ShortDateFormat::Order::kYearMonthDay:
      return year + sep + month + sep + day;
    case ShortDateFormat::Order::kDayMonthYear:
      break;
  }
  return day + sep + month + sep + year;
}

std::string FormatDateTime(double value, const ShortDateFormat& format) {
  const std::optional<CivilDateTime> decoded = DecodeDateTime(value);
  if (!decoded) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "<ungültig: %g>", value);
    return buffer;
  }
  std::string text = FormatDateParts(decoded->date, format);
  if (decoded->hour != 0 || decoded->minute != 0 || decoded->second != 0) {
    char time[16];
    std::snprintf(time, sizeof time, " %02d:%02d:%02d", decoded->hour, decoded->minute,
                  decoded->second);
    text += time;
  }
  return text;
}

}  // namespace korvan::data
