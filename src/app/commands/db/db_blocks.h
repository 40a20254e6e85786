#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "storage/record_header.h"

namespace korvan::app {

// One block of a data file as the maintenance commands see it.
struct DataBlock {
  int32_t position = 0;
  int32_t length = 0;  // the whole block, positive for free blocks too
  bool live = false;
  bool has_header = false;            // live and long enough for a record header
  storage::TDbRecordHeader header{};  // valid when has_header
};

// Walks the blocks of a data file from its first block to its end, reading the file
// directly so that damage never turns into a kernel exception. Every step moves at
// least 4 bytes forward and stays inside the file, so the walk ends. Returns "" when
// the blocks fill the file exactly, otherwise the problem that stopped the walk.
// A data file that cannot be opened or read throws CommandError naming it.
std::string WalkDataFile(const std::string& data_file_path,
                         const std::function<void(const DataBlock&)>& visit);

// The type letter of a record as text: the letter, or "\xNN" for a byte that is none.
std::string TypeLetterText(char type);

}  // namespace korvan::app
