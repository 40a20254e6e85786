// Contracts: the record and its table, the sums from the LV's award prices with discount,
// lump sum, VAT and supplements, the main and supplementary contracts an award or a user
// makes, and the project numbers contracts are kept under.
#include <gtest/gtest.h>

#include <memory>

#include "billing/billing_tables.h"
#include "billing/contract/contract_defaults.h"
#include "billing/contract/contract_sums.h"
#include "billing/contract/dm_vertrag.h"
#include "billing/contract/project_id.h"
#include "billing/deduction/contract_allocations.h"
#include "billing/deduction/dm_abzug.h"
#include "billing/tables/tb_vertrag.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/model/lv_pos.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::billing {
namespace {

template <class T>
T Val(T value) {
  return value;
}

class Contracts : public ::testing::Test {
 protected:
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    RegisterBillingTables(registry);
    const std::string dir = dir_.path().string() + "/";
    rv_ = std::make_unique<data::TStdDb>("DB_Rv", dir, kRvDbType, 40);
    lv_db_ = std::make_unique<data::TStdDb>("DB_Lv", dir, boq::kLvDbType, 70);
    for (data::TStdDb* db : {rv_.get(), lv_db_.get()}) {
      db->SetModifiedById("ALICE");
      ASSERT_EQ(db->DbCreate(), 0);
    }
    boq::t_Lv_DB_VERSION_3100 header{};
    header.FId = 7;
    header.EPGenauigkeit = 2;
    header.Ust = -1;
    header.Status = 'V';
    header.Name.Set("Rohbau");
    header.PosMaske.Set("11.22.PPPP");
    header.Zeilenart = '9';
    lv_.RefreshLvProperties(header);
    Add(boq::NewLvPos('B'), "01");
    Add(boq::NewLvPos('B'), "01.01");
    first_ = Item("01.01.0010", 10, 12.5);   // 125.00
    second_ = Item("01.01.0020", 4, 18.75);  //  75.00
  }
  void TearDown() override {
    rv_.reset();
    lv_db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  // The parent of an entry follows from its OZ.
  int Add(boq::TLvPos entry, const char* oz) {
    entry.SetOz(oz);
    entry.Struktur.IdBgBeschr = entry.LvBgBeschr.ID = ++next_id_;
    lv_.Add(entry);
    return lv_.Count() - 1;
  }
  int Item(const char* oz, double quantity, double price) {
    boq::TLvPos item = boq::NewLvPos('P');
    item.LvBeschr.FMenge = quantity;
    item.LvBeschr.VergabeEP.Betrag = price;
    return Add(item, oz);
  }
  TdmVertrag Book() { return TdmVertrag(*rv_, 1, converter_); }
  TContractParty Party(const char* name) {
    TContractParty party;
    party.name = name;
    return party;
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> rv_;
  std::unique_ptr<data::TStdDb> lv_db_;
  boq::TLVPosList lv_;
  boq::TAvaUiValueConverter converter_{boq::TCurrencyList(), boq::TValueConverterSettings()};
  int32_t next_id_ = 100;
  int first_ = 0;
  int second_ = 0;
};

TEST_F(Contracts, NewContractsHaveTheirDefaultsAndAreListedPerProjectAndLv) {
  TTbVertrag table(*rv_);
  for (const auto& [project, lv] : {std::pair{1, 7}, std::pair{2, 7}, std::pair{1, 8}}) {
    ASSERT_EQ(table.NewVertrag(project, lv), 0);
    ASSERT_EQ(table.UpDateRec(), 0);
  }
  const TVertrag& last = table.Rec();
  EXPECT_EQ(Val(last.ID), 3);
  EXPECT_EQ(Val(last.Auftragsart), kMainContract);
  EXPECT_EQ(Val(last.BasisForBrutto), kGrossFromDiscounted);
  EXPECT_EQ(last.GwlEinheit.Get(), "Monate");
  EXPECT_EQ(Val(last.IdHauptauftrag), data::kNullId);
  EXPECT_EQ(Val(last.Auftragsdatum), data::TodayAsIntDate());
  EXPECT_EQ(table.ListOfProject(1).size(), 2u);
  EXPECT_EQ(table.ListOfProject(1, 8).size(), 1u);
  EXPECT_TRUE(table.ListOfProject(3).empty());
  EXPECT_TRUE(table.ListOfProject(data::kNullId).empty());
}

TEST_F(Contracts, SumsFollowDiscountLumpSumGrossBaseAndSupplements) {
  TVertrag contract{};
  contract.ID = 5;
  contract.Mwst = 19;
  contract.BasisForBrutto = kGrossFromDiscounted;
  lv_[first_].LvBgBeschr.IdVertrag = 5;
  lv_[second_].LvBgBeschr.IdVertrag = 6;  // another contract's item
  ComputeContractSums(contract, lv_, {}, converter_);
  EXPECT_DOUBLE_EQ(Val(contract.SummeAusLV.Betrag), 125.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeNachNL.Betrag), 125.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeBrutto.Betrag), 148.75);
  // Percent first, then the amount: 125 - 12.50 - 2.50.
  contract.NachlassProz = 10;
  contract.NachlassAbs.Betrag = 2.5;
  ComputeContractSums(contract, lv_, {}, converter_);
  EXPECT_DOUBLE_EQ(Val(contract.SummeNachNL.Betrag), 110.0);
  EXPECT_DOUBLE_EQ(Val(contract.Auftragssumme.Betrag), 110.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeBrutto.Betrag), 130.9);
  contract.BasisForBrutto = kGrossFromAward;
  ComputeContractSums(contract, lv_, {}, converter_);
  EXPECT_DOUBLE_EQ(Val(contract.SummeBrutto.Betrag), 148.75);
  // A lump sum replaces the net sum; a gross sum by hand stays.
  contract.SummePsch.Betrag = 100;
  contract.BasisForBrutto = kGrossFromLumpSum;
  ComputeContractSums(contract, lv_, {}, converter_);
  EXPECT_DOUBLE_EQ(Val(contract.Auftragssumme.Betrag), 100.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeBrutto.Betrag), 119.0);
  contract.SummeBruttoManuell = 1;
  contract.SummeBrutto.Betrag = 120;
  TVertrag supplement{};
  supplement.SummeAusLV.Betrag = 75;
  supplement.Auftragssumme.Betrag = 70;
  ComputeContractSums(contract, lv_, {supplement}, converter_);
  EXPECT_DOUBLE_EQ(Val(contract.SummeBrutto.Betrag), 120.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeAusLVKum.Betrag), 200.0);
  EXPECT_DOUBLE_EQ(Val(contract.AuftragssummeKum.Betrag), 170.0);
  contract.CashDiscount[0].DiscountPcnt = 3;
  const TCashDiscountSums cash = CashDiscountSums(contract, converter_);
  EXPECT_DOUBLE_EQ(cash.gross, 116.4);
  EXPECT_DOUBLE_EQ(cash.net, 97.0);
}

TEST_F(Contracts, TheAwardMakesAMainContractAndLaterSupplementsTheirOwn) {
  TdmVertrag book = Book();
  TContractSettings settings;
  settings.number_pattern = "V-{*LNR*}";
  settings.vat_rate = 16;
  TContractParty party = Party("Musterbau");
  party.vat_rate = 19;
  const TVertrag main = book.Create(lv_, party, settings);
  EXPECT_EQ(main.AuftragsNr.Get(), "V-1");
  EXPECT_EQ(Val(main.Auftragsart), kMainContract);
  EXPECT_DOUBLE_EQ(Val(main.Mwst), 19.0);
  EXPECT_DOUBLE_EQ(Val(main.SummeAusLV.Betrag), 200.0);
  EXPECT_EQ(Val(lv_[first_].LvBgBeschr.IdVertrag), Val(main.ID));
  // No second contract for the same lines.
  EXPECT_FALSE(book.WhyNoContract(lv_).empty());
  EXPECT_THROW(book.Create(lv_, Party("Zweitbau"), settings), EContractError);
  // A supplement item awarded later gets a supplementary contract of its own.
  boq::TLvPos supplement = boq::NewLvPos('P');
  supplement.LvBgBeschr.KzNachtrag = 1;
  supplement.LvBeschr.FMenge = 2;
  supplement.LvBeschr.VergabeEP.Betrag = 30;
  const int added = Add(supplement, "01.01.0030");
  EXPECT_TRUE(book.WhyNoContract(lv_).empty());
  const TVertrag second = book.Create(lv_, Party("Musterbau"), settings);
  EXPECT_EQ(second.AuftragsNr.Get(), "V-2");
  EXPECT_EQ(Val(second.Auftragsart), kSupplementContract);
  EXPECT_EQ(Val(second.IdHauptauftrag), Val(main.ID));
  EXPECT_DOUBLE_EQ(Val(second.Mwst), 16.0);  // neither bid nor LV states a rate
  EXPECT_DOUBLE_EQ(Val(second.SummeAusLV.Betrag), 60.0);
  EXPECT_EQ(Val(lv_[added].LvBgBeschr.IdVertrag), Val(second.ID));
  EXPECT_EQ(Val(lv_[first_].LvBgBeschr.IdVertrag), Val(main.ID));
  const std::optional<TVertrag> stored = book.Find("V-1");
  ASSERT_TRUE(stored.has_value());
  EXPECT_DOUBLE_EQ(Val(stored->AuftragssummeKum.Betrag), 260.0);
  EXPECT_EQ(book.SupplementsOf(*stored).size(), 1u);
  EXPECT_TRUE(book.Find(std::to_string(second.ID)).has_value());
  EXPECT_FALSE(book.Find("V-3").has_value());
}

TEST_F(Contracts, NewContractsTakeTheDefaultTermsAndAllocationsAndNothingElse) {
  for (std::string_view name : kDefaultTermNames) {
    bool found = false;
    for (const data::FieldDescriptor& field : kVertragFields) found = found || field.name == name;
    EXPECT_TRUE(found) << name;
  }
  TContractSettings settings;
  settings.number_pattern = "V-{*LNR*}";
  TContractDefaults defaults;
  defaults.terms.SicherheitseinbehaltProz = 5;
  defaults.terms.MaxSicherheitseinbehaltProz = 3;
  defaults.terms.Gewaehrdauer = 60;
  defaults.terms.GwlEinheit.Set("Jahre");
  defaults.terms.Kumulativ = 1;
  defaults.terms.RechLegung = 'T';
  defaults.terms.xSkonto = 2;
  defaults.terms.BauabzugsSteuer = 1;
  defaults.terms.Mwst = 7;           // not a default: the contract's rate stays the system's
  defaults.terms.NachlassProz = 50;  // nor the discount, which is the LV's
  defaults.allocations = {{"Bauschild", 0.5, 0.0, "ARSTU"}, {"Vertragsstrafe", {}, 5000.0, "S"}};
  settings.defaults = defaults;
  const TVertrag contract = Book().Create(lv_, Party("Musterbau"), settings);
  EXPECT_DOUBLE_EQ(Val(contract.SicherheitseinbehaltProz), 5.0);
  EXPECT_DOUBLE_EQ(Val(contract.MaxSicherheitseinbehaltProz), 3.0);
  EXPECT_EQ(Val(contract.Gewaehrdauer), 60);
  EXPECT_EQ(contract.GwlEinheit.Get(), "Jahre");
  EXPECT_EQ(Val(contract.Kumulativ), 1);
  EXPECT_EQ(Val(contract.RechLegung), 'T');
  EXPECT_DOUBLE_EQ(Val(contract.xSkonto), 2.0);
  EXPECT_EQ(Val(contract.BauabzugsSteuer), 1);
  EXPECT_DOUBLE_EQ(Val(contract.Mwst), 19.0);
  EXPECT_DOUBLE_EQ(Val(contract.NachlassProz), 0.0);
  EXPECT_DOUBLE_EQ(Val(contract.SummeAusLV.Betrag), 200.0);
  const std::vector<TAllocation> allocations =
      AllocationsOf(TdmAbzug(*rv_, kDeductionOfContract, contract.ID).List());
  ASSERT_EQ(allocations.size(), 2u);
  EXPECT_EQ(allocations[0].name, "Bauschild");
  EXPECT_EQ(allocations[1].name, "Vertragsstrafe");
  EXPECT_DOUBLE_EQ(allocations[1].amount, 5000.0);
  EXPECT_EQ(allocations[1].invoice_kinds, "S");
}

TEST_F(Contracts, AWrongNumberPatternIsRefusedBeforeAnythingIsWritten) {
  TdmVertrag book = Book();
  TContractSettings settings;
  settings.number_pattern = "{*LNR";
  EXPECT_THROW(book.Create(lv_, Party("Musterbau"), settings), EContractError);
  EXPECT_TRUE(book.Contracts().empty());
  EXPECT_EQ(Val(lv_[first_].LvBgBeschr.IdVertrag), data::kNullId);
}

TEST_F(Contracts, AProjectKeepsTheNumberItGotFirst) {
  EXPECT_EQ(ProjectNumberOf(*lv_db_), data::kNullId);
  const std::string dir = dir_.path().string() + "/other/";
  std::filesystem::create_directories(dir);
  data::TStdDb other("DB_Lv", dir, boq::kLvDbType, 70);
  other.SetModifiedById("ALICE");
  ASSERT_EQ(other.DbCreate(), 0);
  int32_t number = 0;
  ASSERT_EQ(AssignProjectNumber(*lv_db_, *rv_, &number), 0);
  EXPECT_EQ(number, 1);
  ASSERT_EQ(AssignProjectNumber(other, *rv_, &number), 0);
  EXPECT_EQ(number, 2);
  ASSERT_EQ(AssignProjectNumber(*lv_db_, *rv_, &number), 0);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(ProjectNumberOf(other), 2);
}

}  // namespace
}  // namespace korvan::billing
