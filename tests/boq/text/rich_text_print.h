#pragma once

#include <ostream>

#include "boq/text/rich_text.h"

namespace korvan::boq {

// A rich text as gtest shows it when a comparison fails: each block, each run with its
// format and complement.
inline void PrintTo(const TRichText& text, std::ostream* out) {
  const auto runs = [&](const TRichRuns& list) {
    for (const TRichRun& run : list) {
      *out << "[" << (run.style.bold ? "b" : "") << (run.style.italic ? "i" : "")
           << (run.style.underline ? "u" : "") << run.complement << ":\"" << run.text << "\"]";
    }
  };
  for (const TRichBlock& block : text.blocks) {
    *out << (block.row ? "\n  row " : "\n  par ");
    if (!block.row) runs(block.runs);
    for (const TRichCell& cell : block.cells) {
      *out << " | ";
      runs(cell.runs);
    }
  }
}

}  // namespace korvan::boq
