#pragma once

#include <string>
#include <vector>

#include "data/common/cp1252.h"

namespace korvan::boq {

// A text made to fit the short-text lines of TTbTexte: what code page 1252 cannot hold
// becomes "?", and a line longer than a stored line is cut at its last blank before the
// limit (or at the limit when it has none).
struct TFittedShortText {
  std::vector<std::string> lines;  // UTF-8, each at most 70 characters
  bool wrapped = false;            // a line had to be cut
  data::Cp1252Report report;       // what was replaced by "?"
};

// `utf8` split at "\n" into lines that TTbTexte::WriteLines takes as they are.
TFittedShortText FitShortTextLines(const std::string& utf8);

}  // namespace korvan::boq
