#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/data_file_reader.h"

namespace korvan::storage {

struct DataFileReport {
  std::vector<DataFileBlock> blocks;  // the intact blocks in file order
  std::vector<std::string> problems;  // empty when the file is consistent
};

// Walks the blocks of an open database's data file and checks them against the
// free-space index: every stretch the reader had to skip is a problem, every live
// record must hold a type letter, and free blocks and "~" keys must correspond one to
// one.
DataFileReport CheckDataFile(int handle);

}  // namespace korvan::storage
