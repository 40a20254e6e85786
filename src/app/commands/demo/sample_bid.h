#pragma once

#include <iosfwd>
#include <string>

namespace korvan::app::demo {

// What a bidder's own program does before it writes its DA 84 file: the sample prices of
// bidder `bidder_number` (counted from 0) entered as the bid of the first bidder of the LV
// `lv` in the current project of the installation at `data_dir`, one undo step. The LV
// must hold the sample's items in their order (it came from the demo's X83); CommandError
// when it does not. Answers how many unit prices were entered.
int EnterSampleBid(const std::string& data_dir, const std::string& lv, int bidder_number,
                   std::ostream& warnings);

}  // namespace korvan::app::demo
