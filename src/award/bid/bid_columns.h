#pragma once

#include <string>
#include <vector>

// The columns of a bid's grid (TdmAngebot's structure list), those a view of the lines
// shows, in the order of the full list.
namespace korvan::award {

enum TBidColumn {
  bcOz,
  bcMenge,
  bcEinheit,
  bcKurztext,
  bcEp,
  bcGp,
  bcNachlassProz,
  bcGpNachNl,
  bcPauschal,
  bcAnmerkung,
  bcKommentar,
  bcLvMenge,
  kBidColumnCount
};

// One column definition string per TBidColumn; the captions are texts 48301 and up.
const std::vector<std::string>& BidColumnDefinitions();

}  // namespace korvan::award
