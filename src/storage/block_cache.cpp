#include "storage/block_cache.h"

#include <cstdio>
#include <string>

#include "storage/block_io.h"
#include "storage/classic_cache.h"
#include "storage/file/atomic_file.h"
#include "storage/random_access_cache.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

bool ValidRegistration(int registration) {
  return registration >= 1 && registration <= kMaxCacheRegistrations;
}

// The statistics can be written again at any time, so a crash may lose them.
void WriteStatistics(const std::string& path, const std::string& text) {
  if (const FileWriteResult result = WriteFileAtomically(path, text, Durability::kAtomic);
      !result.ok()) {
    throw FileIoError("Write", result.error);
  }
}

}  // namespace

BlockCache& BlockCache::Instance() {
  static BlockCache instance;
  return instance;
}

void BlockCache::Configure(const CacheSettings& settings) {
  settings_ = settings;
}

int BlockCache::Open(int registration, int fd, const std::string& file_name, int block_count) {
  if (!ValidRegistration(registration)) {
    throw CacheUsageError("Cache registration out of range: " + std::to_string(registration));
  }
  if (caches_[registration] != nullptr) {
    throw CacheUsageError("Cache registration already open: " + std::to_string(registration));
  }
  if (block_count < 1) {
    throw CacheUsageError("Cache block count below 1: " + std::to_string(block_count));
  }
  if (settings_.kind == CacheKind::kClassic) {
    caches_[registration] = MakeClassicCache(fd, file_name, block_count, settings_.write_by_release,
                                             settings_.monitoring);
  } else {
    caches_[registration] = MakeRandomAccessCache(fd, file_name, block_count,
                                                  settings_.write_by_release, settings_.monitoring);
  }
  if (settings_.monitoring) RememberMonitoredFile(file_name, caches_[registration]->BlockCount());
  return kOk;
}

int BlockCache::Close(int registration) {
  if (!ValidRegistration(registration) || caches_[registration] == nullptr) return kOk;
  if (const CacheMonitor* figures = caches_[registration]->Monitoring()) {
    retired_monitoring_.Add(*figures);
  }
  caches_[registration].reset();
  return kOk;
}

FileCache* BlockCache::Find(int registration) {
  return ValidRegistration(registration) ? caches_[registration].get() : nullptr;
}

FileCache& BlockCache::Get(int registration) {
  FileCache* cache = Find(registration);
  if (cache == nullptr) {
    throw CacheUsageError("Cache registration not open: " + std::to_string(registration));
  }
  return *cache;
}

int BlockCache::Read(int registration, uint32_t block, uint8_t** data) {
  return Get(registration).Read(block, data);
}

int BlockCache::NewBlock(int registration, uint32_t block, uint8_t** data) {
  return Get(registration).NewBlock(block, data);
}

int BlockCache::Write(int registration, uint32_t block) {
  return Get(registration).Write(block);
}

int BlockCache::Release(int registration, uint32_t block) {
  return Get(registration).Release(block);
}

int BlockCache::WriteAll(int registration) {
  return Get(registration).WriteAll();
}

int BlockCache::FlashCache() {
  const int64_t t0 = settings_.monitoring ? CacheMonitor::Now() : 0;
  int result = kOk;
  for (const std::unique_ptr<FileCache>& cache : caches_) {
    if (cache == nullptr) continue;
    const int rc = cache->WriteAll();
    if (result == kOk) result = rc;
  }
  if (settings_.monitoring) {
    retired_monitoring_.Record(MonitoredFunction::kFlashCache, t0, CacheMonitor::Now());
  }
  return result;
}

// A file opened again (the lock file is, for every lock operation) keeps one line with
// its latest block count, so the list stays as long as the set of files.
void BlockCache::RememberMonitoredFile(const std::string& file_name, int block_count) {
  for (MonitoredFile& file : monitored_files_) {
    if (file.name == file_name) {
      file.block_count = block_count;
      return;
    }
  }
  monitored_files_.push_back({file_name, block_count});
}

CacheMonitor BlockCache::CollectMonitoring() const {
  CacheMonitor total = retired_monitoring_;
  for (const std::unique_ptr<FileCache>& cache : caches_) {
    if (cache == nullptr) continue;
    if (const CacheMonitor* figures = cache->Monitoring()) total.Add(*figures);
  }
  return total;
}

std::vector<CacheMonitoring> BlockCache::GetMonitorings() const {
  const CacheMonitor total = CollectMonitoring();
  std::vector<CacheMonitoring> result;
  for (int i = 0; i < kMonitoredFunctionCount; ++i) {
    const auto function = static_cast<MonitoredFunction>(i);
    const TRacMonitorting& m = total.figures(function);
    result.push_back({MonitoredFunctionName(function), m.Si, m.ST, m.dT});
  }
  return result;
}

void BlockCache::SaveMonitoring() const {
  if (settings_.monitoring_file.empty()) return;
  WriteStatistics(settings_.monitoring_file + ".csv",
                  FormatMonitoringCsv(monitored_files_, CollectMonitoring()));
}

}  // namespace korvan::storage
