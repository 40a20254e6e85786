#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "data/currency_records.h"
#include "data/framework_records.h"
#include "data/record_compare.h"
#include "data/wae_betrag.h"

namespace korvan::data {
namespace {

t_Waehrung Euro() {
  t_Waehrung w{};
  w.Header.RecLen = sizeof w;
  w.Header.RecTyp = 'W';
  w.ID = kEuroCurrencyId;
  w.Land.Set("Europäische Union");
  w.Bez.Set("Euro");
  w.Symbol.Set("EUR");
  w.Faktor = 1.0;
  w.Nachkomma = 2;
  w.kzBasis = 1;
  w.Nachkomma2 = 2;
  w.IdLand = kEuroCurrencyId;
  return w;
}

using Names = std::vector<std::string>;

TEST(RecordCompare, ReportsEachDifferingFieldByName) {
  const t_Waehrung a = Euro();
  t_Waehrung b = a;
  EXPECT_TRUE(RecordsEqual(kWaehrungLayout, BytesOf(a), BytesOf(b)));

  b.Faktor = 1.95583;
  b.Symbol.Set("DEM");
  b.kzLand = 1;
  b.Header.Version = 2;
  EXPECT_EQ(DifferingFields(kWaehrungLayout, BytesOf(a), BytesOf(b)),
            (Names{"Header.Version", "Symbol", "Faktor", "kzLand"}));
  EXPECT_EQ(DifferingFields(kWaehrungLayout, BytesOf(a), BytesOf(b), {.skip_header = true}),
            (Names{"Symbol", "Faktor", "kzLand"}));
}

TEST(RecordCompare, ShortStringsCompareByTheirCharactersOnly) {
  t_Waehrung a = Euro();
  t_Waehrung b = a;
  // Leftover bytes after the length differ: still the same text.
  b.Bez.chars[10] = 'x';
  b.Header.ModifiedById[20] = 'y';
  EXPECT_TRUE(RecordsEqual(kWaehrungLayout, BytesOf(a), BytesOf(b)));
  // A damaged length byte reads as the full capacity, so it differs from the short text.
  b.Bez.length = 250;
  EXPECT_EQ(DifferingFields(kWaehrungLayout, BytesOf(a), BytesOf(b)), (Names{"Bez"}));
}

TEST(RecordCompare, FloatingPointByValue) {
  t_Waehrung a = Euro();
  t_Waehrung b = a;
  a.Faktor = 0.0;
  b.Faktor = -0.0;
  EXPECT_TRUE(RecordsEqual(kWaehrungLayout, BytesOf(a), BytesOf(b)));
  a.Faktor = b.Faktor = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(RecordsEqual(kWaehrungLayout, BytesOf(a), BytesOf(b)));
  b.Faktor = std::nextafter(a.Faktor, 1.0);
  a.Faktor = 1.0;
  b.Faktor = std::nextafter(1.0, 2.0);
  EXPECT_EQ(DifferingFields(kWaehrungLayout, BytesOf(a), BytesOf(b)), (Names{"Faktor"}));
}

TEST(RecordCompare, AmountsPartByPartArraysByteByByte) {
  static constexpr FieldDescriptor kFields[] = {{"Preis", 0, 10, FieldType::kWaeBetrag},
                                                {"Anteile", 10, 20, FieldType::kWaeBetragArray}};
  static constexpr RecordLayout kLayout{"amounts", 30, kFields};
  uint8_t a[30] = {}, b[30] = {};
  const t_WaeBetrag price{5.0, 3};
  std::memcpy(a, &price, 10);
  std::memcpy(b, &price, 10);
  b[8] = 4;  // the currency id
  EXPECT_EQ(DifferingFields(kLayout, a, b), (Names{"Preis.IdWaehrung"}));
  b[8] = 3;
  b[29] = 1;
  EXPECT_EQ(DifferingFields(kLayout, a, b), (Names{"Anteile"}));
}

TEST(RecordCompare, ShortRecordsDifferInTheMissingFieldsOnly) {
  t_Counter counter{};
  counter.KzBezug = 'A';
  counter.Kennung.Set("LV");
  counter.LastId = 9;
  const RecordBytes full = BytesOf(counter);
  const RecordBytes cut = full.first(60);  // LastId missing
  EXPECT_EQ(DifferingFields(kCounterLayout, full, cut), (Names{"LastId"}));
  EXPECT_TRUE(RecordsEqual(kCounterLayout, cut, cut));
  EXPECT_EQ(DifferingFields(kCounterLayout, full, full.first(0)).size(), 10u);  // 7 + 3
}

}  // namespace
}  // namespace korvan::data
