#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <regex>
#include <set>

#include "data/common/guid_text.h"
#include "data/integrity/database_recovery.h"
#include "data/records/short_string.h"
#include "data/tables/std_tb_test_support.h"
#include "data/tables/table_registry.h"
#include "data/test_tables.h"

namespace korvan::data::testing {
namespace {

#pragma pack(push, 1)
struct t_TestGuid {
  storage::TDbRecordHeader Header;
  int32_t Id;
  ShortString<38> Guid;
  int32_t Payload;
  char Kz;
};
#pragma pack(pop)

// A table whose records carry a GUID, indexed by id ("1") and by GUID ("2").
class TTbTestGuid : public TTypedTB<t_TestGuid> {
 public:
  TTbTestGuid(TStdDb& db, char type, std::string name, bool mandatory)
      : TTypedTB(db, type, 1, std::move(name)), FMandatory(mandatory) {
    InitRecord();
  }
  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().Id = kNullId;
    Rec().Guid.Clear();
    Rec().Payload = 0;
    Rec().Kz = 'A';
  }
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override {
    const t_TestGuid guid = Of(record);
    key = index == '1' ? KeyNumber(guid.Id) : KeyText(guid.Guid.Raw(), 38) + KeyNumber(guid.Id);
    return static_cast<int>(key.size());
  }
  std::optional<TGuidField> GuidField(RecordView) const override {
    return TGuidField{static_cast<int>(offsetof(t_TestGuid, Guid)), 38, FMandatory};
  }
  std::string CurrentRecordToString() const override { return "ID=" + std::to_string(Rec().Id); }

 private:
  bool FMandatory;
};

constexpr char kDbType = 'E';
constexpr int kGuidKeyLength = 60;  // room for a GUID in a key
constexpr char kMandatoryType = 'G';
constexpr char kOptionalType = 'H';

TTableRegistry TestRegistry() {
  TTableRegistry registry = TestTables();
  for (const auto& [type, name] : {std::pair{kMandatoryType, "TTbTestGuid"},
                                   std::pair{kOptionalType, "TTbTestGuidOptional"}}) {
    registry.Register(kDbType, type, [type, name](TStdDb& db) -> std::unique_ptr<TStdTB> {
      return std::make_unique<TTbTestGuid>(db, type, name, type == kMandatoryType);
    });
  }
  return registry;
}

// A record as written, and whether its GUID must survive the rebuild.
struct Input {
  char type;
  int32_t id;
  std::string guid;
  bool kept;
};

const std::regex kBraced(
    "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}");
const std::regex kBare("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");

constexpr char kGuidA[] = "{1B4E28BA-2FA1-11D2-883F-0016D3CCA427}";
constexpr char kGuidB[] = "{6FA459EA-EE8A-3CA4-894E-DB77E160355E}";
constexpr char kGuidBLowerBare[] = "6fa459ea-ee8a-3ca4-894e-db77e160355e";
constexpr char kGuidC[] = "{886313E1-3B8A-5372-9B90-0C9AEE199E5D}";
constexpr char kGuidNull[] = "{00000000-0000-0000-0000-000000000000}";
constexpr char kGuidX[] = "0F8FAD5B-D9CB-469F-A165-70867728950E";

// In data-file order: the first holder of a GUID keeps it.
const std::vector<Input> kInputs = {
    {kMandatoryType, 1, kGuidA, true},
    {kOptionalType, 1, kGuidA, true},  // the same GUID in another table is no duplicate
    {kMandatoryType, 2, kGuidA, false},
    {kMandatoryType, 3, kGuidB, true},
    {kMandatoryType, 4, kGuidBLowerBare, false},  // the same GUID, written otherwise
    {kMandatoryType, 5, "", false},               // mandatory and missing
    {kMandatoryType, 6, kGuidNull, false},
    {kOptionalType, 2, kGuidX, true},
    {kOptionalType, 3, kGuidX, false},
    {kOptionalType, 4, "", true},  // optional: empty stays empty
    {kOptionalType, 5, "", true},
    {kMandatoryType, 7, kGuidC, true},
};

class RebuildGuidTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TStdDb db("DB_Stamm", dir_.path().string(), kDbType, kGuidKeyLength);
    ASSERT_EQ(db.DbCreate(), 0);
    TTbTestGuid mandatory(db, kMandatoryType, "TTbTestGuid", true);
    TTbTestGuid optional(db, kOptionalType, "TTbTestGuidOptional", false);
    for (const Input& input : kInputs) {
      TTbTestGuid& table = input.type == kMandatoryType ? mandatory : optional;
      table.InitRecord();
      table.Rec().Id = input.id;
      table.Rec().Guid.SetRaw(input.guid);
      table.Rec().Payload = input.id * 1000 + input.type;
      table.Rec().Kz = static_cast<char>('K' + input.id);
      ASSERT_EQ(table.UpDateRec(), 0);
    }
    ASSERT_EQ(db.DbClose(), 0);
  }
  void TearDown() override { TStdDbDatas::Instance().ReleaseEmpty(); }

  DatabaseRebuild Rebuild() {
    return RebuildDatabase(dir_.path().string() + "/", "DB_Stamm", kDbType, kGuidKeyLength,
                           TestRegistry());
  }
  // The records of both tables after a rebuild, by type and id.
  std::map<std::pair<char, int32_t>, t_TestGuid> Stored() {
    TStdDb db("DB_Stamm", dir_.path().string(), kDbType, kGuidKeyLength);
    EXPECT_EQ(db.DbOpen(false), 0);
    EXPECT_TRUE(storage::CheckKeyFile(db.Handle()).empty());
    EXPECT_TRUE(storage::CheckDataFile(db.Handle()).problems.empty());
    std::map<std::pair<char, int32_t>, t_TestGuid> stored;
    for (const char type : {kMandatoryType, kOptionalType}) {
      TTbTestGuid table(db, type, "", false);
      for (bool found = table.GetFirstKey(""); found; found = table.GetNextKey()) {
        stored[{type, table.Rec().Id}] = table.Rec();
        // The GUID index was built from the record as written.
        TTbTestGuid lookup(db, type, "", false);
        EXPECT_TRUE(
            lookup.GetKey(KeyText(table.Rec().Guid.Raw(), 38) + KeyNumber(table.Rec().Id), '2'))
            << type << table.Rec().Id;
      }
    }
    return stored;
  }

  korvan::testing::TempDir dir_;
};

std::vector<std::string> LinesWith(const std::vector<std::string>& lines, const std::string& part) {
  std::vector<std::string> found;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
               [&](const std::string& line) { return line.find(part) != std::string::npos; });
  return found;
}

TEST_F(RebuildGuidTest, DuplicateAndMissingGuidsAreReplacedEverythingElseKept) {
  const DatabaseRebuild result = Rebuild();
  ASSERT_TRUE(result.ok()) << result.error;
  EXPECT_EQ(result.records_copied, static_cast<int>(kInputs.size()));
  EXPECT_EQ(result.records_not_valid, 0);
  EXPECT_EQ(result.keys_not_entered, 0);

  const auto stored = Stored();
  ASSERT_EQ(stored.size(), kInputs.size());
  std::map<char, std::set<std::string>> guids;
  for (const Input& input : kInputs) {
    SCOPED_TRACE(std::string(1, input.type) + " ID=" + std::to_string(input.id));
    const t_TestGuid& record = stored.at({input.type, input.id});
    EXPECT_EQ(int32_t{record.Payload}, input.id * 1000 + input.type);  // unaligned: copied
    EXPECT_EQ(record.Kz, static_cast<char>('K' + input.id));
    EXPECT_EQ(uint16_t{record.Header.Version}, 1);
    const std::string guid(record.Guid.Raw());
    if (input.kept) {
      EXPECT_EQ(guid, input.guid);
    } else {
      // The form follows the old value; a missing one gets the registry form.
      const bool braced = input.guid.empty() || input.guid.front() == '{';
      EXPECT_TRUE(std::regex_match(guid, braced ? kBraced : kBare)) << guid;
    }
    if (!guid.empty()) {
      EXPECT_TRUE(guids[input.type].insert(NormalizedGuid(guid)).second) << "duplicate " << guid;
    }
    const auto lines = LinesWith(result.lines, "Datensatz ID=" + std::to_string(input.id) + " (");
    const size_t replaced_lines = std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
      return line.find('"' + guid + '"') != std::string::npos;
    });
    EXPECT_EQ(replaced_lines, input.kept ? 0u : 1u);
  }
  for (const std::string table : {"TTbTestGuid", "TTbTestGuidOptional"}) {
    const std::string line = "ReplaceDuplicateGUIDs in " + table;
    EXPECT_EQ(std::count(result.lines.begin(), result.lines.end(), line), 1) << table;
  }
  const size_t replaced =
      std::count_if(kInputs.begin(), kInputs.end(), [](const Input& input) { return !input.kept; });
  EXPECT_EQ(LinesWith(result.lines, "ersetzt durch").size(), replaced);

  // Once unique, the GUIDs stay as they are.
  const DatabaseRebuild again = Rebuild();
  ASSERT_TRUE(again.ok()) << again.error;
  EXPECT_TRUE(LinesWith(again.lines, "ReplaceDuplicateGUIDs").empty());
  const auto stored_again = Stored();
  for (const auto& [id, record] : stored) {
    EXPECT_EQ(stored_again.at(id).Guid, record.Guid);
  }
}

TEST(GuidTextTest, FreshGuidsAreRandomVersion4AndNullFormsAreRecognised) {
  TGuidGenerator generator;
  std::set<std::string> seen;
  for (int i = 0; i < 200; ++i) {
    const std::string braced = generator.Next(true);
    const std::string bare = generator.Next(false);
    EXPECT_TRUE(std::regex_match(braced, kBraced)) << braced;
    EXPECT_TRUE(std::regex_match(bare, kBare)) << bare;
    EXPECT_TRUE(seen.insert(NormalizedGuid(braced)).second);
    EXPECT_TRUE(seen.insert(NormalizedGuid(bare)).second);
  }
  EXPECT_EQ(NormalizedGuid(kGuidB), NormalizedGuid(kGuidBLowerBare));
  for (const char* null_guid : {"", "   ", kGuidNull, "00000000-0000-0000-0000-000000000000"}) {
    EXPECT_TRUE(IsNullGuid(null_guid)) << '"' << null_guid << '"';
  }
  EXPECT_FALSE(IsNullGuid("{00000000-0000-0000-0000-000000000001}"));
}

}  // namespace
}  // namespace korvan::data::testing
