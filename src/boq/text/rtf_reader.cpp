#include "boq/text/rtf_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "boq/text/rtf_writer.h"
#include "data/common/cp1252.h"
#include "data/common/message_format.h"

namespace korvan::boq {
namespace {

using data::Printf;

constexpr size_t kMaxDepth = 256;
constexpr size_t kMaxKeptProblems = 50;
constexpr int kMaxUnicodeSkip = 16;
constexpr char32_t kReplacement = 0xFFFD;

// Destinations whose content is no text of the document.
constexpr std::array<std::string_view, 52> kSkippedDestinations = {
    "fonttbl",      "colortbl",
    "stylesheet",   "info",
    "pict",         "object",
    "header",       "headerl",
    "headerr",      "headerf",
    "footer",       "footerl",
    "footerr",      "footerf",
    "footnote",     "fldinst",
    "xe",           "tc",
    "txe",          "rxe",
    "bkmkstart",    "bkmkend",
    "themedata",    "colorschememapping",
    "listtable",    "listoverridetable",
    "revtbl",       "rsidtbl",
    "generator",    "nonshppict",
    "ftnsep",       "ftnsepc",
    "ftncn",        "aftnsep",
    "aftnsepc",     "aftncn",
    "pn",           "pntext",
    "listtext",     "datastore",
    "latentstyles", "xmlnstbl",
    "userprops",    "docvar",
    "filetbl",      "pgdsctbl",
    "mmathPr",      "annotation",
    "atnid",        "atnauthor",
    "shpinst",      "sp"};

constexpr std::array<std::string_view, 7> kUnderlineOn = {"ul",     "uld",    "uldb", "ulw",
                                                          "ulwave", "uldash", "ulth"};

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

template <size_t N>
bool IsOneOf(std::string_view word, const std::array<std::string_view, N>& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

struct GroupState {
  TRichStyle style;
  bool skip = false;
  bool hidden = false;
  bool in_table = false;
  int unicode_skip = 1;
};

struct ControlWord {
  std::string_view word;
  bool has_parameter = false;
  int32_t parameter = 0;
};

class RtfReader {
 public:
  explicit RtfReader(std::string_view input) : input_(input) {}

  TRtfReadResult Read() {
    SkipLeadingBlanks();
    if (input_.substr(pos_, 5) != "{\\rtf") {
      result_.is_rtf = false;
      Problem(pos_, "keine RTF-Datei: \"{\\rtf\" am Anfang erwartet");
      states_.push_back(GroupState{});  // read it as the content of an unnamed group
    }
    while (pos_ < input_.size() && !root_closed_) Step();
    Finish();
    return std::move(result_);
  }

 private:
  void SkipLeadingBlanks() {
    if (input_.substr(0, 3) == "\xEF\xBB\xBF") pos_ = 3;
    while (pos_ < input_.size() && (input_[pos_] == ' ' || input_[pos_] == '\t' ||
                                    input_[pos_] == '\r' || input_[pos_] == '\n')) {
      ++pos_;
    }
  }

  void Problem(size_t offset, std::string text) {
    ++result_.problem_count;
    if (result_.problems.size() >= kMaxKeptProblems) return;
    const int line =
        1 + static_cast<int>(std::count(input_.begin(), input_.begin() + offset, '\n'));
    result_.problems.push_back(TRtfProblem{offset, line, std::move(text)});
  }

  GroupState& State() { return states_.back(); }
  bool Dropping() const { return overflow_ > 0 || states_.back().skip || states_.back().hidden; }

  void Step() {
    const size_t start = pos_;
    const char c = input_[pos_++];
    switch (c) {
      case '{':
        OpenGroup(start);
        break;
      case '}':
        CloseGroup();
        break;
      case '\\':
        Control(start);
        break;
      case '\r':
      case '\n':
      case '\0':
        break;
      default:
        RawByte(static_cast<uint8_t>(c));
        break;
    }
  }

  void OpenGroup(size_t start) {
    pending_skip_ = 0;
    if (overflow_ > 0 || states_.size() >= kMaxDepth) {
      if (overflow_ == 0)
        Problem(start, Printf("Gruppen tiefer als %zu verschachtelt: übergangen", kMaxDepth));
      ++overflow_;
      return;
    }
    states_.push_back(states_.empty() ? GroupState{} : states_.back());
  }

  void CloseGroup() {
    pending_skip_ = 0;
    if (overflow_ > 0) {
      --overflow_;
      return;
    }
    states_.pop_back();
    if (states_.empty()) root_closed_ = true;
  }

  void RawByte(uint8_t byte) {
    if (byte < 0x20 && byte != '\t') return;
    Byte(byte);
  }

  // A character of the code page, given as a byte.
  void Byte(uint8_t byte) {
    if (ConsumedAsFallback()) return;
    if (byte == kComplementDelimiter) return ToggleComplement();
    if (byte == '\n') return ParagraphBreak();
    if (byte == '\r') return;
    CodePoint(data::Cp1252ToCodePoint(byte));
  }

  // After "\uN" the next characters are the fallback for readers without Unicode.
  bool ConsumedAsFallback() {
    if (pending_skip_ == 0) return false;
    --pending_skip_;
    return true;
  }

  void Control(size_t start) {
    if (pos_ >= input_.size()) {
      Problem(start, "\"\\\" am Ende der Datei");
      return;
    }
    const char c = input_[pos_];
    if (IsLetter(c)) {
      pending_skip_ = 0;
      Word(ReadWord(), start);
      return;
    }
    ++pos_;
    switch (c) {
      case '\\':
      case '{':
      case '}':
        if (!ConsumedAsFallback()) CodePoint(static_cast<unsigned char>(c));
        break;
      case '\'':
        HexByte(start);
        break;
      case '~':
        if (!ConsumedAsFallback()) CodePoint(0x00A0);
        break;
      case '_':
        if (!ConsumedAsFallback()) CodePoint(0x2011);
        break;
      case '*':
        if (overflow_ == 0) State().skip = true;
        break;
      case '\r':
      case '\n':
        ParagraphBreak();
        break;
      default:
        break;  // "\-", "\:", "\|", "\ " and unknown symbols carry no text
    }
  }

  void HexByte(size_t start) {
    const int high = pos_ < input_.size() ? HexValue(input_[pos_]) : -1;
    const int low = pos_ + 1 < input_.size() ? HexValue(input_[pos_ + 1]) : -1;
    if (high < 0 || low < 0) {
      if (!Dropping()) Problem(start, "nach \"\\'\" zwei Hexadezimalziffern erwartet");
      return;
    }
    pos_ += 2;
    Byte(static_cast<uint8_t>(high * 16 + low));
  }

  ControlWord ReadWord() {
    const size_t begin = pos_;
    while (pos_ < input_.size() && IsLetter(input_[pos_])) ++pos_;
    ControlWord word{input_.substr(begin, pos_ - begin)};
    bool negative = false;
    if (pos_ + 1 < input_.size() && input_[pos_] == '-' && input_[pos_ + 1] >= '0' &&
        input_[pos_ + 1] <= '9') {
      negative = true;
      ++pos_;
    }
    int64_t value = 0;
    while (pos_ < input_.size() && input_[pos_] >= '0' && input_[pos_] <= '9') {
      word.has_parameter = true;
      value = std::min<int64_t>(value * 10 + (input_[pos_] - '0'),
                                int64_t{std::numeric_limits<int32_t>::max()} + 1);
      ++pos_;
    }
    if (negative) value = -value;
    word.parameter = static_cast<int32_t>(std::clamp<int64_t>(
        value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
    if (pos_ < input_.size() && input_[pos_] == ' ') ++pos_;
    return word;
  }

  void Word(const ControlWord& w, size_t start) {
    if (w.word == "bin") return SkipBinary(w);
    if (overflow_ > 0) return;
    if (IsOneOf(w.word, kSkippedDestinations)) {
      State().skip = true;
      return;
    }
    const bool on = !w.has_parameter || w.parameter != 0;
    if (w.word == "b") {
      State().style.bold = on;
    } else if (w.word == "i") {
      State().style.italic = on;
    } else if (IsOneOf(w.word, kUnderlineOn)) {
      State().style.underline = on;
    } else if (w.word == "ulnone") {
      State().style.underline = false;
    } else if (w.word == "plain") {
      State().style = TRichStyle{};
      State().hidden = false;
    } else if (w.word == "v") {
      State().hidden = on;
    } else if (w.word == "pard") {
      State().in_table = false;
    } else if (w.word == "intbl") {
      State().in_table = true;
    } else if (w.word == "uc") {
      State().unicode_skip = std::clamp(w.parameter, 0, kMaxUnicodeSkip);
    } else if (w.word == "u") {
      Unicode(w, start);
    } else if (w.word == "ansicpg") {
      if (w.parameter != 1252) {
        Problem(start, Printf("Codepage %d wird nicht unterstützt: als 1252 gelesen", w.parameter));
      }
    } else {
      Structure(w);
    }
  }

  // Words that break lines or build tables, and named characters.
  void Structure(const ControlWord& w) {
    const std::string_view word = w.word;
    if (word == "par" || word == "sect" || word == "page") return ParagraphBreak();
    if (word == "line" || word == "nestrow") return CodePoint('\n');
    if (word == "tab" || word == "nestcell") return CodePoint('\t');
    if (word == "cell") return EndCell();
    if (word == "row") return EndRow();
    if (word == "trowd") {
      cell_edges_.clear();
    } else if (word == "cellx") {
      cell_edges_.push_back(w.parameter);
    }
    static constexpr std::array<std::pair<std::string_view, char32_t>, 10> kNamed = {{
        {"emdash", 0x2014},
        {"endash", 0x2013},
        {"bullet", 0x2022},
        {"lquote", 0x2018},
        {"rquote", 0x2019},
        {"ldblquote", 0x201C},
        {"rdblquote", 0x201D},
        {"emspace", ' '},
        {"enspace", ' '},
        {"qmspace", ' '},
    }};
    for (const auto& [name, code_point] : kNamed) {
      if (word == name) return CodePoint(code_point);
    }
  }

  void SkipBinary(const ControlWord& w) {
    const size_t length = w.parameter > 0 ? static_cast<size_t>(w.parameter) : 0;
    pos_ += std::min(length, input_.size() - pos_);
  }

  void Unicode(const ControlWord& w, size_t start) {
    if (Dropping()) return;
    const char32_t unit = static_cast<uint16_t>(static_cast<int16_t>(w.parameter));
    if (w.parameter < -32768 || w.parameter > 65535) {
      Problem(start, Printf("\\u%d liegt außerhalb von -32768 bis 65535", w.parameter));
      CodePoint(kReplacement);
    } else if (unit >= 0xD800 && unit <= 0xDBFF) {
      FlushHighSurrogate(start);
      high_surrogate_ = unit;
      high_surrogate_at_ = start;
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      if (high_surrogate_ == 0) {
        Problem(start, "\\u: zweite Hälfte eines Ersatzzeichenpaares ohne erste");
        CodePoint(kReplacement);
      } else {
        const char32_t combined = 0x10000 + ((high_surrogate_ - 0xD800) << 10) + (unit - 0xDC00);
        high_surrogate_ = 0;
        CodePoint(combined);
      }
    } else {
      CodePoint(unit);
    }
    pending_skip_ = State().unicode_skip;
  }

  void FlushHighSurrogate(size_t) {
    if (high_surrogate_ == 0) return;
    high_surrogate_ = 0;
    Problem(high_surrogate_at_, "\\u: erste Hälfte eines Ersatzzeichenpaares ohne zweite");
    Emit(kReplacement);
  }

  void CodePoint(char32_t code_point) {
    if (Dropping()) return;
    FlushHighSurrogate(pos_);
    Emit(code_point);
  }

  void Emit(char32_t code_point) {
    std::string utf8;
    data::AppendUtf8(code_point, &utf8);
    AppendRunText(Target(), utf8, State().style, open_complement_);
  }

  TRichRuns& Target() { return State().in_table ? cell_ : paragraph_.runs; }

  void ToggleComplement() {
    if (Dropping()) return;
    FlushHighSurrogate(pos_);
    if (open_complement_ != 0) {
      open_complement_ = 0;
      return;
    }
    open_complement_ = ++complements_;
    Target().push_back(TRichRun{"", State().style, open_complement_});
  }

  void CloseOpenComplement() {
    if (open_complement_ == 0) return;
    Problem(pos_ > 0 ? pos_ - 1 : 0, "Textergänzung ohne schließendes 0xFF: am Absatzende beendet");
    open_complement_ = 0;
  }

  void ParagraphBreak() {
    if (Dropping()) return;
    FlushHighSurrogate(pos_);
    if (State().in_table) return CodePoint('\n');
    CloseOpenComplement();
    result_.text.blocks.back() = std::move(paragraph_);
    result_.text.blocks.emplace_back();
    paragraph_ = TRichBlock{};
  }

  void EndCell() {
    if (Dropping()) return;
    CloseOpenComplement();
    TRichCell cell{std::move(cell_), 0};
    const size_t index = row_.cells.size();
    if (index < cell_edges_.size()) cell.right_twips = cell_edges_[index];
    row_.cells.push_back(std::move(cell));
    cell_ = {};
  }

  void EndRow() {
    if (Dropping()) return;
    if (!cell_.empty()) EndCell();
    if (row_.cells.empty()) return;
    row_.row = true;
    // A row takes the place of the empty paragraph it starts in.
    if (!paragraph_.runs.empty()) {
      result_.text.blocks.back() = std::move(paragraph_);
      result_.text.blocks.emplace_back();
    }
    result_.text.blocks.back() = std::move(row_);
    result_.text.blocks.emplace_back();
    paragraph_ = TRichBlock{};
    row_ = TRichBlock{};
  }

  void Finish() {
    if (!root_closed_) {
      Problem(input_.size(),
              Printf("%zu Gruppe(n) nicht geschlossen: \"}\" fehlt", states_.size() + overflow_));
    } else if (input_.substr(pos_).find_first_not_of(std::string_view(" \t\r\n\0", 5)) !=
               std::string_view::npos) {
      Problem(pos_, "Text nach dem Ende des RTF-Dokuments übergangen");
    }
    overflow_ = 0;
    states_.assign(1, GroupState{});
    FlushHighSurrogate(input_.size());
    if (!cell_.empty() || !row_.cells.empty()) {
      Problem(input_.size(), "Tabellenzeile ohne \"\\row\" am Ende: als Zeile übernommen");
      EndRow();
    }
    CloseOpenComplement();
    result_.text.blocks.back() = std::move(paragraph_);
  }

  std::string_view input_;
  size_t pos_ = 0;
  std::vector<GroupState> states_;
  size_t overflow_ = 0;  // groups opened beyond kMaxDepth, skipped
  bool root_closed_ = false;
  int pending_skip_ = 0;
  char32_t high_surrogate_ = 0;
  size_t high_surrogate_at_ = 0;
  int open_complement_ = 0;
  int complements_ = 0;
  TRichBlock paragraph_;
  TRichBlock row_;
  TRichRuns cell_;
  std::vector<int32_t> cell_edges_;
  TRtfReadResult result_;
};

}  // namespace

TRtfReadResult ReadRtf(std::string_view rtf) {
  return RtfReader(rtf).Read();
}

std::string DescribeRtfProblem(const TRtfProblem& problem) {
  return Printf("Byte %zu (Zeile %d): ", problem.offset, problem.line) + problem.text;
}

}  // namespace korvan::boq
