#pragma once

#include <memory>

#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/endsum/ends_node.h"
#include "calc/price/lv_calculation.h"

namespace korvan::calc {

// The end-sum tree of an LV: a node per group below the root (id kNullId), each holding
// what its own items' cost elements give for their quantities. Items count when they are
// L or P, no alternative, no contingency without total and not omitted; an item without
// cost elements but with a bid unit price counts as a fixed price.
std::unique_ptr<TEndsNode> BuildEndsTree(const boq::TLVPosList& list, TLvCalculation& costs,
                                         const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::calc
