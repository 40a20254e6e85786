#include "data/db_groups.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "data/control_list.h"
#include "data/db_file_register.h"
#include "data/db_types.h"
#include "data/path_types.h"
#include "storage/db_kernel.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

namespace fs = std::filesystem;

DatabaseDirectories SampleDirectories() {
  DatabaseDirectories directories;
  directories.system_directory = "/q/SYSTEM/";
  directories.objekt_directory = "/q/PROJEKTE/P1/";
  directories.formular_directory = "/q/FOR";
  directories.stammdaten_directory = "/q/STAMMDATEN/";
  directories.katalog_directory = "/q/PROJEKTE/BSP-KAT/";
  directories.clip_block_directory = "/q/BLOCKDATEN/";
  directories.clip_directory = "/q/SYSTEM/USER/anna/TEMP/";
  return directories;
}

TEST(PathTypes, EachLetterResolvesToItsDirectory) {
  const DatabaseDirectories directories = SampleDirectories();
  EXPECT_EQ(DirectoryOfPathType('S', directories), "/q/SYSTEM/");
  EXPECT_EQ(DirectoryOfPathType('Y', directories), "/q/SYSTEM/SYS/");
  EXPECT_EQ(DirectoryOfPathType('O', directories), "/q/PROJEKTE/P1/");
  EXPECT_EQ(DirectoryOfPathType('F', directories), "/q/FOR/") << "separator appended";
  EXPECT_EQ(DirectoryOfPathType('U', directories), "/q/STAMMDATEN/");
  EXPECT_EQ(DirectoryOfPathType('K', directories), "/q/PROJEKTE/BSP-KAT/");
  EXPECT_EQ(DirectoryOfPathType('B', directories), "/q/BLOCKDATEN/");
  EXPECT_EQ(DirectoryOfPathType('C', directories), "/q/SYSTEM/USER/anna/TEMP/");
  EXPECT_EQ(PathTypeDirectoryName('U'), "StammdatenDirectory");

  DatabaseDirectories without_system = directories;
  without_system.system_directory.clear();
  EXPECT_EQ(DirectoryOfPathType('Y', without_system), "") << "no SYS folder without a system";

  for (char unknown : {'A', 'P', 'X', 's', '\0'}) {
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
  ASSERT_EQ(StandardDbGroups().size(), 20u);
  for (const DbGroupDefinition& group : StandardDbGroups()) {
    SCOPED_TRACE(group.name);
    EXPECT_EQ(group.key_length, DbTypeOf(group.type_letter).key_length);
    EXPECT_FALSE(group.path_types.empty());
    for (char path_type : group.path_types) {
      EXPECT_NO_THROW(PathTypeDirectoryName(path_type));
    }
  }
  ASSERT_NE(FindDbGroup("DB_Lv"), nullptr);
  EXPECT_EQ(FindDbGroup("DB_Lv")->version_char, '4');
  EXPECT_EQ(FindDbGroup("DB_QPR")->version_char, '7');
  EXPECT_EQ(FindDbGroup("DB_LV"), nullptr) << "group names are case-sensitive";
}

TEST(DbGroups, FileNamesAndPlacesOfTheDatabaseObjects) {
  const DatabaseFiles files(SampleDirectories());

  const DatabaseFile* user_fields = files.Find("DB_UserFelder", 'O');
  ASSERT_NE(user_fields, nullptr);
  EXPECT_EQ(user_fields->DataFileName(), "/q/PROJEKTE/P1/DB_UserFelder.QX0");

  const DatabaseFile* lv = files.Find("DB_Lv", 'O');
  ASSERT_NE(lv, nullptr);
  EXPECT_EQ(lv->DataFileName(), "/q/PROJEKTE/P1/DB_Lv.QA0");
  EXPECT_EQ(lv->KeyFileName(), "/q/PROJEKTE/P1/DB_Lv.QA1");
  EXPECT_EQ(lv->LockFileName(), "/q/PROJEKTE/P1/DB_Lv.QA2");
  EXPECT_EQ(lv->key_length(), 70);
  EXPECT_EQ(files.Find("DB_Lv", 'U'), nullptr) << "no LV database among the master data";

  std::vector<const DatabaseFile*> in_sys;
  for (const DatabaseFile& file : files.all()) {
    if (file.directory() == "/q/SYSTEM/SYS/") in_sys.push_back(&file);
  }
  ASSERT_EQ(in_sys.size(), 1u);
  EXPECT_EQ(in_sys[0]->group_name(), "DB_CONTRO");
  EXPECT_EQ(in_sys[0]->DataFileName(), "/q/SYSTEM/SYS/DB_CONTRO.QI0");

  // One object per group and directory: the text databases live in five places.
  int text_databases = 0;
  for (const DatabaseFile& file : files.all()) text_databases += file.group_name() == "DB_Texte";
  EXPECT_EQ(text_databases, 5);

  // Without a catalog folder nothing lives there.
  DatabaseDirectories no_catalog = SampleDirectories();
  no_catalog.katalog_directory.clear();
  const DatabaseFiles without(no_catalog);
  EXPECT_EQ(without.Find("DB_Kat", 'K'), nullptr);
  EXPECT_EQ(without.all().size() + 5, files.all().size()) << "Kat, Texte, Ris, Ansatz, GlobData";
}

TEST(DbFileRegister, GetFilesAndPathTypes) {
  TDBFileRegister file_register;
  RegisterStandardDbFiles(file_register);

  std::vector<std::string> project{"already listed"};
  file_register.GetFiles('O', "/p/", project);
  const std::vector<std::string> expected_project = {
      "already listed",       "/p/DB_Lv.QA0",     "/p/DB_Kat.QB0",      "/p/DB_Texte.QC0",
      "/p/DB_Ris.QD0",        "/p/DB_LvEx.QM0",   "/p/DB_Ansatz.QH0",   "/p/DB_KP.QK0",
      "/p/DB_UserFelder.QX0", "/p/DB_Struct.QF0", "/p/DB_GlobData.QL0",
  };
  EXPECT_EQ(project, expected_project);

  std::vector<std::string> sys;
  file_register.GetFiles('Y', "/s/SYS/", sys);
  EXPECT_EQ(sys, std::vector<std::string>{"/s/SYS/DB_CONTRO.QI0"});

  // The property database is registered under the type letters A, B and C, so the
  // clipboard directory ("C") lists it as well.
  std::vector<std::string> clip;
  file_register.GetFiles('C', "/c/", clip);
  EXPECT_EQ(clip, (std::vector<std::string>{"/c/DB_Lv.QA0", "/c/DB_Kat.QB0", "/c/DB_Texte.QC0",
                                            "/c/DB_Ris.QD0", "/c/DB_Prop.QP0", "/c/DB_LvEx.QM0",
                                            "/c/DB_Rv.QN0", "/c/DB_Ansatz.QH0", "/c/DB_KP.QK0"}));
  std::vector<std::string> letter_a;
  file_register.GetFiles('A', "/x/", letter_a);
  EXPECT_EQ(letter_a, std::vector<std::string>{"/x/DB_Prop.QP0"});

  std::vector<char> path_types;
  file_register.GetPathTypes(path_types);
  EXPECT_EQ(path_types, (std::vector<char>{'O', 'C', 'B', 'K', 'U', 'A', 'Y'}));

  TDBFileRegister empty;
  std::vector<std::string> none;
  empty.GetFiles('O', "/p/", none);
  EXPECT_TRUE(none.empty());
}

// The directories of an installation below a temporary folder; the catalog folder is
// configured but missing.
struct Installation {
  testing::TempDir temp;
  DatabaseDirectories directories;

  Installation() {
    const std::string root = temp.path().string() + "/";
    directories.system_directory = root + "SYSTEM/";
    directories.objekt_directory = root + "PROJEKTE/P1/";
    directories.formular_directory = root + "FOR/";
    directories.stammdaten_directory = root + "STAMMDATEN/";
    directories.katalog_directory = root + "PROJEKTE/BSP-KAT/";
    directories.clip_block_directory = root + "BLOCKDATEN/";
    directories.clip_directory = root + "SYSTEM/USER/anna/TEMP/";
    for (const char* folder : {"SYSTEM/SYS", "PROJEKTE/P1", "FOR", "STAMMDATEN", "BLOCKDATEN",
                               "SYSTEM/USER/anna/TEMP"}) {
      fs::create_directories(root + folder);
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
    if (file.path_type() == 'K') {
      EXPECT_FALSE(fs::exists(file.DataFileName()));
      continue;
    }
    ++expected;
    EXPECT_TRUE(fs::exists(file.DataFileName()));
    EXPECT_TRUE(fs::exists(file.KeyFileName()));
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
  TControlList list(installation.directories.objekt_directory);
  ASSERT_TRUE(list.Open({"anna", "pc1"}, true));
  EXPECT_EQ(list.Users().size(), 1u);
  list.Close();

  // A created database opens through its object.
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
