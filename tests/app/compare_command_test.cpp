// `korvan compare`: three bidders on the fixture's LV through the program, as scripts,
// spreadsheets, people and a browser read it; wrong calls are refused.
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <string>
#include <vector>

#include "gaeb_lv_fixture.h"
#include "testing/files.h"
#include "testing/json_value.h"
#include "testing/run_korvan.h"

namespace korvan::app::compare_tests {
namespace {

// Aushub 120 m3, Verfüllen 80: Musterbau 10 / 1, "Bau & Söhne" 11 / 2, Zweitbau 9,50 / -.
class CompareCommand : public GaebLvFixture {
 protected:
  void SetUp() override {
    GaebLvFixture::SetUp();
    Korvan({"bidder", "add", "Rohbau", "Musterbau GmbH"});
    Korvan({"bidder", "add", "Rohbau", "Bau & Söhne"});
    Korvan({"bidder", "add", "Rohbau", "Zweitbau"});
    Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=10"});  // 1200 +  80 = 1280
    Korvan({"bid", "set", "Rohbau", "1", "01.01.0002", "up=1"});
    Korvan({"bid", "set", "Rohbau", "2", "01.01.0001", "up=11"});  // 1320 + 160 = 1480
    Korvan({"bid", "set", "Rohbau", "2", "01.01.0002", "up=2"});
    Korvan({"bid", "set", "Rohbau", "3", "01.01.0001", "up=9,50"});  // 1140
  }
};

TEST_F(CompareCommand, JsonGivesLinesPseudoBidsAndRanksWrongCallsAreRefused) {
  const korvan::testing::ProgramResult result =
      Korvan({"compare", "Rohbau", "--json", "--reference", "cheapest", "--limit", "5"});
  const korvan::testing::JsonValue json = korvan::testing::ParseJson(result.out);
  EXPECT_EQ(json["reference"]["caption"].String(), "billigstes Angebot");
  EXPECT_DOUBLE_EQ(json["reference"]["checked"].Number(), 1140.0);
  const auto& bidders = json["bidders"].Items();
  ASSERT_EQ(bidders.size(), 3U);
  EXPECT_DOUBLE_EQ(bidders[1]["checked"].Number(), 1480.0);
  EXPECT_DOUBLE_EQ(bidders[2]["unpriced"].Number(), 1.0);
  EXPECT_DOUBLE_EQ(bidders[2]["rank"].Number(), 1.0);
  EXPECT_DOUBLE_EQ(json["rank_list"].Items()[2].Number(), bidders[1]["id"].Number());
  EXPECT_DOUBLE_EQ(json["pseudo_bids"]["ideal"]["checked"].Number(), 1220.0);  // 1140 + 80
  const korvan::testing::JsonValue* aushub = nullptr;
  for (const auto& line : json["lines"].Items()) {
    if (line["oz"].String() == "01.01.0001") aushub = &line;
  }
  ASSERT_NE(aushub, nullptr);
  EXPECT_DOUBLE_EQ((*aushub)["mean"]["up"].Number(), 10.17);  // 30,50 / 3
  EXPECT_DOUBLE_EQ((*aushub)["median"]["up"].Number(), 10.0);
  EXPECT_NEAR((*aushub)["bids"].Items()[1]["percent"].Number(), 1320.0 / 1140.0 * 100.0, 1e-9);
  EXPECT_TRUE((*aushub)["bids"].Items()[1]["deviates"].Bool());  // 1320 against 1220,40
  EXPECT_FALSE((*aushub)["bids"].Items()[0]["deviates"].Bool());

  // Two bidders chosen; Aushub's mean (10 + 9,50) / 2 × 120 = 1170 reaches half of the mean
  // bid's 1170 + 1 × 80, Verfüllen's 80 does not.
  const korvan::testing::JsonValue chosen = korvan::testing::ParseJson(
      Korvan({"compare", "Rohbau", "--json", "--bidders", "1,Zweitbau", "--min-share", "50"}).out);
  ASSERT_EQ(chosen["bidders"].Items().size(), 2U);
  EXPECT_EQ(chosen["bidders"].Items()[1]["name"].String(), "Zweitbau");
  EXPECT_DOUBLE_EQ(chosen["pseudo_bids"]["mean"]["checked"].Number(), 1170.0 + 80.0);
  std::vector<std::string> shown;
  for (const auto& line : chosen["lines"].Items()) shown.push_back(line["oz"].String());
  EXPECT_NE(std::find(shown.begin(), shown.end(), "01.01.0001"), shown.end());
  EXPECT_EQ(std::find(shown.begin(), shown.end(), "01.01.0002"), shown.end());

  // Wrong calls: exit 2 for the call, 1 for the work.
  Korvan({"compare", "Rohbau", "--min-share=-1"}, 2, {"--min-share"});
  Korvan({"compare", "Rohbau", "--bidders", "1,Niemand"}, 1, {"Niemand"});
  Korvan({"compare", "Rohbau", "--reference", "billig"}, 2, {"kein 100 %-Bezug", "cheapest"});
  Korvan({"compare", "Rohbau", "--limit=-3"}, 2, {"--limit"});
  Korvan({"compare", "Rohbau", "--json", "--csv"}, 2);
  Korvan({"compare", "Rohbau", "--as-bidder", "median"}, 2, {"mean oder ideal"});
  Korvan({"compare", "Keins"}, 1, {"Keins"});
  Korvan({"compare", "Rohbau", "--svg", dir_.File("fehlt/chart.svg")}, 1, {"Diagramm"});
}

TEST_F(CompareCommand, CsvTextAndChart) {
  const korvan::testing::ProgramResult csv = Korvan({"compare", "Rohbau", "--csv"});
  EXPECT_EQ(csv.out.rfind("\xEF\xBB\xBFOZ;Art;Kurztext;Menge;Einheit;Musterbau GmbH EP;", 0), 0U);
  EXPECT_NE(csv.out.find("=\"01.01.0001\";P;Aushub;120,000;m3;10,00;1200,00;"), std::string::npos);
  EXPECT_NE(csv.out.find("\r\nSumme;;;;;;1280,00;"), std::string::npos);
  EXPECT_NE(csv.out.find("1;3;Zweitbau;1140,00;0,00;1140,00;1140,00;"), std::string::npos);

  Korvan({"compare", "Rohbau", "--limit", "5"}, 0,
         {"100 % Bezug: Idealangebot", "???", "1.320,00", "Rangliste", "Bau & Söhne"});

  const std::string file = dir_.File("preisspiegel.svg");
  Korvan({"compare", "Rohbau", "--svg", file}, 0, {"3 Bieter"});
  const std::string svg = korvan::testing::ReadFile(file);
  xmlDocPtr doc = xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "chart.svg", nullptr,
                                XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  ASSERT_NE(doc, nullptr) << svg;
  EXPECT_STREQ(reinterpret_cast<const char*>(xmlDocGetRootElement(doc)->name), "svg");
  xmlFreeDoc(doc);
  for (const char* total : {"1.140,00", "1.280,00", "1.480,00", "Bau &amp; Söhne"}) {
    EXPECT_NE(svg.find(total), std::string::npos) << total;
  }

  // The mean as a bidder of its own: 10,17 × 120 + 1,50 × 80; one step undo takes back.
  Korvan({"compare", "Rohbau", "--as-bidder", "mean"}, 0, {"\"Mittelwerte\"", "1.340,40"});
  Korvan({"bidder", "list", "Rohbau"}, 0, {"4  Mittelwerte  Geprüft 1340,40"});
  Korvan({"undo"});
  const korvan::testing::ProgramResult after = Korvan({"bidder", "list", "Rohbau"});
  EXPECT_EQ(after.out.find("Mittelwerte"), std::string::npos);
}

}  // namespace
}  // namespace korvan::app::compare_tests
