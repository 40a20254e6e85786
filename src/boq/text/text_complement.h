#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/records/null_values.h"

namespace korvan::boq {

// One text complement of a text as read from or written to the complement headers.
struct TTEItem {
  std::string name;  // "TA3", "TB3"; see ComplementName
  int32_t id = data::kNullId;
  int32_t knr = 0;
  char knr_art = 'A';  // 'A' to be filled by the client (Auslober), 'B' by the bidder
  int32_t id_bieter = data::kNullId;
  int32_t start = 0;  // TErgStart: which gap of the text it fills, counted from 1
  uint8_t body_kind = 0;
  uint8_t body_decimals = 0;
  std::string text;  // the complement's text as stored (rich text)

  bool operator==(const TTEItem&) const = default;
};

// "TA<n>" for a complement of the client, "TB<n>" for one of the bidder; empty for a
// number of 0 or less.
std::string ComplementName(int32_t knr, char knr_art);

// The complements of a text, sorted by name.
class TTEList {
 public:
  // Adds an item under a name; its index, or -1 when the name is empty or present.
  int Add(const std::string& name, TTEItem item);
  // Adds a new item with only its name set.
  int Add(const std::string& name) { return Add(name, TTEItem{}); }
  bool Delete(int index);
  bool Delete(const std::string& name);
  void Clear() { items_.clear(); }

  int Count() const { return static_cast<int>(items_.size()); }
  const TTEItem& GetItem(int index) const { return items_.at(static_cast<size_t>(index)); }
  TTEItem& GetItem(int index) { return items_.at(static_cast<size_t>(index)); }
  // The item of a name, or nullptr.
  const TTEItem* GetTE(const std::string& name) const;
  const std::vector<TTEItem>& Items() const { return items_; }

  bool operator==(const TTEList&) const = default;

 private:
  std::vector<TTEItem> items_;
};

}  // namespace korvan::boq
