#pragma once

#include <memory>

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan bid import <lv> <bidder> FILE.X84`: a bidder's prices from a GAEB DA 84 file.
std::unique_ptr<LvOperation> MakeBidImportCommand();

}  // namespace korvan::app
