#include <gtest/gtest.h>

#include <cstring>

#include "boq/lv/beschr_record.h"
#include "boq/lv/hierarchie_record.h"
#include "boq/lv/lv_entry_records.h"
#include "boq/lv/lv_record.h"
#include "boq/lv/lv_test_support.h"
#include "boq/lv/struktur_record.h"
#include "boq/lv/tb_lv.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_hierarchie.h"
#include "boq/lv/tb_struktur.h"
#include "data/records/int_date.h"
#include "data/records/money_fields.h"
#include "data/tables/table_key.h"

namespace korvan::boq::testing {
namespace {

using data::KeyNumber;
using data::kNullId;

class LvTableDefaults : public LvDbTest {};

TEST_F(LvTableDefaults, ANewLvHeaderHasTheDefaultsOfANewLv) {
  TTbLV table(*db_);
  table.InitRecord();
  const t_Lv_DB_VERSION_3100& lv = table.Rec();
  EXPECT_EQ(lv.Header.RecTyp, kLvTableType);
  EXPECT_EQ(+lv.Header.RecLen, 1912);
  EXPECT_EQ(+lv.FId, kNullId);
  EXPECT_EQ(+lv.SzPrj, 100000);
  EXPECT_EQ(+lv.IdCad, kNullId);
  EXPECT_EQ(+lv.IdLkt, kNullId);
  EXPECT_EQ(lv.DBState, static_cast<uint8_t>(TDBLVState::lvOK));
  EXPECT_EQ(lv.Status, 'N');
  EXPECT_EQ(lv.KalkStatus, 'N');
  EXPECT_EQ(lv.LvArt, ' ');
  EXPECT_EQ(lv.AngVerfahren, 'P');
  EXPECT_EQ(lv.KalkVerfahren, 'Z');
  EXPECT_EQ(lv.LvForm, 'S');
  EXPECT_EQ(lv.EPGenauigkeit, 2);
  EXPECT_EQ(lv.xSchrittweite, 1);
  EXPECT_EQ(lv.Autocalc, 1);
  EXPECT_EQ(lv.ForceTeilmengen, 1);
  EXPECT_EQ(lv.UseLongKT, 128);
  EXPECT_EQ(lv.Zeilenart, '9');
  EXPECT_EQ(lv.VergabeArt, 'N');
  EXPECT_EQ(lv.Zugriffsrecht, 'S');
  EXPECT_EQ(lv.LBArt, 'P');
  EXPECT_EQ(lv.NachtrPhase, ' ');
  EXPECT_EQ(lv.GwlEinheit.Get(), "Months");
  EXPECT_EQ(+lv.Ust, -1.0);
  EXPECT_EQ(+lv.UstAbrechnung, -1.0);
  EXPECT_EQ(+lv.IdWae, -1);
  EXPECT_EQ(lv.LVWaehrung, static_cast<uint8_t>(TWaehrungstyp::wtLand));
  EXPECT_EQ(+lv.Datum, data::TodayAsIntDate());
  EXPECT_EQ(+lv.ErDatum, 0);
  EXPECT_EQ(lv.deckblatt, 1);
  EXPECT_EQ(lv.AngebotsmengenGleichLvMengen, 1);
  for (const uint8_t tri_state : {lv.useKatOZ, lv.unterschrift, lv.lohnmaterial}) {
    EXPECT_EQ(tri_state, 128);
  }
  for (int level = 0; level < 10; ++level) {
    EXPECT_EQ(+lv.OZSchrittweiteGT[level], -1);
    EXPECT_EQ(lv.OZAutoNumGT[level], 128);
    EXPECT_EQ(lv.OZDurchNumGT[level], 0);
  }
  const LvDruckOptionen& print = lv.Druckoptionen;
  for (const uint8_t on : {print.DruckeLV, print.KaBetriebsstoff, print.KaMaschinen,
                           print.KaSonstige, print.KaFremd, print.LKTextDrucken}) {
    EXPECT_EQ(on, 1);
  }
  for (const uint8_t open :
       {print.DruckeVortext, print.KaLohn, print.bFormFeedBG, print.DruckeMengenErmittlung}) {
    EXPECT_EQ(open, 128);
  }
  for (const TCashDiscount& term : lv.CashDiscount) {
    EXPECT_EQ(+term.DiscountPcnt, 0.0);
    EXPECT_EQ(+term.CashDiscDate, 0);
    EXPECT_EQ(term.CashDiscDays.Kind, 3);
  }
  int amounts = 0;
  data::ForEachMoneyField(kLvLayout, [&](uint32_t offset) {
    int16_t currency = 0;
    std::memcpy(&currency, table.CurrentRecord().data() + offset + 8, 2);
    EXPECT_EQ(currency, -1) << "amount at " << offset;
    ++amounts;
  });
  EXPECT_EQ(amounts, 54 + 6);
}

TEST_F(LvTableDefaults, LevelsStructureRowsAndItemsStartAsTheirTablesSay) {
  TTbLvHierarchie levels(*db_);
  EXPECT_EQ(+levels.Rec().IdLv, kNullId);
  EXPECT_EQ(+levels.Rec().SzLv, kNullId);
  EXPECT_EQ(levels.Rec().Num, 1);
  EXPECT_EQ(levels.Rec().Alignment, static_cast<uint8_t>(TBoQBkdnAligment::bbaLeft));
  TTbStruktur rows(*db_);
  EXPECT_EQ(+rows.Rec().IdLv, kNullId);
  EXPECT_EQ(+rows.Rec().IdBgBeschr, kNullId);
  EXPECT_EQ(rows.Rec().KzBgBeschr, 'P');
  EXPECT_EQ(+rows.Rec().ZuBg, 0);
  EXPECT_EQ(+rows.Rec().SzLv, 0);
  TTbLvBeschr items(*db_);
  EXPECT_EQ(+items.Rec().LvBgBeschr1.ID, kNullId);
  EXPECT_EQ(+items.Rec().LvBgBeschr1.IDBeschr, kNullId);
  EXPECT_EQ(+items.Rec().LvBeschr2.IdBezug, kNullId);
  EXPECT_EQ(+items.Rec().LvBeschr2.SchaetzEP.IdWaehrung, -1);
  EXPECT_EQ(+items.Rec().LvBgBeschr1.SchaetzGP.IdWaehrung, -1);
}

TEST_F(LvTableDefaults, KeysAreBuiltFromTheirFieldsInOrder) {
  TTbStruktur rows(*db_);
  rows.Rec().IdLv = 7;
  rows.Rec().SzLv = 3;
  rows.Rec().ZuBg = data::kRootParentId;
  rows.Rec().SzBg = 2;
  rows.Rec().ZuPos = 0;
  rows.Rec().SzPos = 0;
  rows.Rec().IdBgBeschr = 42;
  rows.Rec().KzBgBeschr = '\0';
  std::string key;
  EXPECT_EQ(rows.GetKeyString(rows.CurrentRecord(), '1', key), 11);
  EXPECT_EQ(key, "00000000042");
  EXPECT_EQ(rows.GetKeyString(rows.CurrentRecord(), '2', key), 22);
  EXPECT_EQ(key, "0000000000700000000003");
  EXPECT_EQ(rows.GetKeyString(rows.CurrentRecord(), '3', key), 56);
  EXPECT_EQ(key, KeyNumber(7) + "0" + "02147483646" + KeyNumber(2) + KeyNumber(0) + KeyNumber(0));
  EXPECT_EQ(rows.GetKeyString(rows.CurrentRecord(), '4', key), 55);
  EXPECT_EQ(key, KeyNumber(7) + "02147483646" + KeyNumber(2) + KeyNumber(0) + KeyNumber(0));
  EXPECT_EQ(rows.GetKeyString(rows.CurrentRecord(), '5', key), -1);

  TTbLV lvs(*db_);
  lvs.Rec().FId = 5;
  lvs.Rec().SzPrj = 100001;
  EXPECT_EQ(lvs.GetKeyString(lvs.CurrentRecord(), '3', key), 23);
  EXPECT_EQ(key,
            "00000100001"
            "9"
            "00000000005");
  TTbLvHierarchie levels(*db_);
  levels.Rec().IdLv = 5;
  levels.Rec().SzLv = 6;
  EXPECT_EQ(levels.GetKeyString(levels.CurrentRecord(), '1', key), 22);
  EXPECT_EQ(key, KeyNumber(5) + KeyNumber(6));
}

// A header written by an older, shorter layout: what it had is kept, what it lacks
// gets the defaults of a new header.
class TTbOlderLv : public data::TStdTB {
 public:
  static constexpr int kOldLength = 700;
  explicit TTbOlderLv(data::TStdDb& db)
      : TStdTB(db, kLvTableType, kOldLength, 0, "TTbOlderLv"), keys_(db) {
    InitRecord();
  }
  char GetMaxIndex() const override { return keys_.GetMaxIndex(); }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override {
    return keys_.GetKeyString(record, index, key);
  }

 private:
  TTbLV keys_;
};

TEST_F(LvTableDefaults, AnOlderHeaderIsWidenedWithTheDefaultsWhenRead) {
  {
    TTbOlderLv older(*db_);
    t_Lv_DB_VERSION_3100 old{};
    old.FId = 9;
    old.SzPrj = 100000;
    old.Status = 'V';
    old.Zeilenart = '9';
    old.Summe.Betrag = 1234.5;
    std::memcpy(older.CurrentRecord().data() + 48, reinterpret_cast<const uint8_t*>(&old) + 48,
                TTbOlderLv::kOldLength - 48);
    ASSERT_EQ(older.UpDateRec(), 0);
  }
  TTbLV lvs(*db_);
  ASSERT_TRUE(lvs.FindLv(9));
  EXPECT_EQ(+lvs.Rec().Header.Version, TTbLV::kLayoutVersion);
  EXPECT_EQ(lvs.Rec().Status, 'V');
  EXPECT_EQ(+lvs.Rec().Summe.Betrag, 1234.5);
  EXPECT_EQ(+lvs.Rec().UstAbrechnung, -1.0);  // at 788, past the old layout
  EXPECT_EQ(+lvs.Rec().GepruefteSumBrutto.IdWaehrung, -1);
  EXPECT_EQ(lvs.Rec().Name.Get(), "");
}

}  // namespace
}  // namespace korvan::boq::testing
