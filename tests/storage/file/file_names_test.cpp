#include "storage/file/file_names.h"

#include <gtest/gtest.h>

namespace korvan::storage {
namespace {

// These names are what existing installations have on disk; they must not change.
TEST(FileNamesTest, TheFilesOfOneDatabaseAndOfItsRebuild) {
  const std::string base = DatabaseBasePath("/data/", "DB_LV", 'A');
  EXPECT_EQ(base, "/data/DB_LV.QA");
  EXPECT_EQ(DataFileName(base), "/data/DB_LV.QA0");
  EXPECT_EQ(KeyFileName(base), "/data/DB_LV.QA1");
  EXPECT_EQ(LockFileName(base), "/data/DB_LV.QA2");
  EXPECT_EQ(RebuildTempBasePath("/data/", 'A'), "/data/DB_TEMP.QA");
  EXPECT_EQ(RebuildCommitMarkName("/data/", 'A'), "/data/DB_TEMP.QA.commit");
  EXPECT_EQ(BackupFileName(DataFileName(base)), "/data/DB_LV.QA0.bak");
  EXPECT_EQ(DatabaseBasePath("", "DB_Stamm", 'E'), "DB_Stamm.QE");
  EXPECT_EQ(TypeLetterOfBasePath(base), 'A');
  EXPECT_EQ(TypeLetterOfBasePath("/data/DB_LV.QA0"), '\0');  // a file name, not a base path
  EXPECT_EQ(TypeLetterOfBasePath(".Q"), '\0');
}

TEST(FileNamesTest, WhatARebuildMayLeaveBehind) {
  EXPECT_TRUE(IsRebuildLeftoverName("DB_TEMP.QA0"));
  EXPECT_TRUE(IsRebuildLeftoverName("DB_TEMP.QA.commit"));
  EXPECT_TRUE(IsRebuildLeftoverName("DB_LV.QA1.bak"));
  EXPECT_FALSE(IsRebuildLeftoverName("DB_LV.QA0"));
  EXPECT_FALSE(IsRebuildLeftoverName(".bak"));
  EXPECT_FALSE(IsRebuildLeftoverName("DB_TEMPO.QA0"));
}

}  // namespace
}  // namespace korvan::storage
