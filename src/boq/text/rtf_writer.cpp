#include "boq/text/rtf_writer.h"

#include "data/common/cp1252.h"
#include "data/common/message_format.h"

namespace korvan::boq {
namespace {

using data::Printf;

constexpr char kPrologue[] =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fswiss Arial;}}";

void AppendUnicode(char32_t code_point, std::string& out) {
  const auto unit = [&](uint32_t value) {
    out += Printf("\\u%d?", static_cast<int>(static_cast<int16_t>(static_cast<uint16_t>(value))));
  };
  if (code_point > 0xFFFF) {
    const uint32_t rest = code_point - 0x10000;
    unit(0xD800 + (rest >> 10));
    unit(0xDC00 + (rest & 0x3FF));
  } else {
    unit(code_point);
  }
}

void AppendCharacter(char32_t c, std::string_view line_break, std::string& out) {
  switch (c) {
    case '\\':
    case '{':
    case '}':
      out += '\\';
      out += static_cast<char>(c);
      return;
    case '\t':
      out += "\\tab ";
      return;
    case '\n':
      out += line_break;
      return;
    default:
      break;
  }
  if (c >= 0x20 && c < 0x7F) {
    out += static_cast<char>(c);
    return;
  }
  const auto byte = data::CodePointToCp1252(c);
  if (byte && *byte >= 0x80 && *byte != kComplementDelimiter) {
    out += Printf("\\'%02x", *byte);
    return;
  }
  AppendUnicode(c, out);
}

void AppendStyleChange(const TRichStyle& from, const TRichStyle& to, std::string& out) {
  if (from.bold != to.bold) out += to.bold ? "\\b " : "\\b0 ";
  if (from.italic != to.italic) out += to.italic ? "\\i " : "\\i0 ";
  if (from.underline != to.underline) out += to.underline ? "\\ul " : "\\ulnone ";
}

// Writes runs; `style` is the format in force before and after.
void AppendRuns(const TRichRuns& runs, TRichStyle& style, std::string& out) {
  int open = 0;
  for (const TRichRun& run : runs) {
    if (run.complement != open && open != 0) {
      out += "\\'ff";
      open = 0;
    }
    // The format comes before a complement opens: an empty complement has the format in
    // force where it opens.
    AppendStyleChange(style, run.style, out);
    style = run.style;
    if (run.complement != open) {
      out += "\\'ff";
      open = run.complement;
    }
    AppendRtfEscaped(run.text, "\\line ", out);
  }
  if (open != 0) out += "\\'ff";
}

void AppendRow(const TRichBlock& row, TRichStyle& style, std::string& out) {
  out += "\\trowd ";
  int right = 0;
  for (const TRichCell& cell : row.cells) {
    // Cells without a known edge get 30 mm each.
    right = cell.right_twips > right ? cell.right_twips : right + 1701;
    out += Printf("\\cellx%d", right);
  }
  out += ' ';
  for (const TRichCell& cell : row.cells) {
    out += "\\pard\\intbl ";
    AppendRuns(cell.runs, style, out);
    out += "\\cell ";
  }
  out += "\\row \\pard ";
}

}  // namespace

void AppendRtfEscaped(std::string_view utf8, std::string_view line_break, std::string& out) {
  size_t i = 0;
  while (i < utf8.size()) {
    size_t length = 0;
    const auto code_point = data::DecodeUtf8(utf8.substr(i), &length);
    if (code_point) {
      AppendCharacter(*code_point, line_break, out);
    } else {
      for (size_t k = 0; k < length; ++k) {
        AppendCharacter(data::Cp1252ToCodePoint(static_cast<uint8_t>(utf8[i + k])), line_break,
                        out);
      }
    }
    i += length == 0 ? 1 : length;
  }
}

std::string WriteRtf(const TRichText& text) {
  std::string out = kPrologue;
  out += "\\pard\\plain ";
  TRichStyle style;
  bool after_paragraph = false;
  for (const TRichBlock& block : text.blocks) {
    // A row takes the place of the empty paragraph that a break or an earlier row left.
    if (after_paragraph) out += "\\par ";
    if (block.row) {
      AppendRow(block, style, out);
    } else {
      AppendRuns(block.runs, style, out);
    }
    after_paragraph = !block.row;
  }
  out += "}";
  return out;
}

}  // namespace korvan::boq
