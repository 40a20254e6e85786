#pragma once

#include <iosfwd>
#include <string>

namespace korvan::app::demo {

// Enters the sample currencies and units into the master data of the installation at
// `base_dir`, skipping those that are there already, and says how many it entered.
void AddSampleMasterData(const std::string& base_dir, std::ostream& out);

}  // namespace korvan::app::demo
