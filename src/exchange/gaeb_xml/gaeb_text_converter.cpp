#include "exchange/gaeb_xml/gaeb_text_converter.h"

#include <cctype>
#include <cstdlib>
#include <string_view>

namespace korvan::exchange::gaeb_xml {

using boq::TRichBlock;
using boq::TRichCell;
using boq::TRichRun;
using boq::TRichRuns;
using boq::TRichStyle;
using boq::TRichText;

namespace {

// Writes one run's text as spans separated by `br` at its line breaks. An empty run (the
// gap of an unfilled complement) is an empty span, which keeps the format the gap is to
// be filled in.
void AppendRunMarkup(TGaebElement& parent, const TRichRun& run) {
  const std::string style = SpanStyle(run.style);
  if (run.text.empty()) {
    TGaebElement& span = parent.Add("span");
    if (!style.empty()) span.SetAttribute("style", style);
    return;
  }
  std::string_view rest = run.text;
  while (true) {
    const size_t line_break = rest.find('\n');
    const std::string_view piece = rest.substr(0, line_break);
    if (!piece.empty()) {
      TGaebElement& span = parent.Add("span", std::string(piece));
      if (!style.empty()) span.SetAttribute("style", style);
    }
    if (line_break == std::string_view::npos) break;
    parent.Add("br");
    rest.remove_prefix(line_break + 1);
  }
}

void AppendComplement(TGaebElement& parent, int number, const TRichRuns& runs, size_t first,
                      size_t end) {
  TGaebElement& complement = parent.Add("TextComplement");
  bool empty = true;
  for (size_t i = first; i < end; ++i) empty = empty && runs[i].text.empty();
  complement.SetAttribute("Kind", empty ? "Bidder" : "Owner");
  complement.SetAttribute("MarkLbl", std::to_string(number));
  if (empty) complement.SetAttribute("Empty", "Yes");
  TGaebElement& body = complement.Add("ComplBody");
  for (size_t i = first; i < end; ++i) AppendRunMarkup(body, runs[i]);
}

void AppendRunsMarkup(TGaebElement& parent, const TRichRuns& runs) {
  size_t i = 0;
  while (i < runs.size()) {
    if (runs[i].complement == 0) {
      AppendRunMarkup(parent, runs[i]);
      ++i;
      continue;
    }
    size_t end = i + 1;
    while (end < runs.size() && runs[end].complement == runs[i].complement) ++end;
    AppendComplement(parent, runs[i].complement, runs, i, end);
    i = end;
  }
}

void AppendRow(TGaebElement& table, const TRichBlock& row) {
  TGaebElement& tr = table.Add("tr");
  for (const TRichCell& cell : row.cells) {
    AppendRunsMarkup(tr.Add("td").Add("p"), cell.runs);
  }
}

// Reads markup into the runs of the current paragraph and starts new paragraphs at
// block elements.
class MarkupReader {
 public:
  TRichText Read(const TGaebElement& container) {
    Container(container);
    if (text_.blocks.empty()) text_.blocks.emplace_back();
    return std::move(text_);
  }

 private:
  void StartParagraph() {
    text_.blocks.emplace_back();
    runs_target_ = &text_.blocks.back().runs;
    open_ = true;
  }

  void EndParagraph() { open_ = false; }

  void Container(const TGaebElement& element) {
    for (const TGaebElement& child : element.children) Node(child);
  }

  void Node(const TGaebElement& node) {
    if (node.name == "p" || node.name == "div" || node.name == "li") {
      StartParagraph();
      Inline(node);
      EndParagraph();
    } else if (node.name == "table") {
      Table(node);
    } else if (node.name == "span" || node.name == "br" || node.name == "TextComplement" ||
               node.IsTextNode()) {
      if (!open_) StartParagraph();
      InlineNode(node);
    } else {
      Container(node);  // Text, ul, ol and other wrappers
    }
  }

  void Inline(const TGaebElement& element) {
    for (const TGaebElement& child : element.children) InlineNode(child);
  }

  void InlineNode(const TGaebElement& node) {
    if (node.name == "span" || node.IsTextNode()) {
      const std::optional<std::string> style = node.Attribute("style");
      boq::AppendRunText(*runs_target_, node.text, StyleOfSpan(style.value_or("")), complement_);
    } else if (node.name == "br") {
      boq::AppendRunText(*runs_target_, "\n", LineBreakStyle(), complement_);
    } else if (node.name == "TextComplement") {
      Complement(node);
    } else if (node.name == "p" || node.name == "div") {
      if (!runs_target_->empty()) boq::AppendRunText(*runs_target_, "\n", LineBreakStyle());
      Inline(node);
    }
  }

  TRichStyle LineBreakStyle() const {
    return runs_target_->empty() ? TRichStyle{} : runs_target_->back().style;
  }

  // A gap the bidder is to fill that holds dots or a line to print on: the gap stays open
  // for the bidder, its filler is no text of the LV.
  static bool IsOpenBidderGap(const TGaebElement& node, const TGaebElement& body) {
    if (node.Attribute("Kind").value_or("") != "Bidder") return false;
    const std::string plain = boq::PlainView(RichTextFromGaeb(body));
    return plain.find_first_of("._-") != std::string::npos &&
           plain.find_first_not_of(" ._-\t\r\n") == std::string::npos;
  }

  void Complement(const TGaebElement& node) {
    const int number = std::atoi(node.Attribute("MarkLbl").value_or("0").c_str());
    const int outer = complement_;
    complement_ = number > 0 ? number : outer;
    const size_t before = runs_target_->size();
    const TGaebElement* body = node.Child("ComplBody");
    if (body != nullptr && !IsOpenBidderGap(node, *body)) Inline(*body);
    if (runs_target_->size() == before && complement_ != 0) {
      runs_target_->push_back(TRichRun{"", TRichStyle{}, complement_});
    }
    complement_ = outer;
  }

  void Table(const TGaebElement& table) {
    for (const TGaebElement& tr : table.children) {
      if (tr.name != "tr") continue;
      TRichBlock row;
      row.row = true;
      for (const TGaebElement& td : tr.children) {
        if (td.name != "td" && td.name != "th") continue;
        TRichCell& cell = row.cells.emplace_back();
        TRichRuns* outer = runs_target_;
        runs_target_ = &cell.runs;
        Inline(td);
        runs_target_ = outer;
      }
      text_.blocks.push_back(std::move(row));
    }
    open_ = false;
  }

  TRichText text_{{}};
  TRichRuns* runs_target_ = nullptr;
  bool open_ = false;
  int complement_ = 0;
};

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
    text.remove_prefix(1);
  }
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace

std::string SpanStyle(const TRichStyle& style) {
  std::string css;
  if (style.bold) css += "font-weight:bold;";
  if (style.italic) css += "font-style:italic;";
  if (style.underline) css += "text-decoration:underline;";
  if (!css.empty()) css.pop_back();
  return css;
}

TRichStyle StyleOfSpan(const std::string& style) {
  TRichStyle result;
  std::string_view rest = style;
  while (!rest.empty()) {
    const size_t end = rest.find(';');
    const std::string_view declaration = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    const size_t colon = declaration.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string key = Lower(Trim(declaration.substr(0, colon)));
    const std::string value = Lower(Trim(declaration.substr(colon + 1)));
    if (key == "font-weight") {
      result.bold = value == "bold" || value == "bolder" || std::atoi(value.c_str()) >= 600;
    } else if (key == "font-style") {
      result.italic = value == "italic" || value == "oblique";
    } else if (key == "text-decoration" || key == "text-decoration-line") {
      result.underline = value.find("underline") != std::string::npos;
    }
  }
  return result;
}

TGaebElement RichTextToGaeb(const TRichText& text, std::string container) {
  TGaebElement root(std::move(container));
  TGaebElement* table = nullptr;
  for (const TRichBlock& block : text.blocks) {
    if (block.row) {
      if (table == nullptr) table = &root.Add("table");
      AppendRow(*table, block);
      continue;
    }
    table = nullptr;
    AppendRunsMarkup(root.Add("p"), block.runs);
  }
  return root;
}

TRichText RichTextFromGaeb(const TGaebElement& container) {
  return MarkupReader().Read(container);
}

}  // namespace korvan::exchange::gaeb_xml
