#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace korvan::storage {

// The functions of a cache whose calls and durations can be measured, in the order in
// which they are reported.
enum class MonitoredFunction {
  kReadReal,
  kWriteReal,
  kRead,
  kWrite,
  kRelease,
  kWriteAll,
  kFlashCache,
  kFindBlock,
  kNewBlock,
  kIndexListSort,
  kUsedCountListSort,
};
inline constexpr int kMonitoredFunctionCount = 11;

// "ReadReal", "WriteReal", "Read", ... for reports.
const char* MonitoredFunctionName(MonitoredFunction function);

// Figures of one monitored function: counter values at start and end of the last
// call, its duration, the total duration and the number of calls.
struct TRacMonitorting {
  int64_t T0 = 0;
  int64_t T1 = 0;
  double dT = 0;
  double ST = 0;
  uint32_t Si = 0;
};

// The figures of all monitored functions of one cache (or of the cache-wide flush).
class CacheMonitor {
 public:
  using Clock = std::chrono::steady_clock;

  static int64_t Now() { return Clock::now().time_since_epoch().count(); }
  void Record(MonitoredFunction function, int64_t t0, int64_t t1);
  // Adds another monitor's calls and times to these; the last call is the later one.
  void Add(const CacheMonitor& other);

  const TRacMonitorting& figures(MonitoredFunction function) const {
    return FMonitorings[static_cast<size_t>(function)];
  }

 private:
  std::array<TRacMonitorting, kMonitoredFunctionCount> FMonitorings{};
};

// Measures the enclosing scope as one call of `function`. The variant for an unmonitored
// cache is empty, so that a cache built without monitoring pays nothing for it.
template <bool kOn>
class MonitorScope;

template <>
class MonitorScope<false> {
 public:
  MonitorScope(CacheMonitor&, MonitoredFunction) {}
};

template <>
class MonitorScope<true> {
 public:
  MonitorScope(CacheMonitor& monitor, MonitoredFunction function)
      : monitor_(monitor), function_(function), t0_(CacheMonitor::Now()) {}
  ~MonitorScope() { monitor_.Record(function_, t0_, CacheMonitor::Now()); }
  MonitorScope(const MonitorScope&) = delete;
  MonitorScope& operator=(const MonitorScope&) = delete;

 private:
  CacheMonitor& monitor_;
  MonitoredFunction function_;
  int64_t t0_;
};

// One cached file as listed in the statistics file.
struct MonitoredFile {
  std::string name;
  int block_count = 0;
};

// The statistics as text: the "FileName;BlockCount;" section with one line per file,
// the "Function;Count;T[s];dT[ms]" section with one line per monitored function and
// the "Summe:" line with the calls and seconds added up.
std::string FormatMonitoringCsv(const std::vector<MonitoredFile>& files,
                                const CacheMonitor& figures);

}  // namespace korvan::storage
