#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "data/integrity/data_check.h"
#include "data/integrity/data_integrity.h"
#include "data/integrity/database_recovery.h"
#include "data/tables/std_tb_test_support.h"
#include "data/test_tables.h"
#include "storage/file/file_names.h"

namespace korvan::data::testing {
namespace {

#pragma pack(push, 1)
struct t_TestRef {
  storage::TDbRecordHeader Header;
  int32_t Id;
  int32_t IdRate;  // a rate of the same database, or the null id
  char Kz;         // "A" or "B"
};
#pragma pack(pop)

class TTbTestRef : public TTypedTB<t_TestRef> {
 public:
  explicit TTbTestRef(TStdDb& db) : TTypedTB(db, 'R', 1, "TTbTestRef") { InitRecord(); }
  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().Id = kNullId;
    Rec().IdRate = kNullId;
    Rec().Kz = 'A';
  }
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(RecordView record, char, std::string& key) const override {
    key = KeyNumber(Of(record).Id);
    return static_cast<int>(key.size());
  }
  using TStdTB::DoValidateRecord;
  void DoValidateRecord(TDataCheck& check) override {
    check.SetAvaRecordID(Rec().Id);
    check.CheckItemForElementAsPrimaryKeyInTable("IdRate", Rec().IdRate, kNullId, 'E',
                                                 kTestRateType);
    check.CheckItemForCharSelector("Kz", Rec().Kz, 'A', "AB", "Kennzeichen A oder B");
  }
};

std::string FileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class IntegrityTest : public TableTest {
 protected:
  void AddRate(int32_t id) {
    TTbTestRate rates(*db_);
    rates.Rec().Id = id;
    ASSERT_EQ(rates.UpDateRec(), 0);
  }
  void AddRef(int32_t id, int32_t rate, char kz) {
    TTbTestRef refs(*db_);
    refs.Rec().Id = id;
    refs.Rec().IdRate = rate;
    refs.Rec().Kz = kz;
    ASSERT_EQ(refs.UpDateRec(), 0);
  }
  // A record of a letter no table class is known for, as a newer program version or a
  // damaged copy leaves it: a header and a body of `fill` bytes, entered without keys.
  void AddForeignRecord(char letter, uint8_t fill) {
    std::vector<uint8_t> record(70, fill);
    storage::TDbRecordHeader header{};
    header.RecLen = header.Size = static_cast<int32_t>(record.size());
    header.RecTyp = letter;
    header.Version = 7;
    std::memcpy(record.data(), &header, sizeof header);
    int32_t position = 0;
    ASSERT_EQ(storage::iDK_RecordInsert(db_->Handle(), record.data(),
                                        static_cast<int32_t>(record.size()), false, &position),
              0);
    ++foreign_[letter];
  }
  // Runs the check over the registry's tables, or over rates and the test tables.
  int Run(bool only_test, bool test_tables, std::string* log) {
    TDataIntegrity run(TestTables());
    run.SetOnlyTest(only_test);
    if (test_tables) {
      std::vector<std::unique_ptr<TStdTB>> tables;
      tables.push_back(std::make_unique<TTbTestRate>(*db_));
      tables.push_back(std::make_unique<TTbTestRef>(*db_));
      tables.push_back(std::make_unique<TTbTestItem>(*db_));
      run.Add(*db_, std::move(tables));
    } else {
      run.Add(*db_);
    }
    const int problems = run.Execute();
    std::ostringstream text;
    run.AddLogToStream(text);
    *log = text.str();
    return problems;
  }
  static std::string Finding(char letter, int records) {
    char code[8];
    std::snprintf(code, sizeof code, "%x", static_cast<unsigned>(static_cast<uint8_t>(letter)));
    return std::string("UnknownTable: RecTyp='") + letter + "'($" + code +
           ") has no table class: " + std::to_string(records) + " Record(s)";
  }
  void ExpectFilesUnchanged(const std::string& data, const std::string& keys) {
    EXPECT_EQ(FileBytes(storage::DataFileName(db_->BasePath())), data);
    EXPECT_EQ(FileBytes(storage::KeyFileName(db_->BasePath())), keys);
  }

  std::map<char, int> foreign_;  // records entered per unknown letter
};

TEST_F(IntegrityTest, ForeignKeysAndCodeLettersDryRunThenRepair) {
  AddRate(42);
  AddRef(1, kNullId, 'A');  // the null reference passes
  AddRef(2, 42, 'B');
  AddRef(3, 99, 'A');  // no rate 99
  AddRef(4, 42, 'Q');  // letter not allowed
  ASSERT_EQ(db_->Flush(), 0);
  const std::string data = FileBytes(storage::DataFileName(db_->BasePath()));
  const std::string keys = FileBytes(storage::KeyFileName(db_->BasePath()));

  std::string log;
  EXPECT_EQ(Run(true, true, &log), 2);
  EXPECT_NE(log.find("ForeignKey: IdRate=99 nicht vorhanden in DB_Stamm - P"), std::string::npos)
      << log;
  EXPECT_NE(log.find("CharSelektor: Kz='Q'($51) not allowed"), std::string::npos) << log;
  EXPECT_NE(log.find("Aktion: <Nur Trockenlauf - Datensatz nicht geschrieben>"), std::string::npos);
  EXPECT_EQ(log.find("ID=1>"), std::string::npos) << "a null reference is no finding";
  EXPECT_EQ(log.find("ID=2>"), std::string::npos);
  EXPECT_NE(log.find("    4 Record(s) untersucht\r\n"), std::string::npos) << log;
  ExpectFilesUnchanged(data, keys);

  EXPECT_EQ(Run(false, true, &log), 2);
  EXPECT_NE(log.find("Aktion: <Datensatz neu geschrieben>"), std::string::npos) << log;
  EXPECT_EQ(Run(true, true, &log), 0) << log;
  TTbTestRef refs(*db_);
  ASSERT_TRUE(refs.GetKey(KeyNumber(3)));
  EXPECT_EQ(refs.Rec().IdRate, kNullId);
  ASSERT_TRUE(refs.GetKey(KeyNumber(4)));
  EXPECT_EQ(refs.Rec().Kz, 'A');
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(IntegrityTest, RecordCountDifferenceAbortsTheTable) {
  AddRef(1, 7, 'Q');
  TTbTestRef refs(*db_);  // a record whose keys never made it into the key file
  refs.Rec().Id = 2;
  int32_t position = 0;
  ASSERT_EQ(
      storage::iDK_RecordInsert(db_->Handle(), refs.CurrentRecord().data(),
                                static_cast<int32_t>(refs.CurrentRecord().size()), true, &position),
      0);
  std::string log;
  EXPECT_EQ(Run(false, true, &log), 1);
  EXPECT_NE(log.find("    RecordCount: 2 - PrimaryKeysCount: 1\r\n"
                     "    Aktion: RecordCountDifferenz: Abbruch!\r\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(log.find("CharSelektor"), std::string::npos) << "records are not checked further";
}

TEST_F(IntegrityTest, RecordsOfUnknownLettersAreConflictsAndNeverTouched) {
  AddRate(1);
  TTbTestItem items(*db_);
  ASSERT_EQ(InsertItem(items, 1, kNullId), 0);
  ASSERT_EQ(InsertItem(items, 2, kNullId), 0);
  std::string log;
  // Only given as a table of the run are the test items known.
  EXPECT_EQ(Run(true, false, &log), 1) << log;
  EXPECT_NE(log.find(Finding(kTestItemType, 2)), std::string::npos) << log;
  EXPECT_EQ(Run(true, true, &log), 0) << log;

  AddForeignRecord('Q', 0x11);
  AddForeignRecord('X', 0x22);
  AddForeignRecord('Q', 0x33);
  ASSERT_EQ(db_->Flush(), 0);
  const std::string data = FileBytes(storage::DataFileName(db_->BasePath()));
  const std::string keys = FileBytes(storage::KeyFileName(db_->BasePath()));
  for (const bool only_test : {true, false}) {
    SCOPED_TRACE(only_test ? "dry run" : "repair run");
    EXPECT_EQ(Run(only_test, true, &log), static_cast<int>(foreign_.size())) << log;
    const std::string entry = "    TB: " + std::string(TDataIntegrity::kUnknownTablesName);
    EXPECT_EQ(log.find(entry), log.rfind(entry)) << "one entry per database\n" << log;
    for (const auto& [letter, records] : foreign_) {
      const size_t at = log.find(Finding(letter, records));
      ASSERT_NE(at, std::string::npos) << log;
      EXPECT_EQ(log.substr(log.rfind("      [", at), 17), "      [Konflikt]\r") << log;
      EXPECT_NE(log.find("Aktion: <Datensätze unverändert belassen>", at), std::string::npos);
    }
    ExpectFilesUnchanged(data, keys);
  }
}

TEST_F(IntegrityTest, RebuildKeepsUnknownRecordsByteForByteAndTheCheckStillReportsThem) {
  AddRate(1);
  AddForeignRecord('Q', 0x5A);
  AddRate(2);
  AddForeignRecord('X', 0xA5);
  AddForeignRecord('Q', 0x01);
  ASSERT_EQ(db_->Flush(), 0);
  const auto foreign_records = [this] {
    std::multimap<char, std::vector<uint8_t>> found;
    ScanDataFile(storage::DataFileName(db_->BasePath()), [&](const ScannedRecord& record) {
      const char letter = static_cast<char>(record.bytes[4]);
      if (foreign_.contains(letter)) found.emplace(letter, record.bytes);
    });
    return found;
  };
  const auto before = foreign_records();
  ASSERT_EQ(db_->DbClose(), 0);

  const DatabaseRebuild result =
      RebuildDatabase(dir_.path().string() + "/", "DB_Stamm", kDbType, kKeyLength, TestTables());
  ASSERT_TRUE(result.ok()) << result.error;
  EXPECT_EQ(result.records_without_keys, static_cast<int>(before.size()));
  EXPECT_EQ(result.records_not_valid, 0);
  EXPECT_EQ(foreign_records(), before);

  ASSERT_EQ(db_->DbOpen(true), 0);
  std::string log;
  EXPECT_EQ(Run(false, false, &log), static_cast<int>(foreign_.size())) << log;
  for (const auto& [letter, records] : foreign_) {
    EXPECT_NE(log.find(Finding(letter, records)), std::string::npos) << log;
  }
  EXPECT_TRUE(StorageProblems().empty());
}

TEST(IntegrityLogTest, HintsAreNoProblemsAndEachRunGetsItsOwnFile) {
  TDiLogItem item;
  item.FDatabaseName = "DB_Stamm";
  item.FTableName = "TTbTestRate";
  TDiSubLogItem finding;
  finding.FKind = TLogKind::lkError;
  finding.FData = "ID=5";
  item.FDISubItems.push_back(finding);
  finding.FKind = TLogKind::lkHint;
  item.FDISubItems.push_back(finding);
  EXPECT_EQ(item.ProblemCount(), 1);
  std::ostringstream text;
  AddLogToStream({item}, text);
  EXPECT_NE(text.str().find("[Fehler  ]"), std::string::npos) << text.str();
  EXPECT_NE(text.str().find("[Hinweis ]"), std::string::npos) << text.str();
  korvan::testing::TempDir dir;
  const auto first = AddLogToFile({item}, dir.path() / "SYS");
  const auto second = AddLogToFile({item}, dir.path() / "SYS");
  EXPECT_NE(first, second);
  EXPECT_TRUE(first.filename().string().starts_with("Integrity_")) << first;
  EXPECT_EQ(first.extension(), ".log");
  EXPECT_EQ(FileBytes(first), text.str());
}

}  // namespace
}  // namespace korvan::data::testing
