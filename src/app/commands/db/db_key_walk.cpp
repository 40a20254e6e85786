#include "app/commands/db/db_key_walk.h"

#include <cstring>
#include <string>
#include <vector>

#include "app/cli/command_error.h"
#include "app/commands/db/key_text.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

// A walk over a damaged tree could repeat itself; a sound one ascends strictly and
// meets exactly as many entries as the tree counts.
class KeyWalkGuard {
 public:
  KeyWalkGuard(const std::string& key_file, uint32_t total, int key_length)
      : key_file_(key_file), total_(total), key_length_(key_length) {}

  void Step(const storage::KeyEntry& entry) {
    if (++seen_ > total_) {
      Fail("der Durchlauf trifft auf mehr als die " + std::to_string(total_) + " Einträge des Baums");
    }
    const auto key = std::span<const uint8_t>(entry.key, static_cast<size_t>(key_length_));
    if (seen_ > 1 && !Ascends(key, entry.position)) {
      Fail("Eintrag " + std::to_string(seen_) + " (" + KeyEntryLine(entry.position, key) +
           ") folgt nicht auf seinen Vorgänger");
    }
    previous_.assign(key.begin(), key.end());
    previous_position_ = entry.position;
  }

 private:
  bool Ascends(std::span<const uint8_t> key, uint32_t position) const {
    const int order = std::memcmp(previous_.data(), key.data(), key.size());
    return order < 0 || (order == 0 &&
                         static_cast<int32_t>(previous_position_) < static_cast<int32_t>(position));
  }
  [[noreturn]] void Fail(const std::string& what) const {
    throw CommandError(key_file_ + ": Schlüsseldatei beschädigt: " + what);
  }

  std::string key_file_;
  uint32_t total_;
  int key_length_;
  uint32_t seen_ = 0;
  std::vector<uint8_t> previous_;
  uint32_t previous_position_ = 0;
};

}  // namespace

void WalkKeys(const OpenDatabase& db,
              const std::function<void(uint32_t position, std::span<const uint8_t> key)>& visit) {
  const int key_length = db.KeyLength();
  const std::string key_file = storage::KeyFileName(db.base_path());
  KeyWalkGuard guard(key_file, db.KeyCount(true), key_length);
  storage::KeyEntry entry;
  std::memset(entry.key, storage::kKeyPad, sizeof entry.key);
  uint32_t position = 0;
  int result = storage::iDK_KeyFirstMatch(db.handle(), entry, &position);
  while (result == storage::kOk) {
    guard.Step(entry);
    visit(position, {entry.key, static_cast<size_t>(key_length)});
    result = storage::iDK_KeyNext(db.handle(), entry, &position);
  }
  if (result != storage::kDkKeyNotFound) {
    throw CommandError(key_file + ": " + ResultCodeText(result));
  }
}

}  // namespace korvan::app
