// The import of what the export writes: for every version and phase the LV read back is
// written again as the same file, and holds the entries of the LV written.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>

#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_export/gaeb_export_test_lv.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace korvan::exchange {
namespace {

using testing::FixedDateOptions;
using testing::RichLv;

// Element ids name records, which differ between two LVs of equal content: each id is
// replaced by its place among the ids of the file.
std::string WithIdsByOrder(const std::string& xml) {
  static const std::regex id("(ID|IDRef)=\"([^\"]*)\"");
  std::map<std::string, int> order;
  std::string result;
  auto begin = std::sregex_iterator(xml.begin(), xml.end(), id);
  size_t last = 0;
  for (auto match = begin; match != std::sregex_iterator(); ++match) {
    const auto [it, added] = order.emplace((*match)[2].str(), static_cast<int>(order.size()) + 1);
    result += xml.substr(last, static_cast<size_t>(match->position()) - last);
    result += (*match)[1].str() + "=\"#" + std::to_string(it->second) + "\"";
    last = static_cast<size_t>(match->position() + match->length());
  }
  return result + xml.substr(last);
}

// The first line where two files differ, both versions; empty when they are equal.
std::string FirstDifference(const std::string& a, const std::string& b) {
  std::istringstream left(a), right(b);
  std::string one, two;
  for (int line = 1;; ++line) {
    const bool more_left = static_cast<bool>(std::getline(left, one));
    const bool more_right = static_cast<bool>(std::getline(right, two));
    if (!more_left && !more_right) return {};
    if (!more_left || !more_right || one != two) {
      return "line " + std::to_string(line) + ":\n  " + one + "\n  " + two;
    }
  }
}

TGaebExportSource SourceOf(const TGaebImport& import) {
  TGaebExportSource source;
  source.lv = import.lv;
  source.header = import.header;
  source.project_name = import.data.FPrjInfo.NamePrj.value_or("");
  source.project_label = import.data.FPrjInfo.LblPrj.value_or("");
  return source;
}

// Every file the export writes reads back without findings, and what the import makes of
// it is written again as the same file.
TEST(GaebImportRoundTrip, EveryVersionAndPhaseReadsBackCleanAndIsWrittenAgainAsTheSameFile) {
  const TGaebExportSource original = RichLv();
  for (const TGAEBFormat format :
       {TGAEBFormat::gfXML, TGAEBFormat::gfXML320, TGAEBFormat::gfXML330}) {
    for (const TGaebPhaseInfo& phase : ExportPhases()) {
      SCOPED_TRACE(std::string(FormatInfo(format).name) + " DA" + std::to_string(phase.phase));
      const TGaebExportOptions options = FixedDateOptions(phase.phase, format);
      const std::string first = gaeb_xml::WriteGaebXml(BuildGaebExport(original, options).document);

      const gaeb_xml::TGaebReadResult read = gaeb_xml::ReadGaebXml(first);
      ASSERT_TRUE(read.document.has_value()) << gaeb_xml::testing::Listed(read.findings);
      gaeb_xml::TGaebFindings findings = read.findings;
      for (const auto& more : {gaeb_xml::CheckGaebStructure(*read.document),
                               gaeb_xml::CheckGaebArithmetic(*read.document)}) {
        findings.insert(findings.end(), more.begin(), more.end());
      }
      EXPECT_FALSE(gaeb_xml::HasErrors(findings)) << gaeb_xml::testing::Listed(findings);
      EXPECT_EQ(gaeb_xml::testing::All(read.document->root, "Item").size(), 7u);
      EXPECT_EQ(!gaeb_xml::testing::All(read.document->root, "UP").empty(),
                PhaseCarriesPrices(phase.phase));

      const TGaebImport import = ImportGaebXml(first, "rohbau.x8x", {});
      EXPECT_EQ(import.format, format);
      EXPECT_EQ(import.phase, phase.phase);
      EXPECT_FALSE(gaeb_xml::HasErrors(import.findings))
          << gaeb_xml::testing::Listed(import.findings);
      const std::string second =
          gaeb_xml::WriteGaebXml(BuildGaebExport(SourceOf(import), options).document);
      EXPECT_EQ(FirstDifference(WithIdsByOrder(first), WithIdsByOrder(second)), "");
    }
  }
}

TEST(GaebImportRoundTrip, TheLvReadBackHoldsTheEntriesWritten) {
  const TGaebExportSource original = RichLv();
  const TGaebImport import = ImportGaebXml(
      gaeb_xml::WriteGaebXml(
          BuildGaebExport(original, FixedDateOptions(kPhaseCostEstimate, TGAEBFormat::gfXML330))
              .document),
      "rohbau.x82", {});
  const boq::TLVPosList& lv = import.lv;
  ASSERT_EQ(lv.Count(), original.lv.Count());
  EXPECT_EQ(lv.FOzMask().FMask(), "11.PPPP");
  EXPECT_EQ(lv.FLv().Name.Get(), "Rohbau");
  EXPECT_EQ(import.groups, 2);
  EXPECT_EQ(import.items, 10);
  EXPECT_EQ(import.texts, 2);
  for (int i = 0; i < lv.Count(); ++i) {
    const boq::TLvPos& want = original.lv[i];
    const boq::TLvPos& got = lv[i];
    SCOPED_TRACE(std::string(want.Oz()) + " " + want.ShortText);
    EXPECT_EQ(got.Kind(), want.Kind());
    EXPECT_EQ(got.Oz(), want.Oz());
    EXPECT_EQ(got.ShortText, want.ShortText);
    // A section's long text has no place in GAEB.
    if (!want.IsGroup()) {
      EXPECT_EQ(got.LongText, want.LongText);
    }
    if (!want.IsQuantityItem()) continue;
    EXPECT_EQ(got.Unit, want.Unit);
    EXPECT_NEAR(got.LvBeschr.FMenge, want.LvBeschr.FMenge, 0.0001);
    if (want.Kind() != 'U') {
      EXPECT_NEAR(got.LvBeschr.SchaetzEP.Betrag, want.LvBeschr.SchaetzEP.Betrag, 0.0001);
    }
    EXPECT_EQ(got.LvBgBeschr.Bedarf, want.LvBgBeschr.Bedarf);
    EXPECT_EQ(got.LvBgBeschr.KzEntfaellt, want.LvBgBeschr.KzEntfaellt);
    EXPECT_EQ(got.LvBeschr.LumpSumItem, want.LvBeschr.LumpSumItem);
    EXPECT_EQ(got.LvBeschr.KzFrMenge, want.LvBeschr.KzFrMenge);
  }
  // The parents are the groups before them.
  EXPECT_EQ(lv[3].Struktur.ZuBg, lv[1].Struktur.IdBgBeschr);
  EXPECT_EQ(lv[11].Struktur.ZuBg, lv[10].Struktur.IdBgBeschr);
}

}  // namespace
}  // namespace korvan::exchange
