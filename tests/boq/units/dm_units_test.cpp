#include <gtest/gtest.h>

#include "boq/units/dm_einheit.h"
#include "boq/units/dm_waehrung.h"
#include "data/tables/std_tb_test_support.h"

namespace korvan::data::testing {
namespace {

class DataModuleTest : public TableTest {};

TStringList Euro() {
  return {"32766", "Europa", "Euro", "EUR", "1", "2", "J", "J", "2", "32766"};
}

TEST_F(DataModuleTest, CurrencyAndUnitRowsAreCheckedAndWrittenThroughTheTable) {
  boq::TdmWaehrung module(*db_);
  ASSERT_TRUE(module.Loaded()) << module.CData1.LastError();
  ASSERT_EQ(module.CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
  ASSERT_EQ(module.CData1.Screen2Data(1, Euro()), TScreen2DataResult::Stored) << module.LastError();
  boq::TdmWaehrung reread(*db_);
  ASSERT_TRUE(reread.Loaded());
  ASSERT_EQ(reread.CData1.GetRmax(), 1);
  EXPECT_EQ(reread.CData1.Data2Screen(1), Euro());

  TStringList changed = Euro();
  changed[4] = "eins";  // does not fit: refused, nothing changes
  EXPECT_EQ(reread.CData1.Screen2Data(1, changed), TScreen2DataResult::Refused);
  EXPECT_NE(reread.LastError().find("Faktor"), std::string::npos) << reread.LastError();
  EXPECT_EQ(reread.CData1.Data2Screen(1), Euro());
  changed[4] = "1,95583";
  ASSERT_EQ(reread.CData1.Screen2Data(1, changed), TScreen2DataResult::Stored);
  EXPECT_EQ(reread.CData1.Data2Screen(1), changed);
  ASSERT_TRUE(reread.Table().GetKey(KeyNumber(32766), '1'));
  EXPECT_DOUBLE_EQ(reread.Table().Rec().Faktor, 1.95583);
  ASSERT_EQ(reread.CData1.ListOperation(1, loDeleteRecord), TListOpResult::Done);
  EXPECT_FALSE(reread.Table().ExistsRec(KeyNumber(32766), '1'));

  boq::TdmEinheit units(*db_);
  ASSERT_TRUE(units.Loaded());
  const TStringList meter = {"49", "1", "10", "Meter", "m", "1", "3", "1", "", ""};
  for (int row = 1; row <= 2; ++row) {
    ASSERT_EQ(units.CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
  }
  ASSERT_EQ(units.CData1.Screen2Data(1, meter), TScreen2DataResult::Stored) << units.LastError();
  EXPECT_EQ(units.CData1.Data2Screen(1), meter);
  EXPECT_EQ(units.CData1.Screen2Data(2, meter), TScreen2DataResult::Refused);  // the same key
  EXPECT_NE(units.LastError().find("gibt es schon"), std::string::npos);
  EXPECT_EQ(units.CheckValue(5, "C"), "eines der Zeichen 1 2 3 A B");
  EXPECT_EQ(units.CheckValue(4, "Meterx"), "");
  EXPECT_NE(units.CheckValue(4, "Meterxx"), "");
}

}  // namespace
}  // namespace korvan::data::testing
