#pragma once

#include <array>
#include <cstdint>

#include "storage/block_cache.h"
#include "storage/key_file_layout.h"

namespace korvan::storage {

// The blocks one key-file operation holds pinned in the cache.
//
// Every changing operation first pins all blocks it may change (the header, the path,
// the neighbours a delete may borrow from, the nodes an insert may need) and only then
// changes them. So the cache can refuse a block (4163 "No Blocks free", 4160 beyond the
// end of the file) only while the file is still untouched, and the refusal is a plain
// result. Once a block has changed, a failing Write or Release leaves the tree half
// changed: it throws StorageFatalError naming the step.
//
// Deliberate addition: while write-by-release is off the cache never gives up a changed
// block, so a long run of changes fills every buffer until it answers 4163 in the middle
// of some operation. A refusal before the first change is therefore met once by writing
// all changed blocks back (WriteAll) and asking again; only a cache too small for the
// pins of this one operation still answers 4163.
class BlockPins {
 public:
  // The header, a path of kMaxTreeHeight nodes and one extra node per level.
  static constexpr int kCapacity = 2 * kMaxTreeHeight + 2;

  BlockPins(FileCache& cache, const char* fatal_caption, const char* step_prefix)
      : cache_(cache), caption_(fatal_caption), step_prefix_(step_prefix) {}
  ~BlockPins();
  BlockPins(const BlockPins&) = delete;
  BlockPins& operator=(const BlockPins&) = delete;

  // Pins block `block` as read from the file; its slot in *slot. A block this operation
  // holds already means the tree links back into itself: 4231.
  int Read(uint32_t block, int* slot);
  // Pins a block whose old contents do not matter, zero-filled.
  int New(uint32_t block, int* slot);

  uint8_t* data(int slot) const { return pins_[slot].data; }
  uint32_t block(int slot) const { return pins_[slot].block; }
  int size() const { return count_; }
  bool changed() const { return changed_; }
  // The caption and step prefix of fatal errors, once the file's format is known.
  void SetFatalNames(const char* fatal_caption, const char* step_prefix) {
    caption_ = fatal_caption;
    step_prefix_ = step_prefix;
  }

  // Marks the block changed. The steps name the failure of the Write and of the
  // later Release (without the version prefix).
  void MarkChanged(int slot, const char* write_step, const char* release_step);

  // Unpins the most recently pinned block (reads and walks pin in stack order).
  void ReleaseLast();
  // Unpins everything; 0, or the cache's answer when nothing had changed.
  int ReleaseAll();

 private:
  // Left uninitialised on purpose: only the first count_ are ever read, each written
  // when taken, and zeroing all kCapacity of them cost a fifth of a walk step.
  struct Pin {
    uint32_t block;
    uint8_t* data;
    const char* release_step;
  };

  int Take(uint32_t block, bool read, int* slot);
  int Release(const Pin& pin);
  static const char* StepOf(const Pin& pin);
  [[noreturn]] void Fatal(const char* step, int code) const;

  FileCache& cache_;
  const char* caption_;
  const char* step_prefix_;
  std::array<Pin, kCapacity> pins_;
  int count_ = 0;
  bool changed_ = false;
};

}  // namespace korvan::storage
