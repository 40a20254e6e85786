#pragma once

#include <filesystem>

#include "testing/temp_dir.h"

namespace korvan::testing {

// The project and LV of MakeSmallLv.
inline constexpr const char* kSmallLvProject = "Beispiel";
inline constexpr const char* kSmallLv = "Rohbau";

// The sample installation (`korvan demo --setup-only`) in `dir`/"ava" with the LV "Rohbau"
// (mask 11.22.PPPP) in its project "Beispiel", built by `korvan lv add`:
//   01 Rohbau / 01.01 Erdarbeiten / 01.01.0001 Aushub 10 m³ at 5,00 (with a long text),
//   01.01.0002 Verfüllen 2 m³ at 7,50, 01.01.0003 a note; 01.02 Mauerarbeiten (empty).
std::filesystem::path MakeSmallLv(const TempDir& dir);

// Two bids on MakeSmallLv's LV (`korvan bidder add`, `korvan bid set`): bidder 1 "Musterbau
// GmbH" at 5,50 and 7,00 (total 69,00), bidder 2 "Zweitbau" at 4,80 and 20,00 (total 88,00).
void AddSmallBids(const std::filesystem::path& base);

}  // namespace korvan::testing
