#pragma once

#include "boq/model/lv_pos_list.h"

// The tree of an LV as its numbers give it, so that sums follow the OZ even where a parent
// link went astray.
namespace korvan::calc {

// Sets the parent (ZuBg) of every group and quantity item (P, L, U) from the depths of the OZs
// under the mask: an entry belongs to the nearest group before it that stands exactly one level
// higher and whose range it is in; an entry without one stands at the root. Text entries keep their
// links (they carry the number of the entry they belong to, not a level of their own). Returns
// whether any parent changed. The order within a group (SzBg) is the saving's: it numbers the
// children in list order.
bool RebuildParentLinks(boq::TLVPosList& list);

}  // namespace korvan::calc
