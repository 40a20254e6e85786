#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "boq/text/rich_text.h"

namespace korvan::boq {

// Something in an RTF text the reader had to guess at or leave out.
struct TRtfProblem {
  size_t offset = 0;  // byte position in the input, from 0
  int line = 0;       // line of the input, from 1
  std::string text;   // German, e.g. "Gruppe nicht geschlossen: \"}\" fehlt"
};

struct TRtfReadResult {
  TRichText text;
  // False when the input does not begin with "{\rtf"; it is then read as if it did.
  bool is_rtf = true;
  // The first problems in input order; `problem_count` counts them all.
  std::vector<TRtfProblem> problems;
  size_t problem_count = 0;
};

// Reads RTF as pasted from any word processor, tolerantly: paragraphs, line breaks, tabs,
// bold, italic, underline, table rows and cells, text complements (the byte 0xFF, see
// rtf_writer.h), code page 1252 ("\'xx" and bytes above 127), "\uN" with "\ucN" and
// surrogate pairs. Destinations it does not know ("{\*...}", font and colour tables,
// pictures, headers, field instructions) are skipped; "\'0a" breaks the paragraph. Groups
// nest at most 256 deep; deeper groups are skipped and reported. Any input gives a
// result, in time linear in its length.
TRtfReadResult ReadRtf(std::string_view rtf);

// "Byte 123 (Zeile 4): text" for messages.
std::string DescribeRtfProblem(const TRtfProblem& problem);

}  // namespace korvan::boq
