#include <gtest/gtest.h>

#include <random>
#include <string>

#include "boq/text/rich_text.h"
#include "boq/text/rich_text_print.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/rtf_writer.h"

namespace korvan::boq {

namespace {

std::string PlainOf(std::string_view rtf) {
  return PlainView(ReadRtf(rtf).text);
}

std::string RoundTrip(const std::string& plain) {
  return PlainOf(WriteRtf(RichTextFromPlain(plain)));
}

// --- Plain text through RTF and back -----------------------------------------------------

TEST(RtfRoundTrip, KeepsUmlautsEuroAndCharactersOutsideTheCodePage) {
  for (const std::string& plain : {
           std::string(""),
           std::string("Mauerwerk aus Kalksandstein, Größe 2 DF, Wanddicke 17,5 cm"),
           std::string("Preis: 12,50 € je m² – inkl. Zuschlägen „Sonderfall“"),
           std::string("Ärger über Öl, Übermaß, ß und ÿ"),
           std::string("Zeichen außerhalb 1252: Ω ≤ ≥ √ 中文 😀 \xF0\x9D\x84\x9E"),
           std::string("Steuerzeichen \\par {Gruppe} \\'ff\t Tab"),
           std::string("A\nB\n\nC\n"),
           std::string("\n\n"),
           std::string("..XX xx variabel"),
       }) {
    EXPECT_EQ(RoundTrip(plain), plain) << WriteRtf(RichTextFromPlain(plain));
  }
}

TEST(RtfRoundTrip, AllLineBreakFormsBecomeLineFeeds) {
  EXPECT_EQ(RoundTrip("A\r\nB\rC\nD"), "A\nB\nC\nD");
}

TEST(RtfRoundTrip, WrittenRtfIsSevenBitAscii) {
  const std::string rtf = WriteRtf(RichTextFromPlain("Größe € 😀 ÿ"));
  for (char c : rtf) EXPECT_LT(static_cast<unsigned char>(c), 0x80) << rtf;
  EXPECT_NE(rtf.find("\\'f6"), std::string::npos);       // ö through the code page
  EXPECT_NE(rtf.find("\\'80"), std::string::npos);       // € is 0x80 in code page 1252
  EXPECT_NE(rtf.find("\\u-10179?"), std::string::npos);  // high half of U+1F600
  EXPECT_NE(rtf.find("\\u255?"), std::string::npos);     // ÿ never as the complement byte
}

TEST(RtfRoundTrip, RandomPlainTextsComeBackUnchanged) {
  const std::u32string alphabet =
      U"abcXYZ 019.,;\\{}\t\näöüÄÖÜß€ÿ\u00A0\u0081Ω中😀\U0010FFFD\u2014\u201E";
  std::mt19937 random(15);
  for (int round = 0; round < 500; ++round) {
    std::string plain;
    const int length = static_cast<int>(random() % 60);
    for (int i = 0; i < length; ++i) {
      std::string utf8;
      const char32_t c = alphabet[random() % alphabet.size()];
      if (c < 0x80) {
        utf8 = static_cast<char>(c);
      } else if (c < 0x800) {
        utf8 = {static_cast<char>(0xC0 | (c >> 6)), static_cast<char>(0x80 | (c & 0x3F))};
      } else if (c < 0x10000) {
        utf8 = {static_cast<char>(0xE0 | (c >> 12)), static_cast<char>(0x80 | ((c >> 6) & 0x3F)),
                static_cast<char>(0x80 | (c & 0x3F))};
      } else {
        utf8 = {static_cast<char>(0xF0 | (c >> 18)), static_cast<char>(0x80 | ((c >> 12) & 0x3F)),
                static_cast<char>(0x80 | ((c >> 6) & 0x3F)), static_cast<char>(0x80 | (c & 0x3F))};
      }
      plain += utf8;
    }
    ASSERT_EQ(RoundTrip(plain), plain);
  }
}

TEST(RtfRoundTrip, FormattedTextWithTableAndComplementsIsReadAsWritten) {
  TRichText text;
  text.blocks[0].runs = {{"Fenster ", {}, 0}, {"Größe", {true, false, false}, 0},
                         {" ", {}, 0},        {"", {}, 1},
                         {" mal ", {}, 0},    {"1,20 m", {false, true, true}, 2}};
  TRichBlock row;
  row.row = true;
  row.cells = {{{{"Breite", {}, 0}}, 1701}, {{{"Höhe €", {true, false, false}, 0}}, 3402}};
  text.blocks.push_back(row);
  text.blocks.emplace_back();
  text.blocks.back().runs = {{"Ende", {}, 0}};
  const TRtfReadResult read = ReadRtf(WriteRtf(text));
  EXPECT_TRUE(read.problems.empty());
  EXPECT_EQ(read.text, text) << WriteRtf(text);
  EXPECT_EQ(PlainView(read.text), "Fenster Größe .. mal 1,20 m\nBreite\tHöhe €\nEnde");
}

// A random text of paragraphs and rows with formats, line breaks, tabs and complements.
TRichText RandomRichText(std::mt19937& random) {
  const std::string pieces[] = {"Größe", " ", "€", "\\", "{",   "}",  "\t",
                                "\n",    "ÿ", "😀", "Ω",  "abc", "..", "\x01"};
  const auto runs = [&] {
    TRichRuns out;
    const int count = static_cast<int>(random() % 5);
    for (int i = 0; i < count; ++i) {
      TRichRun run;
      run.style = {random() % 2 == 0, random() % 3 == 0, random() % 4 == 0};
      run.complement = random() % 4 == 0 ? static_cast<int>(1 + random() % 3) : 0;
      const int length = static_cast<int>(random() % 4);
      for (int k = 0; k < length; ++k) run.text += pieces[random() % std::size(pieces)];
      out.push_back(run);
    }
    return out;
  };
  TRichText text;
  text.blocks.clear();
  const int blocks = static_cast<int>(1 + random() % 5);
  for (int b = 0; b < blocks; ++b) {
    TRichBlock block;
    if (random() % 3 == 0) {
      block.row = true;
      const int cells = static_cast<int>(1 + random() % 3);
      for (int c = 0; c < cells; ++c) block.cells.push_back({runs(), 0});
    } else {
      block.runs = runs();
    }
    text.blocks.push_back(block);
  }
  return text;
}

TEST(RtfRoundTrip, WhatWasReadIsWrittenAndReadTheSame) {
  std::mt19937 random(3);
  for (int round = 0; round < 5000; ++round) {
    const TRichText first = ReadRtf(WriteRtf(RandomRichText(random))).text;
    const TRtfReadResult again = ReadRtf(WriteRtf(first));
    ASSERT_EQ(again.problem_count, 0u) << WriteRtf(first);
    ASSERT_EQ(again.text, first) << WriteRtf(first);
  }
}

// --- Reading what others write ------------------------------------------------------------

TEST(RtfReader, SkipsFontTablesUnknownDestinationsAndPictures) {
  const std::string rtf =
      "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fnil Arial;}}{\\colortbl;\\red0\\green0"
      "\\blue0;}{\\*\\generator Foo 1.0;}{\\*\\unknowndest secret}\\viewkind4\\uc1\\pard\\f0\\fs20 "
      "Hallo {\\pict\\wmetafile8 0102ff}Welt\\par\n}";
  const TRtfReadResult read = ReadRtf(rtf);
  EXPECT_TRUE(read.is_rtf);
  EXPECT_EQ(PlainView(read.text), "Hallo Welt\n");
  EXPECT_TRUE(read.problems.empty());
}

TEST(RtfReader, ReadsFormatsCodePageAndUnicodeEscapes) {
  const TRtfReadResult read = ReadRtf(
      "{\\rtf1 {\\b fett}\\i kursiv\\i0 \\ul u\\ulnone  Gr\\'f6\\'dfe \\u8364\\'80 "
      "\\uc2\\u20013??\\uc1 \\u-10179?\\u-8704?}");
  EXPECT_EQ(PlainView(read.text), "fettkursivu Größe € 中😀");  // "\\ul " ends at its blank
  ASSERT_GE(read.text.blocks[0].runs.size(), 3u);
  EXPECT_TRUE(read.text.blocks[0].runs[0].style.bold);
  EXPECT_TRUE(read.text.blocks[0].runs[1].style.italic);
  EXPECT_FALSE(read.text.blocks[0].runs[1].style.bold);
}

TEST(RtfReader, EscapedLineFeedBreaksTheParagraph) {
  EXPECT_EQ(PlainOf("{\\rtf1 A\\'0d\\'0aB}"), "A\nB");
  EXPECT_EQ(PlainOf("{\\rtf1\\ Zeile 1\\par Zeile 2}"), "Zeile 1\nZeile 2");
}

TEST(RtfReader, ComplementBytesMarkGapsAndBodies) {
  const TRtfReadResult read = ReadRtf("{\\rtf1 Dicke \\'ff\\'ff cm, Farbe \\'ffweiss\\'ff}");
  const TRichRuns& runs = read.text.blocks[0].runs;
  ASSERT_EQ(runs.size(), 4u);
  EXPECT_EQ(runs[1], (TRichRun{"", {}, 1}));
  EXPECT_EQ(runs[3], (TRichRun{"weiss", {}, 2}));
  EXPECT_EQ(PlainView(read.text), "Dicke .. cm, Farbe weiss");
}

TEST(RtfReader, AnOpenComplementEndsWithItsParagraphAndIsReported) {
  const TRtfReadResult read = ReadRtf("{\\rtf1 A\\'ffB\\par C}");
  EXPECT_EQ(PlainView(read.text), "AB\nC");
  EXPECT_EQ(read.text.blocks[1].runs[0].complement, 0);
  ASSERT_EQ(read.problem_count, 1u);
  EXPECT_NE(read.problems[0].text.find("Textergänzung"), std::string::npos);
}

TEST(RtfReader, ReadsTableRowsWithCellEdges) {
  const TRtfReadResult read = ReadRtf(
      "{\\rtf1 Kopf\\par\\trowd\\cellx1000\\cellx2000\\pard\\intbl a\\cell b\\par c\\cell\\row"
      "\\trowd\\cellx500\\pard\\intbl d\\cell\\row\\pard Fuss}");
  ASSERT_EQ(read.text.blocks.size(), 4u);
  EXPECT_TRUE(read.text.blocks[1].row);
  EXPECT_EQ(read.text.blocks[1].cells[1].right_twips, 2000);
  EXPECT_EQ(PlainView(read.text), "Kopf\na\tb\nc\nd\nFuss");
}

TEST(RtfReader, DamageIsReportedWithItsPosition) {
  const TRtfReadResult read = ReadRtf("{\\rtf1 A\\'zq\nB {\\b C");
  EXPECT_EQ(PlainView(read.text), "AzqB C");
  ASSERT_EQ(read.problem_count, 2u);
  EXPECT_EQ(DescribeRtfProblem(read.problems[0]),
            "Byte 8 (Zeile 1): nach \"\\'\" zwei Hexadezimalziffern erwartet");
  EXPECT_EQ(read.problems[1].line, 2);
  EXPECT_NE(read.problems[1].text.find("2 Gruppe(n) nicht geschlossen"), std::string::npos);
}

TEST(RtfReader, PlainInputIsNamedAsNoRtf) {
  const TRtfReadResult read = ReadRtf("Nur Text");
  EXPECT_FALSE(read.is_rtf);
  EXPECT_EQ(PlainView(read.text), "Nur Text");
}

TEST(RtfReader, DeepNestingIsSkippedNotFollowed) {
  std::string rtf = "{\\rtf1 vorher";
  rtf += std::string(100000, '{') + "tief" + std::string(100000, '}');
  rtf += "nachher}";
  const TRtfReadResult read = ReadRtf(rtf);
  EXPECT_EQ(PlainView(read.text), "vorhernachher");
  EXPECT_EQ(read.problem_count, 1u);
}

TEST(RtfReader, RandomBytesNeverBreakTheReader) {
  std::mt19937 random(4711);
  const std::string pieces[] = {"{",     "}",       "\\",      "\\'",    "\\u",   "-",
                                "12",    "\\b",     "\\par",   "\\cell", "\\row", "\\intbl",
                                "\\*",   "\\bin",   "\xFF",    "a",      " ",     "\\uc9",
                                "\\'ff", "\\trowd", "\\cellx", "\n"};
  for (int round = 0; round < 2000; ++round) {
    std::string input = round % 2 ? "{\\rtf1 " : "";
    const int length = static_cast<int>(random() % 80);
    for (int i = 0; i < length; ++i) {
      if (random() % 3 == 0) {
        input += static_cast<char>(random() % 256);
      } else {
        input += pieces[random() % std::size(pieces)];
      }
    }
    const TRtfReadResult read = ReadRtf(input);
    ASSERT_FALSE(read.text.blocks.empty());
    // Whatever was read is written and read back the same.
    const TRtfReadResult again = ReadRtf(WriteRtf(read.text));
    ASSERT_EQ(PlainView(again.text), PlainView(read.text)) << input;
    ASSERT_EQ(again.problem_count, 0u) << input;
  }
}

}  // namespace
}  // namespace korvan::boq
