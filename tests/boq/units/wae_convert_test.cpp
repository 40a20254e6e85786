#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <fstream>
#include <memory>
#include <random>

#include "boq/units/builtin_currencies.h"
#include "boq/units/currency_list.h"
#include "boq/units/dm_wae_convert.h"
#include "boq/units/value_converter.h"
#include "data/records/record_header_fields.h"
#include "data/records/wae_betrag.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "data/tables/table_change_journal.h"
#include "data/tables/table_key.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"
#include "testing/temp_dir.h"
#include "units_test_support.h"

namespace korvan::boq {
namespace {

using testing::BuiltInList;
using testing::kDem;

constexpr int16_t kEur = static_cast<int16_t>(kEuroCurrencyId);

#pragma pack(push, 1)
// A priced line as the LV tables will have them: an amount, an array of components and
// a nested part with one more amount.
struct t_PriceTail {
  data::t_WaeBetrag Rest;
};
struct t_PricedLine {
  data::TDbRecordHeader Header;
  int32_t Id;
  data::t_WaeBetrag EP;
  data::TArray6OfWaeBetrag Anteile;
  t_PriceTail Tail;
  double Menge;  // a double that is no amount
};
#pragma pack(pop)

inline constexpr data::FieldDescriptor kPriceTailFields[] = {
    {"Rest", 0, 10, data::FieldType::kWaeBetrag},
};
inline constexpr data::RecordLayout kPriceTailLayout{"t_PriceTail", sizeof(t_PriceTail),
                                                     kPriceTailFields};
inline constexpr data::FieldDescriptor kPricedLineFields[] = {
    data::HeaderField(),
    {"Id", offsetof(t_PricedLine, Id), 4, data::FieldType::kInt32},
    {"EP", offsetof(t_PricedLine, EP), 10, data::FieldType::kWaeBetrag},
    {"Anteile", offsetof(t_PricedLine, Anteile), 60, data::FieldType::kWaeBetragArray},
    {"Tail", offsetof(t_PricedLine, Tail), 10, data::FieldType::kNested, &kPriceTailLayout},
    {"Menge", offsetof(t_PricedLine, Menge), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kPricedLineLayout{"t_PricedLine", sizeof(t_PricedLine),
                                                      kPricedLineFields};
static_assert(data::DescribesLayoutExactly(kPricedLineLayout));

constexpr char kPricedLineType = 'Q';

class TTbPricedLine : public data::TTypedTB<t_PricedLine> {
 public:
  explicit TTbPricedLine(data::TStdDb& db) : TTypedTB(db, kPricedLineType, 1, "TTbPricedLine") {
    InitRecord();
  }
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char, std::string& key) const override {
    key = data::KeyNumber(Of(record).Id);
    return static_cast<int>(key.size());
  }
};

data::TTableRegistry PricedTables() {
  data::TTableRegistry tables;
  tables.Register('A', kPricedLineType, data::TTableRegistry::FactoryOf<TTbPricedLine>());
  tables.RegisterDumpFormat(kPricedLineType, kPricedLineLayout);
  return tables;
}

class WaeConvertTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string(), 'A', 70);
    db_->SetMessages(&messages_);
    ASSERT_EQ(db_->DbCreate(), 0);
    restorer_ = std::make_unique<data::TTableRecordRestorer>(std::vector<data::TStdDb*>{db_.get()},
                                                             PricedTables());
    journal_.SetRecordRestorer(restorer_.get());
  }
  void TearDown() override {
    restorer_.reset();
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  std::vector<t_PricedLine> Lines() {
    TTbPricedLine table(*db_);
    std::vector<t_PricedLine> lines;
    for (bool more = table.GetFirstKey(""); more; more = table.GetNextKey("")) {
      lines.push_back(table.Rec());
    }
    return lines;
  }

  korvan::testing::TempDir dir_;
  korvan::testing::TempDir journal_dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> db_;
  data::TUndoRedo journal_{journal_dir_.path().string()};
  data::ScopedTableChangeObserver observing_{&journal_};
  std::unique_ptr<data::TTableRecordRestorer> restorer_;
};

TEST(WaeConvertFields, AmountsAreFoundInArraysAndNestedLayouts) {
  EXPECT_EQ(TdmWaeConvert::AmountOffsets(kPricedLineLayout),
            (std::vector<uint32_t>{52, 62, 72, 82, 92, 102, 112, 122}));
}

TEST_F(WaeConvertTest, ConvertedTotalsAreTheOldTotalsTimesTheRateAndOneUndoStepTakesThemBack) {
  std::mt19937 random(35);
  double total_dem = 0;
  {
    TTbPricedLine table(*db_);
    for (int32_t id = 1; id <= 200; ++id) {
      table.InitRecord();
      table.Rec().Id = id;
      const double price = static_cast<double>(random() % 1000000) / 100.0;
      table.Rec().EP = {price, id % 10 == 0 ? data::kOwnerCurrencyId : kDem};
      total_dem += price;
      for (auto& part : table.Rec().Anteile) part = {price / 6, kDem};
      table.Rec().Tail.Rest = {7.5, id == 7 ? int16_t{999} : kUnconvertedCurrencyId};
      table.Rec().Menge = 3.0;
      ASSERT_EQ(table.UpDateRec(), 0);
    }
  }
  const std::vector<t_PricedLine> before = Lines();

  TValueConverterSettings settings;
  settings.project_currency = kDem;
  const TAvaUiValueConverter converter(BuiltInList(), settings);
  const data::TTableRegistry tables = PricedTables();
  TdmWaeConvert convert(tables, converter, kEuroCurrencyId);
  TWaeConvertReport report;
  int64_t last_done = -1;
  journal_.StartTransaction(data::TStartItem(1, data::TOperationKind::okEdit, "Währung"));
  ASSERT_EQ(convert.ConvertDatabase(
                *db_, [&](const std::string&, int64_t done, int64_t) { last_done = done; }, report),
            0);
  journal_.EndTransaction();
  EXPECT_EQ(last_done, 200);
  EXPECT_EQ(report.records, 200);
  EXPECT_EQ(report.amounts, 200 * 7);
  ASSERT_EQ(report.lines.size(), 1u);
  EXPECT_NE(report.lines[0].find("Währung 999 unbekannt"), std::string::npos) << report.lines[0];

  double total_eur = 0;
  for (const t_PricedLine& line : Lines()) {
    EXPECT_EQ(+line.EP.IdWaehrung, kEur);
    EXPECT_EQ(+line.Anteile[5].IdWaehrung, kEur);
    EXPECT_EQ(+line.Tail.Rest.Betrag, 7.5);  // never converted, or of an unknown currency
    EXPECT_EQ(+line.Menge, 3.0);
    const double ep = line.EP.Betrag;
    EXPECT_NEAR(std::round(ep * 100), ep * 100, 1e-6);  // whole cents
    total_eur += ep;
  }
  // Each amount is rounded to the cent: the totals differ by at most half a cent each.
  EXPECT_NEAR(total_eur, total_dem / 1.95583, 200 * 0.005);

  ASSERT_EQ(journal_.UndoCaptions().size(), 1u);
  ASSERT_TRUE(journal_.PopUndo().ok());
  const std::vector<t_PricedLine> restored = Lines();
  ASSERT_EQ(restored.size(), before.size());
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(std::memcmp(&restored[i].Id, &before[i].Id,
                          sizeof(t_PricedLine) - offsetof(t_PricedLine, Id)),
              0);
  }
}

TEST(WaeConvertLog, EachRunStartsWithItsHeaderLine) {
  korvan::testing::TempDir dir;
  const std::string file = (dir.path() / "WaeKonv.LOG").string();
  TWaeConvertReport report;
  report.records = 3;
  report.amounts = 5;
  report.lines.push_back("DB_Lv: Hinweis");
  ASSERT_TRUE(AppendWaeConvertLog(file, "anna", "bau-pc", "DEM", "EUR", report));
  ASSERT_TRUE(AppendWaeConvertLog(file, "anna", "bau-pc", "EUR", "DEM", report));
  std::ifstream in(file, std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(content.find("] User: anna  Machine: bau-pc - DEM - EUR\r\nDB_Lv: Hinweis\r\n"
                         "3 Datensätze, 5 Beträge umgerechnet\r\n["),
            std::string::npos)
      << content;
  EXPECT_EQ(content.front(), '[');
}

}  // namespace
}  // namespace korvan::boq
