#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "data/currency_records.h"
#include "data/framework_records.h"
#include "data/null_values.h"
#include "data/unit_record.h"
#include "data/wae_betrag.h"

namespace korvan::data {
namespace {

TEST(RecordLayout, DescriptionsCoverTheirStructsExactly) {
  for (const RecordLayout* layout :
       {&kRecordHeaderLayout, &kWaeBetragLayout, &kDbInfoLayout, &kCounterLayout, &kEinheitLayout,
        &kWaehrungLayout, &kPrjWaeFaktorLayout}) {
    EXPECT_TRUE(DescribesLayoutExactly(*layout)) << layout->name;
  }
  EXPECT_EQ(kCounterLayout.size, 64u);
  EXPECT_EQ(kDbInfoLayout.size, 60u);
  EXPECT_EQ(kEinheitLayout.size, 113u);
  EXPECT_EQ(kWaehrungLayout.size, 191u);
  EXPECT_EQ(kPrjWaeFaktorLayout.size, 86u);
}

TEST(RecordLayout, FaultyDescriptionsAreRejected) {
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

  const FoundField last_id = FindField(kCounterLayout, "LastId");
  ASSERT_TRUE(last_id.found);
  EXPECT_EQ(last_id.field.offset, offsetof(t_Counter, LastId));

  static constexpr FieldDescriptor with_amount[] = {{"Id", 0, 4, FieldType::kInt32},
                                                    {"Budget", 4, 10, FieldType::kWaeBetrag}};
  static constexpr RecordLayout amount_layout{"amount", 14, with_amount};
  const FoundField currency = FindField(amount_layout, "Budget.IdWaehrung");
  ASSERT_TRUE(currency.found);
  EXPECT_EQ(currency.field.offset, 12u);
  EXPECT_EQ(currency.field.type, FieldType::kInt16);

  EXPECT_FALSE(FindField(kCounterLayout, "Lastid").found);    // names are exact
  EXPECT_FALSE(FindField(kCounterLayout, "LastId.X").found);  // not nested
  EXPECT_FALSE(FindField(kCounterLayout, "Header.Nope").found);
  EXPECT_FALSE(FindField(kCounterLayout, "").found);
}

TEST(RecordValues, NullIdsAndTriStates) {
  EXPECT_TRUE(IsNullId(2147483647));
  EXPECT_FALSE(IsNullId(kRootParentId));
  EXPECT_EQ(kRootParentId, 2147483646);
  EXPECT_TRUE(IsNullId16(32767));
  EXPECT_FALSE(IsNullId16(-1));

  EXPECT_FALSE(ResolveTriState(0, true));
  EXPECT_TRUE(ResolveTriState(1, false));
  EXPECT_TRUE(ResolveTriState(128, true));
  EXPECT_FALSE(ResolveTriState(128, false));
  // A damaged byte falls back to the default rather than to an arbitrary value.
  EXPECT_EQ(DecodeTriState(77), TriState::kDefault);
  EXPECT_FALSE(IsValidTriStateByte(77));
  EXPECT_TRUE(IsValidTriStateByte(128));

  EXPECT_EQ(DecodeValFormat(2), TValFormat::vfFtIn64);
  EXPECT_EQ(DecodeValFormat(200), TValFormat::vfNONE);
}

TEST(RecordValues, AmountLayoutIsLittleEndianDoubleThenCurrency) {
  t_WaeBetrag amount{1.5, kOwnerCurrencyId};
  unsigned char bytes[sizeof amount];
  std::memcpy(bytes, &amount, sizeof amount);
  const double expected = 1.5;
  EXPECT_EQ(std::memcmp(bytes, &expected, 8), 0);
  EXPECT_EQ(bytes[8], 0xFF);
  EXPECT_EQ(bytes[9], 0xFF);

  // A record with the currency written at its stated offset reads back.
  t_Waehrung currency{};
  currency.ID = kEuroCurrencyId;
  currency.Symbol.Set("EUR");
  currency.Faktor = 1.0;
  unsigned char raw[sizeof currency];
  std::memcpy(raw, &currency, sizeof currency);
  EXPECT_EQ(raw[164], 3);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(raw + 165), 3), "EUR");
  int32_t id = 0;
  std::memcpy(&id, raw + 48, 4);
  EXPECT_EQ(id, 32766);
}

}  // namespace
}  // namespace korvan::data
