// Bids read from GAEB DA 84 files into a bidder's bid: matching by kind and OZ, components,
// files of other LVs, a file we export priced by another program, and the sample files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "award/award_tables.h"
#include "award/bid/dm_angebot.h"
#include "award/bid/dm_bieter.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_export/gaeb_export_bid.h"
#include "exchange/gaeb_export/gaeb_export_test_lv.h"
#include "exchange/gaeb_import/gaeb_bid_import.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_schema.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"
#include "testing/temp_dir.h"

namespace korvan::exchange {
namespace {

template <class T>
T Val(T value) {
  return value;
}

std::string Read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// A bid file with the given items under one section "01" of an LV of mask 11.PPPP.
std::string BidFile(const std::string& items, const std::string& name = "Rohbau") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA84/3.3\">\n"
         "<GAEBInfo><Version>3.3</Version><VersDate>2021-05</VersDate></GAEBInfo>\n"
         "<Award><DP>84</DP><BoQ ID=\"B\"><BoQInfo><Name>" +
         name +
         "</Name></BoQInfo><BoQBody>\n"
         "<BoQCtgy ID=\"C\" RNoPart=\"01\"><BoQBody><Itemlist>\n" +
         items + "</Itemlist></BoQBody></BoQCtgy></BoQBody></BoQ></Award></GAEB>\n";
}

class BidImport : public ::testing::Test {
 protected:
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    award::RegisterAwardTables(registry);
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string() + "/", boq::kLvDbType, 70);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    bid_.reset();
    bidders_.reset();
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  award::TdmAngebot& Open(const boq::TLVPosList& lv) {
    lv_ = lv;
    bidders_ = std::make_unique<award::TdmBieter>(*db_, nullptr, lv_, converter_);
    bid_ = bidders_->OpenBid(bidders_->AddBidder("Musterbau", ""));
    return *bid_;
  }
  // An LV "Rohbau" of mask 11.PPPP with section 01 and items 01.0010 (10 m2), 01.0020 (4 m2).
  award::TdmAngebot& OpenSmallLv() {
    testing::TestLv lv;
    const int32_t section = lv.Add('B', data::kRootParentId, "01", "Erdarbeiten").LvBgBeschr.ID;
    lv.Add('P', section, "01.0010", "Aushub", 10);
    lv.Add('P', section, "01.0020", "Verfüllen", 4);
    return Open(lv.Source().lv);
  }
  double Ep(int line) const {
    return bid_->FAList()[static_cast<std::size_t>(line)].Angebot.EP.Betrag;
  }
  char Mark(int line) const { return bid_->FAList()[static_cast<std::size_t>(line)].Angebot.Kennz; }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> db_;
  boq::TAvaUiValueConverter converter_{boq::TCurrencyList(), boq::TValueConverterSettings()};
  boq::TLVPosList lv_;
  std::unique_ptr<award::TdmBieter> bidders_;
  std::unique_ptr<award::TdmAngebot> bid_;
};

TEST(BidOz, WithoutPointsRebuiltAgainstTheMask) {
  EXPECT_EQ(NormaliseBidOz("01020030", "11.22.PPPP"), "01.02.0030");
  EXPECT_EQ(NormaliseBidOz(" 1 20030", "11.22.PPPP"), "01.02.0030");
  EXPECT_EQ(NormaliseBidOz("1.2.30", "11.22.PPPP"), "1.2.30");  // compared as it stands
}

TEST_F(BidImport, ComponentsThatMissTheUnitPriceMarkTheLine) {
  OpenSmallLv();
  const TGaebBidImport import = ImportGaebBid(
      BidFile("<Item ID=\"a\" RNoPart=\"0010\"><Qty>10</Qty><UP>12.35</UP><UPComp1>10.00</UPComp1>"
              "<UPComp2>2.30</UPComp2></Item>\n"
              "<Item ID=\"b\" RNoPart=\"0020\"><Qty>4</Qty><UP>12.35</UP><UPComp1>10.00</UPComp1>"
              "<UPComp2>2.34995</UPComp2></Item>\n"),
      "a.x84", *bid_);
  EXPECT_EQ(import.matched_items, 2);
  EXPECT_EQ(Mark(1), award::kMarkFaulty);
  EXPECT_DOUBLE_EQ(Ep(1), 12.35);  // a faulty line keeps the price of its file
  EXPECT_TRUE(
      gaeb_xml::testing::Mentions(import.findings, "EP-Anteile ergeben 12,30 statt EP 12,35"));
  EXPECT_EQ(Mark(2), ' ');
  EXPECT_DOUBLE_EQ(Val(bid_->Bidder().Summe.Betrag), 123.5 + 49.4);
}

// Comments go with the line, one stored line per line of text (long ones wrapped); what
// the bidder wrote into the gaps of the text goes with it by the gap's number, the client's
// own complements and empty ones not.
TEST_F(BidImport, CommentsAndTextAdditionsGoWithTheirLine) {
  OpenSmallLv();
  const std::string long_line(80, 'x');
  const TGaebBidImport import = ImportGaebBid(
      BidFile("<Item ID=\"a\" RNoPart=\"0010\"><UP>1.00</UP><Description><CompleteText>"
              "<DetailTxt><p>Beton <TextComplement Kind=\"Bidder\" MarkLbl=\"2\"><ComplBody>"
              "<p><span>Fabrikat X</span></p></ComplBody></TextComplement> und "
              "<TextComplement Kind=\"Owner\" MarkLbl=\"1\"><ComplBody><p>C25/30</p>"
              "</ComplBody></TextComplement><TextComplement Kind=\"Bidder\" MarkLbl=\"3\">"
              "<ComplBody/></TextComplement></p></DetailTxt></CompleteText></Description>"
              "<BidComm><p><span>Lieferzeit 4 Wochen</span></p></BidComm>"
              "<BidComm><p><span>" +
              long_line +
              "</span></p></BidComm></Item>\n"
              "<Item ID=\"b\" RNoPart=\"0020\"><UP>2.00</UP></Item>\n"),
      "a.x84", *bid_);
  EXPECT_EQ(import.comments, 1);
  EXPECT_EQ(import.bidder_texts, 1);
  const award::TAO& line = bid_->FAList()[1];
  EXPECT_TRUE(line.TextsChanged);
  EXPECT_EQ(line.BidderTexts, (award::TBidderTexts{{2, "Fabrikat X"}}));
  EXPECT_EQ(line.Kommentar,
            (std::vector<std::string>{"Lieferzeit 4 Wochen", long_line.substr(0, 70),
                                      long_line.substr(70)}));
  EXPECT_FALSE(bid_->FAList()[2].TextsChanged);  // nothing to store for the other item
}

TEST_F(BidImport, UnmatchedTwiceMatchedAndForeignPositionsAreFindings) {
  OpenSmallLv();
  const TGaebBidImport import =
      ImportGaebBid(BidFile("<Item ID=\"a\" RNoPart=\"0010\"><UP>1.00</UP></Item>\n"
                            "<Item ID=\"b\" RNoPart=\"0010\"><UP>2.00</UP></Item>\n"
                            "<Item ID=\"c\" RNoPart=\"0099\"><UP>3.00</UP></Item>\n"),
                    "a.x84", *bid_);
  EXPECT_EQ(import.items, 3);
  EXPECT_EQ(import.matched_items, 1);
  EXPECT_DOUBLE_EQ(Ep(1), 1.0);
  EXPECT_TRUE(gaeb_xml::testing::Mentions(import.findings, "01.0010 steht mehrfach"));
  EXPECT_TRUE(gaeb_xml::testing::Mentions(import.findings, "01.0099 passt zu keinem Eintrag"));
  EXPECT_TRUE(import.other_lv.empty());
}

TEST_F(BidImport, AFileOfAnotherLvIsRefusedAndOtherPhasesAreNoBids) {
  OpenSmallLv();
  const TGaebBidImport import = ImportGaebBid(
      BidFile("<Item ID=\"a\" RNoPart=\"0777\"><UP>1.00</UP></Item>\n", "Dach"), "a.x84", *bid_);
  EXPECT_NE(import.other_lv.find("\"Dach\""), std::string::npos) << import.other_lv;
  EXPECT_NE(import.other_lv.find("LV \"Rohbau\""), std::string::npos);
  std::string offer = BidFile("");
  ReplaceAll(offer, "<DP>84</DP>", "<DP>83</DP>");
  ReplaceAll(offer, "DA84", "DA83");
  EXPECT_THROW(ImportGaebBid(offer, "a.x83", *bid_), EGaebImportError);
}

// Our own X83, priced as another program would price it (unit prices and components
// written into the XML), comes back as a bid: every price arrives and the bidder's total
// is the sum of quantity times price, in cents.
TEST_F(BidImport, OurInvitationPricedElsewhereComesBackWhole) {
  testing::TestLv lv("11.22.PPPP", "Rohbau");
  int64_t expected_cents = 0;
  for (int section = 1; section <= 3; ++section) {
    char number[8];
    std::snprintf(number, sizeof number, "%02d", section);
    const int32_t group = lv.Add('B', data::kRootParentId, number, "Titel").LvBgBeschr.ID;
    const int32_t sub = lv.Add('B', group, std::string(number) + ".01", "Untertitel").LvBgBeschr.ID;
    for (int item = 1; item <= 4; ++item) {
      char oz[16];
      std::snprintf(oz, sizeof oz, "%s.01.%04d", number, item * 10);
      lv.Add('P', sub, oz, "Position", 1.5 * item + section * 0.125);
    }
  }
  const TGaebExportResult exported =
      BuildGaebExport(lv.Source(), testing::FixedDateOptions(kPhaseInvitation));
  std::string xml = gaeb_xml::WriteGaebXml(exported.document);
  ReplaceAll(xml, "<DP>83</DP>", "<DP>84</DP>");
  ReplaceAll(xml, "DA83", "DA84");
  int n = 0;
  for (size_t at = xml.find("</Item>"); at != std::string::npos; at = xml.find("</Item>", at)) {
    ++n;
    const double comp1 = 10.0 * n + 0.25, comp2 = 3.0 + n * 0.01;
    char prices[160];
    std::snprintf(prices, sizeof prices,
                  "<UP>%.2f</UP><UPComp1>%.2f</UPComp1><UPComp2>%.2f</UPComp2>", comp1 + comp2,
                  comp1, comp2);
    xml.insert(at, prices);
    at += std::strlen(prices) + 7;
  }
  award::TdmAngebot& bid = Open(lv.Source().lv);
  int item = 0;
  for (const boq::TLvPos& entry : lv_.Entries()) {
    if (entry.IsGroup()) continue;
    ++item;
    const int64_t up_cents = std::llround((10.0 * item + 0.25 + 3.0 + item * 0.01) * 100);
    expected_cents += std::llround(entry.LvBeschr.FMenge * 1000) * up_cents / 1000 +
                      ((std::llround(entry.LvBeschr.FMenge * 1000) * up_cents % 1000) >= 500);
  }
  const TGaebBidImport import = ImportGaebBid(xml, "priced.x84", bid);
  EXPECT_EQ(import.items, 12);
  EXPECT_EQ(import.matched_items, 12);
  EXPECT_EQ(import.prices, 12);
  EXPECT_TRUE(import.findings.empty()) << gaeb_xml::testing::Listed(import.findings);
  for (int i = 0; i < lv_.Count(); ++i) {
    if (lv_[i].IsGroup()) continue;
    const award::t_Angebot_DB_VERSION_201501& line =
        bid.FAList()[static_cast<std::size_t>(i)].Angebot;
    EXPECT_GT(Val(line.EP.Betrag), 0.0) << lv_[i].Oz();
    EXPECT_NEAR(Val(line.EPAnteil[0].Betrag) + Val(line.EPAnteil[1].Betrag), Val(line.EP.Betrag),
                1e-9);
  }
  EXPECT_EQ(std::llround(bid.Bidder().Summe.Betrag * 100), expected_cents);
}

// The bid written by our DA 84 export validates against the schema and reads back alike.
TEST_F(BidImport, OurBidFileIsValidAndReadsBack) {
  award::TdmAngebot& bid = OpenSmallLv();
  bid.SetUnitPrice(1, 12.5);
  bid.FAList()[2].Angebot.EPAnteil[0].Betrag = 7.25;
  bid.FAList()[2].Angebot.EPAnteil[1].Betrag = 1.5;
  bid.Bidder().NachlassProz = 3.0F;
  bid.Recalculate();
  TGaebExportSource source;
  source.lv = lv_;
  source.project_name = "Schule Nord";
  TakeBidIntoExportSource(source, bid);
  const std::string xml = gaeb_xml::WriteGaebXml(
      BuildGaebExport(source, testing::FixedDateOptions(kPhaseBid)).document);
  const std::filesystem::path schemas = gaeb_xml::testing::SchemaDir();
  if (!schemas.empty()) {
    const std::optional<std::string> schema =
        gaeb_xml::SchemaFileOfPhase(schemas.string(), kPhaseBid);
    ASSERT_TRUE(schema.has_value());
    const gaeb_xml::TGaebFindings findings = gaeb_xml::ValidateAgainstSchema(xml, *schema);
    EXPECT_TRUE(findings.empty()) << gaeb_xml::testing::Listed(findings);
  }
  const double summe = bid.Bidder().Summe.Betrag;
  award::TdmAngebot& again = Open(lv_);
  const TGaebBidImport import = ImportGaebBid(xml, "bid.x84", again);
  EXPECT_EQ(import.matched_items, 2);
  EXPECT_DOUBLE_EQ(Val(again.FAList()[2].Angebot.EPAnteil[0].Betrag), 7.25);
  EXPECT_DOUBLE_EQ(Val(again.Bidder().Summe.Betrag), summe);
  EXPECT_FLOAT_EQ(Val(again.Bidder().NachlassProz), 3.0F);
}

// The sample bids against LVs built from themselves: every item finds its entry, and the
// totals are those the file states; an item without quantity counts with the total the file
// gives it, and a finding says so.
TEST_F(BidImport, SampleBidsAgainstTheirOwnLvs) {
  if (gaeb_xml::testing::SampleDir().empty()) GTEST_SKIP() << gaeb_xml::testing::kNoSamples;
  struct Case {
    const char* file;
    int items;
    double checked, gross;
    int without_quantity;
  };
  const Case cases[] = {
      {"priced.x84", 2, 1450.00, 1450.00, 1},
      {"realistic.x84", 4, 9649.00, 10908.19, 1},
      {"components.x84", 3, 0.0, 0.0, 1},  // totals not consistent in the file itself
  };
  for (const Case& c : cases) {
    const std::string bid_xml = Read(gaeb_xml::testing::SampleDir() / c.file);
    std::string lv_xml = bid_xml;
    ReplaceAll(lv_xml, "DA84", "DA83");
    ReplaceAll(lv_xml, "<DP>84</DP>", "<DP>83</DP>");
    const TGaebImport lv = ImportGaebXml(lv_xml, c.file, TGaebImportOptions{});
    award::TdmAngebot& bid = Open(lv.lv);
    const TGaebBidImport import = ImportGaebBid(bid_xml, c.file, bid);
    EXPECT_EQ(import.matched_items, c.items)
        << c.file << gaeb_xml::testing::Listed(import.findings);
    EXPECT_TRUE(import.other_lv.empty()) << c.file;
    const auto without_quantity =
        std::count_if(import.findings.begin(), import.findings.end(), [](const auto& finding) {
          return finding.message.find("ohne Menge; der Gesamtbetrag") != std::string::npos;
        });
    EXPECT_EQ(without_quantity, c.without_quantity) << c.file;
    if (std::string(c.file) == "components.x84") continue;
    EXPECT_DOUBLE_EQ(Val(bid.Bidder().Summe.Betrag), c.checked) << c.file;
    EXPECT_DOUBLE_EQ(Val(bid.Bidder().SummeBrutto.Betrag), c.gross) << c.file;
  }
}

}  // namespace
}  // namespace korvan::exchange
