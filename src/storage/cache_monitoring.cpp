#include "storage/cache_monitoring.h"

#include <algorithm>
#include <cstdio>

namespace korvan::storage {
namespace {

constexpr const char* kFunctionNames[kMonitoredFunctionCount] = {
    "ReadReal",   "WriteReal", "Read",     "Write",         "Release",          "WriteAll",
    "FlashCache", "FindBlock", "NewBlock", "IndexListSort", "UsedCountListSort"};

double CounterSeconds(int64_t ticks) {
  using Period = CacheMonitor::Clock::period;
  return static_cast<double>(ticks) * Period::num / Period::den;
}

template <typename... Args>
void AppendFormatted(std::string& out, const char* format, Args... args) {
  char line[512];
  const int n = std::snprintf(line, sizeof line, format, args...);
  if (n > 0) out.append(line, std::min<size_t>(static_cast<size_t>(n), sizeof line - 1));
}

}  // namespace

const char* MonitoredFunctionName(MonitoredFunction function) {
  return kFunctionNames[static_cast<size_t>(function)];
}

void CacheMonitor::Record(MonitoredFunction function, int64_t t0, int64_t t1) {
  TRacMonitorting& m = FMonitorings[static_cast<size_t>(function)];
  m.T0 = t0;
  m.T1 = t1;
  m.dT = CounterSeconds(t1 - t0);
  m.ST += m.dT;
  ++m.Si;
}

void CacheMonitor::Add(const CacheMonitor& other) {
  for (size_t i = 0; i < FMonitorings.size(); ++i) {
    TRacMonitorting& mine = FMonitorings[i];
    const TRacMonitorting& theirs = other.FMonitorings[i];
    mine.ST += theirs.ST;
    mine.Si += theirs.Si;
    if (theirs.Si > 0 && theirs.T1 >= mine.T1) {
      mine.T0 = theirs.T0;
      mine.T1 = theirs.T1;
      mine.dT = theirs.dT;
    }
  }
}

std::string FormatMonitoringCsv(const std::vector<MonitoredFile>& files,
                                const CacheMonitor& figures) {
  std::string out = "FileName;BlockCount;\n";
  for (const MonitoredFile& file : files) {
    out += file.name;
    AppendFormatted(out, ";%d;\n", file.block_count);
  }
  out += "\nFunction;Count;T[s];dT[ms]\n";
  uint32_t total_calls = 0;
  double total_seconds = 0;
  for (int i = 0; i < kMonitoredFunctionCount; ++i) {
    const auto function = static_cast<MonitoredFunction>(i);
    const TRacMonitorting& m = figures.figures(function);
    if (m.Si > 0) {
      AppendFormatted(out, "%s;%d;%.3f;%.6f\n", MonitoredFunctionName(function),
                      static_cast<int>(m.Si), m.ST, m.ST * 1000.0 / m.Si);
    } else {
      // A mean of no calls has no meaning.
      AppendFormatted(out, "%s;%d;%.3f\n", MonitoredFunctionName(function), 0, m.ST);
    }
    total_calls += m.Si;
    total_seconds += m.ST;
  }
  out += "Summe:;";
  AppendFormatted(out, "%d;%.6f;\n", static_cast<int>(total_calls), total_seconds);
  return out;
}

}  // namespace korvan::storage
