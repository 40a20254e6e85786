#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "boq/units/builtin_currencies.h"
#include "boq/units/currency_list.h"
#include "boq/units/rounding.h"
#include "boq/units/tb_prj_wae_faktor.h"
#include "boq/units/tb_waehrung.h"
#include "boq/units/value_converter.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "data/tables/table_key.h"
#include "testing/temp_dir.h"
#include "units_test_support.h"

namespace korvan::boq {
namespace {

using testing::BuiltInList;
using testing::kDem;

using data::TRoundingType;

TEST(Rounding, HalvesByTheRoundingType) {
  EXPECT_DOUBLE_EQ(RoundValue(1.005, 2, TRoundingType::rtTillV2015), 1.01);
  EXPECT_DOUBLE_EQ(RoundValue(1.005, 2, TRoundingType::rtCommercial), 1.01);
  EXPECT_DOUBLE_EQ(RoundValue(1.005, 2, TRoundingType::rtArithmetic), 1.00);
  EXPECT_DOUBLE_EQ(RoundValue(2.5, 0, TRoundingType::rtCommercial), 3.0);
  EXPECT_DOUBLE_EQ(RoundValue(2.5, 0, TRoundingType::rtArithmetic), 2.0);
  EXPECT_DOUBLE_EQ(RoundValue(3.5, 0, TRoundingType::rtArithmetic), 4.0);
  EXPECT_DOUBLE_EQ(RoundValue(-1.005, 2, TRoundingType::rtCommercial), -1.01);
  EXPECT_DOUBLE_EQ(RoundValue(-1.005, 2, TRoundingType::rtTillV2015), -1.01);
  EXPECT_DOUBLE_EQ(RoundValue(-2.5, 0, TRoundingType::rtArithmetic), -2.0);
  EXPECT_DOUBLE_EQ(RoundValue(1.23456789, 5, TRoundingType::rtTillV2015), 1.23457);
}

TEST(Rounding, NothingAndZeroRoundToZeroAndUnknownTypesLeaveTheValue) {
  for (auto type :
       {TRoundingType::rtTillV2015, TRoundingType::rtCommercial, TRoundingType::rtArithmetic}) {
    EXPECT_EQ(RoundValue(std::numeric_limits<double>::quiet_NaN(), 2, type), 0.0);
    EXPECT_EQ(RoundValue(0.0, 2, type), 0.0);
    EXPECT_EQ(RoundValue(1e300, 2, type), 1e300);
  }
  EXPECT_EQ(RoundValue(1.005, 2, static_cast<TRoundingType>(7)), 1.005);
}

TAvaUiValueConverter Converter(TValueConverterSettings settings = {}) {
  return TAvaUiValueConverter(BuiltInList(), settings);
}

TEST(CurrencyConversion, DeutscheMarkAndEuroByTheFixedRate) {
  const TAvaUiValueConverter converter = Converter();
  EXPECT_NEAR(converter.ConvertCurrencyValue(100, kDem, kEuroCurrencyId, false), 51.129188, 1e-6);
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(100, kDem, kEuroCurrencyId, true), 51.13);
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(100, kEuroCurrencyId, kDem, false), 195.583);
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(100, kEuroCurrencyId, kDem, true), 195.58);
  // Through the euro: 1000 ITL are 0.516457 EUR, which are 1.01 DEM.
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(1000, 39, kDem, true), 1.01);
}

TEST(CurrencyConversion, ValuesThatStayAsTheyAre) {
  const TAvaUiValueConverter converter = Converter();
  EXPECT_EQ(converter.ConvertCurrencyValue(1.23456, kDem, kDem, true), 1.23456);
  EXPECT_EQ(converter.ConvertCurrencyValue(1.23456, kUnconvertedCurrencyId, kDem, true), 1.23456);
  EXPECT_EQ(converter.ConvertCurrencyValue(0.00005, kDem, kEuroCurrencyId, true), 0.00005);
  EXPECT_THROW(converter.ConvertCurrencyValue(10, 999, kDem, true), ECurrencyError);
  EXPECT_FALSE(converter.TryConvertCurrencyValue(10, kDem, 999, true).has_value());
}

TEST(CurrencyConversion, OwnerAmountsAreInTheProjectCurrency) {
  TValueConverterSettings settings;
  settings.project_currency = kDem;
  const TAvaUiValueConverter converter = Converter(settings);
  data::t_WaeBetrag amount{100.0, kEuroCurrencyId};
  converter.ConvertCurrency(amount, true);
  EXPECT_DOUBLE_EQ(amount.Betrag, 195.58);
  EXPECT_EQ(amount.IdWaehrung, kDem);
  EXPECT_DOUBLE_EQ(
      converter.ConvertCurrencyValue(195.583, data::kOwnerCurrencyId, kEuroCurrencyId, true),
      100.0);
}

TEST(CurrencyConversion, UnroundedProjectsKeepTheirDigitsUnlessRoundingIsForced) {
  TValueConverterSettings settings;
  settings.round_amounts = false;
  const TAvaUiValueConverter converter = Converter(settings);
  EXPECT_NEAR(converter.ConvertCurrencyValue(100, kDem, kEuroCurrencyId, true), 51.129188, 1e-6);
  EXPECT_EQ(converter.RoundCurrencyValueEx(1.23456, 2, false), 1.23456);
  EXPECT_EQ(converter.RoundCurrencyValueEx(1.23456, 2, true), 1.23);
}

TEST(GrossAmounts, NetIsRoundedBeforeTheVat) {
  EXPECT_DOUBLE_EQ(Converter().ClassicCurrencyBrutto(100.005, 19), 119.01);
  EXPECT_DOUBLE_EQ(Converter().CurrencyBrutto(100.005, 19), 119.01);
  TValueConverterSettings older;
  older.rounding_types_available = false;
  older.currency_rounding = TRoundingType::rtArithmetic;
  EXPECT_DOUBLE_EQ(Converter(older).CurrencyBrutto(100.005, 19), 119.01);
  TValueConverterSettings even;
  even.currency_rounding = TRoundingType::rtArithmetic;
  // 0.125 net: VAT 0.02375 rounds to 0.02; the net 0.125 rounds to even 0.12.
  EXPECT_DOUBLE_EQ(Converter(even).CurrencyBrutto(0.125, 19), 0.14);
}

TEST(AmountText, GermanNotationBothWays) {
  const TAvaUiValueConverter converter = Converter();
  EXPECT_EQ(converter.CurrencyValueToString(1234567.891, 2), "1.234.567,89");
  EXPECT_EQ(converter.CurrencyValueToString(-1234.5, 2), "-1.234,50");
  EXPECT_EQ(converter.CurrencyValueToString(12, 0), "12");
  EXPECT_EQ(converter.CurrencyToString({100.0, kDem}), "100,00 DEM");
  EXPECT_EQ(converter.EPToStr(1.23456, 3), "1,235");
  EXPECT_EQ(converter.QtyToStringQU(12.5, 3, "m2"), "12,500 m2");
  EXPECT_EQ(converter.QtyToStringNull(0.0, 3), "");
  EXPECT_EQ(TAvaUiValueConverter::StrToCurrencyValue("1.234,56"), 1234.56);
  EXPECT_EQ(TAvaUiValueConverter::StrToCurrencyValue("-0,5"), -0.5);
  EXPECT_EQ(TAvaUiValueConverter::StrToCurrencyValue("1234"), 1234.0);
  EXPECT_FALSE(TAvaUiValueConverter::StrToCurrencyValue("1.5").has_value());
  EXPECT_FALSE(TAvaUiValueConverter::StrToCurrencyValue("1,2,3").has_value());
  EXPECT_FALSE(TAvaUiValueConverter::StrToQty("zwölf").has_value());
}

class CurrencyTablesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    stamm_ = Create("DB_Stamm", 'E', 33);
    glob_ = Create("DB_GlobData", 'L', 87);
  }
  void TearDown() override {
    stamm_.reset();
    glob_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  std::unique_ptr<data::TStdDb> Create(const char* name, char type, int key_length) {
    auto db = std::make_unique<data::TStdDb>(name, dir_.path().string(), type, key_length);
    db->SetMessages(&messages_);
    EXPECT_EQ(db->DbCreate(), 0);
    return db;
  }

  korvan::testing::TempDir dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> stamm_;
  std::unique_ptr<data::TStdDb> glob_;
};

TEST_F(CurrencyTablesTest, ANewCurrencyTableGetsTheBuiltInList) {
  TTbWaehrung table(*stamm_);
  EXPECT_EQ(FillBuiltInCurrencies(table), 13);
  EXPECT_EQ(FillBuiltInCurrencies(table), 0);  // filled once only
  ASSERT_TRUE(table.GetKey(data::KeyNumber(kDem)));
  EXPECT_EQ(table.Rec().Symbol.Get(), "DEM");
  EXPECT_EQ(table.Rec().Bez.Get(), "Deutsche Mark");
  EXPECT_DOUBLE_EQ(table.Rec().Faktor, 1.95583);
  EXPECT_EQ(+table.Rec().kzLand, 1);
  ASSERT_TRUE(table.GetKey(data::KeyNumber(kEuroCurrencyId)));
  EXPECT_EQ(+table.Rec().kzBasis, 1);
  ASSERT_TRUE(table.GetKey(data::KeyNumber(39)));
  EXPECT_EQ(+table.Rec().Nachkomma, 0);
  EXPECT_EQ(+table.Rec().Nachkomma2, 2);

  const TCurrencyList list = TCurrencyList::Load(table);
  EXPECT_EQ(list.All().size(), 13u);
  EXPECT_EQ(list.FindSymbol("ats")->id, 43);
  EXPECT_EQ(list.DescribeRead().rfind("Gelesene Währungen: \n", 0), 0u);
}

TEST_F(CurrencyTablesTest, ProjectRatesReplaceTheFactorFromTheirDate) {
  TTbWaehrung currencies(*stamm_);
  ASSERT_EQ(FillBuiltInCurrencies(currencies), 13);
  TTbPrjWaeFaktor rates(*glob_);
  for (const auto& [date, factor] : {std::pair{20240101, 2.1}, std::pair{20200101, 2.0}}) {
    rates.InitRecord();
    rates.Rec().PrjNr.Set("P-2024/17");
    rates.Rec().IdLand = kDem;
    rates.Rec().Faktor = factor;
    rates.Rec().NachKomma = 3;
    rates.Rec().Datum = date;
    ASSERT_EQ(rates.UpDateRec(), 0);
  }
  EXPECT_FALSE(rates.RateOn("P-2024/17", kDem, 20191231).has_value());
  EXPECT_DOUBLE_EQ(rates.RateOn("P-2024/17", kDem, 20230601)->Faktor, 2.0);
  EXPECT_DOUBLE_EQ(rates.RateOn("P-2024/17", kDem, 20240101)->Faktor, 2.1);
  EXPECT_FALSE(rates.RateOn("P-2024/18", kDem, 20240101).has_value());

  TCurrencyList list = TCurrencyList::Load(currencies);
  list.ApplyProjectRates(rates, "P-2024/17", 20230601);
  const TAvaUiValueConverter converter(list, {});
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(100, kEuroCurrencyId, kDem, true), 200.0);
  EXPECT_DOUBLE_EQ(converter.ConvertCurrencyValue(100.0 / 3, kEuroCurrencyId, kDem, true), 66.667);
}

}  // namespace
}  // namespace korvan::boq
