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
  // A DA 84 file of the BoQ `name` with one item `item` in section `group`.01.
  static std::string BidFile(const std::string& name, const std::string& group,
                             const std::string& item, const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA84/3.3\">"
           "<GAEBInfo><Version>3.3</Version><VersDate>2021-05</VersDate></GAEBInfo>"
           "<Award><DP>84</DP><BoQ ID=\"B\"><BoQInfo><Name>" +
           name + "</Name></BoQInfo><BoQBody><BoQCtgy ID=\"C1\" RNoPart=\"" + group +
           "\"><BoQBody><BoQCtgy ID=\"C2\" RNoPart=\"01\"><BoQBody><Itemlist><Item ID=\"I\" "
           "RNoPart=\"" +
           item + "\">" + content +
           "</Item></Itemlist></BoQBody></BoQCtgy></BoQBody></BoQCtgy></BoQBody></BoQ></Award>"
           "</GAEB>\n";
  }
  std::string Write(const std::string& name, const std::string& content) {
    const std::string path = dir_.File(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
};

// One installation for all: typed prices and the ranks, a discount, a lump sum, their
// conversion into unit prices and the prices taken into the LV; the bidder's bid written
// as DA 84 comes back into another bidder whole, a file of another LV stores nothing and
// says which; what a bidder writes into the gaps of the LV's texts and its comments come
// with its file; the estimate bidder carries the LV's estimated prices.
TEST_F(BidCommand, PricesDiscountsFilesTextsAndTheEstimateBidder) {
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
  Korvan({"bid", "copy", "Rohbau", "1", "--to", "catalog"}, 1, {"noch nicht verfügbar"});

  Korvan({"bid", "set", "Rohbau", "1", "01.01.0001", "up=12,34"});
  Korvan({"bid", "set", "Rohbau", "1", "01.01.0002", "up=5,55"});
  const std::string file = dir_.File("bid.X84");
  Korvan({"gaeb", "export", "Rohbau", "--phase", "84", "--bidder", "1", "-o", file});
  Korvan({"bid", "import", "Rohbau", "2", file, "--overwrite", "--json"}, 0,
         {"\"matched_items\": 2", "\"prices\": 2", "\"checked\": 1924.8,", "\"findings\": []"});

  Korvan({"lv", "set", "Rohbau", "01.01.0001",
          "long-file=" + Write("gap.rtf", "{\\rtf1\\ansi Beton \\'ff\\'ff\\par}")});
  Korvan({"bid", "check", "Rohbau", "2", "--json"}, 0,
         {"\"without_bidder_texts\": [\"01.01.0001\"], \"bidder_texts_checked\": true"});
  const std::string texts = Write(
      "texts.X84", BidFile("Rohbau", "01", "0001",
                           "<UP>11.00</UP><Description><CompleteText><DetailTxt><TextComplement "
                           "Kind=\"Bidder\" MarkLbl=\"1\"><ComplBody><p><span>Fabrikat X</span></p>"
                           "</ComplBody></TextComplement></DetailTxt></CompleteText></Description>"
                           "<BidComm><p><span>Lieferzeit 4 Wochen</span></p></BidComm>"));
  Korvan({"bid", "import", "Rohbau", "2", texts, "--overwrite", "--json"}, 0,
         {"\"comments\": 1, \"bidder_texts\": 1"});
  Korvan({"bid", "show", "Rohbau", "2", "--json"}, 0,
         {"\"comment\": [\"Lieferzeit 4 Wochen\"], \"bidder_texts\": [{\"gap\": 1, \"text\": "
          "\"Fabrikat X\"}]"});
  Korvan({"bid", "check", "Rohbau", "2"}, 0, {"Positionen mit fehlenden Bieterrextergänzungen: 0"});
  Korvan({"bidder", "add", "Rohbau", "--estimate", "--json"}, 0,
         {"\"name\": \"Schaetzbieter\", \"checked\": 2299.2,", "\"estimate\": true"});
  Korvan({"bidder", "add", "Rohbau", "--estimate"}, 0, {"aufgefrischt; Geprüft 2299,20"});
  Korvan({"bidder", "add", "Rohbau", "Schaetzbieter"}, 2, {"--estimate"});
  Korvan({"bidder", "list", "Rohbau", "--currency", "CHF", "--json"}, 0,
         {"\"name\": \"Schaetzbieter\", \"checked\": 2161.25,", "\"display_currency\": \"CHF\""});
  Korvan({"bid", "show", "Rohbau", "1", "--currency", "XYZ"}, 2, {"keine Währung"});

  const std::string dach = Write("dach.X84", BidFile("Dach", "02", "0001", "<UP>1.00</UP>"));
  Korvan({"bid", "import", "Rohbau", "1", dach, "--overwrite"}, 1,
         {"anderen LV (\"Dach\")", "nicht zu LV \"Rohbau\"", "nichts gespeichert"});
  Korvan({"bid", "import", "Rohbau", "1", file}, 1, {"schon Preise", "--overwrite"});
  Korvan({"gaeb", "export", "Rohbau", "--phase", "83", "--bidder", "1"}, 2, {"Phase 84"});
  Korvan({"lv", "delete", "Rohbau"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

}  // namespace
}  // namespace korvan::app
