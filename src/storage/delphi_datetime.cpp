#include "storage/delphi_datetime.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace korvan::storage {

double DelphiNow() {
  const auto now = std::chrono::system_clock::now();
  const auto micros =
      std::chrono::duration_cast<std::chrono::microseconds>(now.time_since_epoch()).count();
  const std::time_t seconds = static_cast<std::time_t>(micros / 1000000);
  std::tm local{};
  localtime_r(&seconds, &local);
  const double local_seconds = static_cast<double>(micros) / 1e6 + local.tm_gmtoff;
  return kUnixEpochAsDelphiDays + local_seconds / kSecondsPerDay;
}

std::string FormatDelphiDateTime(double date_time) {
  if (!std::isfinite(date_time) || std::fabs(date_time) > 3e6) return "??.??.???? ??:??:??";
  double whole_seconds = std::round((date_time - kUnixEpochAsDelphiDays) * kSecondsPerDay);
  const std::time_t seconds = static_cast<std::time_t>(whole_seconds);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[40];
  std::snprintf(text, sizeof text, "%02d.%02d.%04d %02d:%02d:%02d", parts.tm_mday, parts.tm_mon + 1,
                parts.tm_year + 1900, parts.tm_hour, parts.tm_min, parts.tm_sec);
  return text;
}

}  // namespace korvan::storage
