#include "boq/text/text_conversions.h"

#include "boq/text/rtf_writer.h"

namespace korvan::boq {
namespace {

constexpr char kGap[] = "\xFF\xFF";
constexpr char kDelimiter = static_cast<char>(kComplementDelimiter);

bool IsWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         (byte >= 0x80 && byte != 0xFF);
}

// Whether `word` stands at `at` as a word of its own.
bool WordAt(std::string_view text, size_t at, std::string_view word) {
  if (text.substr(at, word.size()) != word) return false;
  if (at > 0 && IsWordByte(text[at - 1])) return false;
  const size_t end = at + word.size();
  return end >= text.size() || !IsWordByte(text[end]);
}

// The length of the gap marker at `at`, or 0.
size_t GapMarkerLength(std::string_view text, size_t at) {
  if (text.substr(at, 2) == "..") {
    size_t end = at;
    while (end < text.size() && text[end] == '.') ++end;
    return end - at;
  }
  for (std::string_view word : {"XX", "xx", "variabel"}) {
    if (WordAt(text, at, word)) return word.size();
  }
  return 0;
}

}  // namespace

std::string InsertMissingLineFeeds(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    out += text[i];
    if (text[i] == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n')) out += '\n';
  }
  return out;
}

std::string MarkComplementGaps(std::string_view text) {
  std::string out;
  size_t i = 0;
  while (i < text.size()) {
    const size_t marker = GapMarkerLength(text, i);
    if (marker == 0) {
      out += text[i++];
      continue;
    }
    out += kGap;
    i += marker;
  }
  return out;
}

std::string UnmarkComplementGaps(std::string_view text) {
  std::string out;
  bool open = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != kDelimiter) {
      out += text[i];
      continue;
    }
    if (!open && i + 1 < text.size() && text[i + 1] == kDelimiter) {
      out += "..";
      ++i;
      continue;
    }
    open = !open;
  }
  return out;
}

TRichText RichTextFromPlainWithGaps(const std::string& utf8) {
  TRichText text = RichTextFromPlain(utf8);
  int complements = 0;
  for (TRichBlock& block : text.blocks) {
    if (block.runs.empty()) continue;
    const std::string marked = MarkComplementGaps(block.runs.front().text);
    block.runs.clear();
    std::string piece;
    for (size_t i = 0; i < marked.size(); ++i) {
      if (marked[i] != kDelimiter) {
        piece += marked[i];
        continue;
      }
      if (!piece.empty()) AppendRunText(block.runs, piece, {});
      piece.clear();
      block.runs.push_back(TRichRun{"", {}, ++complements});
      ++i;  // the gap is two delimiters around an empty body
    }
    if (!piece.empty()) AppendRunText(block.runs, piece, {});
  }
  return text;
}

std::string WrapPlainAsRtf(std::string_view utf8) {
  std::string out = "{\\rtf1\\ ";
  std::string line;
  for (size_t i = 0; i < utf8.size(); ++i) {
    if (utf8[i] == '\r' || utf8[i] == '\n') {
      if (utf8[i] == '\r' && i + 1 < utf8.size() && utf8[i + 1] == '\n') ++i;
      AppendRtfEscaped(line, "\\line ", out);
      out += "\\par ";
      line.clear();
    } else {
      line += utf8[i];
    }
  }
  AppendRtfEscaped(line, "\\line ", out);
  out += "}";
  return out;
}

std::string ExpandEscapedLineFeeds(std::string_view rtf) {
  std::string out;
  size_t i = 0;
  while (i < rtf.size()) {
    if (rtf.substr(i, 2) == "\\\\") {  // an escaped backslash starts no escape
      out += rtf.substr(i, 2);
      i += 2;
    } else if (rtf.substr(i, 4) == "\\'0a" || rtf.substr(i, 4) == "\\'0A") {
      out += "\\par\r\n";
      i += 4;
    } else {
      out += rtf[i++];
    }
  }
  return out;
}

}  // namespace korvan::boq
