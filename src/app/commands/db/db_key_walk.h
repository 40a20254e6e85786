#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "app/commands/db/db_database.h"

namespace korvan::app {

// Visits every key entry of the database's key file in tree order with its record
// position and its key bytes (the file's key length). The walk is bounded: it stops
// with a CommandError naming the key file when the entries do not ascend or outnumber
// the tree's count, as they can in a damaged tree, and when the key layer fails.
void WalkKeys(const OpenDatabase& db,
              const std::function<void(uint32_t position, std::span<const uint8_t> key)>& visit);

}  // namespace korvan::app
