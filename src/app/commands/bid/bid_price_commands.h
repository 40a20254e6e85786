#pragma once

#include <memory>

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan bid discount|lumpsum|convert|copy`: a bidder's discount and lump sum, their
// conversion into unit prices, and the bid prices carried into the LV.
std::unique_ptr<LvOperation> MakeBidDiscountCommand();
std::unique_ptr<LvOperation> MakeBidLumpSumCommand();
std::unique_ptr<LvOperation> MakeBidConvertCommand();
std::unique_ptr<LvOperation> MakeBidCopyCommand();

}  // namespace korvan::app
