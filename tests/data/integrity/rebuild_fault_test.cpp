#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "data/integrity/database_recovery.h"
#include "data/tables/std_tb_test_support.h"
#include "data/tables/table_registry.h"
#include "data/test_tables.h"
#include "storage/file/file_names.h"

namespace korvan::data::testing {
namespace {
namespace fs = std::filesystem;

constexpr char kType = 'E';
constexpr int kKeyLength = 33;

struct Expected {
  int64_t end;  // where the record's block ends in the original data file
  std::vector<uint8_t> bytes;
  TRecordKeys keys;
};

// A master-data database with rates and measures, some deleted again (free space).
void FillDatabase(const fs::path& dir) {
  TStdDb db("DB_Stamm", dir.string(), kType, kKeyLength);
  ASSERT_EQ(db.DbCreate(), 0);
  TTbTestRate rates(db);
  TTbTestMeasure measures(db);
  for (int i = 1; i <= 40; ++i) {
    rates.InitRecord();
    rates.Rec().Id = i;
    rates.Rec().Group = i % 7;
    ASSERT_EQ(rates.UpDateRec(), 0);
    measures.InitRecord();
    measures.Rec().IdLang = 49;
    measures.Rec().IdMeasure = static_cast<int16_t>(i);
    measures.Rec().Sz = static_cast<int16_t>(100 - i);
    ASSERT_EQ(measures.UpDateRec(), 0);
  }
  for (int i = 5; i <= 40; i += 9) {
    ASSERT_TRUE(rates.GetKey(KeyNumber(i)));
    ASSERT_EQ(rates.DeleteRec(), 0);
  }
  ASSERT_EQ(db.DbClose(), 0);
}

std::vector<Expected> ExpectedRecords(const std::string& data_file) {
  TStdDb keys_db("DB_Stamm", "/nonexistent", kType, kKeyLength);
  const TTableRegistry registry = TestTables();
  std::map<char, std::unique_ptr<TStdTB>> tables;
  std::vector<Expected> records;
  ScanDataFile(data_file, [&](const ScannedRecord& record) {
    const char letter = static_cast<char>(record.bytes[4]);
    if (!tables[letter]) tables[letter] = (*registry.Find(kType, letter))(keys_db);
    records.push_back({record.position + static_cast<int64_t>(record.bytes.size()), record.bytes,
                       tables[letter]->BuildKeys(RecordView(record.bytes))});
  });
  return records;
}

// Every record that ends before `cut` is found by each of its keys with its bytes.
void ExpectRecovered(const fs::path& dir, const std::vector<Expected>& expected, int64_t cut,
                     const std::string& fault) {
  TStdDb db("DB_Stamm", dir.string(), kType, kKeyLength);
  ASSERT_EQ(db.DbOpen(false), 0) << fault;
  EXPECT_TRUE(storage::CheckKeyFile(db.Handle()).empty()) << fault;
  EXPECT_TRUE(storage::CheckDataFile(db.Handle()).problems.empty()) << fault;
  int survivors = 0;
  for (const Expected& record : expected) {
    if (record.end > cut) continue;
    ++survivors;
    // The unique index finds the record; every other key must point at the same place.
    bool found = false;
    uint32_t position = 0;
    ASSERT_EQ(db.FindExactKey(record.keys.keys[0], &found, &position), 0);
    ASSERT_TRUE(found) << fault;
    std::vector<uint8_t> stored;
    ASSERT_EQ(db.ReadRaw(static_cast<int32_t>(position), stored), 0);
    EXPECT_EQ(stored, record.bytes) << fault;
    for (size_t i = 1; i < record.keys.keys.size(); ++i) {
      if (!record.keys.entered[i]) continue;
      storage::KeyEntry entry = MakeKeyEntry(record.keys.keys[i], position);
      bool entered = false;
      ASSERT_EQ(storage::iDK_KeyMatchEx(db.Handle(), entry, kKeyLength, &entered), 0);
      EXPECT_TRUE(entered) << fault << " key of index " << i;
    }
  }
  int32_t count = 0;
  ASSERT_EQ(db.RecordCount(0, &count), 0);
  EXPECT_EQ(count, survivors) << fault;
}

TEST(RebuildFaultTest, KeyFileDamageAndTornDataFilesAtRandomCutPoints) {
  korvan::testing::TempDir original;
  FillDatabase(original.path());
  const std::string base =
      storage::DatabaseBasePath(original.path().string() + "/", "DB_Stamm", kType);
  const std::vector<Expected> expected = ExpectedRecords(storage::DataFileName(base));
  ASSERT_EQ(expected.size(), 76u);
  const auto data_size = static_cast<int64_t>(fs::file_size(storage::DataFileName(base)));
  const auto key_size = static_cast<int64_t>(fs::file_size(storage::KeyFileName(base)));
  std::mt19937 random(20240611);
  for (int round = 0; round < 40; ++round) {
    korvan::testing::TempDir copy;
    const std::string target =
        storage::DatabaseBasePath(copy.path().string() + "/", "DB_Stamm", kType);
    fs::copy_file(storage::DataFileName(base), storage::DataFileName(target));
    fs::copy_file(storage::KeyFileName(base), storage::KeyFileName(target));
    const int kind = round % 4;
    int64_t cut = data_size;
    const auto at = std::uniform_int_distribution<int64_t>(0, key_size - 64)(random);
    std::string fault = "key file cut at " + std::to_string(at);
    if (kind == 0) {
      fs::resize_file(storage::KeyFileName(target), static_cast<uintmax_t>(at));
    } else if (kind == 1) {
      std::fstream file(storage::KeyFileName(target),
                        std::ios::in | std::ios::out | std::ios::binary);
      file.seekp(at);
      for (int i = 0; i < 64; ++i) file.put(static_cast<char>(random()));
      fault = "key file scrambled at " + std::to_string(at);
    } else if (kind == 2) {
      fs::remove(storage::KeyFileName(target));
      fault = "key file missing";
    } else {
      cut = std::uniform_int_distribution<int64_t>(80, data_size - 1)(random);
      fs::resize_file(storage::DataFileName(target), static_cast<uintmax_t>(cut));
      fault = "data file torn at " + std::to_string(cut);
    }
    const std::string directory = copy.path().string() + "/";
    const DatabaseRebuild result =
        RebuildDatabase(directory, "DB_Stamm", kType, kKeyLength, TestTables());
    ASSERT_TRUE(result.ok()) << fault << ": " << result.error;
    EXPECT_TRUE(result.replaced);
    if (kind == 3) {
      const bool torn = std::none_of(expected.begin(), expected.end(),
                                     [&](const Expected& r) { return r.end == cut; });
      EXPECT_EQ(result.backup_kept, torn && result.bytes_lost > 0) << fault;
    }
    EXPECT_FALSE(fs::exists(storage::DataFileName(storage::RebuildTempBasePath(directory, kType))))
        << fault;
    ExpectRecovered(copy.path(), expected, cut, fault);
  }
}

TEST(RebuildFaultTest, CommittedReplacementIsFinishedAfterACrash) {
  korvan::testing::TempDir dir;
  FillDatabase(dir.path());
  const std::string directory = dir.path().string() + "/";
  const std::string base = storage::DatabaseBasePath(directory, "DB_Stamm", kType);
  const std::string temp_base = storage::RebuildTempBasePath(directory, kType);
  const std::string mark = storage::RebuildCommitMarkName(directory, kType);
  const std::vector<Expected> expected = ExpectedRecords(storage::DataFileName(base));
  // A crash after the commit mark: the new files are still under their temporary names.
  fs::copy_file(storage::DataFileName(base), storage::DataFileName(temp_base));
  fs::copy_file(storage::KeyFileName(base), storage::KeyFileName(temp_base));
  fs::remove(storage::KeyFileName(base));
  std::ofstream(mark) << "DB_Stamm\n";
  EXPECT_EQ(FinishInterruptedRebuilds(directory).size(), 1u);
  EXPECT_FALSE(fs::exists(mark));
  ExpectRecovered(dir.path(), expected, INT64_MAX, "finished");
  // Without a mark the copy was never complete and is thrown away.
  fs::copy_file(storage::DataFileName(base), storage::DataFileName(temp_base));
  std::ofstream(mark) << "DB_St";  // torn mark
  FinishInterruptedRebuilds(directory);
  EXPECT_FALSE(fs::exists(storage::DataFileName(temp_base)));
  ExpectRecovered(dir.path(), expected, INT64_MAX, "untouched");
}

}  // namespace
}  // namespace korvan::data::testing
