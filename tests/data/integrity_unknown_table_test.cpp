#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "data/data_integrity.h"
#include "data/database_recovery.h"
#include "data/tb_waehrung.h"
#include "std_tb_test_support.h"

namespace korvan::data::testing {
namespace {

std::string FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

size_t Occurrences(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// A database of master data (currencies, test items) with records of type letters no
// table class is known for, as a newer program version or a damaged copy leaves them.
class UnknownTableTest : public TableTest {
 protected:
  void AddCurrency(int32_t id) {
    TTbWaehrung currencies(*db_);
    currencies.InitRecord();
    currencies.Rec().ID = id;
    ASSERT_EQ(currencies.UpDateRec(), 0);
  }
  // A record with only a header and a body of `fill` bytes, entered without keys.
  void AddForeignRecord(char letter, uint8_t fill) {
    std::vector<uint8_t> record(70, fill);
    storage::TDbRecordHeader header{};
    header.RecLen = static_cast<int32_t>(record.size());
    header.RecTyp = letter;
    header.Size = static_cast<int32_t>(record.size());
    header.Version = 7;
    std::memcpy(record.data(), &header, sizeof header);
    int32_t position = 0;
    ASSERT_EQ(storage::iDK_RecordInsert(db_->Handle(), record.data(),
                                        static_cast<int32_t>(record.size()), false, &position),
              0);
    ++foreign_[letter];
  }
  int32_t StoredCount(char letter) const {
    int32_t count = 0;
    EXPECT_EQ(storage::iDK_RecordCount(db_->Handle(), letter, &count), 0);
    return count;
  }
  // Runs the check over the registry's tables, or over currencies and test items.
  int Run(bool only_test, bool with_test_items, std::string* log) {
    TDataIntegrity run;
    run.SetOnlyTest(only_test);
    if (with_test_items) {
      std::vector<std::unique_ptr<TStdTB>> tables;
      tables.push_back(std::make_unique<TTbWaehrung>(*db_));
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

  std::map<char, int> foreign_;  // records entered per unknown letter
};

TEST_F(UnknownTableTest, RecordsOfUnknownLettersAreConflictsAndNeverTouched) {
  AddCurrency(1);
  AddCurrency(2);
  TTbTestItem items(*db_);
  ASSERT_EQ(InsertItem(items, 1, kNullId), 0);
  ASSERT_EQ(InsertItem(items, 2, kNullId), 0);

  std::string log;
  // The check of the registered tables alone: the test items have no registered class.
  EXPECT_EQ(Run(true, false, &log), 1) << log;
  EXPECT_NE(log.find(Finding(kTestItemType, 2)), std::string::npos) << log;
  // Given as a table of the run, they are checked and are no finding.
  EXPECT_EQ(Run(true, true, &log), 0) << log;
  EXPECT_EQ(log.find(std::string(TDataIntegrity::kUnknownTablesName)), std::string::npos) << log;

  AddForeignRecord('Q', 0x11);
  AddForeignRecord('X', 0x22);
  AddForeignRecord('Q', 0x33);
  AddForeignRecord('Q', 0x44);
  ASSERT_EQ(db_->Flush(), 0);
  const std::string data_before = FileBytes(db_->BasePath() + "0");
  const std::string keys_before = FileBytes(db_->BasePath() + "1");

  for (const bool only_test : {true, false}) {
    SCOPED_TRACE(only_test ? "dry run" : "repair run");
    EXPECT_EQ(Run(only_test, true, &log), static_cast<int>(foreign_.size())) << log;
    EXPECT_EQ(Occurrences(log, "    TB: " + std::string(TDataIntegrity::kUnknownTablesName)), 1u)
        << "one entry per database\n"
        << log;
    for (const auto& [letter, records] : foreign_) {
      const size_t at = log.find(Finding(letter, records));
      ASSERT_NE(at, std::string::npos) << log;
      // The finding is a conflict, and its action leaves the records alone.
      const size_t kind = log.rfind("      [", at);
      EXPECT_EQ(log.substr(kind, 17), "      [Konflikt]\r") << log;
      EXPECT_NE(log.find("Aktion: <Datensätze unverändert belassen>", at), std::string::npos);
    }
    EXPECT_EQ(log.find(Finding(kTestItemType, 2)), std::string::npos) << log;
    for (const auto& [letter, records] : foreign_) EXPECT_EQ(StoredCount(letter), records);
    EXPECT_EQ(FileBytes(db_->BasePath() + "0"), data_before);
    EXPECT_EQ(FileBytes(db_->BasePath() + "1"), keys_before);
  }
  // Without the test items in the run, their letter joins the unknown ones.
  EXPECT_EQ(Run(true, false, &log), static_cast<int>(foreign_.size()) + 1) << log;
  EXPECT_NE(log.find(Finding(kTestItemType, 2)), std::string::npos) << log;
}

TEST_F(UnknownTableTest, RebuildKeepsUnknownRecordsByteForByteAndTheCheckStillReportsThem) {
  AddCurrency(1);
  AddForeignRecord('Q', 0x5A);
  AddCurrency(2);
  AddForeignRecord('X', 0xA5);
  AddForeignRecord('Q', 0x01);
  ASSERT_EQ(db_->Flush(), 0);
  std::multimap<char, std::vector<uint8_t>> before;
  const auto collect_foreign = [](const std::string& file,
                                  std::multimap<char, std::vector<uint8_t>>& into) {
    ScanDataFile(file, [&](const ScannedRecord& record) {
      const char letter = static_cast<char>(record.bytes[4]);
      if (letter == 'Q' || letter == 'X') into.emplace(letter, record.bytes);
    });
  };
  collect_foreign(db_->BasePath() + "0", before);
  ASSERT_EQ(db_->DbClose(), 0);

  const DatabaseRebuild result = RebuildDatabase(dir_.path().string() + "/", "DB_Stamm", kDbType,
                                                 kKeyLength, StandardTableRegistry());
  ASSERT_TRUE(result.ok()) << result.error;
  EXPECT_EQ(result.records_without_keys, static_cast<int>(before.size()));
  EXPECT_EQ(result.records_not_valid, 0);
  std::multimap<char, std::vector<uint8_t>> after;
  collect_foreign(db_->BasePath() + "0", after);
  EXPECT_EQ(after, before);

  ASSERT_EQ(db_->DbOpen(true), 0);
  std::string log;
  EXPECT_EQ(Run(false, false, &log), static_cast<int>(foreign_.size())) << log;
  for (const auto& [letter, records] : foreign_) {
    EXPECT_NE(log.find(Finding(letter, records)), std::string::npos) << log;
  }
  EXPECT_TRUE(StorageProblems().empty());
}

}  // namespace
}  // namespace korvan::data::testing
