#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "data/records/field_descriptor.h"
#include "data/records/null_values.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "data/tables/table_registry.h"

// Tables of the framework's tests only: they stand for the domain tables, so that the table
// layer, walks, the integrity check and rebuild are tested without any domain library.
namespace korvan::data::testing {

#pragma pack(push, 1)

// A rate: unique id (index "1") and a group many rates share (index "2").
struct t_TestRate {
  TDbRecordHeader Header;
  int32_t Id;
  int32_t Group;
  string20 Bez;
  string4 Symbol;
  double Faktor;
  uint8_t kzAktiv;  // Boolean
};

// A measure of one language: language + id (index "1", unique), language + sort number
// (index "2"); 16-bit ids.
struct t_TestMeasure {
  TDbRecordHeader Header;
  int16_t IdLang;
  int16_t IdMeasure;
  int16_t Sz;
};

#pragma pack(pop)

static_assert(sizeof(t_TestRate) == 91);
static_assert(offsetof(t_TestRate, Id) == 48);
static_assert(offsetof(t_TestRate, Group) == 52);
static_assert(offsetof(t_TestRate, Bez) == 56);
static_assert(offsetof(t_TestRate, Symbol) == 77);
static_assert(offsetof(t_TestRate, Faktor) == 82);
static_assert(offsetof(t_TestRate, kzAktiv) == 90);
static_assert(sizeof(t_TestMeasure) == 54);
static_assert(offsetof(t_TestMeasure, IdLang) == 48);
static_assert(offsetof(t_TestMeasure, IdMeasure) == 50);
static_assert(offsetof(t_TestMeasure, Sz) == 52);

inline constexpr FieldDescriptor kTestRateFields[] = {
    HeaderField(),
    {"Id", offsetof(t_TestRate, Id), 4, FieldType::kInt32},
    {"Group", offsetof(t_TestRate, Group), 4, FieldType::kInt32},
    {"Bez", offsetof(t_TestRate, Bez), 21, FieldType::kShortString},
    {"Symbol", offsetof(t_TestRate, Symbol), 5, FieldType::kShortString},
    {"Faktor", offsetof(t_TestRate, Faktor), 8, FieldType::kDouble},
    {"kzAktiv", offsetof(t_TestRate, kzAktiv), 1, FieldType::kBool},
};
inline constexpr RecordLayout kTestRateLayout{"t_TestRate", sizeof(t_TestRate), kTestRateFields};
static_assert(DescribesLayoutExactly(kTestRateLayout));

// Letters between the framework's own ("V", "Z") and apart from them, so that walks have
// neighbours on both sides.
inline constexpr char kTestMeasureType = 'M';
inline constexpr char kTestRateType = 'P';

class TTbTestRate : public TTypedTB<t_TestRate> {
 public:
  explicit TTbTestRate(TStdDb& db) : TTypedTB(db, kTestRateType, 1, "TTbTestRate") { InitRecord(); }
  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().Id = kNullId;
    Rec().Group = kNullId;
  }
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override {
    const t_TestRate rate = Of(record);
    if (index != '1' && index != '2') return -1;
    key = KeyNumber(index == '1' ? rate.Id : rate.Group);
    return static_cast<int>(key.size());
  }
  std::string CurrentRecordToString() const override { return std::to_string(Rec().Id); }
};

class TTbTestMeasure : public TTypedTB<t_TestMeasure> {
 public:
  explicit TTbTestMeasure(TStdDb& db) : TTypedTB(db, kTestMeasureType, 1, "TTbTestMeasure") {
    InitRecord();
  }
  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().IdLang = Rec().IdMeasure = Rec().Sz = kNullId16;
  }
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override {
    const t_TestMeasure measure = Of(record);
    if (index != '1' && index != '2') return -1;
    key = KeyNumber16(measure.IdLang) + KeyNumber16(index == '1' ? measure.IdMeasure : measure.Sz);
    return static_cast<int>(key.size());
  }
};

// The framework's tables and the test tables, for every database type.
inline TTableRegistry TestTables() {
  TTableRegistry registry;
  RegisterDataTables(registry);
  registry.Register(TTableRegistry::kAnyDbType, kTestRateType,
                    TTableRegistry::FactoryOf<TTbTestRate>());
  registry.Register(TTableRegistry::kAnyDbType, kTestMeasureType,
                    TTableRegistry::FactoryOf<TTbTestMeasure>());
  return registry;
}

}  // namespace korvan::data::testing
