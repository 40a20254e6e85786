#pragma once

#include <string>
#include <vector>

#include "data/records/field_descriptor.h"
#include "data/records/field_value.h"

namespace korvan::data {

struct RecordCompareOptions {
  // Leave out the record header (its dates change on every write).
  bool skip_header = false;
};

// Compares two records field by field and returns the names of the fields that differ,
// in layout order; nested fields are compared part by part and named by their path
// ("Header.Version"). Short strings compare by their characters (the undefined bytes
// after the length do not count); floating-point fields by value, with identical bit
// patterns also equal (so a NaN read from disk equals itself); arrays, padding and all
// other fields byte by byte. A field present in only one of the records differs.
std::vector<std::string> DifferingFields(const RecordLayout& layout, RecordBytes a, RecordBytes b,
                                         const RecordCompareOptions& options = {});

inline bool RecordsEqual(const RecordLayout& layout, RecordBytes a, RecordBytes b,
                         const RecordCompareOptions& options = {}) {
  return DifferingFields(layout, a, b, options).empty();
}

}  // namespace korvan::data
