#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "storage/block_cache.h"
#include "storage/key_file.h"
#include "testing/temp_dir.h"

namespace korvan::storage::testing {

// A key file in a temporary directory, registered with the process-wide block cache
// for the lifetime of the object.
class ScratchKeyFile {
 public:
  static constexpr int kRegistration = 37;

  ScratchKeyFile(int blocks, bool write_by_release = false,
                 CacheKind kind = CacheKind::kRandomAccess)
      : path_(dir_.File("test.Q30")) {
    fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    if (fd_ < 0) throw std::runtime_error("cannot create " + path_);
    Register(blocks, write_by_release, kind);
  }
  ~ScratchKeyFile() {
    BlockCache::Instance().Close(kRegistration);
    BlockCache::Instance().Configure(CacheSettings{});
    ::close(fd_);
  }
  ScratchKeyFile(const ScratchKeyFile&) = delete;
  ScratchKeyFile& operator=(const ScratchKeyFile&) = delete;

  int reg() const { return kRegistration; }
  FileCache& cache() const { return *BlockCache::Instance().Find(kRegistration); }

  // Writes everything back and registers the file again with a fresh cache.
  void Reopen(int blocks, bool write_by_release = false,
              CacheKind kind = CacheKind::kRandomAccess) {
    Flush();
    BlockCache::Instance().Close(kRegistration);
    Register(blocks, write_by_release, kind);
  }
  void Flush() const {
    if (cache().WriteAll() != 0) throw std::runtime_error("WriteAll failed");
  }

  // Block n as it is on disk (after Flush).
  std::vector<uint8_t> DiskBlock(uint32_t block) const {
    std::vector<uint8_t> data(kBlockSize);
    if (::pread(fd_, data.data(), data.size(), static_cast<off_t>(block) * kBlockSize) !=
        kBlockSize) {
      throw std::runtime_error("short read of block " + std::to_string(block));
    }
    return data;
  }
  // Overwrites bytes of block n on disk; the cache must not hold the block (Reopen).
  void PatchDisk(uint32_t block, size_t offset, const std::vector<uint8_t>& bytes) const {
    if (::pwrite(fd_, bytes.data(), bytes.size(),
                 static_cast<off_t>(block) * kBlockSize + static_cast<off_t>(offset)) !=
        static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("cannot patch block " + std::to_string(block));
    }
  }
  const std::string& path() const { return path_; }

 private:
  void Register(int blocks, bool write_by_release, CacheKind kind) {
    CacheSettings settings;
    settings.kind = kind;
    settings.write_by_release = write_by_release;
    BlockCache::Instance().Configure(settings);
    BlockCache::Instance().Open(kRegistration, fd_, path_, blocks);
  }

  korvan::testing::TempDir dir_;
  std::string path_;
  int fd_ = -1;
};

// A key of the file's length: the text, then pad bytes.
inline KeyEntry MakeEntry(std::string_view text, uint32_t position, int key_length) {
  KeyEntry entry;
  entry.position = position;
  std::memset(entry.key, kKeyPad, static_cast<size_t>(key_length));
  std::memcpy(entry.key, text.data(), std::min<size_t>(text.size(), key_length));
  return entry;
}

inline std::string KeyText(const KeyEntry& entry, int key_length) {
  std::string text(reinterpret_cast<const char*>(entry.key), static_cast<size_t>(key_length));
  while (!text.empty() && text.back() == static_cast<char>(kKeyPad)) text.pop_back();
  return text;
}

inline uint16_t Load16(const std::vector<uint8_t>& block, size_t offset) {
  return static_cast<uint16_t>(block[offset] | block[offset + 1] << 8);
}
inline uint32_t Load32(const std::vector<uint8_t>& block, size_t offset) {
  return static_cast<uint32_t>(block[offset]) | static_cast<uint32_t>(block[offset + 1]) << 8 |
         static_cast<uint32_t>(block[offset + 2]) << 16 |
         static_cast<uint32_t>(block[offset + 3]) << 24;
}

}  // namespace korvan::storage::testing
