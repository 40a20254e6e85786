#pragma once

#include <cstdint>

namespace korvan::boq {

// Kinds of quantity determinations an item's quantity is formed from.
inline constexpr char kDetermLvPartialQty = 'M';  // an LV partial quantity of its own
inline constexpr char kDetermCostElement = 'O';   // taken through a cost element

// One quantity determination of an item: which partial quantity, how it was taken, and
// the contract, forecast and billed quantities it gives.
struct TQtyDeterm {
  char Kind = kDetermLvPartialQty;
  int32_t Id = 0;     // the partial quantity
  uint16_t Sort = 0;  // its sort number below the item
  double Contract = 0.0;
  double Forecast = 0.0;
  double Billed = 0.0;
};

}  // namespace korvan::boq
