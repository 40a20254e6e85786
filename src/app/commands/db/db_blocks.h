#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "storage/data_file_reader.h"

namespace korvan::app {

using DataBlock = storage::DataFileBlock;

// Walks the blocks of a data file through the one reader of the format. Damage does
// not end the walk: the reader goes on where blocks read again. Returns "" when the
// blocks fill the file exactly, otherwise the stretches that were skipped and why.
// A data file that cannot be opened or read throws CommandError naming it.
std::string WalkDataFile(const std::string& data_file_path,
                         const std::function<void(const DataBlock&)>& visit);

// The type letter of a record as text: the letter, or "\xNN" for a byte that is none.
std::string TypeLetterText(char type);

}  // namespace korvan::app
