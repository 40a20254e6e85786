#pragma once

#include <memory>
#include <vector>

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// The editing operations of `korvan lv` (add, set, move, remove, renumber, structure):
// each loads the LV, changes it in memory, and saves it as one step of the journal that
// `korvan undo` takes back.
void AddLvEditOperations(std::vector<std::unique_ptr<LvOperation>>& operations);

}  // namespace korvan::app
