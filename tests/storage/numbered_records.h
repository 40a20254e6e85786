#pragma once

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "db_kernel_fixture.h"
#include "storage/key_file_rebuild.h"

// Records that carry their number after the header, one key each ("K" and six digits),
// and the source that gives them their keys again when a key file is rebuilt.
namespace korvan::storage::testing {

// Record i spells out i after its header; lengths vary so that freed blocks are split.
inline std::vector<uint8_t> NumberedRecord(int32_t index) {
  std::vector<uint8_t> record =
      MakeRecord(static_cast<char>('A' + index % 26), kRecordHeaderSize + 8 + (index * 37) % 300,
                 static_cast<uint8_t>(index * 7));
  std::memcpy(record.data() + kRecordHeaderSize, &index, sizeof index);
  return record;
}

inline std::string NumberedKeyText(int32_t index) {
  char text[16];
  std::snprintf(text, sizeof text, "K%06d", static_cast<int>(index));
  return text;
}

inline KeyEntry NumberedKey(int32_t index, int32_t position = 0) {
  KeyEntry entry;
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  const std::string text = NumberedKeyText(index);
  std::memcpy(entry.key, text.data(), text.size());
  entry.position = static_cast<uint32_t>(position);
  return entry;
}

// The position the key of record i names, or -1 when it has none.
inline int32_t FindNumbered(int handle, int32_t index) {
  KeyEntry entry = NumberedKey(index);
  uint32_t position = 0;
  if (iDK_KeyFirstMatch(handle, entry, &position) != 0) return -1;
  return static_cast<int32_t>(position);
}

// Knows the numbered records of databases of type 'T' and 'S'; installed for its
// lifetime.
class NumberedKeySource : public RecordKeySource {
 public:
  NumberedKeySource() : previous_(SetRecordKeySource(this)) {}
  ~NumberedKeySource() override { SetRecordKeySource(previous_); }

  bool Knows(char db_type) const override { return db_type == 'T' || db_type == 'S'; }
  bool KeysOf(char, int key_length, const uint8_t* record, size_t length,
              std::vector<std::string>* keys) override {
    if (length < kRecordHeaderSize + sizeof(int32_t)) return false;
    int32_t index = 0;
    std::memcpy(&index, record + kRecordHeaderSize, sizeof index);
    std::string key = NumberedKeyText(index);
    key.resize(static_cast<size_t>(key_length), static_cast<char>(kKeyPad));
    keys->push_back(key);
    return true;
  }
  void Tell(const std::string& line) override { told.push_back(line); }

  std::vector<std::string> told;

 private:
  RecordKeySource* previous_;
};

}  // namespace korvan::storage::testing
