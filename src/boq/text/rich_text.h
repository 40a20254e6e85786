#pragma once

#include <string>
#include <vector>

namespace korvan::boq {

// A long text as this program keeps it in memory: a sequence of blocks, each a paragraph
// or a table row, made of runs of UTF-8 text with one character format. This is what a
// GAEB description needs of rich text; everything else a word processor writes (fonts,
// colours, pictures, page layout) is dropped when a text is read.

struct TRichStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;

  bool operator==(const TRichStyle&) const = default;
};

// Text of one format. `complement` is 0 for ordinary text and n for the body of the n-th
// text complement (a gap the client or bidder fills in) of the text; an empty body is an
// unfilled gap. A '\n' inside a run is a line break within its paragraph or cell.
struct TRichRun {
  std::string text;
  TRichStyle style;
  int complement = 0;

  bool operator==(const TRichRun&) const = default;
};

using TRichRuns = std::vector<TRichRun>;

struct TRichCell {
  TRichRuns runs;
  int right_twips = 0;  // right edge of the cell; 0 when the text did not say

  bool operator==(const TRichCell&) const = default;
};

// A paragraph (`row` false, `runs`) or a table row (`row` true, `cells`).
struct TRichBlock {
  bool row = false;
  TRichRuns runs;
  std::vector<TRichCell> cells;

  bool operator==(const TRichBlock&) const = default;
};

// Never empty: the empty text is one empty paragraph, and a text's paragraphs are the
// pieces between its paragraph breaks, so a text that ends with a break ends with an
// empty paragraph.
struct TRichText {
  std::vector<TRichBlock> blocks{TRichBlock{}};

  bool operator==(const TRichText&) const = default;
};

// Appends text in a format to runs, joining it to the last run when that has the same
// format and belongs to the same complement.
void AppendRunText(TRichRuns& runs, const std::string& text, const TRichStyle& style,
                   int complement = 0);

// The text for people and scripts: paragraphs joined by "\n", the cells of a row by
// "\t"; a complement shows its body, an unfilled one as "..".
std::string PlainView(const TRichText& text);

// A plain text as rich text: one paragraph per line; "\n", "\r\n" and a lone "\r" all
// break lines. PlainView of the result gives the text back with "\n" line breaks.
TRichText RichTextFromPlain(const std::string& utf8);

}  // namespace korvan::boq
