// The contract defaults file "STANDARD-WERTE.VSW" and the allocation texts of the command
// line: what is written is read back alike, and a wrong line is named.
#include <gtest/gtest.h>

#include <string>

#include "app/cli/command_error.h"
#include "app/commands/contract/allocation_text.h"
#include "app/commands/contract/contract_defaults_file.h"
#include "app/commands/contract/contract_terms.h"
#include "app/commands/contract/standard_deductions_file.h"
#include "billing/tables/billing_table_types.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace contract_defaults_file_test {

billing::TContractDefaults SomeDefaults() {
  billing::TContractDefaults defaults;
  for (const char* term :
       {"SicherheitseinbehaltProz=5", "MaxSicherheitseinbehaltProz=10", "SicherheitsBuergschaft=ja",
        "SicherheitsbuergschaftsDatum=15.03.2026", "GewaehrleistungseinbehaltProz=3,5",
        "Gewaehrdauer=60", "GwlEinheit=Monate", "Gewaehrbuergschaft=nein",
        "GewaehrbuergschaftsDatum=-", "xSkonto=2", "xSkontofrist=14",
        "BauwesenversicherungProz=0,25", "BauabzugsSteuer=ja", "RechLegung=T", "Kumulativ=ja",
        "SRKumulativ=nein", "ERKumulativ=ja"}) {
    SetContractTerm(defaults.terms, term);
  }
  defaults.allocations = {ParseAllocation("Bauschild=0,5%"), ParseAllocation("Baustrom=150:AS"),
                          ParseAllocation("Müllcontainer=1,25%:S")};
  return defaults;
}

TEST(ContractDefaultsFile, WhatIsWrittenIsReadBackAlike) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File(kContractDefaultsFileName);
  const billing::TContractDefaults written = SomeDefaults();
  WriteContractDefaults(path, written);
  const billing::TContractDefaults read = ReadContractDefaults(path);
  EXPECT_EQ(ContractDefaultsText(read), ContractDefaultsText(written));
  EXPECT_DOUBLE_EQ(double{read.terms.GewaehrleistungseinbehaltProz}, 3.5);
  EXPECT_EQ(read.terms.RechLegung, 'T');
  ASSERT_EQ(read.allocations.size(), 3u);
  EXPECT_EQ(read.allocations[2].name, "Müllcontainer");
  EXPECT_DOUBLE_EQ(*read.allocations[2].percent, 1.25);
  EXPECT_EQ(read.allocations[1].invoice_kinds, "AS");
  EXPECT_DOUBLE_EQ(read.allocations[1].amount, 150.0);
}

TEST(ContractDefaultsFile, AWrongOrMissingLineIsNamed) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File(kContractDefaultsFileName);
  const std::string good = ContractDefaultsText(SomeDefaults());
  auto expect_refusal = [&](const std::string& text, const std::string& named) {
    korvan::testing::WriteFile(path, text);
    try {
      ReadContractDefaults(path);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const CommandError& error) {
      EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
    }
  };
  expect_refusal(good + "xSkonto=zwei\n", "Zeile 22");
  expect_refusal(good + "NachlassProz=5\n", "kein Standardwert");
  expect_refusal(good + "Umlage=Bauzaun=1%\n", "keine Umlage");
  expect_refusal(good + "Kumulativ\n", "Zeile 22");
  expect_refusal("# leer\n", "es fehlt die Zeile SicherheitseinbehaltProz");
  EXPECT_THROW(ReadContractDefaults(dir.File("fehlt.VSW")), CommandError);
}

TEST(AllocationText, ReadsPercentAmountNoneAndInvoiceKinds) {
  const billing::TAllocation percent = ParseAllocation("Bauschild=0,5%:ARS");
  EXPECT_EQ(percent.name, "Bauschild");
  EXPECT_DOUBLE_EQ(*percent.percent, 0.5);
  EXPECT_EQ(percent.invoice_kinds, "ARS");
  EXPECT_EQ(AllocationText(percent), "Bauschild=0,5%:ARS");
  const billing::TAllocation amount = ParseAllocation("Vertragsstrafe=2500,50");
  EXPECT_FALSE(amount.percent.has_value());
  EXPECT_DOUBLE_EQ(amount.amount, 2500.5);
  EXPECT_EQ(amount.invoice_kinds, billing::kAllocationInvoiceKinds);
  EXPECT_TRUE(ParseAllocation("Bauwasser=-").None());
  EXPECT_TRUE(ParseAllocation("Bauwasser=0%").None());
  for (const char* wrong : {"Bauschild", "=5", "Bauschild=", "Bauschild=fünf", "Bauschild=-3",
                            "Bauschild=5%:", "Bauschild=5%%"}) {
    EXPECT_THROW(ParseAllocation(wrong), UsageError) << wrong;
  }
}

TEST(StandardDeductionsFile, OneDeductionALineReadBackAndAWrongLineNamed) {
  billing::TDeduction sign = billing::NewDeduction('U', "Bauschild");
  sign.formula = "FR*0,5/100";
  sign.record.Rechnungstyp.Set("ARSTU");
  billing::TDeduction damage = billing::NewDeduction('S', "Schaden Zaun");
  damage.record.KzBruttoNetto = billing::kGrossDeduction;
  damage.record.SubTyp = billing::kReducesWork;
  damage.record.AbzugBetrag.Betrag = 119;
  const std::string text = StandardDeductionsText({sign, damage});
  EXPECT_EQ(text, "Bauschild|U|S|N|ARSTU|0,00|FR*0,5/100\nSchaden Zaun|S|L|B||119,00|\n");
  korvan::testing::TempDir dir;
  const std::string path = dir.File(kStandardDeductionsFileName);
  korvan::testing::WriteFile(path, text);
  const std::vector<billing::TDeduction> read = ReadStandardDeductions(path);
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(StandardDeductionsText(read), text);
  for (const char* wrong : {"Zaun|S|L|B||119,00\n", "Zaun|S|L|X||119,00|\n",
                            "Zaun|S|L|B|AQ|119,00|\n", "Zaun|S|L|B||viel|\n"}) {
    korvan::testing::WriteFile(path, text + wrong);
    try {
      ReadStandardDeductions(path);
      ADD_FAILURE() << "accepted: " << wrong;
    } catch (const CommandError& error) {
      EXPECT_NE(std::string(error.what()).find("Zeile 3"), std::string::npos) << error.what();
    }
  }
  damage.name = "Zaun|Tor";
  EXPECT_THROW(StandardDeductionsText({damage}), CommandError);
}

}  // namespace contract_defaults_file_test
}  // namespace korvan::app
