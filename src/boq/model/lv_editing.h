#pragma once

#include <string>
#include <string_view>

#include "boq/model/lv_pos_list.h"

// Edits of an LV in memory that keep its tree whole: an entry goes and comes with the
// entries below it, and numbering follows the edit.
namespace korvan::boq {

// Where a new entry goes.
struct TLvPlace {
  enum class Kind { kEnd, kUnder, kAfter } kind = Kind::kEnd;
  int index = -1;  // the group (kUnder) or the entry (kAfter) named
};

// One past the last entry below the entry at `index` (its subtree, by parent links).
int SubtreeEnd(const TLVPosList& list, int index);

// The entry whose OZ is `oz` as typed ("1.2.30") or as stored; -1 when none.
int FindEntryByOz(const TLVPosList& list, std::string_view oz);

// Inserts `entry` at `place` (at the end: below the last group for entries that are no
// group) and numbers it: with `oz` it keeps that number formatted to the mask, else the
// builder numbers it and the entries after it. Returns its index.
int AddEntry(TLVPosList& list, TLvPos entry, const TLvPlace& place, std::string_view oz = {});

// Moves the entry at `index` with its subtree behind the subtree of the entry at `after`,
// into that entry's group, and renumbers. "" or why not (German).
std::string MoveEntry(TLVPosList& list, int index, int after);

// Removes the entry at `index` with its subtree and renumbers what follows. Refused while
// an entry outside the subtree refers to one inside (a surcharge item would lose its base
// unseen): "" or why not (German), then nothing changed.
std::string RemoveEntry(TLVPosList& list, int index);

// Renumbers the whole LV: groups and items by the builder, then the text entries after
// the entries they belong to.
void RenumberLv(TLVPosList& list);

// Gives the LV a new mask and numbers every entry anew from the tree. "" or why the mask
// cannot number this LV (German).
std::string RestructureLv(TLVPosList& list, std::string_view mask);

// Why a mask cannot be an LV's ("" when it can): empty, longer than 20 characters, or
// more than 14 OZ characters.
std::string CheckOzMask(std::string_view mask);

}  // namespace korvan::boq
