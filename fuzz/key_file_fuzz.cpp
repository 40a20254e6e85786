// Opens arbitrary bytes as a key file and runs searches, walks, changes and the
// soundness check on it. A corrupt file must give result codes or StorageFatalError,
// never a crash, a hang or a sanitizer report.
//
// Input: byte 0 chooses the mode (bit 0: the rest is the raw file; else a recipe),
// write-by-release (bit 1) and the cache size (7 + bits 2..7 mod 32). A recipe builds
// a sound tree (version, key length, number of keys, seed) and then overwrites bytes
// of the file at chosen offsets, so that corruption of deep trees is reachable too.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "storage/block_cache.h"
#include "storage/key_file.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "storage/storage_fatal_error.h"

namespace {

using namespace korvan::storage;

constexpr int kRegistration = 1;

class InputReader {
 public:
  InputReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  size_t remaining() const { return size_ - at_; }
  uint32_t Take(int bytes) {
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value |= static_cast<uint32_t>(at_ < size_ ? data_[at_++] : 0) << (8 * i);
    return value;
  }
  const uint8_t* rest() const { return data_ + at_; }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
};

KeyEntry RandomEntry(std::mt19937& rng, int key_length) {
  KeyEntry entry;
  entry.position = rng() % 64;
  std::memset(entry.key, kKeyPad, static_cast<size_t>(key_length));
  const int length = 1 + static_cast<int>(rng() % 6);
  for (int i = 0; i < length && i < key_length; ++i) entry.key[i] = "AB~\x04\xE4"[rng() % 5];
  return entry;
}

// Builds a sound tree in the file and then overwrites bytes as the input says.
void BuildFromRecipe(int fd, InputReader& in, int blocks) {
  const int version = in.Take(1) % 2 == 0 ? 3 : 2;
  const int key_length = 12 + static_cast<int>(in.Take(1) % 79);
  const int keys = static_cast<int>(in.Take(2) % 800);
  std::mt19937 rng(in.Take(4));
  BlockCache::Instance().Open(kRegistration, fd, "fuzz", blocks);
  if (KeyFileInit(version, kRegistration, key_length) == kOk) {
    for (int i = 0; i < keys; ++i) {
      const KeyEntry entry = RandomEntry(rng, key_length);
      if (rng() % 4 == 0) {
        KeyDelete(kRegistration, entry);
      } else {
        KeyInsert(kRegistration, entry);
      }
    }
  }
  BlockCache::Instance().WriteAll(kRegistration);
  BlockCache::Instance().Close(kRegistration);
  const off_t file_size = lseek(fd, 0, SEEK_END);
  while (in.remaining() >= 4 && file_size > 0) {
    const off_t offset = static_cast<off_t>(in.Take(3)) % file_size;
    const uint8_t value = static_cast<uint8_t>(in.Take(1));
    if (pwrite(fd, &value, 1, offset) != 1) return;
  }
}

void RunOperations(InputReader& in) {
  int version = 0;
  int key_length = 0;
  KeyFileVersion(kRegistration, &version);
  if (KeyFileKeyLength(kRegistration, &key_length) != kOk) key_length = kMaxKeyFileKeyLength;
  std::mt19937 rng(in.Take(4));

  KeyEntry pads;
  std::memset(pads.key, kKeyPad, sizeof pads.key);
  KeyEntry first = pads;
  const bool have_first = KeyFirstMatch(kRegistration, first) == kOk;
  KeyEntry last = pads;
  KeyLastMatch(kRegistration, last);
  if (have_first) {
    KeyEntry cursor = first;
    for (int i = 0; i < 300 && KeyNext(kRegistration, cursor) == kOk; ++i) {
    }
    cursor = last;
    for (int i = 0; i < 300 && KeyPrev(kRegistration, cursor) == kOk; ++i) {
    }
  }
  KeyEntry pattern = RandomEntry(rng, key_length);
  KeyFirstMatch(kRegistration, pattern);
  uint32_t count = 0;
  MatchesCount(kRegistration, pads.key, 0, false, &count);
  MatchesCount(kRegistration, pattern.key, 2, true, &count);
  std::vector<uint32_t> positions;
  MatchesList(kRegistration, pads.key, 1, true, &positions);
  bool found = false;
  uint8_t key[kMaxKeyLength];
  KeyMatchEx(kRegistration, first.key, 3, first.position, &found, key);
  CheckKeyFile(kRegistration);

  for (int i = 0; i < 24; ++i) KeyInsert(kRegistration, RandomEntry(rng, key_length));
  if (have_first) KeyDelete(kRegistration, first);
  for (int i = 0; i < 24; ++i) KeyDelete(kRegistration, RandomEntry(rng, key_length));
  CheckKeyFile(kRegistration);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint8_t mode = data[0];
  InputReader in(data + 1, size - 1);
  const int fd = memfd_create("keyfile", 0);
  if (fd < 0) return 0;
  CacheSettings settings;
  settings.write_by_release = (mode & 2) != 0;
  BlockCache::Instance().Configure(settings);
  const int blocks = 7 + (mode >> 2) % 32;
  if (mode & 1) {
    if (write(fd, in.rest(), in.remaining()) != static_cast<ssize_t>(in.remaining())) {
      close(fd);
      return 0;
    }
    in = InputReader(in.rest() + in.remaining(), 0);
  } else {
    try {
      BuildFromRecipe(fd, in, blocks);
    } catch (const StorageFatalError&) {
      BlockCache::Instance().Close(kRegistration);
      close(fd);
      return 0;
    }
  }
  BlockCache::Instance().Open(kRegistration, fd, "fuzz", blocks);
  try {
    RunOperations(in);
  } catch (const StorageFatalError&) {
    // The program would stop here with a message box; nothing to check further.
  }
  BlockCache::Instance().Close(kRegistration);
  close(fd);
  return 0;
}
