#pragma once

#include <string>

#include "data/component/column_structure.h"

// What the views of a list make of a column definition.
namespace korvan::data {

// The column's caption: its text from the program's text catalogue, or its name when the
// definition gives no text number.
std::string ColumnCaption(const TColumnDef& column);

// Whether views let the user type into the column: its second layout flag is 1.
bool ColumnEditable(const TColumnDef& column);

// Whether the column holds numbers (integer, real, amount), which views align right.
bool ColumnIsNumber(const TColumnDef& column);

}  // namespace korvan::data
