// Property: a tree written and read again is the same tree, for generated trees with
// every kind of content the writer must carry (markup characters, blanks at the edges of
// texts, line breaks in attributes, mixed content, empty elements, non-ASCII text).
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace korvan::exchange::gaeb_xml {
namespace {

class TreeGenerator {
 public:
  explicit TreeGenerator(unsigned seed) : random_(seed) {}

  TGaebElement Root() {
    TGaebElement root("GAEB");
    AddAttributes(root);
    AddChildren(root, 0);
    return root;
  }

 private:
  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }

  std::string Text(bool may_be_blank) {
    static const std::vector<std::string> pieces = {"a", "Z",  "0", ".",  " ",   "&",     "<",
                                                    ">", "\"", "'", "\t", "\n",  "\r",    "ä",
                                                    "ß", "€",  "—", "𝄞",  "]]>", "&amp;", "x y"};
    std::string text;
    const int length = 1 + Below(6);
    for (int i = 0; i < length; ++i) text += pieces[static_cast<size_t>(Below(21))];
    if (!may_be_blank && text.find_first_not_of(" \t\r\n") == std::string::npos) text += "k";
    return text;
  }

  void AddAttributes(TGaebElement& element) {
    const int count = Below(3);
    for (int i = 0; i < count; ++i) {
      element.SetAttribute("a" + std::to_string(i), Text(true));
    }
  }

  void AddChildren(TGaebElement& element, int depth) {
    const bool markup = element.name == "p" || element.name == "span";
    const int kind = depth >= 4 ? 0 : Below(3);
    if (kind == 0) {
      if (Below(3) > 0) element.text = Text(true);  // leaf, possibly empty
      return;
    }
    const int count = 1 + Below(4);
    for (int i = 0; i < count; ++i) {
      const bool text_run = kind == 2 && Below(2) == 0;
      if (text_run && (element.children.empty() || !element.children.back().IsTextNode())) {
        element.AddText(Text(markup));
        continue;
      }
      static const std::vector<std::string> names = {"Item", "Qty",     "p",
                                                     "span", "BoQBody", "Vendor"};
      TGaebElement& child = element.Add(names[static_cast<size_t>(Below(6))]);
      AddAttributes(child);
      AddChildren(child, depth + 1);
    }
    // Text alone is an element's text, not a run of mixed content.
    if (element.children.size() == 1 && element.children[0].IsTextNode()) {
      element.text = element.children[0].text;
      element.children.clear();
    }
  }

  std::mt19937 random_;
};

TEST(GaebXmlRoundTrip, GeneratedTreesReadBackUnchanged) {
  for (unsigned seed = 1; seed <= 400; ++seed) {
    TGaebDocument document;
    document.root = TreeGenerator(seed).Root();
    const std::string xml = WriteGaebXml(document);
    const TGaebReadResult read = ReadGaebXml(xml);
    ASSERT_TRUE(read.document.has_value()) << "seed " << seed << "\n" << xml;
    ASSERT_EQ(read.document->root, document.root) << "seed " << seed << "\n" << xml;
  }
}

TEST(GaebXmlRoundTrip, EachVersionKeepsItsNamespaceAndPhase) {
  for (const TGAEBFormat format :
       {TGAEBFormat::gfXML, TGAEBFormat::gfXML320, TGAEBFormat::gfXML330}) {
    for (const TGaebPhase phase : {81, 83, 84, 86}) {
      const TGaebDocument document = testing::SmallLv(format, phase);
      const std::string xml = WriteGaebXml(document);
      EXPECT_NE(xml.find("xmlns=\"" + GaebNamespace(format, phase) + "\""), std::string::npos);
      const TGaebReadResult read = ReadGaebXml(xml);
      ASSERT_TRUE(read.document.has_value());
      EXPECT_TRUE(read.findings.empty());
      EXPECT_EQ(read.document->format, format);
      EXPECT_EQ(read.document->phase, phase);
      EXPECT_EQ(read.document->root, document.root);
    }
  }
}

}  // namespace
}  // namespace korvan::exchange::gaeb_xml
