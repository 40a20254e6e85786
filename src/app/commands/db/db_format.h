#pragma once

#include <string>

namespace korvan::app {

// The format code of a data file (iDK_DbCheckFile) with its meaning, "4345 (current
// format)"; old formats the kernel can convert are named by their year or product.
std::string FormatCodeText(int format_code);

// Whether the blocks of a file with this format code can be read as records: the
// current format and the convertible old ones.
bool IsRecordFormat(int format_code);

// The data file's format code; throws CommandError naming the file when it cannot be
// read at all.
int DataFileFormat(const std::string& base_path);

}  // namespace korvan::app
