#pragma once

#include <array>
#include <string>

#include "boq/model/lv_pos_list.h"

// Automatic numbering of an LV's entries by its mask and its per-level settings
// (automatic counter, step width, continuous counter).
namespace korvan::boq {

class TBoqOzBuilder {
 public:
  explicit TBoqOzBuilder(TLVPosList& list) : list_(list) {}

  // Gives the entry at `index` an OZ and renumbers the entries after it. A supplement
  // takes its neighbour's item number with an unknown index (".?"). Any other entry keeps
  // an OZ it has when the LV does not number automatically, unless `force`.
  void BuildOzForItem(int index, bool force = false);

  // Renumbers the entries from `from_index` on; the entries before it only set the
  // counters. Nothing happens for a read-only list or an index past the end.
  void BuildOzForItems(int from_index = 0);

  void BuildOzForBoQCtgy(int index, bool is_item = false);
  void BuildOzForBoQItem(int index) { BuildOzForBoQCtgy(index, true); }

  // Rebuilds the OZ of the entry at `index` from its kind and its neighbours.
  void CheckOZPerZeilenart(int index);
  // Corrects the kind of the entry at `index` by the length of its OZ: too short for an
  // item part makes a group, long enough makes an item.
  void CheckZeilenartPerOZ(int index);

  // Formats `oz` to the LV's mask.
  std::string FormLvOZ(std::string_view oz, bool keep_tail = false) const;

 private:
  static constexpr int kLevels = 9;

  // The numbering state of one entry.
  struct EntryState {
    int level = 1;
    int index_level = 0;  // level of the index part, 0 when the OZ has none
    std::string index_part;
    int previous_level = 0;
    int first_omitted = 0;  // first level skipped between the previous entry and this, 0 if none
  };

  void Reset();
  EntryState StateOf(int index, const std::string& oz) const;
  void Advance(const EntryState& state, const std::string& oz);
  std::string Compose(const EntryState& state, const std::string& oz, bool keep) const;
  bool KeepsOwnNumbers() const;
  std::string PreviousOz(int index) const;
  void BuildItemOzFromPrevious(int index);
  void BuildNoteOz(int index);
  void BuildSupplementOz(int index);
  bool InsideBody(int index) const;

  TLVPosList& list_;
  // Per level 1 … 9 (index 0 unused): counter, current part text, the level is omitted.
  std::array<int, kLevels + 1> counter_{};
  std::array<std::string, kLevels + 1> part_{};
  std::array<bool, kLevels + 1> omitted_{};
};

}  // namespace korvan::boq
