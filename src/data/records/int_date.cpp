#include "data/records/int_date.h"

#include <cmath>

#include "storage/delphi_datetime.h"

namespace korvan::data {

IntDateKind ClassifyIntDate(int32_t value) {
  if (IsNoIntDate(value)) return IntDateKind::kNone;
  return IsValidCivilDate(IntDateParts(value)) ? IntDateKind::kValid : IntDateKind::kInvalid;
}

std::optional<double> IntDateToDateTime(int32_t value) {
  if (IsNoIntDate(value)) return 0.0;
  return EncodeDate(IntDateParts(value));
}

std::optional<int32_t> DateTimeToIntDate(double value) {
  if (value == 0.0) return kNoIntDate;
  const std::optional<CivilDateTime> decoded = DecodeDateTime(value);
  if (!decoded) return std::nullopt;
  return MakeIntDate(decoded->date);
}

int32_t MakeIntDate(const CivilDate& date) {
  return date.year * 10000 + date.month * 100 + date.day;
}

CivilDate IntDateDisplayParts(int32_t value) {
  CivilDate parts = IntDateParts(value);
  if (parts.year >= 100) return parts;
  const int widened_year = parts.year < 50 ? 2000 + parts.year : 1900 + parts.year;
  // Widened years are at most 2049 * 10000, so the difference stays within 32 bits.
  const int32_t rest = value - widened_year * 10000;
  return {widened_year, rest % 10000 / 100, rest % 100};
}

std::string FormatIntDate(int32_t value, const ShortDateFormat& format) {
  if (IsNoIntDate(value)) return {};
  return FormatDateParts(IntDateDisplayParts(value), format);
}

int32_t TodayAsIntDate() {
  return DateTimeToIntDate(storage::DelphiNow()).value_or(kNoIntDate);
}

}  // namespace korvan::data
