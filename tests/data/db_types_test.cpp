#include "data/db_types.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "storage/db_kernel_codes.h"

namespace korvan::data {
namespace {

// A complete block of callbacks that do nothing, as a table layer would register.
DbIoCallbacks WorkingCallbacks() {
  DbIoCallbacks io;
  io.fIO_VRecCheck = [](int, DbIoCallbacks::Record) { return true; };
  io.iIO_TabKeyGet = [](char, char, DbIoCallbacks::Record, std::string&) { return 0; };
  io.iIO_KeyGet = [](int, char, DbIoCallbacks::Record, std::string&) { return 0; };
  io.iIO_RecRead = [](int, int32_t, std::vector<std::byte>&) { return 0; };
  io.iIO_RecIDBuild = [](DbIoCallbacks::Record, std::string&) { return 0; };
  io.iIO_RecLenGet = [](char, int&) { return 0; };
  io.iIO_KeysInsert = [](int, DbIoCallbacks::Record, int32_t) { return 0; };
  io.iIO_RecInsert1 = [](int, DbIoCallbacks::MutableRecord, int32_t&) { return 0; };
  io.iIO_RecDelete1 = [](int, int32_t) { return 0; };
  io.iIO_RecUpdate = [](int, DbIoCallbacks::MutableRecord, int32_t) { return 0; };
  io.iIO_TableInfo = [](char, std::string&) { return 0; };
  io.iIO_RefCheck = [](int, DbIoCallbacks::Record) { return 0; };
  return io;
}

DbTypeRegistration ValidType(char letter = 'Q') {
  DbTypeRegistration type;
  type.letter = letter;
  type.number = 99;
  type.extension = std::string(".Q") + letter;
  type.key_length = 40;
  type.io = WorkingCallbacks();
  type.table_set = "TestTabellen";
  return type;
}

struct RefusalCase {
  const char* what;
  std::function<void(DbTypeRegistration&)> change;
  int code;
  const char* text;
};

TEST(DbTypeRegistry, EveryRegistrationCheckGivesItsMessage) {
  const int failed = storage::kDbTypeRegistrationFailed;
  const std::vector<RefusalCase> cases = {
      {"digit", [](auto& t) { t.letter = '1'; }, storage::kDbUnknownType, "falscher DbType"},
      {"lower case", [](auto& t) { t.letter = 'a'; }, storage::kDbUnknownType, "falscher DbType"},
      {"already registered", [](auto& t) { t.letter = 'Z'; }, failed, "DbTyp schon registriert"},
      {"interface id", [](auto& t) { t.interface_id = 16; }, failed,
       "Kennung für VB-Schnittstelle muss 0 oder 32 sein"},
      {"empty fixed name", [](auto& t) { t.fixed_name = ""; }, failed,
       "Fall FixName, muss Name muss 1..8 Zeichen enthalten"},
      {"long fixed name", [](auto& t) { t.fixed_name = "NEUNZEICH"; }, failed,
       "Fall FixName, muss Name muss 1..8 Zeichen enthalten"},
      {"empty extension", [](auto& t) { t.extension = ""; }, failed,
       "Dateinamenserweiterung muss aus 1..3 Zeichen bestehen"},
      {"long extension", [](auto& t) { t.extension = ".QAB"; }, failed,
       "Dateinamenserweiterung muss aus 1..3 Zeichen bestehen"},
      {"convert and check",
       [](auto& t) {
         t.io.iIO_Convert = [](int, DbIoCallbacks::Record, std::vector<std::byte>&) { return 0; };
       },
       failed, "Wenn iIO_Convert<>nil muss fIO_VRecCheck=nil sein"},
      {"no key builder",
       [](auto& t) {
         t.io.iIO_TabKeyGet = nullptr;
         t.io.iIO_KeyGet = nullptr;
       },
       failed, "iIO_TabKeyGet oder iIO_KeyGet muessen gesetzt sein"},
      {"read", [](auto& t) { t.io.iIO_RecRead = nullptr; }, failed,
       "iIO_RecRead muss gesetzt sein"},
      {"identity", [](auto& t) { t.io.iIO_RecIDBuild = nullptr; }, failed,
       "iIO_RecIDBuild muss gesetzt sein"},
      {"length", [](auto& t) { t.io.iIO_RecLenGet = nullptr; }, failed,
       "iIO_RecLenGet muss gesetzt sein"},
      {"keys", [](auto& t) { t.io.iIO_KeysInsert = nullptr; }, failed,
       "iIO_KeysInsert muss gesetzt sein"},
      {"insert", [](auto& t) { t.io.iIO_RecInsert1 = nullptr; }, failed,
       "iIO_RecInsert1, 2 oder 3 muss gesetzt sein"},
      {"delete", [](auto& t) { t.io.iIO_RecDelete1 = nullptr; }, failed,
       "iIO_RecDelete1, 2 oder 3 muss gesetzt sein"},
      {"update", [](auto& t) { t.io.iIO_RecUpdate = nullptr; }, failed,
       "iIO_RecUpdate muss gesetzt sein"},
      {"table info", [](auto& t) { t.io.iIO_TableInfo = nullptr; }, failed,
       "iIO_TableInfo muss gesetzt sein"},
      {"references", [](auto& t) { t.io.iIO_RefCheck = nullptr; }, failed,
       "iIO_RefCheck muss gesetzt sein"},
  };
  for (const RefusalCase& refusal : cases) {
    SCOPED_TRACE(refusal.what);
    DbTypeRegistry registry;
    ASSERT_TRUE(registry.Register(ValidType('Z')).ok());
    DbTypeRegistration type = ValidType('Q');
    refusal.change(type);
    const DbRegistrationResult result = registry.Register(type);
    EXPECT_EQ(result.code, refusal.code);
    EXPECT_EQ(result.message, std::string("Db registration failed:") + refusal.text);
    EXPECT_EQ(registry.size(), 1u) << "a refused type must not be entered";
  }
}

TEST(DbTypeRegistry, AcceptsTheBoundaryValuesOfEachCheck) {
  DbTypeRegistry registry;
  DbTypeRegistration first = ValidType('A');
  first.interface_id = 32;
  first.fixed_name = "ACHTZEIC";
  first.extension = "Q";
  EXPECT_TRUE(registry.Register(first).ok());

  // Either key builder suffices; any one of the numbered insert and delete callbacks.
  DbTypeRegistration second = ValidType('B');
  second.io.iIO_TabKeyGet = nullptr;
  second.io.iIO_RecInsert1 = nullptr;
  second.io.iIO_RecInsert3 = [](int, DbIoCallbacks::MutableRecord, int32_t&) { return 0; };
  second.io.iIO_RecDelete1 = nullptr;
  second.io.iIO_RecDelete2 = [](int, int32_t) { return 0; };
  EXPECT_TRUE(registry.Register(second).ok());

  // Converting instead of checking is allowed.
  DbTypeRegistration third = ValidType('Z');
  third.io.fIO_VRecCheck = nullptr;
  third.io.iIO_KeyGet = nullptr;
  third.io.iIO_Convert = [](int, DbIoCallbacks::Record, std::vector<std::byte>&) { return 0; };
  EXPECT_TRUE(registry.Register(third).ok());

  EXPECT_EQ(registry.size(), 3u);
  ASSERT_NE(registry.Find('A'), nullptr);
  EXPECT_EQ(registry.Find('A')->fixed_name, "ACHTZEIC");
  EXPECT_EQ(registry.Find('C'), nullptr);
}

TEST(RegisterDBTypes, RegistersEveryTypeWithItsTableSetExtensionAndSharing) {
  DbTypeRegistry registry;
  RegisterDBTypes(registry, WorkingCallbacks());
  ASSERT_EQ(registry.size(), StandardDbTypes().size());
  EXPECT_EQ(registry.size(), 20u);

  std::set<int> numbers;
  for (const DbTypeDefinition& definition : StandardDbTypes()) {
    SCOPED_TRACE(definition.table_set);
    const DbTypeRegistration* type = registry.Find(definition.letter);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->extension, std::string(".Q") + definition.letter);
    EXPECT_EQ(type->key_length, definition.key_length);
    EXPECT_EQ(type->table_set, definition.table_set);
    EXPECT_TRUE(type->shared);
    EXPECT_FALSE(type->fixed_name.has_value());
    EXPECT_EQ(type->interface_id, 0);
    EXPECT_TRUE(numbers.insert(type->number).second) << "type numbers are unique";
  }
  EXPECT_EQ(registry.Find('K')->number, 1);
  EXPECT_EQ(registry.Find('K')->key_length, 67);
  EXPECT_EQ(registry.Find('A')->table_set, "DbLvTabellen");
  EXPECT_EQ(registry.Find('A')->key_length, 70);
  EXPECT_EQ(registry.Find('F')->key_length, 19);
  EXPECT_EQ(registry.Find('L')->key_length, 87);
  EXPECT_EQ(registry.Find('P')->number, 22);
}

TEST(RegisterDBTypes, FailureNamesTheTableSet) {
  {
    DbIoCallbacks incomplete = WorkingCallbacks();
    incomplete.iIO_RefCheck = nullptr;
    DbTypeRegistry registry;
    try {
      RegisterDBTypes(registry, incomplete);
      FAIL() << "expected DbRegistrationError";
    } catch (const DbRegistrationError& error) {
      EXPECT_STREQ(error.what(), "RegisterDBTypes failed: DbKpTabellen");
      EXPECT_EQ(error.table_set(), "DbKpTabellen");
      EXPECT_EQ(error.code(), storage::kDbTypeRegistrationFailed);
      EXPECT_EQ(error.registration_message(),
                "Db registration failed:iIO_RefCheck muss gesetzt sein");
    }
  }
  {
    // A type registered beforehand makes its own table set fail.
    DbTypeRegistry registry;
    ASSERT_TRUE(registry.Register(ValidType('C')).ok());
    try {
      RegisterDBTypes(registry, WorkingCallbacks());
      FAIL() << "expected DbRegistrationError";
    } catch (const DbRegistrationError& error) {
      EXPECT_STREQ(error.what(), "RegisterDBTypes failed: DbTextTabellen");
      EXPECT_EQ(error.registration_message(), "Db registration failed:DbTyp schon registriert");
    }
  }
}

TEST(RegisterDBTypes, UnboundCallbacksRegisterButRefuseToRun) {
  DbTypeRegistry registry;
  RegisterDBTypes(registry, UnboundIoCallbacks());
  const DbIoCallbacks& io = registry.Find('A')->io;
  std::vector<std::byte> record;
  try {
    io.iIO_RecRead(1, 80, record);
    FAIL() << "expected std::logic_error";
  } catch (const std::logic_error& error) {
    EXPECT_NE(std::string(error.what()).find("iIO_RecRead"), std::string::npos);
  }
  EXPECT_THROW(io.fIO_VRecCheck(1, {}), std::logic_error);
  EXPECT_FALSE(static_cast<bool>(io.iIO_Convert));
}

TEST(DbTypeLookups, GroupNamesDescriptionsAndUnknownLetters) {
  const std::vector<std::pair<char, const char*>> groups = {
      {'K', "DB_KP"},
      {'R', "DB_KR"},
      {'A', "DB_LV"},
      {'B', "DB_Kat"},
      {'C', "DB_Texte"},
      {'D', "DB_Ris"},
      {'Y', "DB_UserFelderDef"},
      {'X', "DB_UserFelder"},
      {'M', "DB_LvEx"},
      {'N', "DB_Rv"},
      {'W', "DB_QProjekt"},
      {'E', "DB_Stamm"},
      {'H', "DB_Ansatz"},
      {'U', "DB_QOffice"},
      {'S', "DB_UP"},
      {'I', "DB_Contro"},
      {'F', "DB_Struct"},
      {'T', "DB_QPR"},
      {'L', "DB_GlobData"},
  };
  for (const auto& [letter, group] : groups) EXPECT_EQ(DbTypeGroupName(letter), group) << letter;

  EXPECT_EQ(DbTypeDescription('E'), "Allgemeien Stammdaten Tabellen");
  EXPECT_EQ(DbTypeDescription('I'), "Rechetverwaltung Tabellen");
  EXPECT_EQ(DbTypeDescription('R'), "Kalkulations Repräsentanten Tabellen");
  EXPECT_EQ(DbTypeDescription('F'), "Strukturverwaltung Tabellen TALVEX");
  EXPECT_FALSE(DbTypeDescription('X').empty());
  EXPECT_FALSE(DbTypeDescription('P').empty());

  for (char unknown : {'G', 'J', 'O', 'Q', 'V', 'Z', 'a', '\0'}) {
    try {
      DbTypeGroupName(unknown);
      ADD_FAILURE() << "no exception for " << static_cast<int>(unknown);
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "illegal DB File type key");
    }
    EXPECT_THROW(DbTypeDescription(unknown), std::invalid_argument);
  }
  // The property type answers no group name.
  EXPECT_THROW(DbTypeGroupName('P'), std::invalid_argument);
}

}  // namespace
}  // namespace korvan::data
