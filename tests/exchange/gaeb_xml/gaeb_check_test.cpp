#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_file_check.h"
#include "exchange/gaeb_xml/gaeb_schema.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"
#include "testing/temp_dir.h"

namespace korvan::exchange::gaeb_xml {
namespace {

namespace fs = std::filesystem;
using testing::Listed;
using testing::Mentions;

// The item list of the section of `document` (one of testing::SmallLv).
TGaebElement& ItemList(TGaebDocument& document) {
  return *const_cast<TGaebElement*>(
      document.root.Find("Award/BoQ/BoQBody/BoQCtgy/BoQBody/Itemlist"));
}

TEST(GaebCheckArithmetic, AWrittenLvHasNoFindings) {
  EXPECT_EQ(Listed(CheckGaebArithmetic(testing::SmallLv(TGAEBFormat::gfXML330, 86))), "");
  EXPECT_EQ(Listed(CheckGaebStructure(testing::SmallLv(TGAEBFormat::gfXML330, 86))), "");
}

TEST(GaebCheckArithmetic, AnItemTotalThatIsNotQuantityTimesPriceIsAnError) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 86);
  TGaebElement* item = &ItemList(document).children[0];
  item->Child("IT")->text = "500.00";
  const TGaebFindings findings = CheckGaebArithmetic(document);
  EXPECT_TRUE(Mentions(findings,
                       "Item ID_0010 (RNoPart 0010): IT 500.00 ist nicht Menge × "
                       "Einheitspreis = 501.25"))
      << Listed(findings);
  // The section's and the BoQ's totals still add up the stated item totals wrongly.
  EXPECT_TRUE(Mentions(findings, "BoQCtgy ID_01")) << Listed(findings);
}

TEST(GaebCheckArithmetic, ACentOfRoundingIsNoError) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 86);
  TGaebElement* item = &ItemList(document).children[0];
  item->Child("Qty")->text = "12.333";
  item->Child("IT")->text = "494.55";  // 12.333 × 40.10 = 494.5533
  const TGaebFindings findings = CheckGaebArithmetic(document);
  EXPECT_FALSE(Mentions(findings, "ID_0010")) << Listed(findings);
}

TEST(GaebCheckArithmetic, NumbersWithACommaOrAnExponentAreErrors) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 86);
  TGaebElement* item = &ItemList(document).children[0];
  item->Child("UP")->text = "40,10";
  item->Child("Qty")->text = "1.25e1";
  const TGaebFindings findings = CheckGaebArithmetic(document);
  EXPECT_TRUE(Mentions(findings, "UP \"40,10\" ist keine Dezimalzahl")) << Listed(findings);
  EXPECT_TRUE(Mentions(findings, "Qty \"1.25e1\" ist keine Dezimalzahl")) << Listed(findings);
}

TEST(GaebCheckArithmetic, ProvisionalItemsWithoutTotalAndAlternativesDoNotCount) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 86);
  TGaebElement* list = &ItemList(document);
  TGaebElement provisional = testing::Item("0030", 2, 10, true);
  provisional.children.insert(provisional.children.begin(), TGaebElement("Provis", "WithoutTotal"));
  list->Add(provisional);
  TGaebElement base = testing::Item("0040", 1, 10, true);
  base.children.insert(base.children.begin(), TGaebElement("ALNGroupNo", "1"));
  TGaebElement alternative = testing::Item("0050", 1, 99, true);
  alternative.children.insert(alternative.children.begin(), TGaebElement("ALNGroupNo", "1"));
  list->Add(base);
  list->Add(alternative);
  const TGaebFindings findings = CheckGaebArithmetic(document);
  EXPECT_TRUE(Mentions(findings, "weicht von der Summe der enthaltenen Beträge"))
      << Listed(findings);
  // The stated total; what was added counts only the base item of the alternatives.
  EXPECT_TRUE(Mentions(findings,
                       "Summe 3704204.92 weicht von der Summe der enthaltenen "
                       "Beträge 3704214.92 ab"))
      << Listed(findings);
}

TEST(GaebCheckStructure, MissingElementsAttributesAndDuplicateIdsAreNamed) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 83);
  TGaebElement* boq = const_cast<TGaebElement*>(document.root.Find("Award/BoQ"));
  boq->Child("BoQInfo")->children.erase(boq->Child("BoQInfo")->children.begin());
  TGaebElement* list = &ItemList(document);
  list->children[1].SetAttribute("ID", "ID_0010");
  list->children[0].attributes.pop_back();  // RNoPart
  const TGaebFindings findings = CheckGaebStructure(document);
  EXPECT_TRUE(Mentions(findings, "BoQInfo: Element Name fehlt")) << Listed(findings);
  EXPECT_TRUE(Mentions(findings, "Item ID_0010: Attribut RNoPart fehlt")) << Listed(findings);
  EXPECT_TRUE(Mentions(findings, "ID \"ID_0010\" kommt mehrfach vor")) << Listed(findings);
}

class GaebSchemaValidation : public ::testing::Test {
 protected:
  void SetUp() override {
    if (testing::SchemaDir().empty()) GTEST_SKIP() << testing::kNoSchemas;
  }
  korvan::testing::TempDir dir_;
};

TEST_F(GaebSchemaValidation, SchemaViolationsNameTheirLine) {
  TGaebDocument document = testing::SmallLv(TGAEBFormat::gfXML330, 83);
  TGaebElement* info = const_cast<TGaebElement*>(document.root.Find("Award/BoQ/BoQInfo"));
  info->children.insert(info->children.begin(), TGaebElement("Unknown", "x"));
  const std::string path = (dir_.path() / "lv.X83").string();
  WriteGaebXmlFile(document, path);
  const std::string xml = WriteGaebXml(document);
  const int unknown_line =
      1 + static_cast<int>(std::count(xml.begin(), xml.begin() + xml.find("<Unknown>"), '\n'));
  const TGaebFileCheck check = CheckGaebFile(path, testing::SchemaDir().string());
  ASSERT_FALSE(check.findings.empty());
  EXPECT_EQ(check.findings[0].line, unknown_line) << Listed(check.findings);
  EXPECT_TRUE(Mentions(check.findings,
                       "Schema: Element '{http://www.gaeb.de/GAEB_DA_XML/DA83/3.3}"
                       "Unknown'"))
      << Listed(check.findings);
}

TEST_F(GaebSchemaValidation, AnotherVersionGetsAHintInsteadOfASchemaCheck) {
  const std::string path = (dir_.path() / "lv.X83").string();
  WriteGaebXmlFile(testing::SmallLv(TGAEBFormat::gfXML320, 83), path);
  const TGaebFileCheck check = CheckGaebFile(path, testing::SchemaDir().string());
  EXPECT_FALSE(check.schema_checked);
  ASSERT_EQ(check.findings.size(), 1u);
  EXPECT_EQ(check.findings[0].kind, TGaebFindingKind::kHint);
}

class GaebSamples : public ::testing::Test {
 protected:
  void SetUp() override {
    if (testing::SampleDir().empty()) GTEST_SKIP() << testing::kNoSamples;
  }
  static std::optional<std::string> Schemas() {
    const fs::path dir = testing::SchemaDir();
    return dir.empty() ? std::nullopt : std::optional<std::string>(dir.string());
  }
};

TEST_F(GaebSamples, AllButTheNonconformingOnePassTheCheck) {
  int checked = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(testing::SampleDir())) {
    const std::string name = entry.path().filename().string();
    if (name == "LICENSE" || name == "nonconforming.x83") continue;
    const TGaebFileCheck check = CheckGaebFile(entry.path().string(), Schemas());
    EXPECT_FALSE(HasErrors(check.findings)) << name << "\n" << Listed(check.findings);
    ++checked;
  }
  EXPECT_GE(checked, 12);
}

TEST_F(GaebSamples, TheNonconformingOneGetsFindingsNamingWhatIsMissing) {
  const TGaebFileCheck check =
      CheckGaebFile((testing::SampleDir() / "nonconforming.x83").string(), Schemas());
  EXPECT_TRUE(HasErrors(check.findings));
  EXPECT_TRUE(Mentions(check.findings, "Struktur 8: BoQInfo: Element Name fehlt"))
      << Listed(check.findings);
  EXPECT_TRUE(Mentions(check.findings, "Struktur 7: BoQ: Attribut ID fehlt"))
      << Listed(check.findings);
  EXPECT_TRUE(Mentions(check.findings, "Struktur 11: Item (RNoPart 0010): Attribut ID fehlt"))
      << Listed(check.findings);
}

}  // namespace
}  // namespace korvan::exchange::gaeb_xml
