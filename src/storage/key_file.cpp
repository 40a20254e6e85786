#include "storage/key_file.h"

#include "storage/block_cache.h"
#include "storage/btree.h"
#include "storage/cache_usage_error.h"
#include "storage/key_block_pins.h"
#include "storage/key_file_header.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

FileCache& CacheOf(int registration) {
  FileCache* cache = BlockCache::Instance().Find(registration);
  if (cache == nullptr) throw CacheUsageError("Key file not registered with the cache");
  return *cache;
}

// Runs `operation` on the tree of the file's format, selected by the first byte of the
// header (which stays pinned for the operation); other versions give 4232.
template <class Operation>
int Dispatch(int registration, Operation operation) {
  FileCache& cache = CacheOf(registration);
  BlockPins pins(cache, KeyFileV3::kFatalCaption, KeyFileV3::kStepPrefix);
  int slot = 0;
  if (const int rc = pins.Read(0, &slot); rc != kOk) return rc;
  const uint8_t version = pins.data(slot)[0];
  if (version == KeyFileV3::kVersion) {
    BTree<KeyFileV3> tree(pins);
    return operation(tree, cache.walk_hint());
  }
  if (version == KeyFileV2::kVersion) {
    BTree<KeyFileV2> tree(pins);
    return operation(tree, cache.walk_hint());
  }
  return kKeyFileUnknownVersion;
}

template <class Format>
int WriteEmptyHeader(FileCache& cache, int key_length) {
  BlockPins pins(cache, Format::kFatalCaption, Format::kStepPrefix);
  int slot = 0;
  int rc = pins.Read(0, &slot);
  if (rc == kBlockBeyondEnd) rc = pins.New(0, &slot);
  if (rc != kOk) return rc;
  KeyFileHeader<Format>::Initialize(pins.data(slot), key_length);
  pins.MarkChanged(slot, "KeyFileInit1", "KeyFileInit2");
  return pins.ReleaseAll();
}

}  // namespace

int KeyFileInit(int version, int registration, int key_length) {
  if (version != KeyFileV3::kVersion && version != KeyFileV2::kVersion) {
    return kKeyFileUnknownVersion;
  }
  if (key_length < kMinKeyFileKeyLength || key_length > kMaxKeyFileKeyLength) {
    return kKeyLengthOutOfRange;
  }
  FileCache& cache = CacheOf(registration);
  cache.walk_hint() = WalkHint{};
  return version == KeyFileV3::kVersion ? WriteEmptyHeader<KeyFileV3>(cache, key_length)
                                        : WriteEmptyHeader<KeyFileV2>(cache, key_length);
}

int KeyFileVersion(int registration, int* version) {
  BlockPins pins(CacheOf(registration), KeyFileV3::kFatalCaption, KeyFileV3::kStepPrefix);
  int slot = 0;
  if (const int rc = pins.Read(0, &slot); rc != kOk) return rc;
  *version = pins.data(slot)[0];
  if (const int rc = pins.ReleaseAll(); rc != kOk) return rc;
  return *version == KeyFileV3::kVersion || *version == KeyFileV2::kVersion ? kOk : kKeyFileCorrupt;
}

int KeyFileCheckHeader(int registration, int64_t file_size) {
  BlockPins pins(CacheOf(registration), KeyFileV3::kFatalCaption, KeyFileV3::kStepPrefix);
  int slot = 0;
  if (const int rc = pins.Read(0, &slot); rc != kOk) return rc;
  uint8_t* block = pins.data(slot);
  TreeShape shape;
  int rc = kKeyFileUnknownVersion;
  if (block[0] == KeyFileV3::kVersion) {
    const KeyFileHeader<KeyFileV3> header(block);
    rc = header.Validate(&shape);
    const int64_t blocks_in_file = file_size / kBlockSize;
    if (rc == kOk && (int64_t{header.highest_node()} >= blocks_in_file ||
                      header.free_head() > header.highest_node())) {
      rc = kKeyFileCorrupt;
    }
  } else if (block[0] == KeyFileV2::kVersion) {
    rc = KeyFileHeader<KeyFileV2>(block).Validate(&shape);
  }
  if (const int released = pins.ReleaseAll(); released != kOk) return released;
  return rc;
}

int KeyFileKeyLength(int registration, int* key_length) {
  return Dispatch(registration, [&](auto& tree, WalkHint&) { return tree.KeyLength(key_length); });
}

int KeyInsert(int registration, const KeyEntry& entry) {
  // A walk after a change starts from the root.
  return Dispatch(registration, [&](auto& tree, WalkHint& hint) {
    hint = WalkHint{};
    return tree.Insert(entry);
  });
}

int KeyDelete(int registration, const KeyEntry& entry) {
  // A walk after a change starts from the root.
  return Dispatch(registration, [&](auto& tree, WalkHint& hint) {
    hint = WalkHint{};
    return tree.Delete(entry);
  });
}

int KeyFirstMatch(int registration, KeyEntry& entry) {
  return Dispatch(registration,
                  [&](auto& tree, WalkHint& hint) { return tree.FirstMatch(entry, hint); });
}

int KeyLastMatch(int registration, KeyEntry& entry) {
  return Dispatch(registration,
                  [&](auto& tree, WalkHint& hint) { return tree.LastMatch(entry, hint); });
}

int KeyNext(int registration, KeyEntry& cursor) {
  return Dispatch(registration,
                  [&](auto& tree, WalkHint& hint) { return tree.Next(cursor, hint); });
}

int KeyPrev(int registration, KeyEntry& cursor) {
  return Dispatch(registration,
                  [&](auto& tree, WalkHint& hint) { return tree.Prev(cursor, hint); });
}

int MatchesCount(int registration, const uint8_t* pattern, int significant_length, bool count_tilde,
                 uint32_t* count) {
  *count = 0;
  return Dispatch(registration, [&](auto& tree, WalkHint&) {
    return tree.MatchesCount(pattern, significant_length, count_tilde, count);
  });
}

int MatchesList(int registration, const uint8_t* pattern, int significant_length, bool count_tilde,
                std::vector<uint32_t>* positions) {
  return Dispatch(registration, [&]<class Tree>(Tree& tree, WalkHint&) {
    // Older key files do not offer the list.
    if constexpr (std::is_same_v<Tree, BTree<KeyFileV2>>) {
      return kKeyFileUnknownVersion;
    } else {
      return tree.MatchesList(pattern, significant_length, count_tilde, positions);
    }
  });
}

int KeyMatchEx(int registration, const uint8_t* pattern, int significant_length, uint32_t position,
               bool* found, uint8_t* key_out) {
  *found = false;
  return Dispatch(registration, [&](auto& tree, WalkHint&) {
    return tree.MatchEx(pattern, significant_length, position, found, key_out);
  });
}

}  // namespace korvan::storage
