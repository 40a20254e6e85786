#pragma once

#include <cstdint>
#include <vector>

namespace korvan::storage {

inline constexpr int kMaxKeyLength = 91;     // callers pass buffers of this size
inline constexpr int kMinKeyFileKeyLength = 12;
inline constexpr int kMaxKeyFileKeyLength = 90;
inline constexpr uint8_t kKeyPad = 0x04;

// A key entry as exchanged with callers: the record position, then the key bytes
// (the file's key length; the rest of the buffer is ignored).
struct KeyEntry {
  uint32_t position = 0;
  uint8_t key[kMaxKeyLength] = {};
};

// Key files (B-trees of fixed-length keys, versions 2 and 3). Every operation takes
// the registration number under which the key file is registered with the BlockCache
// (the database handle, or handle + 40 for a lock file) and returns 0 or a code of
// result_codes.h. The version is read from the file's first byte on every call.
// A cache failure while the tree is being changed throws StorageFatalError.

// Writes an empty header of the given version (2 or 3). Key length outside 12..90: 4224.
int KeyFileInit(int version, int registration, int key_length);
// The version byte (2 or 3) in *version; anything else gives 4231.
int KeyFileVersion(int registration, int* version);
// The key length from the header.
int KeyFileKeyLength(int registration, int* key_length);

int KeyInsert(int registration, const KeyEntry& entry);
int KeyDelete(int registration, const KeyEntry& entry);
int KeyFirstMatch(int registration, KeyEntry& entry);
int KeyLastMatch(int registration, KeyEntry& entry);
int KeyNext(int registration, KeyEntry& cursor);
int KeyPrev(int registration, KeyEntry& cursor);
int MatchesCount(int registration, const uint8_t* pattern, int significant_length,
                 bool count_tilde, uint32_t* count);
int MatchesList(int registration, const uint8_t* pattern, int significant_length,
                bool count_tilde, std::vector<uint32_t>* positions);
// Whether (a key matching the first significant_length bytes, position) exists; the
// matching key is copied into key_out (kMaxKeyLength bytes) when found.
int KeyMatchEx(int registration, const uint8_t* pattern, int significant_length,
               uint32_t position, bool* found, uint8_t* key_out);

}  // namespace korvan::storage
