#include <gtest/gtest.h>

#include "exchange/gaeb/gaeb_file_name.h"
#include "exchange/gaeb/gaeb_format.h"
#include "exchange/gaeb/gaeb_phase.h"
#include "exchange/gaeb/gaeb_values.h"

namespace korvan::exchange {
namespace {

TEST(GaebFormats, EachXmlVersionIsSwitchedOnByItsOwnOptionsEndingInPrettyPrint) {
  const TGaebFormatInfo& v33 = FormatInfo(TGAEBFormat::gfXML330);
  ASSERT_EQ(v33.writer_options.size(), 7u);
  EXPECT_EQ(v33.writer_options[5], "enableGaebXml");
  EXPECT_EQ(v33.writer_options.back(), "xmlPrettyPrintOn");
  EXPECT_EQ(FormatInfo(TGAEBFormat::gfXML).writer_options[3], "enableGaebXml31");
  EXPECT_EQ(FormatInfo(TGAEBFormat::gfXML320).writer_options[4], "enableGaebXml32");
  EXPECT_EQ(FormatInfo(TGAEBFormat::gf2000).writer_options.back(), "enableGaeb2000");
  EXPECT_TRUE(FormatInfo(TGAEBFormat::gf90).writer_options.empty());
}

TEST(GaebFormats, FileTypeAnswersMapToFormats) {
  EXPECT_EQ(FormatOfFileType("GAEBDAXML"), TGAEBFormat::gfXML);
  EXPECT_EQ(FormatOfFileType("GAEB2000"), TGAEBFormat::gf2000);
  EXPECT_EQ(FormatOfFileType("GAEB90"), TGAEBFormat::gfUnknown);
  EXPECT_EQ(FormatOfFileType(""), TGAEBFormat::gfUnknown);
  EXPECT_EQ(XmlFormatOfVersion("3.2"), TGAEBFormat::gfXML320);
  EXPECT_EQ(XmlFormatOfVersion("3.0"), std::nullopt);
}

TEST(GaebPhases, TheExportOffersTheSixPhasesOfTheTenderingCycle) {
  ASSERT_EQ(ExportPhases().size(), 6u);
  EXPECT_EQ(ExportPhases().front().phase, 81);
  EXPECT_EQ(ExportPhases().back().phase, 86);
  EXPECT_EQ(PhaseCaption(81), "81 - Leistungsverzeichnis");
  EXPECT_FALSE(ExportPhase(84)->lv_import);
  EXPECT_FALSE(ExportPhase(50).has_value());
  EXPECT_TRUE(UsesBidVariant(84));
  EXPECT_FALSE(UsesBidVariant(83));
  EXPECT_FALSE(PhaseCarriesPrices(83));
  EXPECT_TRUE(PhaseCarriesPrices(86));
}

TEST(GaebPhases, DpTextsGiveTheirPhaseAndTheIntegerPartOfADecimal) {
  EXPECT_EQ(PhaseOfDpText("83"), 83);
  EXPECT_EQ(PhaseOfDpText(" 86 "), 86);
  EXPECT_EQ(PhaseOfDpText("50.1"), 50);
  EXPECT_EQ(PhaseOfDpText("x83"), std::nullopt);
  EXPECT_EQ(PhaseOfDpText("50,1"), std::nullopt);
  EXPECT_EQ(PhaseOfDpText(""), std::nullopt);
}

TEST(GaebFileNames, ExtensionsCarryTheLetterAndThePhase) {
  EXPECT_EQ(GaebExtension(TGAEBFormat::gfXML330, 83), ".X83");
  EXPECT_EQ(GaebExtension(TGAEBFormat::gf2000, 86), ".P86");
  EXPECT_EQ(GaebExtension(TGAEBFormat::gf90, 81), ".D81");
  EXPECT_EQ(GaebExtension(TGAEBFormat::gf90, 81, true), ".DBD");
}

TEST(GaebFileNames, DefaultNameJoinsProjectAndLvWithoutForbiddenCharacters) {
  EXPECT_EQ(DefaultGaebFileName("Schule: Nord", "LV 1/2"), "Schule Nord_LV 12");
}

TEST(GaebFileNames, ImportFilterAcceptsGaebExtensionsInAnyCase) {
  EXPECT_TRUE(IsGaebFileName("a/LV.X83"));
  EXPECT_TRUE(IsGaebFileName("lv.p84"));
  EXPECT_TRUE(IsGaebFileName("lv.d81"));
  EXPECT_TRUE(IsGaebFileName("lv.Xml"));
  EXPECT_FALSE(IsGaebFileName("lv.X93"));
  EXPECT_FALSE(IsGaebFileName("lv.txt"));
  EXPECT_FALSE(IsGaebFileName("d.x83/lv"));
}

TEST(GaebValues, CodedValuesTravelBothWays) {
  EXPECT_EQ(GaebText(TAwardInfoCatType::aicIntNATO), "IntNATO");
  EXPECT_EQ(AwardInfoCatTypeOf("NegCont"), TAwardInfoCatType::aicNegCont);
  EXPECT_EQ(GaebText(TBoQBkdnType::bbtBoQLevel), "BoQLevel");
  EXPECT_EQ(BoQBkdnTypeOfHierarchyRow("LVStufe"), TBoQBkdnType::bbtBoQLevel);
  EXPECT_EQ(HierarchyRowType(TBoQBkdnType::bbtLot), "Los");
  EXPECT_EQ(GaebText(TExtCtlgType::ectDIN276_2018_12), "cost group DIN 276 2018-12");
  EXPECT_EQ(ExtCtlgTypeOf("locality"), TExtCtlgType::ectLocality);
  EXPECT_EQ(ExtCtlgTypeOf(""), std::nullopt);
  EXPECT_EQ(MarkupTypeOf("ListInSubQty"), TMarkupType::ListInSubQty);
}

TEST(GaebValues, ChangeOrderStatusKeepsItsSpelling) {
  EXPECT_EQ(COStatusText('1'), "Recog");
  EXPECT_EQ(COStatusText('6'), "ObjToRecj");
  EXPECT_EQ(COStatusText('8'), "Approved");
  EXPECT_EQ(COStatusText('9'), std::nullopt);
  EXPECT_EQ(COStatusOf("FormAckn"), '7');
}

TEST(GaebValues, BedarfCodesGiveProvis) {
  EXPECT_EQ(ProvisOfBedarf('E'), TProvis::WithoutTotal);
  EXPECT_EQ(ProvisOfBedarf('M'), TProvis::WithTotal);
  EXPECT_EQ(ProvisOfBedarf(' '), std::nullopt);
}

TEST(GaebValues, LastRNoPartTurnsFillCharactersIntoBlanks) {
  EXPECT_EQ(GetLastRNoPart("01.02.__3A", '.'), "  3A");
  EXPECT_EQ(GetLastRNoPart("0010", '.'), "0010");
}

TEST(GaebValues, BoundedTypesAndUnknownGraphicUnits) {
  EXPECT_TRUE(IsValidUPFracDig(3));
  EXPECT_FALSE(IsValidUPFracDig(4));
  EXPECT_TRUE(IsValidWarrDur(99));
  EXPECT_FALSE(IsValidWarrDur(100));
  EXPECT_TRUE(IsValidBoQBkdnLength(14));
  EXPECT_FALSE(IsValidBoQBkdnLength(15));
  EXPECT_EQ(GraphicLengthUnit("mm"), "mm");
  EXPECT_EQ(GraphicLengthUnit("furlong"), "cm");
}

}  // namespace
}  // namespace korvan::exchange
