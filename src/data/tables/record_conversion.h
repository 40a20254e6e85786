#pragma once

#include <cstdint>
#include <vector>

// Reading a data file record by record, for conversions that must see every record of
// a table even where its keys are missing or damaged.
namespace korvan::data {

struct DataFileRecord {
  int32_t position = 0;
  int32_t length = 0;
  char type = 0;  // the record's type letter as stored
};

// The live records of an open database in file order. Stops at the end of the file or
// at a block it cannot read; the result is 0 or the kernel code of that block, with the
// records found before it.
int ScanDataFileRecords(int handle, std::vector<DataFileRecord>& records);

}  // namespace korvan::data
