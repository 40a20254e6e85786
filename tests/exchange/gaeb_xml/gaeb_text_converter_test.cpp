#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "boq/text/rich_text_print.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace korvan::exchange::gaeb_xml {
namespace {

using boq::TRichBlock;
using boq::TRichRun;
using boq::TRichRuns;
using boq::TRichStyle;
using boq::TRichText;

// A line break carries no visible format; GAEB markup gives it none (`br`), and reading
// gives it the format of the text before it. Texts are compared with every line break in
// that format.
TRichRuns WithLineBreaksInPrecedingFormat(const TRichRuns& runs) {
  TRichRuns result;
  TRichStyle previous;
  for (const TRichRun& run : runs) {
    if (run.text.empty()) {
      result.push_back(run);
      previous = run.style;
      continue;
    }
    for (const char c : run.text) {
      const TRichStyle style = c == '\n' ? previous : run.style;
      boq::AppendRunText(result, std::string(1, c), style, run.complement);
      previous = style;
    }
  }
  return result;
}

TRichText Normalised(const TRichText& text) {
  TRichText result = text;
  for (TRichBlock& block : result.blocks) {
    block.runs = WithLineBreaksInPrecedingFormat(block.runs);
    for (boq::TRichCell& cell : block.cells) cell.runs = WithLineBreaksInPrecedingFormat(cell.runs);
  }
  return result;
}

class RichTextGenerator {
 public:
  explicit RichTextGenerator(unsigned seed) : random_(seed) {}

  TRichText Text() {
    TRichText text;
    text.blocks.clear();
    const int blocks = 1 + Below(4);
    for (int i = 0; i < blocks; ++i) {
      TRichBlock block;
      if (Below(4) == 0) {
        block.row = true;
        const int cells = 1 + Below(3);
        for (int c = 0; c < cells; ++c) block.cells.push_back({Runs(), 0});
      } else {
        block.runs = Runs();
      }
      text.blocks.push_back(std::move(block));
    }
    return text;
  }

 private:
  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }

  TRichStyle Style() { return {Below(2) == 0, Below(3) == 0, Below(4) == 0}; }

  TRichRuns Runs() {
    static const std::vector<std::string> pieces = {"Beton", " ",  "C25/30",   "ä",
                                                    "&<>",   "\n", "  zwei  ", "€"};
    TRichRuns runs;
    const int count = Below(5);
    for (int i = 0; i < count; ++i) {
      const int complement = Below(4) == 0 ? 1 + Below(3) : 0;
      if (complement != 0 && Below(3) == 0) {
        boq::AppendRunText(runs, "", Style(), complement);  // an unfilled gap
        continue;
      }
      std::string text;
      const int length = 1 + Below(3);
      for (int k = 0; k < length; ++k) text += pieces[static_cast<size_t>(Below(8))];
      boq::AppendRunText(runs, text, Style(), complement);
    }
    return runs;
  }

  std::mt19937 random_;
};

TEST(GaebTextConverter, RichTextThroughAWrittenFileIsTheSameText) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    const TRichText text = RichTextGenerator(seed).Text();
    TGaebDocument document;
    document.root.Add(RichTextToGaeb(text));
    const TGaebReadResult read = ReadGaebXml(WriteGaebXml(document));
    ASSERT_TRUE(read.document.has_value());
    const TGaebElement* markup = read.document->root.Child("Text");
    ASSERT_NE(markup, nullptr);
    EXPECT_EQ(Normalised(RichTextFromGaeb(*markup)), Normalised(text)) << "seed " << seed;
  }
}

TEST(GaebTextConverter, WritesParagraphsSpansBreaksAndComplements) {
  TRichText text;
  boq::AppendRunText(text.blocks[0].runs, "Beton ", {true, false, false});
  boq::AppendRunText(text.blocks[0].runs, "C25/30", {}, 1);
  boq::AppendRunText(text.blocks[0].runs, "\nzweite", {false, true, true});
  const std::string xml = [&] {
    TGaebDocument document;
    document.root.Add(RichTextToGaeb(text));
    return WriteGaebXml(document);
  }();
  EXPECT_NE(xml.find("<p><span style=\"font-weight:bold\">Beton </span>"
                     "<TextComplement Kind=\"Owner\" MarkLbl=\"1\"><ComplBody><span>C25/30</span>"
                     "</ComplBody></TextComplement><br/>"
                     "<span style=\"font-style:italic;text-decoration:underline\">zweite</span>"
                     "</p>"),
            std::string::npos)
      << xml;
}

TEST(GaebTextConverter, ReadsMarkupOfOtherProgramsAsFarAsItIsText) {
  TGaebDocument document;
  const TGaebReadResult read = ReadGaebXml(
      "<DetailTxt><Text><p><span style=\"FONT-WEIGHT: 700\">fett</span></p>"
      "<div><span>zwei</span></div><ul><li><span>drei</span></li></ul></Text>"
      "<TextComplement Kind=\"Bidder\" MarkLbl=\"2\"><ComplBody/></TextComplement>"
      "</DetailTxt>");
  ASSERT_TRUE(read.document.has_value());
  const TRichText text = RichTextFromGaeb(read.document->root);
  EXPECT_EQ(boq::PlainView(text), "fett\nzwei\ndrei\n..");
  EXPECT_TRUE(text.blocks[0].runs[0].style.bold);
  EXPECT_EQ(text.blocks[3].runs[0].complement, 2);
}

TEST(GaebTextConverter, SpanStylesBothWays) {
  EXPECT_EQ(SpanStyle({}), "");
  EXPECT_EQ(SpanStyle({true, true, true}),
            "font-weight:bold;font-style:italic;text-decoration:underline");
  EXPECT_EQ(StyleOfSpan("font-style: oblique; color:red"), (TRichStyle{false, true, false}));
  EXPECT_EQ(StyleOfSpan("text-decoration: underline line-through"),
            (TRichStyle{false, false, true}));
}

}  // namespace
}  // namespace korvan::exchange::gaeb_xml
