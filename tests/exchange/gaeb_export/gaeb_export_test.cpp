// The GAEB DA XML export: every phase and version, validity against the official schemas,
// what goes into items under the phase's rules, the options, and what is refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "boq/text/rtf_reader.h"
#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_export/gaeb_export_test_lv.h"
#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_schema.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"
#include "testing/temp_dir.h"

namespace korvan::exchange {
namespace {

using gaeb_xml::TGaebElement;
using gaeb_xml::testing::All;
using testing::FixedDateOptions;
using testing::RichLv;
using testing::TestLv;

const TGaebElement& ItemNumbered(const TGaebElement& root, const std::string& rno) {
  for (const TGaebElement* item : All(root, "Item")) {
    if (item->Attribute("RNoPart") == rno) return *item;
  }
  ADD_FAILURE() << "no item " << rno;
  static const TGaebElement none;
  return none;
}

TEST(GaebExport, EveryFileOfVersion33IsValidAgainstTheOfficialSchema) {
  const std::filesystem::path schemas = gaeb_xml::testing::SchemaDir();
  if (schemas.empty()) GTEST_SKIP() << gaeb_xml::testing::kNoSchemas;
  TGaebExportSource with_header = RichLv();
  with_header.header = t_Gaeb_DB_VERSION_201401{};
  with_header.header->AGBEZ.Set("Stadt Musterstadt");
  with_header.header->BidCommPerm = 1;
  with_header.header->AusfProz = 5;
  for (const TGaebExportSource& source : {RichLv(), with_header}) {
    for (const TGaebPhaseInfo& phase : ExportPhases()) {
      for (const bool long_text : {true, false}) {
        SCOPED_TRACE("DA" + std::to_string(phase.phase) + (long_text ? "" : " ohne Langtext"));
        TGaebExportOptions options = FixedDateOptions(phase.phase);
        options.long_text = long_text;
        options.vat_on_sections = true;
        const std::string xml = WriteGaebXml(BuildGaebExport(source, options).document);
        const std::optional<std::string> schema =
            gaeb_xml::SchemaFileOfPhase(schemas.string(), phase.phase);
        ASSERT_TRUE(schema.has_value());
        const gaeb_xml::TGaebFindings findings = gaeb_xml::ValidateAgainstSchema(xml, *schema);
        EXPECT_TRUE(findings.empty()) << gaeb_xml::testing::Listed(findings) << xml;
      }
    }
  }
}

TEST(GaebExport, ItemsFollowThePhaseRules) {
  const TGaebExportSource source = RichLv();
  const TGaebExportResult invitation = BuildGaebExport(source, FixedDateOptions(kPhaseInvitation));
  const TGaebElement& root = invitation.document.root;
  // A free-quantity lump-sum item in DA 83: QtyTBD and no Qty.
  const TGaebElement& lump = ItemNumbered(root, "0020");
  EXPECT_EQ(lump.ChildText("QtyTBD"), "Yes");
  EXPECT_EQ(lump.ChildText("LumpSumItem"), "Yes");
  EXPECT_EQ(lump.Child("Qty"), nullptr);
  // A quantity below 0.0001 is no quantity.
  EXPECT_EQ(ItemNumbered(root, "0040").Child("Qty"), nullptr);
  EXPECT_EQ(ItemNumbered(root, "0010").ChildText("Qty"), "120.500");
  EXPECT_EQ(ItemNumbered(root, "0010").ChildText("QU"), "m2");
  EXPECT_EQ(lump.ChildText("QU"), "psch");
  // A lead description with three sub-descriptions is one item; the next is its own.
  const TGaebElement& lead = ItemNumbered(root, "0030");
  EXPECT_EQ(lead.ChildText("SumDescr"), "Yes");
  const std::vector<const TGaebElement*> subs = All(lead, "SubDescr");
  ASSERT_EQ(subs.size(), 3u);
  for (size_t i = 0; i < subs.size(); ++i) {
    EXPECT_EQ(subs[i]->ChildText("SubDNo"), std::to_string(i + 1));
    EXPECT_EQ(subs[i]->ChildText("Qty"), "100.000");
  }
  EXPECT_EQ(All(root, "Item").size(), 7u);
  // The change order carries its number and status, except in DA 85.
  EXPECT_EQ(ItemNumbered(root, "0010").ChildText("CONo"), std::nullopt);
  const std::vector<const TGaebElement*> sections = All(root, "BoQCtgy");
  ASSERT_EQ(sections.size(), 2u);
  const TGaebElement& change = *All(*sections[1], "Item")[0];
  EXPECT_EQ(change.ChildText("CONo"), "2");
  EXPECT_EQ(change.ChildText("COStatus"), "Offered");
  const TGaebExportResult alternative =
      BuildGaebExport(source, FixedDateOptions(kPhaseAlternative));
  const TGaebElement& change85 = *All(*All(alternative.document.root, "BoQCtgy")[1], "Item")[0];
  EXPECT_EQ(change85.Child("CONo"), nullptr);
  EXPECT_EQ(change85.Child("COStatus"), nullptr);
  // Notes are remarks, leading texts additional texts of the document.
  EXPECT_EQ(All(root, "Remark").size(), 1u);
  EXPECT_EQ(root.children.back().name, "AddText");
  // No prices in DA 83.
  EXPECT_TRUE(All(root, "UP").empty());
  EXPECT_TRUE(All(root, "Totals").empty());
}

TEST(GaebExport, PricesAreThoseOfThePriceKindAndTotalsAddUp) {
  const TGaebExportSource source = RichLv();
  const auto unit_price = [&](TGaebPhase phase, TUPKind kind) {
    TGaebExportOptions options = FixedDateOptions(phase);
    options.price_kind = kind;
    return ItemNumbered(BuildGaebExport(source, options).document.root, "0010").ChildText("UP");
  };
  EXPECT_EQ(unit_price(kPhaseCostEstimate, TUPKind::upkNONE), "4.25");  // estimate
  EXPECT_EQ(unit_price(kPhaseAward, TUPKind::upkNONE), "5.25");         // award
  EXPECT_EQ(unit_price(kPhaseBid, TUPKind::upkNONE), "6.25");           // bid
  EXPECT_EQ(unit_price(kPhaseAward, TUPKind::upkSchaetz), "4.25");

  const TGaebElement root =
      BuildGaebExport(source, FixedDateOptions(kPhaseCostEstimate)).document.root;
  EXPECT_EQ(ItemNumbered(root, "0010").ChildText("IT"), "512.13");  // 120.5 × 4.25
  // The contingency item without total has a price but no total.
  const TGaebElement& contingency = *All(*All(root, "BoQCtgy")[1], "Item")[1];
  EXPECT_EQ(contingency.ChildText("Provis"), "WithoutTotal");
  EXPECT_EQ(contingency.ChildText("UP"), "80.00");
  EXPECT_EQ(contingency.Child("IT"), nullptr);
  // The omitted item keeps its estimated total, which the file marks as not applicable.
  const TGaebElement& omitted = *All(*All(root, "BoQCtgy")[1], "Item")[2];
  EXPECT_EQ(omitted.ChildText("NotAppl"), "Yes");
  EXPECT_EQ(omitted.ChildText("IT"), "100.00");
  // 512.13 + 2500 + 3840 = 6852.13 and 3000; the item without quantity, the contingency
  // item and the omitted item add nothing.
  EXPECT_EQ(All(root, "BoQCtgy")[0]->Find("Totals/Total")->text, "6852.13");
  EXPECT_EQ(root.Find("Award/BoQ/BoQInfo/Totals/Total")->text, "9852.13");

  TGaebExportOptions billing = FixedDateOptions(kPhaseAward);
  billing.price_kind = TUPKind::upkAbrechnung;
  EXPECT_THROW(BuildGaebExport(source, billing), EGaebExportError);
}

TEST(GaebExport, TextOptionsAndUnits) {
  TestLv lv;
  boq::TLvPos& item = lv.Add('P', data::kRootParentId, "0010", "Erste Zeile\nzweite Zeile", 1, 1);
  item.Unit = "Stück";  // GAEB units hold four characters
  boq::TRichText text = boq::RichTextFromPlain("Dicke ");
  text.blocks[0].runs.push_back({"", {}, 1});  // an empty complement
  item.LongText = boq::WriteRtf(text);
  const auto export_with = [&](auto change) {
    TGaebExportOptions options = FixedDateOptions(kPhaseLv);
    change(options);
    return BuildGaebExport(lv.Source(), options).document.root;
  };
  const TGaebExportResult result = BuildGaebExport(lv.Source(), FixedDateOptions(kPhaseLv));
  EXPECT_EQ(ItemNumbered(result.document.root, "0010").ChildText("QU"), "Stüc");
  ASSERT_EQ(result.warnings.size(), 1u);
  EXPECT_NE(result.warnings[0].find("Stück"), std::string::npos) << result.warnings[0];
  const TGaebElement plain = export_with([](TGaebExportOptions&) {});
  EXPECT_EQ(plain.Find("Award/BoQ/BoQInfo/OutlCompl")->text, "AllTxt");
  EXPECT_EQ(All(plain, "TextOutlTxt")[0]->Find("p/span")->text, "Erste Zeile");
  EXPECT_EQ(All(plain, "TextComplement")[0]->Attribute("Empty"), "Yes");

  const TGaebElement filled = export_with([](TGaebExportOptions& o) {
    o.fill_empty_complements = true;
    o.multiline_short_text = true;
  });
  EXPECT_EQ(All(filled, "TextComplement")[0]->Find("ComplBody/span")->text, kEmptyComplementFiller);
  EXPECT_EQ(All(filled, "TextOutlTxt")[0]->children.size(), 2u);  // one paragraph per line

  const TGaebElement short_only = export_with([](TGaebExportOptions& o) { o.long_text = false; });
  EXPECT_EQ(short_only.Find("Award/BoQ/BoQInfo/OutlCompl")->text, "OutTxt");
  EXPECT_TRUE(All(short_only, "CompleteText").empty());
  EXPECT_EQ(All(short_only, "OutlineText").size(), 1u);
}

TEST(GaebExport, RichTextsComeBackThroughOurReader) {
  TestLv lv;
  boq::TRichText text;
  text.blocks[0].runs = {{"Beton ", {}, 0},  {"C25/30", {true, false, false}, 0},
                         {" in ", {}, 0},    {"Wanddicke 24 cm", {false, true, true}, 2},
                         {" gemäß ", {}, 0}, {"", {}, 3}};
  boq::TRichBlock row;
  row.row = true;
  row.cells = {{{{"Klasse", {true, false, false}, 0}}, 0}, {{{"XC4", {}, 0}}, 0}};
  text.blocks.push_back(row);
  text.blocks.push_back(boq::TRichBlock{false, {{"Ende", {}, 0}}, {}});
  lv.Add('P', data::kRootParentId, "0010", "Wand", 3, 100).LongText = boq::WriteRtf(text);

  const std::string xml =
      WriteGaebXml(BuildGaebExport(lv.Source(), FixedDateOptions(kPhaseInvitation)).document);
  const gaeb_xml::TGaebReadResult read = gaeb_xml::ReadGaebXml(xml);
  ASSERT_TRUE(read.document.has_value());
  const TGaebElement* detail = All(read.document->root, "DetailTxt")[0];
  // The stored form numbers the complements from 1 in their order; it is what comes back,
  // but for the cell widths, which GAEB text markup does not carry.
  boq::TRichText stored = boq::ReadRtf(boq::WriteRtf(text)).text;
  for (boq::TRichBlock& block : stored.blocks) {
    for (boq::TRichCell& cell : block.cells) cell.right_twips = 0;
  }
  ASSERT_EQ(boq::PlainView(stored), boq::PlainView(text));
  const boq::TRichText back = gaeb_xml::RichTextFromGaeb(*detail);
  EXPECT_EQ(back, stored) << boq::PlainView(back) << "\n" << xml;
}

TEST(GaebExport, RefusesWhatGaebCannotHold) {
  TestLv mixed;
  const int32_t group = mixed.Add('B', data::kRootParentId, "01", "Gruppe").LvBgBeschr.ID;
  mixed.Add('B', group, "01.01", "Untergruppe");
  mixed.Add('P', group, "01.0010", "Position daneben", 1, 1);
  TestLv orphan("PPPP");
  orphan.Add('U', data::kRootParentId, "0010", "Unterbeschreibung allein");
  TestLv bad_number("PPPP");
  bad_number.Add('P', data::kRootParentId, "00?0", "Fragezeichen");
  TestLv no_mask("");
  no_mask.Add('P', data::kRootParentId, "1", "ohne Maske");
  for (auto* lv : {&mixed, &orphan, &bad_number, &no_mask}) {
    EXPECT_THROW(BuildGaebExport(lv->Source(), FixedDateOptions(kPhaseInvitation)),
                 EGaebExportError);
  }
  TGaebExportOptions gaeb90 = FixedDateOptions(kPhaseInvitation, TGAEBFormat::gf90);
  EXPECT_THROW(BuildGaebExport(RichLv(), gaeb90), EGaebExportError);
  EXPECT_THROW(BuildGaebExport(RichLv(), FixedDateOptions(87)), EGaebExportError);
}

TEST(GaebExport, AFailedExportLeavesTheOldFileAlone) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("lv.X83");
  std::ofstream(path) << "alt";
  TestLv orphan("PPPP");
  orphan.Add('U', data::kRootParentId, "0010", "Unterbeschreibung allein");
  EXPECT_THROW(ExportGaebFile(orphan.Source(), FixedDateOptions(kPhaseInvitation), path),
               EGaebExportError);
  std::ifstream in(path);
  std::stringstream content;
  content << in.rdbuf();
  EXPECT_EQ(content.str(), "alt");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);

  ExportGaebFile(RichLv(), FixedDateOptions(kPhaseInvitation), path);
  EXPECT_TRUE(gaeb_xml::ReadGaebXmlFile(path).document.has_value());
  // A folder that is not there: refused, naming the file.
  try {
    ExportGaebFile(RichLv(), FixedDateOptions(kPhaseInvitation), dir.File("fehlt/lv.X83"));
    ADD_FAILURE() << "written into a missing folder";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("fehlt/lv.X83"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace korvan::exchange
