#include "boq/text/rich_text.h"

namespace korvan::boq {
namespace {

// What an unfilled complement looks like in a plain text.
constexpr char kGapMarker[] = "..";

void AppendPlainRuns(const TRichRuns& runs, std::string& out) {
  for (const TRichRun& run : runs) {
    out += run.complement != 0 && run.text.empty() ? kGapMarker : run.text;
  }
}

}  // namespace

void AppendRunText(TRichRuns& runs, const std::string& text, const TRichStyle& style,
                   int complement) {
  if (!runs.empty() && runs.back().complement == complement &&
      (runs.back().style == style || runs.back().text.empty())) {
    runs.back().style = style;
    runs.back().text += text;
    return;
  }
  runs.push_back(TRichRun{text, style, complement});
}

std::string PlainView(const TRichText& text) {
  std::string out;
  for (size_t i = 0; i < text.blocks.size(); ++i) {
    if (i > 0) out += '\n';
    const TRichBlock& block = text.blocks[i];
    if (!block.row) {
      AppendPlainRuns(block.runs, out);
      continue;
    }
    for (size_t cell = 0; cell < block.cells.size(); ++cell) {
      if (cell > 0) out += '\t';
      AppendPlainRuns(block.cells[cell].runs, out);
    }
  }
  return out;
}

TRichText RichTextFromPlain(const std::string& utf8) {
  TRichText text;
  std::string line;
  const auto end_line = [&] {
    if (!line.empty()) AppendRunText(text.blocks.back().runs, line, {});
    line.clear();
    text.blocks.emplace_back();
  };
  for (size_t i = 0; i < utf8.size(); ++i) {
    const char c = utf8[i];
    if (c == '\r') {
      if (i + 1 < utf8.size() && utf8[i + 1] == '\n') ++i;
      end_line();
    } else if (c == '\n') {
      end_line();
    } else {
      line += c;
    }
  }
  if (!line.empty()) AppendRunText(text.blocks.back().runs, line, {});
  return text;
}

}  // namespace korvan::boq
