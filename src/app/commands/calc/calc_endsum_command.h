#pragma once

#include <memory>

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan calc endsum <lv> [--group OZ]` shows the calculation over the end sum;
// `korvan calc endsum <lv> set KEY=VALUE ...` changes its settings in one undo step.
std::unique_ptr<LvOperation> MakeCalcEndsumCommand();

}  // namespace korvan::app
