#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "storage/block_cache.h"
#include "storage/key_file.h"
#include "testing/temp_dir.h"

namespace korvan::storage::testing {

// A key file in a temporary directory, registered with the process-wide block cache
// for the lifetime of the object; on request a second time, with a cache of its own, as
// another process sharing the file would have it. A change made through one registration
// reaches the other only through the file (HandOver).
class ScratchKeyFile {
 public:
  static constexpr int kRegistration = 37;
  static constexpr int kOther = 38;

  explicit ScratchKeyFile(int blocks, bool write_by_release = false,
                          CacheKind kind = CacheKind::kRandomAccess, bool monitoring = false)
      : path_(dir_.File("test.Q30")) {
    fds_[0] = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    fds_[1] = ::open(path_.c_str(), O_RDWR);
    if (fds_[0] < 0 || fds_[1] < 0) throw std::runtime_error("cannot create " + path_);
    Reopen(blocks, write_by_release, kind, monitoring);
  }
  ~ScratchKeyFile() {
    for (int reg : {kRegistration, kOther}) BlockCache::Instance().Close(reg);
    BlockCache::Instance().Configure(CacheSettings{});
    for (int fd : fds_) ::close(fd);
  }
  ScratchKeyFile(const ScratchKeyFile&) = delete;
  ScratchKeyFile& operator=(const ScratchKeyFile&) = delete;

  int reg() const { return kRegistration; }
  FileCache& cache() const { return *BlockCache::Instance().Find(kRegistration); }
  const std::string& path() const { return path_; }

  // Writes everything back and registers the file again with a fresh cache.
  void Reopen(int blocks, bool write_by_release = false, CacheKind kind = CacheKind::kRandomAccess,
              bool monitoring = false) {
    if (BlockCache::Instance().Find(kRegistration) != nullptr) Flush();
    BlockCache::Instance().Close(kRegistration);
    settings_ = {kind, write_by_release, monitoring, ""};
    blocks_[0] = blocks;
    Open(kRegistration);
  }
  void OpenOther(int blocks) {
    blocks_[1] = blocks;
    Open(kOther);
  }
  // Makes the changes made through `from` visible through `to`: written back by the one,
  // dropped from the cache of the other (as the lock file does before every operation).
  void HandOver(int from, int to) {
    if (BlockCache::Instance().WriteAll(from) != 0) throw std::runtime_error("WriteAll failed");
    BlockCache::Instance().Close(to);
    Open(to);
  }
  void Flush() const {
    if (cache().WriteAll() != 0) throw std::runtime_error("WriteAll failed");
  }

  // Block n as it is on disk (after Flush).
  std::vector<uint8_t> DiskBlock(uint32_t block) const {
    std::vector<uint8_t> data(kBlockSize);
    if (::pread(fds_[0], data.data(), data.size(), off_t{block} * kBlockSize) != kBlockSize) {
      throw std::runtime_error("short read of block " + std::to_string(block));
    }
    return data;
  }
  // Overwrites bytes of block n on disk; the cache must not hold the block (Reopen).
  void PatchDisk(uint32_t block, size_t offset, const std::vector<uint8_t>& bytes) const {
    if (::pwrite(fds_[0], bytes.data(), bytes.size(), off_t{block} * kBlockSize + off_t(offset)) !=
        static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("cannot patch block " + std::to_string(block));
    }
  }

 private:
  void Open(int reg) {
    const int i = reg == kRegistration ? 0 : 1;
    BlockCache::Instance().Configure(settings_);
    if (BlockCache::Instance().Open(reg, fds_[i], path_, blocks_[i]) != 0) {
      throw std::runtime_error("cannot register " + path_);
    }
  }

  korvan::testing::TempDir dir_;
  std::string path_;
  int fds_[2] = {-1, -1};
  int blocks_[2] = {0, 0};
  CacheSettings settings_;
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

// A key/position pair as the model of a key file holds it, in the file's order.
struct Pair {
  std::string key;  // all key_length bytes
  int32_t position = 0;
  // Key bytes unsigned (char_traits<char> compares like memcmp), then signed position.
  bool operator<(const Pair& other) const {
    if (const int c = key.compare(other.key); c != 0) return c < 0;
    return position < other.position;
  }
  bool operator==(const Pair& other) const = default;
};

inline void PrintTo(const Pair& pair, std::ostream* out) {
  std::string text = pair.key;
  while (!text.empty() && text.back() == static_cast<char>(kKeyPad)) text.pop_back();
  *out << '"' << text << "\"/" << pair.position;
}

inline std::string Padded(const std::string& text, int key_length) {
  std::string key = text.substr(0, static_cast<size_t>(key_length));
  key.resize(static_cast<size_t>(key_length), static_cast<char>(kKeyPad));
  return key;
}

inline KeyEntry ToEntry(const Pair& pair) {
  KeyEntry entry;
  entry.position = static_cast<uint32_t>(pair.position);
  std::memcpy(entry.key, pair.key.data(), pair.key.size());
  return entry;
}

inline Pair FromEntry(const KeyEntry& entry, int key_length) {
  return Pair{
      std::string(reinterpret_cast<const char*>(entry.key), static_cast<size_t>(key_length)),
      static_cast<int32_t>(entry.position)};
}

// Few distinct positions, so that equal keys with different positions are common; now
// and then a negative one, which sorts first.
inline int32_t RandomPosition(std::mt19937& rng, uint32_t spread) {
  const uint32_t r = rng() % spread;
  return r == 0 ? static_cast<int32_t>(0x80000000u + rng() % 4) : static_cast<int32_t>(r * 100);
}

// "K000042": keys of the same length that sort like their numbers.
inline std::string Numbered(int i) {
  char text[16];
  std::snprintf(text, sizeof text, "K%06d", i);
  return text;
}

inline std::vector<uint8_t> Bytes32(uint32_t value) {
  return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
          static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
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
