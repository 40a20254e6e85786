// The award file (DA 86) of one contract of an LV: a supplementary contract's file holds
// its own items and the groups above them, names its number and contractor, and its
// totals add up from those items alone.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "billing/tables/billing_table_types.h"
#include "billing/tables/vertrag_record.h"
#include "boq/units/value_converter.h"
#include "calc/sums/boq_ctgy_calc_sum.h"
#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_export/gaeb_export_award.h"
#include "exchange/gaeb_export/gaeb_export_test_lv.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"
#include "exchange/gaeb_xml/gaeb_schema.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace korvan::exchange {
namespace {

using gaeb_xml::TGaebElement;
using gaeb_xml::testing::All;
using testing::FixedDateOptions;
using testing::TestLv;

constexpr int32_t kMainContractId = 1;
constexpr int32_t kSupplementId = 2;

double Cents(double amount) {
  return std::round(amount * 100.0) / 100.0;
}

double Figure(const TGaebElement& parent, const char* name) {
  const std::optional<std::string> text = parent.ChildText(name);
  if (!text) {
    ADD_FAILURE() << parent.name << " without " << name;
    return 0.0;
  }
  return gaeb_xml::ParseGaebDecimal(*text).value_or(-1.0);
}

// An awarded LV under the main contract, with change-order items under a supplementary
// contract in a group of their own and in a group of the main contract, and one supplement
// item not yet under any contract.
class ContractAwardFile : public ::testing::Test {
 protected:
  void SetUp() override {
    const int32_t shell = lv_.Add('B', data::kRootParentId, "01", "Rohbau").LvBgBeschr.ID;
    Under(kMainContractId, lv_.Add('P', shell, "01.0010", "Mauerwerk", 84.5, 61.2));
    Under(kMainContractId, lv_.Add('P', shell, "01.0020", "Decke", 12.125, 148.9));
    const int32_t changes = lv_.Add('B', data::kRootParentId, "02", "Nachträge").LvBgBeschr.ID;
    Supplement(kSupplementId, lv_.Add('P', changes, "02.0010", "Mehrmengen Aushub", 3.125, 27.4));
    Supplement(kSupplementId, lv_.Add('P', changes, "02.0020", "Zusatzanker", 17, 8.35));
    const int32_t finish = lv_.Add('B', data::kRootParentId, "03", "Ausbau").LvBgBeschr.ID;
    Under(kMainContractId, lv_.Add('P', finish, "03.0010", "Estrich", 240.75, 19.05));
    Supplement(kSupplementId, lv_.Add('P', finish, "03.0020", "Randdämmung", 1.25, 2.0));
    Supplement(data::kNullId, lv_.Add('P', finish, "03.0030", "Nicht beauftragt", 5, 100));
    boq::t_Lv_DB_VERSION_3100 header = lv_.Source().lv.FLv();
    header.Status = 'V';
    header.CONo = 1;
    lv_.Source().lv.RefreshLvProperties(header);
    // The award prices of the supplements, to the cent: the totals are theirs alone.
    for (const boq::TLvPos& entry : lv_.Source().lv.Entries()) {
      if (entry.LvBgBeschr.IdVertrag != kSupplementId) continue;
      expected_total_ += Cents(entry.LvBeschr.FMenge * entry.LvBeschr.VergabeEP.Betrag);
    }
  }

  static void Under(int32_t contract, boq::TLvPos& item) { item.LvBgBeschr.IdVertrag = contract; }
  static void Supplement(int32_t contract, boq::TLvPos& item) {
    item.LvBgBeschr.IdVertrag = contract;
    item.LvBgBeschr.KzNachtrag = 1;
    item.LvBgBeschr.NachtrStatus = '8';
  }

  static billing::TVertrag SupplementaryContract() {
    billing::TVertrag contract{};
    contract.ID = kSupplementId;
    contract.Auftragsart = billing::kSupplementContract;
    contract.AuftragsNr.Set("NA-2026-07");
    contract.Auftragnehmer.Set("Nachtragsbau KG");
    contract.Auftragsdatum = 20261201;
    return contract;
  }

  // The file as `gaeb export --phase 86 --contract` builds it.
  TGaebElement AwardFileOfSupplement(int* items_kept) {
    TGaebExportSource source = lv_.Source();
    TakeContractIntoExportSource(source, SupplementaryContract());
    *items_kept = KeepLinesOfContract(source, kSupplementId);
    const boq::TAvaUiValueConverter converter(boq::TCurrencyList(), {});
    calc::TBoqCtgyCalcSum(source.lv, converter).Calculate(kSupplementId);
    TGaebExportResult result = BuildGaebExport(source, FixedDateOptions(kPhaseAward));
    xml_ = gaeb_xml::WriteGaebXml(result.document);
    return std::move(result.document.root);
  }

  TestLv lv_;
  double expected_total_ = 0.0;
  std::string xml_;
};

TEST_F(ContractAwardFile, HoldsTheSupplementsItemsUnderTheirGroupsWithItsNumber) {
  int kept = 0;
  const TGaebElement root = AwardFileOfSupplement(&kept);
  EXPECT_EQ(kept, 3);
  std::set<std::string> groups;
  for (const TGaebElement* group : All(root, "BoQCtgy"))
    groups.insert(*group->Attribute("RNoPart"));
  EXPECT_EQ(groups, (std::set<std::string>{"02", "03"}));
  std::multiset<std::string> items;
  for (const TGaebElement* item : All(root, "Item")) {
    items.insert(*item->Attribute("RNoPart"));
    EXPECT_EQ(item->ChildText("COStatus"), "Approved") << *item->Attribute("RNoPart");
    EXPECT_EQ(item->ChildText("CONo"), "1");
  }
  EXPECT_EQ(items, (std::multiset<std::string>{"0010", "0020", "0020"}));
  EXPECT_EQ(root.Find("Award/AwardInfo/ContrNo")->text, "NA-2026-07");
  EXPECT_EQ(root.Find("Award/AwardInfo/ContrDate")->text, "2026-12-01");
  EXPECT_EQ(root.Find("Award/CTR/Address/Name1")->text, "Nachtragsbau KG");
}

TEST_F(ContractAwardFile, ItsTotalsAddUpFromItsOwnItems) {
  int kept = 0;
  const TGaebElement root = AwardFileOfSupplement(&kept);
  double sections = 0.0;
  for (const TGaebElement* group : All(root, "BoQCtgy")) {
    SCOPED_TRACE("Bereich " + *group->Attribute("RNoPart"));
    double items = 0.0;
    for (const TGaebElement* item : All(*group, "Item")) {
      const double total = Figure(*item, "IT");
      EXPECT_DOUBLE_EQ(total, Cents(Figure(*item, "Qty") * Figure(*item, "UP")));
      items += total;
    }
    const double section = Figure(*group->Child("Totals"), "Total");
    EXPECT_NEAR(section, items, 0.001);
    sections += section;
  }
  const double total = Figure(*root.Find("Award/BoQ/BoQInfo/Totals"), "Total");
  EXPECT_NEAR(total, sections, 0.001);
  EXPECT_NEAR(total, expected_total_, 0.001);
}

TEST_F(ContractAwardFile, IsValidAgainstTheOfficialSchema) {
  const std::filesystem::path schemas = gaeb_xml::testing::SchemaDir();
  if (schemas.empty()) GTEST_SKIP() << gaeb_xml::testing::kNoSchemas;
  int kept = 0;
  AwardFileOfSupplement(&kept);
  const std::optional<std::string> schema = gaeb_xml::SchemaFileOfPhase(schemas.string(), 86);
  ASSERT_TRUE(schema.has_value());
  const gaeb_xml::TGaebFindings findings = gaeb_xml::ValidateAgainstSchema(xml_, *schema);
  EXPECT_TRUE(findings.empty()) << gaeb_xml::testing::Listed(findings) << xml_;
}

}  // namespace
}  // namespace korvan::exchange
