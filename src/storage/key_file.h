#pragma once

#include <cstdint>
#include <vector>

namespace korvan::storage {

inline constexpr int kMaxKeyLength = 91;  // callers pass buffers of this size
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
// result_codes.h. The version is read from the file's first byte on every call; a
// version other than 2 or 3 gives 4232, a header that is not usable 4224 or 4231.
//
// Entries are ordered by key bytes (unsigned) and, among equal keys, by the record
// position compared as a signed 32-bit number; a (key, position) pair is unique.
//
// Failures: a node whose count exceeds the maximum, a link to a node that is not
// allocated, or a link back into the path gives 4231 and the node is not used; 4160
// when a node lies beyond the end of the file; 4163 when the cache cannot hold the
// blocks of this one operation. All of these are answered before the operation has
// changed anything. A cache failure after a change began throws StorageFatalError
// (caption "Database Index Error" for version 3, "FatalError" for version 2, and the
// step). A registration that is not open throws CacheUsageError.

// Writes an empty header of the given version (2 or 3; else 4232). Key length outside
// 12..90: 4224.
int KeyFileInit(int version, int registration, int key_length);
// The version byte (2 or 3) in *version; anything else gives 4231.
int KeyFileVersion(int registration, int* version);
// Whether the header of a key file that is `file_size` bytes long can be trusted before
// the first change: a consistent shape, and (version 3) a highest node, free-list head
// and root the file holds. A header that claims more nodes than the file has would let
// the next allocation write far beyond its end. 0, 4224 for an unusable shape, 4231
// for node numbers beyond the file.
int KeyFileCheckHeader(int registration, int64_t file_size);
// The key length from the header.
int KeyFileKeyLength(int registration, int* key_length);

// Inserts the pair; 4227 when it exists, 4225 when it was inserted but the file is
// nearly full, 4226 when no node is left (nothing inserted).
int KeyInsert(int registration, const KeyEntry& entry);
// Removes the exact pair; 4229 when it does not exist, 4228 on an empty tree.
int KeyDelete(int registration, const KeyEntry& entry);
// The first / last entry whose first L key bytes equal the pattern's, where L is the key
// length less the pattern's trailing pad bytes (a pattern of pad bytes only matches
// everything). The entry receives key and position; the buffer bytes after the key
// length are zeroed. 4228 on an empty tree, 4230 when nothing matches.
int KeyFirstMatch(int registration, KeyEntry& entry);
int KeyLastMatch(int registration, KeyEntry& entry);
// The entry after / before the cursor's exact pair. 4230 at the end, and also when the
// cursor's pair no longer exists; 4228 on an empty tree.
int KeyNext(int registration, KeyEntry& cursor);
int KeyPrev(int registration, KeyEntry& cursor);
// The number of entries whose first significant_length key bytes (clamped to 0..key
// length) equal the pattern; keys starting with "~" (free-space keys) are left out
// unless count_tilde is set. An empty tree counts 0.
int MatchesCount(int registration, const uint8_t* pattern, int significant_length, bool count_tilde,
                 uint32_t* count);
// The positions of the same entries, in key order, appended to *positions. Version 3
// only: version 2 gives 4232.
int MatchesList(int registration, const uint8_t* pattern, int significant_length, bool count_tilde,
                std::vector<uint32_t>* positions);
// Whether (a key matching the first significant_length bytes, position) exists; the
// matching key is copied into key_out (kMaxKeyLength bytes, zero after the key length)
// when found.
int KeyMatchEx(int registration, const uint8_t* pattern, int significant_length, uint32_t position,
               bool* found, uint8_t* key_out);

}  // namespace korvan::storage
