#pragma once

#include <string>

#include "boq/model/lv_pos_list.h"

// References between the entries of an LV: a surcharge item of kind "S" (ZuschArt) names
// the items whose totals form its base. An entry refers by the other's entry id, so a
// reference survives renumbering and moving. The item record keeps one reference (IdBezug);
// so an entry has at most one reference.
namespace korvan::boq {

// Why the entry at `from` cannot refer to the entry at `to`, or "" (German).
std::string ReferenceProblem(const TLVPosList& list, int from, int to);

// Makes the entry at `from` a surcharge item "S" on the item at `to`, in place of a
// reference it had. "" or why not (then nothing changed).
std::string SetReference(TLVPosList& list, int from, int to);

// The entry at `from` refers to nothing any more.
void ClearReferences(TLVPosList& list, int from);

// Counts anew for every entry how many references name it (RefCount).
void CountReferences(TLVPosList& list);

// Why the entry at `index` and the entries below it cannot be removed: some entry outside
// them refers to one of them (German); "" when they can.
std::string RemovalProblem(const TLVPosList& list, int index);

// The reference an item's record keeps, into the entry (after reading) and back (before
// writing): IdBezug, null when there is none.
void ReferencesFromRecord(TLvPos& entry);
void ReferencesIntoRecord(TLvPos& entry);

}  // namespace korvan::boq
