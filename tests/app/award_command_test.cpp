// `korvan award` and `korvan contract`: a bid awarded with its prices, the LV's status and
// the contract in one step `korvan undo` takes back whole; the award file (DA 86) of the
// contract valid against the official schema; contracts by hand and their terms.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "gaeb_lv_fixture.h"
#include "testing/files.h"
#include "testing/run_korvan.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;

class AwardCommand : public GaebLvFixture {
 protected:
  void SetUp() override {
    GaebLvFixture::SetUp();
    Korvan({"bidder", "add", "Rohbau", "Musterbau GmbH"});
    Korvan({"bidder", "add", "Rohbau", "Zweitbau"});
    Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=10"});
    Korvan({"bid", "set", "Rohbau", "1", "01.01.0002", "up=1"});
    Korvan({"bid", "set", "Rohbau", "2", "01.01.0001", "up=9"});
  }
};

TEST_F(AwardCommand, TheAwardIsOneStepThatUndoTakesBackWhole) {
  Korvan({"award", "Rohbau", "Musterbau GmbH", "--json"}, 0,
         {"\"transferred\": {\"items\": 2,", "\"status\": \"V\"", "\"award_total\": 1280,",
          "\"contract\": {\"id\": 1,", "\"kind\": \"H\"", "\"sum_from_lv\": 1280,",
          "\"gross\": 1523.2,", "\"contractor\": \"Musterbau GmbH\"", "noch nicht verfügbar"});
  Korvan({"lv", "show", "Rohbau", "--json"}, 0, {"\"status\": \"V\"", "\"award\": 1280,"});
  Korvan({"contract", "list"}, 0, {"1 Vertrag", "Hauptauftrag", "Musterbau GmbH"});
  Korvan({"contract", "show", "1"}, 0, {"Auftragssumme 1280,00", "brutto 1523,20"});
  // The same lines take no second contract, and nothing changes for trying.
  Korvan({"award", "Rohbau", "Zweitbau", "--accept-findings"}, 1, {"hat schon den Vertrag"});
  Korvan({"undo"});
  Korvan({"lv", "show", "Rohbau", "--json"}, 0, {"\"award\": 0,"});
  const testing::ProgramResult shown = Korvan({"lv", "show", "Rohbau", "--json"});
  EXPECT_EQ(shown.out.find("\"status\": \"V\""), std::string::npos) << shown.out;
  Korvan({"contract", "list", "--json"}, 0, {"\"contracts\": []"});
  Korvan({"contract", "show", "1"}, 1, {"keinen Vertrag \"1\""});
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

TEST_F(AwardCommand, CheckFindingsStopTheAwardUnlessAccepted) {
  Korvan({"award", "Rohbau", "2"}, 1,
         {"Der Angebotscheck hat Fehler gefunden", "1 Positionen ohne Angebotspreis",
          "nichts geändert"});
  Korvan({"contract", "list"}, 0, {"0 Verträge"});
  Korvan({"award", "Rohbau", "2", "--accept-findings", "--prices", "estimate", "--no-contract"}, 0,
         {"als Schätzpreise übertragen: 2 Positionen", "mit Befund", "LV-Status V"});
  Korvan({"award", "Rohbau", "1", "--spread", "--quantities", "sometimes"}, 2);
}

TEST_F(AwardCommand, TheAwardFileNamesTheContractAndIsValid) {
  Korvan({"award", "Rohbau", "1"});
  const std::string file = dir_.File("rohbau.X86");
  const testing::ProgramResult result =
      Korvan({"gaeb", "export", "Rohbau", "--phase", "86", "-o", file});
  EXPECT_EQ(result.err.find("keinen Vertrag"), std::string::npos) << result.err;
  const std::string xml = korvan::testing::ReadFile(file);
  for (const char* part : {"<ContrNo>", "Musterbau GmbH", "<UP>10.00</UP>", "<IT>1200.00</IT>"}) {
    EXPECT_NE(xml.find(part), std::string::npos) << part;
  }
  std::vector<std::string> check = {"gaeb", "check", file};
  const fs::path schemas = exchange::gaeb_xml::testing::SchemaDir();
  if (!schemas.empty()) check.insert(check.end(), {"--schemas", schemas.string()});
  testing::ExpectKorvan(check, 0, {"Phase 86", "Fehler: 0"});
}

TEST_F(AwardCommand, ContractsByHandAndTheirTerms) {
  Korvan({"contract", "new", "Rohbau", "--contractor", "Handwerk KG", "--json"}, 0,
         {"\"kind\": \"H\"", "\"contractor\": \"Handwerk KG\""});
  Korvan({"contract", "set", "1", "SicherheitseinbehaltProz=5", "MaxSicherheitseinbehaltProz=10",
          "xSkonto=2", "xSkontofrist=14", "Kumulativ=ja", "NachlassProz=10",
          "Abnahmedatum=30.06.2026", "--json"},
         0,
         {"\"retention_percent\": 5,", "\"max_retention_percent\": 10,", "\"cumulative\": true",
          "\"cash_discount_percent\": 2,", "\"cash_discount_days\": 14"});
  Korvan({"contract", "set", "1", "gesperrt=ja"});
  Korvan({"contract", "set", "1", "xSkonto=3"}, 1, {"gesperrt"});
  Korvan({"contract", "set", "1", "gesperrt=nein", "xSkonto=3"}, 0, {"Skonto 3 %"});
  Korvan({"contract", "set", "1", "Unbekannt=1"}, 2, {"kein Feld des Vertrags"});
  Korvan({"contract", "set", "1", "Abnahmedatum=31.02.2026"}, 2, {"gültiges Datum"});
  Korvan({"contract", "set", "1", "RechLegung=X"}, 2, {"RTS"});
  Korvan({"undo"});
  Korvan({"contract", "show", "1", "--json"}, 0,
         {"\"cash_discount_percent\": 2,", "\"locked\": true"});
  // Allocations are the contract's deductions of type U; the defaults file carries them.
  Korvan({"contract", "set", "1", "gesperrt=nein", "--umlage", "Bauschild=0,5%", "--umlage",
          "Baustrom=150:AS", "--json"},
         0,
         {"\"name\": \"Bauschild\", \"type\": \"U\"", "\"formula\": \"FR*0,5/100\"",
          "\"invoice_kinds\": \"ARSTU\"", "\"percent\": 0.5,", "\"name\": \"Baustrom\"",
          "\"amount\": 150,", "\"net\": 150,"});
  Korvan({"contract", "set", "1", "--umlage", "Bauzaun=1%"}, 1, {"keine Umlage"});
  Korvan({"contract", "defaults", "write", "1"}, 0, {"STANDARD-WERTE.VSW"});
  Korvan({"contract", "set", "1", "xSkonto=9", "--umlage", "Bauschild=-"});
  Korvan({"contract", "defaults", "read", "1"}, 0,
         {"Skonto 2 %", "Umlage \"Bauschild\": 0,5 % des Rechnungsbetrags"});
  Korvan({"contract", "defaults", "show", "--json"}, 0,
         {"\"exists\": true", "\"Umlage=Baustrom=150,00:AS\""});
}

}  // namespace
}  // namespace korvan::app
