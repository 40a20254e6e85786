#include "storage/key_block_pins.h"

#include <cstring>
#include <string>

#include "storage/block_io.h"
#include "storage/result_codes.h"
#include "storage/storage_fatal_error.h"

namespace korvan::storage {
namespace {

// A flush that keeps answering "busy" is given up after this many attempts.
constexpr int kBusyRetries = 100;

}  // namespace

BlockPins::~BlockPins() {
  // Reached with pins left only on an early return or an exception; nothing useful can
  // be done about a refusal here.
  while (count_ > 0) {
    try {
      cache_.Release(pins_[--count_].block);
    } catch (...) {
    }
  }
}

int BlockPins::Read(uint32_t block, int* slot) {
  return Take(block, true, slot);
}

int BlockPins::New(uint32_t block, int* slot) {
  const int rc = Take(block, false, slot);
  if (rc == kOk) std::memset(pins_[*slot].data, 0, kBlockSize);
  return rc;
}

int BlockPins::Take(uint32_t block, bool read, int* slot) {
  for (int i = 0; i < count_; ++i) {
    if (pins_[i].block == block) return kKeyFileCorrupt;
  }
  if (count_ == kCapacity) return kKeyFileCorrupt;
  uint8_t* data = nullptr;
  auto take = [&] { return read ? cache_.Read(block, &data) : cache_.NewBlock(block, &data); };
  int rc = take();
  if (rc == kNoBlocksFree && !changed_ && cache_.DirtyBlocks() > 0) {
    rc = cache_.WriteAll();
    for (int tries = 0; rc == kCacheBusy && tries < kBusyRetries; ++tries) rc = cache_.WriteAll();
    if (rc != kOk) return rc;
    rc = take();
  }
  if (rc != kOk) return rc;
  pins_[count_] = Pin{block, data, nullptr};
  *slot = count_++;
  return kOk;
}

void BlockPins::MarkChanged(int slot, const char* write_step, const char* release_step) {
  changed_ = true;
  Pin& pin = pins_[slot];
  pin.release_step = release_step;
  int rc = kOk;
  try {
    rc = cache_.Write(pin.block);
  } catch (const FileIoError& e) {
    Fatal(write_step, e.code());
  }
  if (rc != kOk) Fatal(write_step, rc);
}

void BlockPins::ReleaseLast() {
  const Pin pin = pins_[--count_];
  if (const int rc = Release(pin); rc != kOk && changed_) Fatal(StepOf(pin), rc);
}

int BlockPins::ReleaseAll() {
  int result = kOk;
  while (count_ > 0) {
    const Pin pin = pins_[--count_];
    const int rc = Release(pin);
    if (rc != kOk && changed_) Fatal(StepOf(pin), rc);
    if (result == kOk) result = rc;
  }
  return result;
}

int BlockPins::Release(const Pin& pin) {
  // With write-by-release on, releasing a changed block writes it to the file.
  try {
    return cache_.Release(pin.block);
  } catch (const FileIoError& e) {
    if (!pin.release_step) throw;
    Fatal(pin.release_step, e.code());
  }
}

const char* BlockPins::StepOf(const Pin& pin) {
  // A block the operation only read is given back as the key is returned.
  return pin.release_step != nullptr ? pin.release_step : "ReturnKey";
}

void BlockPins::Fatal(const char* step, int code) const {
  throw StorageFatalError(caption_, std::string(step_prefix_) + step, code);
}

}  // namespace korvan::storage
