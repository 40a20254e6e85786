#include <gtest/gtest.h>

#include <string>

#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"

namespace korvan::exchange::gaeb_xml {
namespace {

using testing::Mentions;

TEST(GaebReaderSafety, RefusesADocumentTypeDeclarationWithItsLine) {
  const TGaebReadResult result = ReadGaebXml(
      "<?xml version=\"1.0\"?>\n<!-- x -->\n<!DOCTYPE GAEB [<!ENTITY a \"b\">]>\n<GAEB/>");
  EXPECT_FALSE(result.document.has_value());
  ASSERT_EQ(result.findings.size(), 1u);
  EXPECT_EQ(result.findings[0].line, 3);
  EXPECT_NE(result.findings[0].message.find("DOCTYPE"), std::string::npos);
}

TEST(GaebReaderSafety, RefusesEntityExpansionAndExternalEntities) {
  const std::string bomb =
      "<!DOCTYPE lolz [<!ENTITY lol \"lol\"><!ENTITY lol2 \"&lol;&lol;&lol;&lol;\">]>"
      "<GAEB>&lol2;</GAEB>";
  EXPECT_FALSE(ReadGaebXml(bomb).document.has_value());
  const std::string external =
      "<!DOCTYPE GAEB [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><GAEB>&x;</GAEB>";
  const TGaebReadResult result = ReadGaebXml(external);
  EXPECT_FALSE(result.document.has_value());
  EXPECT_FALSE(Mentions(result.findings, "root:"));
}

TEST(GaebReaderSafety, AnUndeclaredEntityIsAnErrorNotText) {
  const TGaebReadResult result = ReadGaebXml("<GAEB><x>&nope;</x></GAEB>");
  EXPECT_FALSE(result.findings.empty());
  EXPECT_EQ(result.findings[0].kind, TGaebFindingKind::kError);
}

TEST(GaebReaderErrors, MalformedXmlNamesTheLine) {
  const TGaebReadResult result = ReadGaebXml("<GAEB>\n<Award>\n<DP>83</Award>\n</GAEB>");
  EXPECT_FALSE(result.document.has_value());
  ASSERT_FALSE(result.findings.empty());
  EXPECT_EQ(result.findings[0].line, 3);
  EXPECT_EQ(result.findings[0].message.rfind("XML nicht lesbar", 0), 0u);
}

TEST(GaebReaderErrors, AMissingFileIsAFindingNamingIt) {
  const TGaebReadResult result = ReadGaebXmlFile("/no/such/dir/lv.x83");
  EXPECT_FALSE(result.document.has_value());
  EXPECT_TRUE(Mentions(result.findings, "/no/such/dir/lv.x83"));
}

TEST(GaebReaderErrors, AForeignRootIsAStructureFinding) {
  const TGaebReadResult result = ReadGaebXml("<Invoice/>");
  ASSERT_TRUE(result.document.has_value());
  ASSERT_FALSE(result.findings.empty());
  EXPECT_EQ(result.findings[0].kind, TGaebFindingKind::kStructure);
}

TEST(GaebReaderTree, VersionAndPhaseComeFromNamespaceAndDp) {
  const TGaebReadResult v32 = ReadGaebXml(
      "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA86/3.2\"><Award><DP>86</DP></Award></GAEB>");
  ASSERT_TRUE(v32.document.has_value());
  EXPECT_EQ(v32.document->format, TGAEBFormat::gfXML320);
  EXPECT_EQ(v32.document->phase, 86);
  EXPECT_TRUE(v32.findings.empty());
  const TGaebReadResult v31 = ReadGaebXml(
      "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/200407\"><Award><DP>83</DP></Award></GAEB>");
  EXPECT_EQ(v31.document->format, TGAEBFormat::gfXML);
  const TGaebReadResult costing = ReadGaebXml(
      "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA50/3.3\">"
      "<ElementalCosting><DP>50.1</DP></ElementalCosting></GAEB>");
  EXPECT_EQ(costing.document->phase, 50);
}

TEST(GaebReaderTree, AnUnknownNamespaceIsReportedAndReadAs33) {
  const TGaebReadResult result = ReadGaebXml("<GAEB xmlns=\"urn:other\"/>");
  ASSERT_TRUE(result.document.has_value());
  EXPECT_EQ(result.document->format, TGAEBFormat::gfXML330);
  EXPECT_TRUE(Mentions(result.findings, "urn:other"));
}

TEST(GaebReaderTree, KeepsUnknownElementsAttributesAndLines) {
  const TGaebReadResult result = ReadGaebXml(
      "<GAEB xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
      "      xsi:schemaLocation=\"a b\">\n"
      "  <VendorExtension level=\"2\"><Inner>x</Inner></VendorExtension>\n"
      "</GAEB>");
  ASSERT_TRUE(result.document.has_value());
  const TGaebElement& root = result.document->root;
  EXPECT_EQ(root.Attribute("xsi:schemaLocation"), "a b");
  EXPECT_EQ(root.Attribute("xmlns:xsi"), "http://www.w3.org/2001/XMLSchema-instance");
  const TGaebElement* vendor = root.Child("VendorExtension");
  ASSERT_NE(vendor, nullptr);
  EXPECT_EQ(vendor->line, 3);
  EXPECT_EQ(vendor->Attribute("level"), "2");
  EXPECT_EQ(vendor->ChildText("Inner"), "x");
}

TEST(GaebReaderTree, KeepsBlanksOfTextMarkupButNotTheIndentation) {
  const TGaebReadResult result =
      ReadGaebXml("<GAEB>\n  <Text>\n    <p><span>a</span> <span>b</span></p>\n  </Text>\n</GAEB>");
  ASSERT_TRUE(result.document.has_value());
  const TGaebElement* text = result.document->root.Child("Text");
  ASSERT_NE(text, nullptr);
  ASSERT_EQ(text->children.size(), 1u);
  const TGaebElement& p = text->children[0];
  ASSERT_EQ(p.children.size(), 3u);
  EXPECT_TRUE(p.children[1].IsTextNode());
  EXPECT_EQ(p.children[1].text, " ");
}

}  // namespace
}  // namespace korvan::exchange::gaeb_xml
