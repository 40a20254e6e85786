// `korvan bidder` and `korvan bid`: bidders of an LV, prices typed and read from a DA 84
// file, the check and the list with ranks; every change one step `korvan undo` takes back,
// and an LV deleted takes its bidders with it.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "gaeb_lv_fixture.h"
#include "testing/run_korvan.h"

namespace korvan::app {
namespace {

class BidCommand : public GaebLvFixture {
 protected:
  void SetUp() override {
    GaebLvFixture::SetUp();
    Korvan({"bidder", "add", "Rohbau", "Musterbau GmbH", "--address", "Baustraße 1, Musterstadt"});
    Korvan({"bidder", "add", "Rohbau", "Zweitbau"});
  }
};

TEST_F(BidCommand, TypedPricesGiveTotalsRanksAndUndoSteps) {
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=10,00"}, 0, {"GP 1200,00"});
  Korvan({"bid", "set", "Rohbau", "Zweitbau", "01.01.0001", "up=9,50"});
  Korvan({"bid", "set", "Rohbau", "Zweitbau", "01.01.0002", "up=1"});
  Korvan({"bidder", "list", "Rohbau", "--json"}, 0,
         {"\"name\": \"Musterbau GmbH\", \"checked\": 1200,", "\"status\": \"UV\", \"rank\": 1",
          "\"name\": \"Zweitbau\", \"checked\": 1220,", "\"status\": null, \"rank\": 2"});
  Korvan({"bid", "check", "Rohbau", "1", "--json"}, 0,
         {"\"without_price\": [\"01.01.0002\"]", "\"found\": true"});
  Korvan({"undo"});
  Korvan({"bid", "show", "Rohbau", "Zweitbau", "--json"}, 0, {"\"checked\": 1140,"});
  Korvan({"bid", "set", "Rohbau", "3", "01.01.0001", "up=1"}, 1, {"keinen Bieter \"3\""});
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "ep=1"}, 2, {"up=PREIS"});
  Korvan({"bidder", "add", "Rohbau", std::string(41, 'x')}, 2, {"1 bis 40 Zeichen"});
}

// The bidder's bid written as DA 84 comes back into another bidder whole; a file of
// another LV stores nothing and says which.
TEST_F(BidCommand, ExportedBidComesBackAndAForeignFileIsRefused) {
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=12,34"});
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0002", "up=5,55"});
  const std::string file = dir_.File("bid.X84");
  Korvan({"gaeb", "export", "Rohbau", "--phase", "84", "--bidder", "1", "-o", file});
  Korvan({"bid", "import", "Rohbau", "2", file, "--json"}, 0,
         {"\"matched_items\": 2", "\"prices\": 2", "\"checked\": 1924.8,", "\"findings\": []"});
  Korvan({"lv", "new", "Dach", "--mask", "11.22.PPPP"});
  Korvan({"lv", "add", "Dach", "B", "--short", "Dach"});
  Korvan({"lv", "add", "Dach", "B", "--short", "Dämmung"});
  Korvan({"lv", "add", "Dach", "B", "--under", "02", "--short", "Dach"});
  Korvan({"lv", "add", "Dach", "P", "--under", "02.01", "--short", "Ziegel", "--qty", "1"});
  Korvan({"bidder", "add", "Dach", "Dachdecker"});
  const std::string dach = dir_.File("dach.X84");
  Korvan({"gaeb", "export", "Dach", "--phase", "84", "--bidder", "1", "-o", dach});
  Korvan({"bid", "import", "Rohbau", "1", dach, "--overwrite"}, 1,
         {"anderen LV (\"Dach\")", "nicht zu LV \"Rohbau\"", "nichts gespeichert"});
  Korvan({"bid", "import", "Rohbau", "1", file}, 1, {"schon Preise", "--overwrite"});
  Korvan({"gaeb", "export", "Rohbau", "--phase", "83", "--bidder", "1"}, 2, {"Phase 84"});
  Korvan({"lv", "delete", "Rohbau"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

// A discount, a lump sum, their conversion into unit prices and the prices taken into the
// LV's award or estimate column.
TEST_F(BidCommand, DiscountLumpSumConversionAndCopyIntoTheLv) {
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=10"});
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0002", "up=1"});
  Korvan({"bid", "discount", "Rohbau", "1", "percent=10", "--json"}, 0,
         {"\"checked\": 1280,", "\"after_discount\": 1152,"});
  Korvan({"bid", "discount", "Rohbau", "1", "amount=80"}, 0,
         {"Summe ./. NL 1200,00", "Netto 1200,00"});
  Korvan({"bid", "discount", "Rohbau", "1", "amount=0"});
  Korvan({"bid", "lumpsum", "Rohbau", "1", "640"}, 0, {"Geprüft 1280,00", "Netto 640,00"});
  Korvan({"bid", "convert", "Rohbau", "1", "lumpsum"});
  Korvan({"bid", "lumpsum", "Rohbau", "1", "0"}, 0, {"Pauschalsumme entfernt", "Netto 640,00"});
  Korvan({"bid", "convert", "Rohbau", "1", "markup", "percent=10"}, 0, {"Geprüft 704,00"});
  Korvan({"undo"});
  Korvan({"bid", "show", "Rohbau", "1"}, 0, {"EP 5,00", "EP 0,50", "Geprüft 640,00"});
  Korvan({"bid", "convert", "Rohbau", "1", "markup", "amount=64"}, 0, {"Geprüft 704,00"});
  Korvan({"bid", "convert", "Rohbau", "1", "lumpsum"}, 1, {"keine Pauschalsumme"});
  Korvan({"bid", "convert", "Rohbau", "1", "markup"}, 2, {"percent=PROZENT"});
  Korvan({"bid", "discount", "Rohbau", "1", "3"}, 2, {"percent=PROZENT oder amount=BETRAG"});
  Korvan({"bid", "copy", "Rohbau", "1"}, 0, {"2 Positionen", "Vergabepreise"});
  Korvan({"lv", "show", "Rohbau", "--json"}, 0, {"\"estimate\": 2299.2,", "\"award\": 704,"});
  Korvan({"bid", "copy", "Rohbau", "1", "--to", "estimate", "--json"}, 0, {"\"changed\": 2"});
  Korvan({"lv", "show", "Rohbau", "--json"}, 0, {"\"estimate\": 704,"});
  Korvan({"undo"});
  Korvan({"lv", "show", "Rohbau", "--json"}, 0, {"\"estimate\": 2299.2,"});
}

}  // namespace
}  // namespace korvan::app
