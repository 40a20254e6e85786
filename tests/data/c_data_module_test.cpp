#include <gtest/gtest.h>

#include <map>

#include "data/std_data_module.h"

namespace korvan::data {
namespace {

// A module with two rows whose handlers keep their data in memory.
class TdmZwei : public TSTDdataModule {
 public:
  TdmZwei() : TSTDdataModule(4711, "ZWEI") {}
  std::map<std::string, std::string> names{{"1", "eins"}, {"2", "zwei"}};
  int sums = 0;

 protected:
  void CData1C_OnGetStruktur(TCData&, int, TStringList& t) override {
    t = {"Nr,I,0,50,4,N,0,1,1,0,0,,0,1,47202", "Bezeichnung,N,1,200,40,N,0,1,1,0,0,,0,1,47204"};
  }
  void CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) override {
    for (const auto& [key, name] : names) rows.push_back(TCDataRow{.Key = key});
    rmax = static_cast<int>(rows.size());
  }
  void CData1C_OnGetDaten(TCData& s, int z, TStringList& t, bool&, char&, char&) override {
    t = {s.GetKey(z), names[s.GetKey(z)]};
  }
  void CData1C_OnPutDaten(TCData& s, int z, TStringList& t, const TStringList&, char,
                          bool& ok) override {
    ok = !t[1].empty();
    if (ok) names[s.GetKey(z)] = t[1];
  }
  void CData1C_OnDoSummen(TCData&) override { ++sums; }
};

TEST(StdDataModule, HandlersReceiveTheComponentsEvents) {
  TdmZwei module;
  ASSERT_TRUE(module.Loaded());
  EXPECT_EQ(module.CData1.FC_ID, 4711);
  ASSERT_EQ(module.CData1.GetFeldAnzahl(), 2);
  EXPECT_EQ(module.CData1.GetFeldName(1), "Bezeichnung");
  ASSERT_EQ(module.CData1.GetRmax(), 2);
  EXPECT_EQ(module.CData1.Data2Screen(2), (TStringList{"2", "zwei"}));

  EXPECT_EQ(module.CData1.Screen2Data(2, {"2", ""}), TScreen2DataResult::Refused);
  EXPECT_EQ(module.names["2"], "zwei");
  EXPECT_EQ(module.CData1.Screen2Data(2, {"2", "Zwo"}), TScreen2DataResult::Stored);
  EXPECT_EQ(module.names["2"], "Zwo");

  ASSERT_EQ(module.CData1.ListOperation(0, loSum), TListOpResult::Done);
  EXPECT_EQ(module.sums, 1);
}

}  // namespace
}  // namespace korvan::data
