#pragma once

#include <array>
#include <string>
#include <vector>

#include "award/bid/bid_texts.h"
#include "award/tables/angebot_record.h"

namespace korvan::award {

// One bid line in memory (TAO): the record, and what the group sums need besides it.
struct TAO {
  t_Angebot_DB_VERSION_201501 Angebot{};
  std::array<double, 6> GPAnteil{};        // group: sums of the components times quantity
  double GPvorNL = 0.0;                    // group: sum before the group's discount
  bool Stored = false;                     // a record of the line exists
  t_Angebot_DB_VERSION_201501 AsStored{};  // the record as read, to write only changes
  std::vector<std::string> Kommentar;      // the bidder's comment, line by line
  TBidderTexts BidderTexts;                // what the bidder wrote into the entry's gaps
  bool TextsChanged = false;               // Kommentar or BidderTexts are to be stored
};

// One TAO per LV line, index = LV line index.
using TAngebotList = std::vector<TAO>;

// The sum of a line's six unit-price components.
double ComponentSum(const t_Angebot_DB_VERSION_201501& line);

// An item that has no quantity may still be priced by the total its bid states; the line
// keeps that total where a group keeps its lump sum (GPPsch). 0: none stated.
inline double StatedTotalWithoutQuantity(const t_Angebot_DB_VERSION_201501& item) {
  return item.GPPsch.Betrag;
}
inline void SetStatedTotalWithoutQuantity(t_Angebot_DB_VERSION_201501& item, double total) {
  item.GPPsch.Betrag = total;
}

}  // namespace korvan::award
