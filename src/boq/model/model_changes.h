#pragma once

#include <cstdint>

// What changed in an LV in memory, collected until the program is idle and then passed on
// to whoever shows or recalculates the LV.
namespace korvan::boq {

enum class TModelChangedReason : uint8_t {
  crUnspecified,
  crCatalogAssignment,
  crCost,
  crVariable,
  crReferral,
};

// A set of reasons.
class TModelChanges {
 public:
  void Add(TModelChangedReason reason) { bits_ |= Bit(reason); }
  void Add(TModelChanges other) { bits_ |= other.bits_; }
  bool Contains(TModelChangedReason reason) const { return (bits_ & Bit(reason)) != 0; }
  bool Empty() const { return bits_ == 0; }
  void Clear() { bits_ = 0; }
  bool operator==(const TModelChanges&) const = default;

 private:
  static uint8_t Bit(TModelChangedReason reason) {
    return static_cast<uint8_t>(1u << static_cast<unsigned>(reason));
  }
  uint8_t bits_ = 0;
};

class TLVPosList;

// Told of an LV's accumulated changes (the data components that show it register here).
class TModelChangeListener {
 public:
  virtual ~TModelChangeListener() = default;
  virtual void ModelChanged(const TLVPosList& list, TModelChanges changes) = 0;
};

}  // namespace korvan::boq
