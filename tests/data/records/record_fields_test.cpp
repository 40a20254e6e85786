#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "data/records/framework_records.h"
#include "data/records/null_values.h"
#include "data/records/record_compare.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"
#include "data/test_tables.h"

namespace korvan::data {
namespace {

// Every layout of the program asserts at compile time that its description fits; here
// what the check refuses.
TEST(RecordLayout, DescriptionCheckRefusesGapsOverlapsAndWrongSizes) {
  static constexpr FieldDescriptor gap[] = {{"A", 0, 4, FieldType::kInt32},
                                            {"B", 5, 4, FieldType::kInt32}};
  static constexpr FieldDescriptor overlap[] = {{"A", 0, 4, FieldType::kInt32},
                                                {"B", 3, 4, FieldType::kInt32}};
  static constexpr FieldDescriptor wrong_size[] = {{"A", 0, 2, FieldType::kInt32}};
  static constexpr FieldDescriptor short_tail[] = {{"A", 0, 4, FieldType::kInt32}};
  static constexpr FieldDescriptor bad_array[] = {{"A", 0, 15, FieldType::kWaeBetragArray}};
  static constexpr FieldDescriptor no_layout[] = {{"A", 0, 48, FieldType::kNested}};
  EXPECT_FALSE(DescribesLayoutExactly({"gap", 9, gap}));
  EXPECT_FALSE(DescribesLayoutExactly({"overlap", 7, overlap}));
  EXPECT_FALSE(DescribesLayoutExactly({"wrong_size", 2, wrong_size}));
  EXPECT_FALSE(DescribesLayoutExactly({"short_tail", 8, short_tail}));
  EXPECT_FALSE(DescribesLayoutExactly({"bad_array", 15, bad_array}));
  EXPECT_FALSE(DescribesLayoutExactly({"no_layout", 48, no_layout}));
}

TEST(RecordLayout, FindsFieldsByPath) {
  const FoundField version = FindField(kCounterLayout, "Header.Version");
  ASSERT_TRUE(version.found);
  EXPECT_EQ(version.field.offset, offsetof(storage::TDbRecordHeader, Version));
  EXPECT_EQ(version.field.type, FieldType::kUInt16);
  EXPECT_EQ(FindField(kCounterLayout, "LastId").field.offset, offsetof(t_Counter, LastId));

  static constexpr FieldDescriptor with_amount[] = {{"Id", 0, 4, FieldType::kInt32},
                                                    {"Budget", 4, 10, FieldType::kWaeBetrag}};
  const FoundField currency = FindField({"amount", 14, with_amount}, "Budget.IdWaehrung");
  ASSERT_TRUE(currency.found);
  EXPECT_EQ(currency.field.offset, 12u);
  EXPECT_EQ(currency.field.type, FieldType::kInt16);

  for (const char* path : {"Lastid", "LastId.X", "Header.Nope", ""}) {
    EXPECT_FALSE(FindField(kCounterLayout, path).found) << path;  // exact names, no nesting
  }
}

TEST(RecordValues, TriStatesAndDamagedBytes) {
  EXPECT_FALSE(ResolveTriState(0, true));
  EXPECT_TRUE(ResolveTriState(1, false));
  EXPECT_TRUE(ResolveTriState(128, true));
  EXPECT_FALSE(ResolveTriState(128, false));
  // A damaged byte falls back to the default rather than to an arbitrary value.
  EXPECT_EQ(DecodeTriState(77), TriState::kDefault);
  EXPECT_FALSE(IsValidTriStateByte(77));
  EXPECT_TRUE(IsValidTriStateByte(128));
  EXPECT_FALSE(IsNullId(kRootParentId));
}

using Names = std::vector<std::string>;

TEST(RecordCompare, ReportsEachDifferingFieldByName) {
  testing::t_TestRate a{};
  a.Header.RecTyp = testing::kTestRateType;
  a.Bez.Set("Euro");
  a.Symbol.Set("EUR");
  a.Faktor = 1.0;
  testing::t_TestRate b = a;
  EXPECT_TRUE(RecordsEqual(testing::kTestRateLayout, BytesOf(a), BytesOf(b)));
  b.Faktor = 1.95583;
  b.Symbol.Set("DEM");
  b.kzAktiv = 1;
  b.Header.Version = 2;
  EXPECT_EQ(DifferingFields(testing::kTestRateLayout, BytesOf(a), BytesOf(b)),
            (Names{"Header.Version", "Symbol", "Faktor", "kzAktiv"}));
  EXPECT_EQ(
      DifferingFields(testing::kTestRateLayout, BytesOf(a), BytesOf(b), {.skip_header = true}),
      (Names{"Symbol", "Faktor", "kzAktiv"}));

  // Short strings by their characters only; floating point by value.
  b = a;
  b.Bez.chars[10] = 'x';
  b.Header.ModifiedById[20] = 'y';
  a.Faktor = 0.0;
  b.Faktor = -0.0;
  EXPECT_TRUE(RecordsEqual(testing::kTestRateLayout, BytesOf(a), BytesOf(b)));
  a.Faktor = b.Faktor = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(RecordsEqual(testing::kTestRateLayout, BytesOf(a), BytesOf(b)));
  a.Faktor = 1.0;
  b.Faktor = std::nextafter(1.0, 2.0);
  b.Bez.length = 250;  // a damaged length reads as the full capacity
  EXPECT_EQ(DifferingFields(testing::kTestRateLayout, BytesOf(a), BytesOf(b)),
            (Names{"Bez", "Faktor"}));
}

TEST(RecordCompare, AmountsPartByPartArraysAndShortRecords) {
  static constexpr FieldDescriptor kFields[] = {{"Preis", 0, 10, FieldType::kWaeBetrag},
                                                {"Anteile", 10, 20, FieldType::kWaeBetragArray}};
  static constexpr RecordLayout kLayout{"amounts", 30, kFields};
  uint8_t a[30] = {}, b[30] = {};
  b[8] = 4;  // the currency id
  EXPECT_EQ(DifferingFields(kLayout, a, b), (Names{"Preis.IdWaehrung"}));
  b[8] = 0;
  b[29] = 1;
  EXPECT_EQ(DifferingFields(kLayout, a, b), (Names{"Anteile"}));

  t_Counter counter{};
  counter.Kennung.Set("LV");
  counter.LastId = 9;
  const RecordBytes full = BytesOf(counter);
  EXPECT_EQ(DifferingFields(kCounterLayout, full, full.first(60)), (Names{"LastId"}));
  EXPECT_TRUE(RecordsEqual(kCounterLayout, full.first(60), full.first(60)));
  EXPECT_EQ(DifferingFields(kCounterLayout, full, full.first(0)).size(), 10u);  // 7 + 3
}

TEST(RecordShortString, StoresThroughTheCodePageAndCutsBetweenCharacters) {
  string10 s;
  std::memset(&s, 0x5A, sizeof s);  // garbage left from an earlier record
  Cp1252Report report;
  EXPECT_TRUE(s.Set("Maß € „x“", &report).Exact(report));
  EXPECT_EQ(s.Raw(), "Ma\337 \x80 \x84x\x93");
  EXPECT_EQ(s.Get(), "Maß € „x“");
  EXPECT_EQ(s.chars[9], '\0') << "equal texts give equal stored bytes";
  const ShortStringStore unmappable = s.Set("Beton C\u2082\u2080", &report);
  EXPECT_FALSE(unmappable.Exact(report));
  EXPECT_EQ(s.Get(), "Beton C??");

  string3 three;
  const ShortStringStore cut = three.Set("äöüß");  // 8 UTF-8 bytes, 4 characters
  EXPECT_TRUE(cut.truncated);
  EXPECT_EQ(cut.dropped_chars, 1u);
  EXPECT_EQ(three.Get(), "äöü");
  EXPECT_FALSE(three.Set("€€€").truncated);
  ShortString<255> longest;
  EXPECT_TRUE(longest.Set(std::string(300, 'x')).truncated);
  EXPECT_EQ(longest.Get(), std::string(255, 'x'));
}

TEST(RecordShortString, DamagedLengthByteIsClampedToCapacity) {
  // A length byte beyond the field: reads stay inside it (ASan watches the guard bytes).
  struct {
    string4 field;
    char guard[4];
  } buffer;
  std::memcpy(&buffer, "\377abcdXXXX", 9);
  EXPECT_FALSE(buffer.field.LengthIsValid());
  EXPECT_EQ(buffer.field.Get(), "abcd");
  std::memcpy(&buffer, "\002ab\x9F\x80", 5);
  EXPECT_TRUE(buffer.field.LengthIsValid());
  string4 same;
  same.Set("ab");
  EXPECT_TRUE(buffer.field == same);  // bytes after a valid length do not count
  same.Set("ab ");
  EXPECT_FALSE(buffer.field == same);
}

}  // namespace
}  // namespace korvan::data
