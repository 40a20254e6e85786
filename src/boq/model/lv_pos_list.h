#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "boq/lv/lv_record.h"
#include "boq/model/lv_pos.h"
#include "boq/oz/lv_oz_mask.h"

// An LV in memory: its header and its entries in document order. A plain value type
// (copyable, no reference counting): whoever loads it owns it.
namespace korvan::boq {

class TLVPosList {
 public:
  TLVPosList() = default;
  explicit TLVPosList(const t_Lv_DB_VERSION_3100& lv) { RefreshLvProperties(lv); }

  // Takes the LV header: the mask is rebuilt and the automatic-numbering switch recomputed.
  void RefreshLvProperties(const t_Lv_DB_VERSION_3100& lv);

  const t_Lv_DB_VERSION_3100& FLv() const { return lv_; }
  const TLvOzMask& FOzMask() const { return oz_mask_; }
  bool FAutoNum() const { return auto_num_; }
  bool FReadOnly() const { return read_only_; }
  void SetReadOnly(bool read_only) { read_only_ = read_only; }

  int Count() const { return static_cast<int>(entries_.size()); }
  // The entry at `index`, or nullptr outside the list.
  TLvPos* GetLvPosItems(int index);
  const TLvPos* GetLvPosItems(int index) const;
  TLvPos& operator[](int index) { return entries_[static_cast<std::size_t>(index)]; }
  const TLvPos& operator[](int index) const { return entries_[static_cast<std::size_t>(index)]; }

  void Add(TLvPos entry) { entries_.push_back(std::move(entry)); }
  void Insert(int index, TLvPos entry);
  void Delete(int index);
  void Clear() { entries_.clear(); }

  // A deep copy of `other`'s header and entries; the listeners stay this list's own and
  // are told of the change when idle.
  void Assign(const TLVPosList& other);

  // --- Changes: collected per entry and for the list, passed on by Idle -----------------
  void Changed(TModelChangedReason reason) { changes_.Add(reason); }
  // The entry at `index` changed (ignored outside the list).
  void Changed(int index, TModelChangedReason reason);
  TModelChanges FChanges() const { return changes_; }
  // `listener` is told of changes until it is unregistered; it must outlive its registration.
  void RegisterCData(TModelChangeListener* listener);
  void UnRegisterCData(TModelChangeListener* listener);
  // Passes the changes collected since the last call to every listener, then forgets them
  // (in the list and its entries). Nothing is passed on when nothing changed.
  void Idle();

  std::vector<TLvPos>& Entries() { return entries_; }
  const std::vector<TLvPos>& Entries() const { return entries_; }

  // --- Searches: the index of the entry, -1 when there is none ---------------------
  // The last entry whose OZ (up to 30 characters) is `oz` and whose kind is `kind`; a
  // blank or empty kind matches every kind.
  int IndexOfOz(std::string_view oz, char kind = ' ') const;
  // The first entry from `start` on whose OZ is `oz`. With `loose`, "_" and blanks in
  // the entries' OZs count as "0": 01.__.0010 is found for 01.00.0010.
  int SearchItemIndexByOz(int start, std::string_view oz, bool loose) const;
  int SearchItemIndexByOz(std::string_view oz, bool loose) const {
    return SearchItemIndexByOz(0, oz, loose);
  }
  int SearchItemIndexByIdBeschr(int32_t id_beschr) const;
  int SearchItemIndexByIdLvBgBeschr(int32_t id) const;
  int SearchItemIndexByStrukturRec(const t_Struktur& row) const;
  // By the global id of the entry's record (the GUID of the common part, as stored).
  int SearchItemIndexByKatPosGUID(std::span<const uint8_t, 16> guid) const;
  // By that global id in text form "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; braces and
  // case do not matter. An all-zero GUID is no id and never found.
  int SearchItemIndexByDescriptionID(std::string_view id) const;
  // The description (its id) an entry's texts and unit hang on; null id for an entry
  // without one or outside the list.
  int32_t GetRefDescr(int index) const;
  // Appends to `result` the indexes of the entries with the row's parent group, in list
  // order; returns the place in `result` of the row's own entry, -1 when missing.
  int GetItemsForSameParent(const t_Struktur& row, std::vector<int>* result) const;
  // The first quantity-bearing entry (P, L, U) at or after `index`.
  int GetNextMengePosIndex(int index) const;

  // Sets every group's kind (Titelart) from its Bedarf code, 'A' for an alternative.
  void RefreshGroupKinds();
  // Whether some top-level entry stands deeper than level 1 under the mask without being
  // an indexed number of level 2 or holding a "_": its group is missing.
  bool HasEntriesWithoutParentGroup() const;

  // The step width of a level: its own, else the LV's default, at least 1.
  int StepWidth(int level) const;
  bool AutoCounter(int level) const;
  bool ContinuousCounter(int level) const;

 private:
  t_Lv_DB_VERSION_3100 lv_{};
  TLvOzMask oz_mask_;
  bool read_only_ = false;
  bool auto_num_ = false;
  std::vector<TLvPos> entries_;
  TModelChanges changes_;
  // Listeners belong to one list: a copy or a moved-to list starts without any.
  struct Listeners {
    std::vector<TModelChangeListener*> items;
    Listeners() = default;
    Listeners(const Listeners&) {}
    Listeners& operator=(const Listeners&) { return *this; }
  };
  Listeners listeners_;
};

}  // namespace korvan::boq
