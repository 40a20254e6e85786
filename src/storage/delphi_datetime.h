#pragma once

#include <string>

namespace korvan::storage {

// Date-times as stored in data files and record headers: days since 30 December 1899
// as a double, the fraction being the time of day (local wall-clock time).
inline constexpr double kUnixEpochAsDelphiDays = 25569.0;  // 1 January 1970
inline constexpr double kSecondsPerDay = 86400.0;

// The current local date and time.
double DelphiNow();

// "dd.mm.yyyy hh:nn:ss", the form the program shows date-times in.
std::string FormatDelphiDateTime(double date_time);

}  // namespace korvan::storage
