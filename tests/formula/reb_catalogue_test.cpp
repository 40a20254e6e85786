#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/catalogue/tb_reb_formel.h"
#include "formula/language/formel_obj.h"
#include "formula/reb/reb_interpreter.h"
#include "formula/reb/reb_sheet.h"
#include "testing/temp_dir.h"

namespace korvan::formula {
namespace {

class RebCatalogueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    stamm_ = std::make_unique<data::TStdDb>("DB_Stamm", dir_.path().string(), 'E', 33);
    stamm_->SetMessages(&messages_);
    ASSERT_EQ(stamm_->DbCreate(), 0);
  }
  void TearDown() override {
    stamm_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  korvan::testing::TempDir dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> stamm_;
};

TEST_F(RebCatalogueTest, ANewCatalogueHoldsTheBuiltInListFoundByAnyWritingOfTheNumber) {
  TTbRebFormel table(*stamm_);
  EXPECT_EQ(FillBuiltInRebFormeln(table), static_cast<int>(BuiltInRebFormeln().size()));
  EXPECT_EQ(FillBuiltInRebFormeln(table), 0);
  ASSERT_TRUE(table.FindNr("004"));
  EXPECT_EQ(table.Rec().Bezeichnung.Get(), "Rechteck/Quader");
  EXPECT_FALSE(table.FindNr("4a"));
  const std::vector<TRebFormelRow> stored = table.All();
  ASSERT_EQ(stored.size(), BuiltInRebFormeln().size());
  for (size_t i = 0; i < stored.size(); ++i) {
    // Every row fits its fields whole.
    EXPECT_EQ(stored[i].bezeichnung, BuiltInRebFormeln()[i].bezeichnung);
    EXPECT_EQ(stored[i].formel, BuiltInRebFormeln()[i].formel);
    EXPECT_EQ(stored[i].spaltentext, BuiltInRebFormeln()[i].spaltentext);
  }

  // The interpreter reads the stored formula.
  TRebFormelTableSource source(table);
  auto interpreter = CoREB003FormelInterpreter::Create(source);
  TRebLine line;
  line.FormelNr = "4";
  line.Formel = "2|3|4";
  std::vector<TRebLine> lines = {line};
  EXPECT_DOUBLE_EQ(EvaluateRebLines(*interpreter, lines).sum, 24);
}

// A catalogue formula with the values of one line put in ("|" between the values, then
// the signs), evaluated with angles in gon or degrees.
double CatalogueValue(std::string_view nr, const std::string& values, bool gon = true) {
  const std::optional<TRebFormelRow> row = TBuiltInRebFormelSource().Find(nr);
  if (!row) return NAN;
  TRebLine line;
  line.Formel = values;
  const std::string expression =
      PutInValues(row->formel, line, [&](int n) { return "(" + tValue::Of(line, n).Text + ")"; });
  TFormelObj formula = gon ? TFormelObj::CreateNeugrad() : TFormelObj();
  formula.SetFormel(expression);
  int error = 0;
  const double value = formula.GetResult(error);
  return error == 0 ? value : NAN;
}

// One worked example per formula of the list, computed by hand; angles in gon.
TEST(RebCatalogueFormulas, EachFormulaOnAWorkedExample) {
  const double pi = 3.141592653589793;
  struct Case {
    std::string_view nr;
    std::string values;
    double expected;
  };
  const std::vector<Case> cases = {
      {"0", "3*2+1", 7},
      {"1", "4|3|2", 12},                    // 4 x 3 / 2, prism of length 2
      {"2", "4|5|100|2", 20},                // sin 100 gon = 1
      {"3", "3|4|5|2", 12},                  // Heron: 6
      {"4", "2|3|4", 24},                    //
      {"5", "2|4|3|2", 18},                  // (2 + 4) / 2 x 3 x 2
      {"6", "2|100|3", 3 * pi},              // quarter circle: arc pi
      {"7", "2|100|3", 3 * pi},              // quarter of 4 pi
      {"8", "3|1|200|2", 8 * pi},            // half of (9 - 1) pi
      {"9", "3|2|4", 16},                    // 2/3 x 3 x 2 x 4
      {"10", "1|100|2", 2 - pi / 2},         // (tan 50 gon - pi/4) x 2
      {"11", "4|1|400|4", 25 * pi},          // full cone frustum: pi (4 + 1) x slant 5
      {"12", "2|1|400|3", 7 * pi},           // pi x 3 / 3 x (4 + 2 + 1)
      {"13", "5|2", 10},                     //
      {"14", "4|1|3", 7},                    // (4 + 1 + 2) x 3 / 3
      {"15", "4|3|2|1|6", 38},               // 6 / 6 x (12 + 2 + 6 x 4)
      {"20", "3|4", 5},                      // hypotenuse
      {"20", "5|3||||-", 4},                 // cathetus with sign 1 "-"
      {"21", "0|0|3|4", 5},                  //
      {"22", "1|3|3|1", 4},                  // (1 + 3) x (3 - 1) / 2
      {"23", "10|1|2|3|4", 10},              //
      {"25", "0|2|1|3", 4},                  // 2 x (1 + 3) / 2
      {"30", "9+16", 5},                     //
      {"31", "1|2|3|4|5", 3},                //
      {"32", "1|3|5|5|1", std::sqrt(12.2)},  // (1 + 9 + 25 + 25 + 1) / 5
      {"91", "2*(3+4)", 14},                 //
      {"98", "0|2|3|6|9", 12},               // 2 x (3 + 6 + 9) / 3
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(CatalogueValue(c.nr, c.values), c.expected, 1e-9) << c.nr << ": " << c.values;
  }
  for (const TBuiltInRebFormel& row : BuiltInRebFormeln()) {
    const bool covered =
        std::any_of(cases.begin(), cases.end(), [&](const Case& c) { return c.nr == row.nr; });
    EXPECT_TRUE(covered) << "formula " << row.nr << " has no example";
  }
}

TEST(RebCatalogueFormulas, CircleSharesFollowTheAngleUnit) {
  const double pi = 3.141592653589793;
  EXPECT_NEAR(CatalogueValue("6", "2|90|1", false), pi, 1e-12);
  EXPECT_NEAR(CatalogueValue("10", "1|90|1", false), 1 - pi / 4, 1e-12);
  EXPECT_NEAR(CatalogueValue("12", "2|1|360|3", false), 7 * pi, 1e-12);
}

}  // namespace
}  // namespace korvan::formula
