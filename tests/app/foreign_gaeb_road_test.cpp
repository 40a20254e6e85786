// The road of a bid for files of other programs: their tender (X83) imported, their bid
// (X84) imported and awarded, and our award file (X86) compared with the bid item by item
// (number, quantity, unit, unit price and its components, total) and in the totals of
// every group and of the BoQ, to the cent; once with the discount kept as the BoQ's and
// once spread into the unit prices.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "exchange/gaeb_xml/gaeb_decimal.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_schema.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "foreign_gaeb_files.h"
#include "testing/files.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using exchange::gaeb_xml::TGaebElement;

constexpr double kDiscountPercent = 3.0;  // the bid's DiscountPcnt on the whole BoQ
constexpr int kUnitPriceDecimals = 3;     // the tender's UPFracDig

// Commercial rounding to `decimals`, the way the bid's own figures are rounded.
double Rounded(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return std::floor(value * scale + 0.5 + 1e-7) / scale;
}

std::optional<double> Figure(const TGaebElement& parent, const std::string& name) {
  const std::optional<std::string> text = parent.ChildText(name);
  return text ? exchange::gaeb_xml::ParseGaebDecimal(*text) : std::nullopt;
}

// A number part as a reader compares it: without leading zeros.
std::string Part(const std::string& part) {
  const size_t digit = part.find_first_not_of('0');
  return digit == std::string::npos ? "0" : part.substr(digit);
}

// The items and sections of a file by their number, and the sections' items.
struct TBoqByNumber {
  std::map<std::string, const TGaebElement*> items;
  std::map<std::string, const TGaebElement*> sections;
  std::map<std::string, std::vector<std::string>> items_of_section;
};

void Walk(const TGaebElement& body, const std::vector<std::string>& chain, TBoqByNumber& boq) {
  for (const TGaebElement& child : body.children) {
    if (child.name == "Itemlist") {
      Walk(child, chain, boq);
      continue;
    }
    std::string number;
    for (const std::string& part : chain) number += part + ".";
    number += Part(child.Attribute("RNoPart").value_or("?"));
    if (child.name == "Item") {
      if (const std::optional<std::string> index = child.Attribute("RNoIndex")) {
        number += "." + *index;
      }
      boq.items[number] = &child;
      for (size_t depth = 1; depth <= chain.size(); ++depth) {
        std::string section;
        for (size_t i = 0; i < depth; ++i) section += (i == 0 ? "" : ".") + chain[i];
        boq.items_of_section[section].push_back(number);
      }
    } else if (child.name == "BoQCtgy") {
      boq.sections[number] = &child;
      std::vector<std::string> inner = chain;
      inner.push_back(Part(*child.Attribute("RNoPart")));
      if (const TGaebElement* body_of = child.Child("BoQBody")) Walk(*body_of, inner, boq);
    }
  }
}

struct TGaebFile {
  TGaebElement root;
  TBoqByNumber boq;
};

TGaebFile Read(const std::string& xml) {
  exchange::gaeb_xml::TGaebReadResult read = exchange::gaeb_xml::ReadGaebXml(xml);
  EXPECT_TRUE(read.document.has_value());
  if (!read.document) return {};
  TGaebFile file{std::move(read.document->root), {}};
  if (const TGaebElement* body = file.root.Find("Award/BoQ/BoQBody")) Walk(*body, {}, file.boq);
  return file;
}

// An item of the tender that counts nothing in the sums: an alternative, a contingency
// item without total.
bool CountsNothing(const TGaebElement& tendered) {
  return tendered.ChildText("Provis") == "WithoutTotal" ||
         Figure(tendered, "ALNSerNo").value_or(0.0) > 0.0;
}

// The LV keeps the tender's "m³" and "m²" as "m3" and "m2".
std::string OwnUnit(const std::string& unit) {
  if (unit == "m\xC2\xB3") return "m3";
  if (unit == "m\xC2\xB2") return "m2";
  return unit;
}

// Every item of the bid is in the award file with its quantity, the tender's unit, the bid's
// unit price and components times `factor` (rounded to the tender's decimals) and its total;
// every group's total and the BoQ's total add up from the items, to the cent.
void ExpectAwardOfTheBid(const TGaebFile& tender, const TGaebFile& bid, const TGaebFile& award,
                         double factor) {
  EXPECT_EQ(award.boq.items.size(), bid.boq.items.size());
  std::map<std::string, double> totals;
  for (const auto& [number, offered] : bid.boq.items) {
    SCOPED_TRACE("Position " + number);
    const auto found = award.boq.items.find(number);
    ASSERT_NE(found, award.boq.items.end());
    const TGaebElement& awarded = *found->second;
    const TGaebElement& tendered = *tender.boq.items.at(number);
    const double quantity = Figure(*offered, "Qty").value_or(0.0);
    EXPECT_NEAR(Figure(awarded, "Qty").value_or(-1.0), quantity, 1e-9);
    EXPECT_EQ(awarded.ChildText("QU"), OwnUnit(tendered.ChildText("QU").value_or("")));
    const double price = Rounded(*Figure(*offered, "UP") * factor, kUnitPriceDecimals);
    EXPECT_NEAR(Figure(awarded, "UP").value_or(-1.0), price, 1e-9);
    for (const std::string component : {"UPComp1", "UPComp2"}) {
      const std::optional<double> part = Figure(*offered, component);
      const std::optional<double> taken = Figure(awarded, component);
      EXPECT_EQ(taken.has_value(), part.has_value()) << component;
      if (part && taken) {
        EXPECT_NEAR(*taken, Rounded(*part * factor, kUnitPriceDecimals), 1e-9);
      }
    }
    if (CountsNothing(tendered)) {
      EXPECT_EQ(awarded.Child("IT"), nullptr);
      continue;
    }
    const std::optional<double> stated = Figure(*offered, "IT");
    const double total = factor == 1.0 && stated ? *stated : Rounded(quantity * price, 2);
    EXPECT_NEAR(Figure(awarded, "IT").value_or(-1.0), total, 1e-9);
    totals[number] = total;
  }
  for (const auto& [number, section] : award.boq.sections) {
    SCOPED_TRACE("Bereich " + number);
    double sum = 0.0;
    for (const std::string& item : award.boq.items_of_section.at(number)) {
      sum += totals.count(item) != 0 ? totals.at(item) : 0.0;
    }
    const TGaebElement* stated = section->Child("Totals");
    ASSERT_NE(stated, nullptr);
    EXPECT_NEAR(Figure(*stated, "Total").value_or(-1.0), Rounded(sum, 2), 1e-9);
    if (factor == 1.0) {
      EXPECT_EQ(stated->ChildText("Total"),
                bid.boq.sections.at(number)->Find("Totals/Total")->text);
    }
  }
  double sum = 0.0;
  for (const auto& [number, total] : totals) sum += total;
  const TGaebElement* boq_totals = award.root.Find("Award/BoQ/BoQInfo/Totals");
  ASSERT_NE(boq_totals, nullptr);
  EXPECT_NEAR(Figure(*boq_totals, "Total").value_or(-1.0), Rounded(sum, 2), 1e-9);
}

void ExpectValidAwardFile(const std::string& xml) {
  const fs::path schemas = exchange::gaeb_xml::testing::SchemaDir();
  if (schemas.empty()) {
    std::cout << "Schemaprüfung übersprungen: " << exchange::gaeb_xml::testing::kNoSchemas << "\n";
    return;
  }
  const std::optional<std::string> schema =
      exchange::gaeb_xml::SchemaFileOfPhase(schemas.string(), 86);
  ASSERT_TRUE(schema.has_value());
  const exchange::gaeb_xml::TGaebFindings findings =
      exchange::gaeb_xml::ValidateAgainstSchema(xml, *schema);
  EXPECT_TRUE(findings.empty()) << exchange::gaeb_xml::testing::Listed(findings);
}

class ForeignGaebRoad : public ::testing::Test {
 protected:
  korvan::testing::ProgramResult Korvan(std::vector<std::string> args,
                                        const std::vector<std::string>& parts = {}) {
    args.insert(args.end(), {"-d", base_.string()});
    return korvan::testing::ExpectKorvan(args, 0, parts);
  }

  // The award file of the LV as it stands, read back.
  std::string ExportAward(const std::string& name) {
    const std::string file = dir_.File(name);
    Korvan({"gaeb", "export", foreign::kLv, "--phase", "86", "-o", file});
    return korvan::testing::ReadFile(file);
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "inst";
};

TEST_F(ForeignGaebRoad, TheirBidAwardedComesOutAsTheyPricedIt) {
  const std::string x83 = dir_.File("fremd.x83");
  const std::string x84 = dir_.File("fremd.x84");
  korvan::testing::WriteFile(x83, foreign::kTender);
  korvan::testing::WriteFile(x84, foreign::kBid);
  Korvan({"demo", "--setup-only"});
  Korvan({"gaeb", "import", x83}, {"LV 1 \"LV-0815\"", "7 Gruppen, 9 Positionen, 1 Text"});
  Korvan({"lv", "show", foreign::kLv}, {"Maske 1.22.33.PPP.I"});
  Korvan({"bidder", "add", foreign::kLv, foreign::kBidder});
  Korvan({"bid", "import", foreign::kLv, "1", x84},
         {"9 von 9 Positionen zugeordnet, 9 Preise, 1 Bieterkommentare, 1 "
          "Bietertextergänzungen, 0 Befunde",
          "Netto 9582,62, MwSt 1820,70, Brutto 11403,32"});
  // The bidder states the quantity of 1.01.02.020, which the check names; the award goes on.
  Korvan({"award", foreign::kLv, "1", "--accept-findings", "--bidder-texts"},
         {"Bietertextergänzungen ins LV übernommen: 1", "Vergabesumme 9582,62"});
  const TGaebFile tender = Read(foreign::kTender);
  const TGaebFile bid = Read(foreign::kBid);
  {
    SCOPED_TRACE("Nachlass beim LV");
    const std::string xml = ExportAward("kept.x86");
    const TGaebFile award = Read(xml);
    ExpectAwardOfTheBid(tender, bid, award, 1.0);
    const TGaebElement& totals = *award.root.Find("Award/BoQ/BoQInfo/Totals");
    EXPECT_EQ(totals.ChildText("Total"), bid.root.Find("Award/BoQ/BoQInfo/Totals/Total")->text);
    EXPECT_NEAR(Figure(totals, "DiscountPcnt").value_or(0.0), kDiscountPercent, 1e-9);
    EXPECT_EQ(totals.ChildText("TotAfterDisc"),
              bid.root.Find("Award/BoQ/BoQInfo/Totals/TotAfterDisc")->text);
    EXPECT_EQ(award.root.Find("Award/CTR/Address/Name1")->text, foreign::kBidder);
    EXPECT_NE(award.root.Find("Award/AwardInfo/ContrNo"), nullptr);
    EXPECT_NE(xml.find("Stahlwerk Nord"), std::string::npos);       // the bidder's words in the gap
    EXPECT_NE(xml.find("Bodenklasse 3 bis 5"), std::string::npos);  // the remark
    ExpectValidAwardFile(xml);
  }
  Korvan({"undo"});
  Korvan({"award", foreign::kLv, "1", "--accept-findings", "--spread"},
         {"Nachlässe umgelegt (Faktor 0,97)"});
  {
    SCOPED_TRACE("Nachlass auf die Einheitspreise umgelegt");
    const std::string xml = ExportAward("spread.x86");
    const TGaebFile award = Read(xml);
    ExpectAwardOfTheBid(tender, bid, award, 1.0 - kDiscountPercent / 100.0);
    EXPECT_EQ(award.root.Find("Award/BoQ/BoQInfo/Totals/DiscountPcnt"), nullptr);
    ExpectValidAwardFile(xml);
  }
}

}  // namespace
}  // namespace korvan::app
