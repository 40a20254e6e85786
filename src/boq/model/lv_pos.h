#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "boq/lv/lv_entry_records.h"
#include "boq/lv/struktur_record.h"
#include "boq/model/model_changes.h"
#include "boq/qty/qty_determ.h"
#include "data/records/null_values.h"
#include "data/tables/std_db.h"

// One entry of an LV in memory. A plain value: the records of the entry (its structure
// row and its group or item data) are held whole, so that numbering, sums and searches
// run without reading tables; accessors give the fields the numbering and the editors use.
namespace korvan::boq {

// The reference type of an item whose total belongs to the base of a surcharge item "S".
inline constexpr char kQuantityRefType = 'M';

// A reference of an entry to another entry, by the other's entry id.
struct TLvPosRef {
  char Type = kQuantityRefType;
  int32_t Id = data::kNullId;
  bool operator==(const TLvPosRef&) const = default;
};

struct TLvPos {
  t_Struktur Struktur{};
  data::TDbRecordHeader DatenHeader{};       // header of the group or item record
  t_LvBgBeschr_3000 LvBgBeschr{};            // the part groups and items share
  t_LvBg2_DB_VERSION_201401 LvBg{};          // group part (kind "B")
  t_LvBeschr2_DB_VERSION_201401 LvBeschr{};  // item part (every other kind)
  std::string ShortText;                     // UTF-8
  std::string LongText;                      // the long text as stored (rich text), may be empty
  bool LongTextLoaded = false;               // LongText was read (only on request: texts are large)
  bool LongTextChanged = false;              // LongText is to be written back
  std::string Unit;                          // UTF-8 unit symbol (kept in the description)
  int16_t UnitId = data::kNullId16;          // the unit in the unit list; null for a free symbol
  bool UnitChanged = false;                  // Unit is to be written back
  bool DescriptionWanted = false;            // give it a description even without texts
  std::vector<TLvPosRef> RefIDs;             // the entries this one refers to (lv_references.h)
  int32_t RefCount = 0;                      // how many references of other entries name this one
  TModelChanges Changes;                     // what changed since the list last passed it on
  std::vector<TQtyDeterm> QtyDeterms;        // filled by RecalcQuantity (lv_pos_quantity.cpp)
  // Filled by the sum run, never stored. For an item below a group: the group's running
  // totals after this item in document order (estimated, awarded after the items' own
  // discounts, billed), printed as "Übertrag" at a page break; 0 for other entries.
  double Schaetzuebertrag = 0.0;
  double VergabeUebertrag = 0.0;
  double AbrechnungsUebertrag = 0.0;
  // The six component totals, unrounded: quantity × component price for an item, the
  // children's sums for a group. Estimated (SGPAnteil) from the description's components,
  // awarded (VGPAnteil) from the item part's.
  std::array<double, 6> SGPAnteil{};
  std::array<double, 6> VGPAnteil{};

  char Kind() const { return Struktur.KzBgBeschr; }
  void SetKind(char kind) { Struktur.KzBgBeschr = kind; }
  bool IsGroup() const { return Kind() == 'B'; }
  // The quantity-bearing kinds (Mengenpositionen).
  bool IsQuantityItem() const { return Kind() == 'P' || Kind() == 'L' || Kind() == 'U'; }

  std::string_view Oz() const { return LvBgBeschr.OZ.Raw(); }
  // Copied first: `oz` may be a view of the stored number itself.
  void SetOz(std::string_view oz) { LvBgBeschr.OZ.SetRaw(std::string(oz)); }
  bool IsSupplement() const { return LvBgBeschr.KzNachtrag != 0; }
  // `unit_id`: the symbol's unit in the unit list, null when the list does not hold it.
  void SetUnit(std::string unit, int16_t unit_id = data::kNullId16) {
    Unit = std::move(unit);
    UnitId = unit_id;
    UnitChanged = true;
  }

  // The quantity determination at `index`, nullptr outside the list.
  const TQtyDeterm* GetQtyDeterm(int index) const;
  void SetQtyDeterm(int index, const TQtyDeterm& value);
  // For a quantity item (P, L, U) whose quantity comes from partial quantities (its
  // KzTeilmengen, or `force_partial_quantities` of the LV when it has any): forms the
  // contract quantity FMenge and the forecast quantity VaMenge as the sums of the
  // partial quantities and answers whether either changed. Writes only partial
  // quantities whose contract quantity their source changed; the item is the caller's to
  // save. EStoredLvError when the partial quantities cannot be read or written.
  bool RecalcQuantity(data::TStdDb& lv_db, bool force_partial_quantities);
};

// Why `unit` cannot be an entry's unit (a stored unit holds at most 6 characters of
// Windows-1252), or empty when it can.
std::string UnitProblem(std::string_view unit);

// A new entry of `kind` with the defaults a new record gets: ids unset (it gets them when
// saved), amounts in the LV's currency, directly below the LV root.
TLvPos NewLvPos(char kind);

}  // namespace korvan::boq
