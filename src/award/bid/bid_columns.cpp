#include "award/bid/bid_columns.h"

namespace korvan::award {

const std::vector<std::string>& BidColumnDefinitions() {
  // Read-only for now: no column takes typed values (the second layout flag is 0).
  static const std::vector<std::string> definitions = {
      "OZ,N,0,110,20,N,0,1,0,0,0,,0,1,48301,,,,,,",
      "Menge,R,1,90,14,N,3,1,0,1,0,,0,1,48302,,,,,,",
      "Einheit,N,2,50,6,N,0,1,0,0,0,,0,1,48303,,,,,,",
      "Kurztext,N,3,280,70,N,0,1,0,0,0,,0,1,48304,,,,,,",
      "EP,W,4,90,14,N,2,1,0,1,0,,0,1,48305,,,,,,",
      "GP,W,5,110,16,N,2,1,0,1,0,,0,1,48306,,,,,,",
      "NachlassProz,R,6,60,8,N,2,1,0,1,0,,0,1,48307,,,,,,",
      "GPnachNL,W,7,110,16,N,2,1,0,1,0,,0,1,48308,,,,,,",
      "Pauschal,W,8,100,16,N,2,1,0,1,0,,0,1,48309,,,,,,",
      "Anmerkung,N,9,40,1,N,0,1,0,0,0,,0,1,48310,,,,,,",
      "Kommentar,N,10,200,80,N,0,1,0,0,0,,0,1,48311,,,,,,",
      "LVMenge,R,11,90,14,N,3,1,0,1,0,,0,1,48312,,,,,,",
  };
  return definitions;
}

}  // namespace korvan::award
