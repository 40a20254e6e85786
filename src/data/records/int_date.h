#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "data/common/date_time.h"

namespace korvan::data {

// Dates stored as integers: year * 10000 + month * 100 + day. Every value up to 10000,
// and every value whose last four digits are below 0101, means "no date".

enum class IntDateKind {
  kNone,    // no date
  kValid,   // a real calendar date
  kInvalid  // neither: a damaged value (month 13, 31 February, year beyond 9999, ...)
};

inline constexpr int32_t kNoIntDate = 0;

constexpr bool IsNoIntDate(int32_t value) {
  return value <= 10000 || value % 10000 < 101;
}

// The year, month and day parts as stored, without any check.
constexpr CivilDate IntDateParts(int32_t value) {
  return {value / 10000, value % 10000 / 100, value % 100};
}

IntDateKind ClassifyIntDate(int32_t value);

// The date-time of the stored date: 0.0 (the empty date-time) for "no date", nullopt for
// an invalid value.
std::optional<double> IntDateToDateTime(int32_t value);

// The stored form of a date-time's day; the empty date-time 0.0 gives kNoIntDate so that
// "no date" survives a round trip. nullopt for undecodable values.
std::optional<int32_t> DateTimeToIntDate(double value);

int32_t MakeIntDate(const CivilDate& date);

// Today's date on this computer (local time).
int32_t TodayAsIntDate();

// The parts a display shows. A year part below 100 is widened to 20xx (below 50) or 19xx,
// and month and day are then taken from the value minus the widened year * 10000. For
// such five- and six-digit values this yields meaningless (negative) month and day parts;
// that is how these values have always been shown, and it is kept.
CivilDate IntDateDisplayParts(int32_t value);

// The display text: empty for "no date", otherwise the display parts in the order and
// with the separator of the short date format. Never fails, whatever the value.
std::string FormatIntDate(int32_t value, const ShortDateFormat& format = kGermanDateFormat);

}  // namespace korvan::data
