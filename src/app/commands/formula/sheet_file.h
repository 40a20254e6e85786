#pragma once

#include <string>
#include <vector>

#include "formula/reb/reb_line.h"

namespace korvan::app {

// A measurement sheet as plain text (UTF-8), one measurement line per text line:
//
//   # a comment; empty lines are skipped too
//   [kz=K] [vz=-] [faktor=F] [rz=SIGNS] NR WERT1 ... WERT5 [=]
//   [kz=K] [vz=-] [faktor=F] NR FREE FORMULA TEXT
//
// NR is the formula number ("-" for none). For a free formula (no number, 0, 30 or a
// number ending in 91) the rest of the line is the formula text; otherwise up to five
// values follow, "_" for an empty one, and a closing "=" ends a run of lines (stations,
// points, means). `rz` gives the arithmetic signs after values 1 to 5 ("_" for none).
// Lines are numbered from 1 in the order they stand; that number is the line's id and
// its address, so "#3" in a formula names the result of line 3.
struct TSheetLine {
  formula::TRebLine line;
  int text_line = 0;  // where it stands in the file
};

// Reads a sheet; a line that cannot be read gives a CommandError naming the file, the
// line and what was expected.
std::vector<TSheetLine> ReadSheetFile(const std::string& file);
// The same from a text already read.
std::vector<TSheetLine> ParseSheet(const std::string& file, const std::string& text);

}  // namespace korvan::app
