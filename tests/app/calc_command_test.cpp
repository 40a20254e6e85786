// `korvan calc` and `korvan prices` on a sample installation: unit prices and totals from
// cost elements equal a computation in whole cents, each change one undo step.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

using testing::ProgramResult;

// An amount in cents as the command line writes it ("1234,56").
std::string Euros(int64_t cents) {
  const std::string fraction = std::to_string(100 + cents % 100).substr(1);
  return std::to_string(cents / 100) + "," + fraction;
}

// Half a unit and more rounds up (every amount here is positive).
int64_t RoundedDivision(int64_t numerator, int64_t denominator) {
  return (numerator * 2 + denominator) / (denominator * 2);
}

class CalcCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo", "--setup-only"});
    Korvan({"lv", "new", "Kalkulation"});
  }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code, parts);
  }
  testing::JsonValue Item(const std::string& oz) {
    return testing::ParseJson(Korvan({"calc", "item", "Kalkulation", oz, "--json"}).out);
  }

  korvan::testing::TempDir dir_;
  std::filesystem::path base_ = dir_.path() / "sample";
};

// Two items priced from their cost elements through the program; the arithmetic of many
// items is the calculation library's test.
TEST_F(CalcCommands, CostElementsGiveTheHandComputedPricesToTheCent) {
  int64_t bid_total = 0;
  std::vector<int64_t> unit_prices, totals;
  for (int64_t i = 1; i <= 2; ++i) {
    const int64_t material = 1000 + (737 * i) % 50000, wage = 2500 + 311 * i;
    const int64_t subcontract = (913 * i) % 3000 + 5, milli_qty = 1000 + (12345 * i) % 99999;
    Korvan({"lv", "add", "Kalkulation", "P", "--short", "Position " + std::to_string(i)});
    Korvan({"calc", "set", "Kalkulation", std::to_string(i), "M=" + Euros(material),
            "Z=" + Euros(wage), "F=" + Euros(subcontract),
            "menge=" + std::to_string(milli_qty / 1000) + "," +
                std::to_string(1000 + milli_qty % 1000).substr(1)});
    const int64_t ep = RoundedDivision(105 * (material + subcontract) + 100 * wage, 100);
    unit_prices.push_back(ep);
    totals.push_back(RoundedDivision(milli_qty * ep, 1000));
    bid_total += totals.back();
  }
  const testing::JsonValue run =
      testing::ParseJson(Korvan({"calc", "run", "Kalkulation", "--json"}).out);
  EXPECT_EQ(run["calculated"].Number(), 2);
  EXPECT_EQ(std::llround(run["bid_total"].Number() * 100), bid_total);
  for (int i : {1, 2}) {
    const testing::JsonValue item = Item(std::to_string(i));
    EXPECT_EQ(std::llround(item["unit_prices"]["angebot"].Number() * 100), unit_prices[i - 1]);
    EXPECT_EQ(std::llround(item["totals"]["angebot"].Number() * 100), totals[i - 1]);
  }
  Korvan({"calc", "set", "Kalkulation", "1", "X=3"}, 2, {"keine Kostenart"});
  Korvan({"calc", "set", "Kalkulation", "1", "M=3+"}, 2, {"Formel \"3+\""});
  Korvan({"calc", "item", "Kalkulation", "9"}, 1, {"keinen Eintrag mit der OZ"});
  Korvan({"prices", "copy", "Kalkulation", "--from", "x", "--to", "0"}, 2, {"keine Preisspalte"});
  Korvan({"prices", "percent", "Kalkulation"}, 1, {"noch nicht möglich"});
}

TEST_F(CalcCommands, PriceOperationsAreOneUndoStepEach) {
  Korvan({"lv", "add", "Kalkulation", "P", "--short", "Beton"});
  Korvan({"var", "set", "Kalkulation", "1", "L=2,5"});
  Korvan({"calc", "set", "Kalkulation", "1", "M=100", "menge=L*4"}, 0,
         {"Menge 10,000", "Angebot (kalkuliert)  105,000  1050,00"});
  Korvan({"prices", "copy", "Kalkulation", "--from", "angebot", "--to", "vergabe", "schaetz"});
  EXPECT_EQ(Item("1")["totals"]["vergabe"].Number(), 1050);
  Korvan({"prices", "factor", "Kalkulation", "--factor", "1,1"});
  EXPECT_EQ(Item("1")["unit_prices"]["schaetz"].Number(), 115.5);
  Korvan({"prices", "delete", "Kalkulation", "--from", "vergabe", "--oz", "1"});
  EXPECT_EQ(Item("1")["unit_prices"]["vergabe"].Number(), 0);
  Korvan({"undo"});
  Korvan({"undo"});
  Korvan({"undo"});
  EXPECT_EQ(Item("1")["unit_prices"]["vergabe"].Number(), 0);
  EXPECT_EQ(Item("1")["unit_prices"]["angebot"].Number(), 105);
  Korvan({"undo"});
  EXPECT_EQ(Item("1")["cost_elements"].Items().size(), 0u);
  Korvan({"redo"});
  Korvan({"lv", "delete", "Kalkulation"});  // the cost elements go with the LV ...
  Korvan({"undo"});                         // ... and come back with it
  EXPECT_EQ(Item("1")["cost_elements"].Items().size(), 1u);
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

TEST_F(CalcCommands, RemovingAnItemTakesItsCostElementsInTheSameStep) {
  for (const char* oz : {"1", "2"}) {
    Korvan({"lv", "add", "Kalkulation", "P"});
    Korvan({"calc", "set", "Kalkulation", oz, "M=10", "F=5"});
  }
  const std::string lines = (base_ / "PROJEKTE/Beispiel/DB_KP.QK").string();
  const auto stored_lines = [&] {
    const std::string dump = testing::ExpectKorvan({"db", "dump", lines, "--table", "A"}, 0).out;
    std::size_t count = 0;
    for (std::size_t at = dump.find("KZKOART:"); at != std::string::npos;
         at = dump.find("KZKOART:", at + 1)) {
      ++count;
    }
    return count;
  };
  EXPECT_EQ(stored_lines(), 4u);
  Korvan({"lv", "remove", "Kalkulation", "1"});
  EXPECT_EQ(stored_lines(), 2u);
  EXPECT_EQ(Item("1")["cost_elements"].Items().size(), 2u);  // the second, numbered anew
  Korvan({"undo"});
  EXPECT_EQ(stored_lines(), 4u);
}

// The worked example of the end sum through the program: material 1000, wage 2000 and
// subcontracts 500 of direct costs, site overheads 300 from the allocation LV, the
// default percentages of the method.
TEST_F(CalcCommands, TheEndSumMethodAllocatesTheOverheadsOntoTheItems) {
  Korvan({"lv", "add", "Kalkulation", "P", "--qty", "10"});
  Korvan({"calc", "set", "Kalkulation", "1", "M=100", "Z=200", "F=50", "stunden=2"});
  Korvan({"lv", "new", "Baustelle"});
  Korvan({"lv", "add", "Baustelle", "P", "--qty", "1", "--up", "300"});
  Korvan({"prices", "copy", "Baustelle", "--from", "schaetz", "--to", "angebot"});
  Korvan({"calc", "endsum", "Kalkulation", "set", "verfahren=E", "umlage-lv=Baustelle"}, 0,
         {"BGK (Umlage-LV \"Baustelle\"): 300,00", "Gesamtumlage: 762,00", "Angebotssumme: 4262,00",
          "Umlage auf Lohn: 687,00 (20,000 Lohnstunden, je Stunde 34,35)"});
  // The wage takes what is left: 200 × (1 + 687 / 2000) = 268,70 per unit.
  const testing::JsonValue run =
      testing::ParseJson(Korvan({"calc", "run", "Kalkulation", "--json"}).out);
  EXPECT_EQ(run["bid_total"].Number(), 4262);
  Korvan({"calc", "endsum", "Kalkulation", "set", "target=5000"});
  const auto ends = [&] {
    return testing::ParseJson(Korvan({"calc", "endsum", "Kalkulation", "--json"}).out);
  };
  EXPECT_EQ(ends()["angebotssumme"].Number(), 5000);
  Korvan({"undo"});
  EXPECT_EQ(ends()["angebotssumme"].Number(), 4262);
  Korvan({"calc", "endsum", "Kalkulation", "set", "lohn=3"}, 2, {"keine Einstellung"});
}

}  // namespace
}  // namespace korvan::app
