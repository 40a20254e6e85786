#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvan::storage {

struct DataFileBlock {
  int32_t position = 0;
  int32_t length = 0;  // the whole block, positive for free blocks too
  bool live = false;
};

struct DataFileReport {
  std::vector<DataFileBlock> blocks;  // in file order, as far as the walk got
  std::vector<std::string> problems;  // empty when the file is consistent
};

// Walks the blocks of an open database's data file from its first block position and
// checks them against the free-space index: every block must have a sensible length
// and end inside the file, every live record must hold a header with a type letter,
// and free blocks and "~" keys must correspond one to one.
DataFileReport CheckDataFile(int handle);

}  // namespace korvan::storage
