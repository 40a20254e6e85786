// Deductions of a contract: the record in the billing database with its name and formula
// beside it, its net and gross amounts, and the allocations (Umlagen) kept as deductions.
#include <gtest/gtest.h>

#include <memory>

#include "billing/billing_tables.h"
#include "billing/deduction/contract_allocations.h"
#include "billing/deduction/deduction_amounts.h"
#include "billing/deduction/dm_abzug.h"
#include "billing/tables/billing_table_types.h"
#include "billing/tables/tb_abzug.h"
#include "boq/boq_tables.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::billing {
namespace deduction_test {

class Deductions : public ::testing::Test {
 protected:
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    RegisterBillingTables(registry);
    rv_ = std::make_unique<data::TStdDb>("DB_Rv", dir_.path().string() + "/", kRvDbType, 40);
    rv_->SetModifiedById("ALICE");
    ASSERT_EQ(rv_->DbCreate(), 0);
  }
  void TearDown() override {
    rv_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  TdmAbzug OfContract(int32_t contract) { return TdmAbzug(*rv_, kDeductionOfContract, contract); }
  static TDeduction Fixed(const char* name, double amount, char gross_or_net) {
    TDeduction deduction = NewDeduction('S', name);
    deduction.record.AbzugBetrag.Betrag = amount;
    deduction.record.KzBruttoNetto = gross_or_net;
    deduction.record.SubTyp = kReducesWork;
    deduction.record.Rechnungstyp.Set("AS");
    return deduction;
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> rv_;
  boq::TAvaUiValueConverter converter_{boq::TCurrencyList(), boq::TValueConverterSettings()};
};

TEST_F(Deductions, AreKeptPerOwnerWithNameAndFormulaAndChangedOrDeletedThere) {
  TdmAbzug first = OfContract(5);
  TdmAbzug other = OfContract(6);
  const TDeduction damage = first.Add(Fixed("Schaden Zaun", 119, kGrossDeduction));
  TDeduction formula = NewDeduction('W', "Minderung Putz");
  formula.formula = "FR*0,05";
  const TDeduction reduction = first.Add(formula);
  other.Add(Fixed("Schaden Tor", 50, kNetDeduction));
  EXPECT_NE(int32_t{damage.record.ID}, int32_t{reduction.record.ID});

  std::vector<TDeduction> listed = first.List();
  ASSERT_EQ(listed.size(), 2u);
  EXPECT_EQ(listed[0].name, "Schaden Zaun");
  EXPECT_EQ(listed[0].record.Rechnungstyp.Get(), "AS");
  EXPECT_EQ(listed[0].record.KzBezug, kDeductionOfContract);
  EXPECT_EQ(int32_t{listed[0].record.IDBezug}, 5);
  EXPECT_EQ(listed[1].formula, "FR*0,05");
  EXPECT_EQ(other.List().size(), 1u);

  listed[0].name = "Schaden Zaun Nord";
  listed[0].record.AbzugBetrag.Betrag = 238;
  first.Change(listed[0]);
  first.Delete(reduction.record.ID);
  listed = first.List();
  ASSERT_EQ(listed.size(), 1u);
  EXPECT_EQ(listed[0].name, "Schaden Zaun Nord");
  EXPECT_DOUBLE_EQ(double{listed[0].record.AbzugBetrag.Betrag}, 238.0);
  // Another owner's deduction is not this owner's to change or delete.
  EXPECT_THROW(other.Delete(listed[0].record.ID), EDeductionError);
  EXPECT_THROW(other.Change(listed[0]), EDeductionError);
  EXPECT_EQ(first.List().size(), 1u);
}

TEST_F(Deductions, WrongFieldsAreRefusedAndNothingIsWritten) {
  TdmAbzug book = OfContract(5);
  TDeduction wrong = Fixed("Bauschild", 10, kNetDeduction);
  wrong.record.Rechnungstyp.Set("AX");
  EXPECT_THROW(book.Add(wrong), EDeductionError);
  wrong = Fixed("Bauschild", 10, 'Q');
  EXPECT_THROW(book.Add(wrong), EDeductionError);
  wrong = Fixed("", 10, kNetDeduction);
  EXPECT_THROW(book.Add(wrong), EDeductionError);
  wrong = Fixed("Bauschild", 10, kNetDeduction);
  wrong.record.SubTyp = 'X';
  EXPECT_THROW(book.Add(wrong), EDeductionError);
  wrong = Fixed(std::string(71, 'x').c_str(), 10, kNetDeduction);  // a name longer than a line
  EXPECT_THROW(book.Add(wrong), EDeductionError);
  TTbAbzug table(*rv_);
  EXPECT_TRUE(table.ListOf(kDeductionOfContract, 5).empty());
}

TEST_F(Deductions, GrossAndNetFollowTheVatRateAndAFormulaWaitsForTheInvoice) {
  // A gross deduction of 119.00 at 19 % is 100.00 net and 19.00 VAT, and back.
  const auto gross = FixedDeductionAmounts(Fixed("a", 119, kGrossDeduction), 19, converter_);
  ASSERT_TRUE(gross.has_value());
  EXPECT_DOUBLE_EQ(gross->net, 100.0);
  EXPECT_DOUBLE_EQ(gross->vat, 19.0);
  const auto net = FixedDeductionAmounts(Fixed("b", 100, kNetDeduction), 19, converter_);
  ASSERT_TRUE(net.has_value());
  EXPECT_DOUBLE_EQ(net->gross, 119.0);
  EXPECT_DOUBLE_EQ(net->vat, 19.0);
  // 10.00 gross at 7 %: 9.345... rounds to 9.35, the VAT is what is left.
  const auto odd = FixedDeductionAmounts(Fixed("c", 10, kGrossDeduction), 7, converter_);
  ASSERT_TRUE(odd.has_value());
  EXPECT_DOUBLE_EQ(odd->net, 9.35);
  EXPECT_DOUBLE_EQ(odd->vat, 0.65);
  TDeduction formula = Fixed("d", 0, kNetDeduction);
  formula.formula = "FR*0,05";
  EXPECT_FALSE(FixedDeductionAmounts(formula, 19, converter_).has_value());
}

TEST_F(Deductions, AllocationsAreDeductionsOfTypeUSetChangedAndRemovedByName) {
  TdmAbzug book = OfContract(5);
  book.Add(Fixed("Schaden Zaun", 119, kGrossDeduction));  // not an allocation
  TAllocation sign{"Bauschild", 0.5, 0.0, "ARSTU"};
  TAllocation power{"Baustrom", std::nullopt, 150.0, "AS"};
  SetAllocation(book, power);
  SetAllocation(book, sign);
  std::vector<TAllocation> allocations = AllocationsOf(book.List());
  ASSERT_EQ(allocations.size(), 2u);
  EXPECT_EQ(allocations[0].name, "Bauschild");  // in the order of the six
  ASSERT_TRUE(allocations[0].percent.has_value());
  EXPECT_DOUBLE_EQ(*allocations[0].percent, 0.5);
  EXPECT_EQ(allocations[0].invoice_kinds, "ARSTU");
  EXPECT_FALSE(allocations[1].percent.has_value());
  EXPECT_DOUBLE_EQ(allocations[1].amount, 150.0);
  for (const TDeduction& deduction : book.List()) {
    if (deduction.name == "Bauschild") {
      EXPECT_EQ(deduction.record.Typ, kAllocationDeduction);
      EXPECT_EQ(deduction.formula, "FR*0,5/100");
      EXPECT_FALSE(FixedDeductionAmounts(deduction, 19, converter_).has_value());
    }
  }
  // Changed in place, then removed; the other deduction stays.
  power.amount = 200;
  SetAllocation(book, power);
  sign.percent = 0.0;
  SetAllocation(book, sign);
  allocations = AllocationsOf(book.List());
  ASSERT_EQ(allocations.size(), 1u);
  EXPECT_DOUBLE_EQ(allocations[0].amount, 200.0);
  EXPECT_EQ(book.List().size(), 2u);
  EXPECT_THROW(SetAllocation(book, TAllocation{"Bauzaun", 1.0, 0.0, "A"}), EDeductionError);
  EXPECT_THROW(SetAllocation(book, TAllocation{"Bauwasser", 1.0, 0.0, "AQ"}), EDeductionError);
}

TEST(DeductionFormulas, APercentRoundTripsThroughItsFormulaAndOtherFormulasAreNoPercent) {
  for (double percent : {0.5, 2.0, 1.25, 12.345678}) {
    const std::optional<double> back = PercentOfFormula(PercentFormula(percent));
    ASSERT_TRUE(back.has_value()) << PercentFormula(percent);
    EXPECT_DOUBLE_EQ(*back, percent);
  }
  EXPECT_FALSE(PercentOfFormula("FR*0,05").has_value());
  EXPECT_FALSE(PercentOfFormula("SA*1/100").has_value());
  EXPECT_FALSE(PercentOfFormula("FR*/100").has_value());
  EXPECT_FALSE(PercentOfFormula("").has_value());
}

}  // namespace deduction_test
}  // namespace korvan::billing
