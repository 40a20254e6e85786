// `korvan demo`: the road of one bid on the built-in sample, every step's answer checked
// and the bidders' totals against sums worked out here from the same sample data; and
// `korvan demo --setup-only` with `korvan db dump --table` / `korvan db keys` on its
// currency table.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "app/cli/german_number.h"
#include "app/commands/demo/demo_sample.h"
#include "boq/units/tb_einheit.h"
#include "boq/units/tb_waehrung.h"
#include "data/records/null_values.h"
#include "data/tables/std_db.h"
#include "data/tables/table_key.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "storage/result_codes.h"
#include "testing/files.h"
#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using app::demo::SampleBidders;
using app::demo::SampleGroup;
using app::demo::SampleGroups;
using app::demo::SampleItem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::ProgramResult;
using testing::ReadFile;

constexpr int kStammKeyLength = 33;

double Cents(double amount) {
  return std::round(amount * 100.0) / 100.0;
}

// The LV's total at the prices `price` gives each item (numbered through the LV from 0):
// every item's quantity times its unit price to the cent, added up.
template <typename Price>
double SampleTotal(Price price) {
  double total = 0.0;
  int number = 0;
  for (const SampleGroup& group : SampleGroups()) {
    for (const SampleItem& item : group.items)
      total += Cents(item.quantity * price(item, number++));
  }
  return Cents(total);
}

double BidTotal(int bidder) {
  return SampleTotal([bidder](const SampleItem& item, int number) {
    return app::demo::SampleBidPrice(item, number, bidder);
  });
}

// Expects `parts` in `text` in this order.
void ExpectInOrder(const std::string& text, const std::vector<std::string>& parts) {
  size_t at = 0;
  for (const std::string& part : parts) {
    const size_t found = text.find(part, at);
    ASSERT_NE(found, std::string::npos) << "\"" << part << "\" not after byte " << at;
    at = found + part.size();
  }
}

// `korvan gaeb check` of a file the demo wrote, against the official schemas when here.
void ExpectValidGaeb(const fs::path& file) {
  std::vector<std::string> args = {"gaeb", "check", file.string()};
  const fs::path schemas = exchange::gaeb_xml::testing::SchemaDir();
  if (!schemas.empty()) args.insert(args.end(), {"--schemas", schemas.string()});
  ExpectKorvan(args, 0, {"Fehler: 0, Warnungen: 0"});
}

TEST(Demo, WalksTheRoadOfOneBidOnTheSample) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "demo";
  const std::string lv(app::demo::kSampleLv);
  const ProgramResult demo = testing::RunKorvanBinary({"demo", "-d", base.string()});
  ASSERT_EQ(demo.exit_code, 0) << demo.err << demo.out;
  EXPECT_EQ(demo.err, "");

  const fs::path files = base / "Austausch";
  const std::string x83 = (files / "Kindergarten.X83").string();
  std::vector<std::string> x84;
  for (const app::demo::SampleBidder& bidder : SampleBidders()) {
    x84.push_back((files / bidder.file_name).string());
  }
  // The LV as step 3 shows it: every group's estimate worked out here.
  std::vector<std::string> road = {
      "=== Schritt 1: Installation und Projekt anlegen ===",
      "$ korvan init --project Kindergarten -d " + base.string(),
      "Aktuelles Projekt: Kindergarten",
      "3 Währungen und 8 Einheiten eingetragen",
      "=== Schritt 2: Ein Leistungsverzeichnis (LV) anlegen ===",
      "$ korvan lv new \"Rohbau Kindergarten\" --mask 11.PPPP -d " + base.string(),
      "LV 1 \"Rohbau Kindergarten\" im Projekt \"Kindergarten\" angelegt",
      "=== Schritt 3: Titel und Positionen eintragen ===",
      "Eintrag 01 (B) angefügt",
      "Eintrag 01.0001 (P) angefügt",
      "Eintrag 01.0002 (P) angefügt",
      "107 weitere Befehle",
      "Status N, Währung EUR, 110 Einträge"};
  int group_number = 0;
  for (const SampleGroup& group : SampleGroups()) {
    double sum = 0.0;
    for (const SampleItem& item : group.items) sum += Cents(item.quantity * item.base_price);
    ++group_number;
    road.push_back(std::string(group_number < 10 ? "0" : "") + std::to_string(group_number) +
                   "  B  " + std::string(group.title) + "  GP " + app::GermanFigure(sum, "%.2f"));
  }
  road.push_back("Summe " + app::GermanFigure(SampleTotal([](const SampleItem& item, int) {
                                                return item.base_price;
                                              }),
                                              "%.2f"));
  road.insert(road.end(), {"=== Schritt 4: Die Ausschreibung als GAEB-Datei X83 schreiben ===",
                           "Phase 83 - Angebotsaufforderung, mit 110 Einträgen geschrieben: " + x83,
                           "Fehler: 0, Warnungen: 0",
                           "=== Schritt 5: Drei Bieter kalkulieren ihre Angebote ==="});
  // Each bidder on its own side: the X83 read, its prices, its X84 written.
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    road.insert(road.end(),
                {"10 Gruppen, 100 Positionen, 0 Texte, 0 Befunde",
                 "Bieter 1 \"" + std::string(SampleBidders()[bidder].name) + "\"",
                 "Geprüft " + app::GermanFigure(BidTotal(bidder), "%.2f"),
                 "Phase 84 - Angebotsabgabe, mit 110 Einträgen geschrieben: " + x84[bidder]});
  }
  road.push_back("=== Schritt 6: Die Angebote einlesen ===");
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    road.push_back("Bieter " + std::to_string(bidder + 1) + " \"" +
                   std::string(SampleBidders()[bidder].name) + "\" zum LV");
  }
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    road.insert(road.end(), {"100 von 100 Positionen zugeordnet, 100 Preise, 0 Bieterkommentare, "
                             "0 Bietertextergänzungen, 0 Befunde",
                             "Netto " + app::GermanFigure(BidTotal(bidder), "%.2f")});
  }
  int cheapest = 0;
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    if (BidTotal(bidder) < BidTotal(cheapest)) cheapest = bidder;
  }
  const std::string winner(SampleBidders()[cheapest].name);
  const std::string x86 = (files / "Kindergarten.X86").string();
  road.insert(
      road.end(),
      {"LV \"Rohbau Kindergarten\": 3 Bieter", "=== Schritt 7: Preisspiegel ===",
       "$ korvan compare \"Rohbau Kindergarten\" -d " + base.string(),
       "$ korvan compare \"Rohbau Kindergarten\" --csv -d " + base.string() + " > " +
           (files / "Kindergarten-Preisspiegel.csv").string(),
       "=== Schritt 8: Zuschlag, Auftrag und X86 ===",
       "$ korvan award \"Rohbau Kindergarten\" \"" + winner + "\"", "$ korvan contract show 1",
       winner, "$ korvan gaeb export \"Rohbau Kindergarten\" --phase 86", x86,
       "Fehler: 0, Warnungen: 0", "=== Schritt 9: Geschafft ===", "Kindergarten-Preisspiegel.csv",
       "Kindergarten-Preisspiegel.svg", "Kindergarten.X83", "Kindergarten.X86"});
  ExpectInOrder(demo.out, road);

  // The bidders' totals as the tender holds them after the import, worked out here.
  const testing::JsonValue bidders =
      testing::ParseJson(testing::ExpectKorvanOn(base, {"bidder", "list", lv, "--json"}).out);
  ASSERT_EQ(bidders["bidders"].Items().size(), SampleBidders().size());
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    const testing::JsonValue& row = bidders["bidders"].Items()[bidder];
    EXPECT_EQ(row["name"].String(), SampleBidders()[bidder].name);
    EXPECT_NEAR(row["checked"].Number(), BidTotal(bidder), 0.005) << row["name"].String();
  }
  EXPECT_EQ(bidders["bidders"].Items()[cheapest]["rank"].Number(), 1);

  // The cheapest bid was awarded: the contract's sum is its total, the LV is awarded.
  const testing::JsonValue contracts =
      testing::ParseJson(testing::ExpectKorvanOn(base, {"contract", "list", "--json"}).out);
  ASSERT_EQ(contracts["contracts"].Items().size(), 1u);
  const testing::JsonValue& contract = contracts["contracts"].Items()[0];
  EXPECT_EQ(contract["contractor"].String(), winner);
  EXPECT_NEAR(contract["contract_sum"].Number(), BidTotal(cheapest), 0.005);
  const std::string csv = ReadFile(files / "Kindergarten-Preisspiegel.csv");
  EXPECT_EQ(csv.rfind("\xEF\xBB\xBF", 0), 0u) << "the spreadsheet file starts with a BOM";
  EXPECT_TRUE(Contains(csv, winner));
  EXPECT_TRUE(Contains(ReadFile(files / "Kindergarten-Preisspiegel.svg"), "<svg"));

  // The files stay for the user and are what the schemas of their phases allow; the
  // bidders' installations are gone.
  ExpectValidGaeb(x83);
  for (const std::string& file : x84) ExpectValidGaeb(file);
  ExpectValidGaeb(x86);
  EXPECT_FALSE(fs::exists(base / "Bieterseite"));

  // The road starts from the beginning only.
  ExpectKorvan({"demo", "-d", base.string()}, 1, {"gibt es das Beispielprojekt \"Kindergarten\""});
}

TEST(Demo, SetsUpASampleInstallationOnceAndDumpsItsTables) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "sample";
  ExpectKorvan({"demo", "--setup-only", "-d", base.string()}, 0,
               {"Gelesene Währungen: \nDEM, BEF, FIM", "3 Währungen und 8 Einheiten eingetragen",
                "  U  STAMMDATEN/DB_Stamm.QE0: 50 Datensätze"});
  EXPECT_FALSE(fs::exists(base / "STAMMDATEN/DB_Stamm.QE2"));  // no lock file left behind
  {
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Stamm", (base / "STAMMDATEN").string(), 'E', kStammKeyLength);
    db.SetMessages(&messages);
    ASSERT_EQ(db.DbOpen(false), storage::kOk);
    boq::TTbWaehrung currencies(db);
    ASSERT_TRUE(currencies.GetKey(data::KeyNumber(41)));
    EXPECT_EQ(currencies.Rec().Symbol.Get(), "CHF");
    boq::TTbEinheit units(db);
    ASSERT_TRUE(units.GetKey(data::KeyNumber16(49) + data::KeyNumber16(2)));
    EXPECT_EQ(units.Rec().Bezeichnung.Get(), "Quadratmeter");
    EXPECT_TRUE(messages.errors.empty());
  }
  // A second run finds everything in place and enters nothing twice.
  ExpectKorvan(
      {"demo", "--setup-only", "-d", base.string()}, 0,
      {"0 Währungen und 0 Einheiten eingetragen", "  U  STAMMDATEN/DB_Stamm.QE0: 50 Datensätze"});

  const std::string stamm = (base / "STAMMDATEN/DB_Stamm.QE").string();
  const ProgramResult currencies =
      ExpectKorvan({"db", "dump", "--table", "W", stamm}, 0,
                   {"RecTyp: W\tSize: 191\tVersion: 1\t", "\nBez: Schweizer Franken\n",
                    "\nSymbol: ITL\n", "\n16 Datensätze der Tabelle W (t_Waehrung)\n"});
  EXPECT_FALSE(Contains(currencies.out, "Symbol: m2"));
  ExpectKorvan({"db", "keys", stamm}, 0, {" W100000000041."});  // the id in eleven characters
  EXPECT_EQ(ExpectKorvan({"db", "dump", "--table", "Q", stamm}, 0).out,
            "0 Datensätze der Tabelle Q\n");
  // A table whose layout this program does not know shows each record's header.
  ExpectKorvan({"db", "shell", stamm}, 0, {}, "insert Q 10 ab\n");
  ExpectKorvan(
      {"db", "dump", "--table", "Q", stamm}, 0,
      {"RecLen: 58\tRecTyp: Q\t", "(58 Bytes, Aufbau unbekannt)\n1 Datensatz der Tabelle Q\n"});
}

}  // namespace
}  // namespace korvan
