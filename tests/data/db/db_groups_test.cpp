#include "data/db/db_groups.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "data/db/db_file_register.h"
#include "data/db/db_types.h"
#include "data/db/path_types.h"
#include "storage/db_kernel.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

DatabaseDirectories DirectoriesBelow(const std::string& root) {
  DatabaseDirectories directories;
  directories.system_directory = root + "SYSTEM/";
  directories.objekt_directory = root + "PROJEKTE/P1/";
  directories.formular_directory = root + "FOR";
  directories.stammdaten_directory = root + "STAMMDATEN/";
  directories.katalog_directory = root + "PROJEKTE/BSP-KAT/";
  directories.clip_block_directory = root + "BLOCKDATEN/";
  directories.clip_directory = root + "SYSTEM/USER/anna/TEMP/";
  return directories;
}

TEST(PathTypes, EachLetterResolvesToItsDirectory) {
  const DatabaseDirectories directories = DirectoriesBelow("/q/");
  std::string resolved;
  for (char letter : std::string("SYOFUKBC"))
    resolved += DirectoryOfPathType(letter, directories) + " ";
  EXPECT_EQ(resolved,
            "/q/SYSTEM/ /q/SYSTEM/SYS/ /q/PROJEKTE/P1/ /q/FOR/ /q/STAMMDATEN/ /q/PROJEKTE/BSP-KAT/ "
            "/q/BLOCKDATEN/ /q/SYSTEM/USER/anna/TEMP/ ");
  EXPECT_EQ(PathTypeDirectoryName('U'), "StammdatenDirectory");

  DatabaseDirectories without_system = directories;
  without_system.system_directory.clear();
  EXPECT_EQ(DirectoryOfPathType('Y', without_system), "") << "no SYS folder without a system";

  for (char unknown : {'A', 'P', 's', '\0'}) {
    try {
      DirectoryOfPathType(unknown, directories);
      ADD_FAILURE() << "no exception for " << static_cast<int>(unknown);
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "illegal path type key");
    }
    EXPECT_THROW(PathTypeDirectoryName(unknown), std::invalid_argument);
  }
}

TEST(DbGroups, GroupTableAgreesWithTheTypeTable) {
  for (const DbGroupDefinition& group : StandardDbGroups()) {
    SCOPED_TRACE(group.name);
    EXPECT_EQ(group.key_length, DbTypeOf(group.type_letter).key_length);
    EXPECT_FALSE(group.path_types.empty());
    for (char path_type : group.path_types) EXPECT_NO_THROW(PathTypeDirectoryName(path_type));
  }
  ASSERT_NE(FindDbGroup("DB_Lv"), nullptr);
  EXPECT_EQ(FindDbGroup("DB_LV"), nullptr) << "group names are case-sensitive";
}

TEST(DbGroups, FileNamesAndPlacesOfTheDatabaseObjects) {
  const DatabaseFiles files(DirectoriesBelow("/q/"));
  const DatabaseFile* lv = files.Find("DB_Lv", 'O');
  ASSERT_NE(lv, nullptr);
  EXPECT_EQ(lv->DataFileName(), "/q/PROJEKTE/P1/DB_Lv.QA0");
  EXPECT_EQ(lv->KeyFileName(), "/q/PROJEKTE/P1/DB_Lv.QA1");
  EXPECT_EQ(lv->LockFileName(), "/q/PROJEKTE/P1/DB_Lv.QA2");
  EXPECT_EQ(files.Find("DB_Lv", 'U'), nullptr) << "no LV database among the master data";

  Names in_sys;
  int text_databases = 0;
  for (const DatabaseFile& file : files.all()) {
    if (file.directory() == "/q/SYSTEM/SYS/") in_sys.push_back(file.DataFileName());
    text_databases += file.group_name() == "DB_Texte";
  }
  EXPECT_EQ(in_sys, Names{"/q/SYSTEM/SYS/DB_CONTRO.QI0"});
  EXPECT_EQ(text_databases, 5) << "one object per group and directory";

  DatabaseDirectories no_catalog = DirectoriesBelow("/q/");
  no_catalog.katalog_directory.clear();
  const DatabaseFiles without(no_catalog);
  EXPECT_EQ(without.Find("DB_Kat", 'K'), nullptr);
  EXPECT_EQ(without.all().size() + 5, files.all().size()) << "Kat, Texte, Ris, Ansatz, GlobData";
}

TEST(DbFileRegister, GetFilesAndPathTypes) {
  TDBFileRegister file_register;
  RegisterStandardDbFiles(file_register);
  // The property database is registered under the type letters A, B and C, so the
  // clipboard directory ("C") lists it as well.
  Names clip{"already listed"};
  file_register.GetFiles('C', "/c/", clip);
  EXPECT_EQ(clip, (Names{"already listed", "/c/DB_Lv.QA0", "/c/DB_Kat.QB0", "/c/DB_Texte.QC0",
                         "/c/DB_Ris.QD0", "/c/DB_Prop.QP0", "/c/DB_LvEx.QM0", "/c/DB_Rv.QN0",
                         "/c/DB_Ansatz.QH0", "/c/DB_KP.QK0"}));
  std::vector<char> path_types;
  file_register.GetPathTypes(path_types);
  EXPECT_EQ(path_types, (std::vector<char>{'O', 'C', 'B', 'K', 'U', 'A', 'Y'}));
}

// An installation below a temporary folder; the catalog folder is configured but missing.
struct Installation {
  korvan::testing::TempDir temp;
  DatabaseDirectories directories = DirectoriesBelow(temp.path().string() + "/");

  Installation() {
    directories.formular_directory += "/";
    for (const char* folder : {"SYSTEM/SYS", "PROJEKTE/P1", "FOR", "STAMMDATEN", "BLOCKDATEN",
                               "SYSTEM/USER/anna/TEMP"}) {
      fs::create_directories(temp.File(folder));
    }
  }
};

TEST(CreateDatabases, CreatesEveryGroupInEachExistingDirectory) {
  Installation installation;
  const DatabaseFiles files(installation.directories);
  DbTypeRegistry registry;
  RegisterDBTypes(registry, UnboundIoCallbacks());

  const DatabaseCreation creation = CreateDatabases(files, registry);
  ASSERT_TRUE(creation.ok()) << creation.result << " " << creation.failed_file;
  EXPECT_TRUE(creation.existing.empty());
  std::size_t expected = 0;
  for (const DatabaseFile& file : files.all()) {
    SCOPED_TRACE(file.DataFileName());
    const bool in_catalog = file.path_type() == 'K';
    expected += !in_catalog;
    EXPECT_EQ(fs::exists(file.DataFileName()), !in_catalog);
    EXPECT_EQ(fs::exists(file.KeyFileName()), !in_catalog);
    if (in_catalog) continue;
    uint32_t version = 0;
    double stamp = 0;
    ASSERT_EQ(storage::iDK_DbFileInfo(file.DataFileName(), &version, &stamp), 0);
    EXPECT_EQ(version, kDataFileVersion);
  }
  EXPECT_EQ(creation.created.size(), expected);

  // Every database directory has its control file, an empty list.
  for (const char* folder :
       {"SYSTEM/SYS/", "PROJEKTE/P1/", "STAMMDATEN/", "BLOCKDATEN/", "SYSTEM/USER/anna/TEMP/"}) {
    EXPECT_TRUE(fs::exists(installation.temp.File(std::string(folder) + "DATA.QDC"))) << folder;
  }
  EXPECT_FALSE(fs::exists(installation.temp.File("FOR/DATA.QDC"))) << "no database there";
  EXPECT_EQ(creation.control_files.size(), 5u);

  DatabaseHandle handle;
  ASSERT_EQ(files.Find("DB_Lv", 'O')->Open(registry, true, handle), 0);
  char type = 0;
  ASSERT_EQ(storage::iDK_DbType(handle.get(), &type), 0);
  EXPECT_EQ(type, 'A');
  EXPECT_EQ(handle.Close(), 0);

  // A second run finds everything in place and changes nothing.
  const DatabaseCreation again = CreateDatabases(files, registry);
  ASSERT_TRUE(again.ok());
  EXPECT_TRUE(again.created.empty());
  EXPECT_EQ(again.existing.size(), expected);
  EXPECT_TRUE(again.control_files.empty());
}

TEST(CreateDatabases, UnregisteredTypeStopsWithTheFileNamed) {
  Installation installation;
  const DatabaseFiles files(installation.directories);
  DbTypeRegistry empty_registry;
  const DatabaseCreation creation = CreateDatabases(files, empty_registry);
  EXPECT_EQ(creation.result, storage::kDbUnknownType);
  EXPECT_EQ(creation.failed_file, files.all().front().DataFileName());
  EXPECT_TRUE(creation.created.empty());
  EXPECT_FALSE(fs::exists(creation.failed_file));

  DatabaseHandle handle;
  EXPECT_EQ(files.all().front().Open(empty_registry, false, handle), storage::kDbUnknownType);
  EXPECT_FALSE(handle.is_open());
}

}  // namespace
}  // namespace korvan::data
