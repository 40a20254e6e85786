#include "data/db/db_types.h"

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
  using Record = DbIoCallbacks::Record;
  using Mutable = DbIoCallbacks::MutableRecord;
  DbIoCallbacks io;
  io.fIO_VRecCheck = [](int, Record) { return true; };
  io.iIO_TabKeyGet = [](char, char, Record, std::string&) { return 0; };
  io.iIO_KeyGet = [](int, char, Record, std::string&) { return 0; };
  io.iIO_RecRead = [](int, int32_t, std::vector<std::byte>&) { return 0; };
  io.iIO_RecIDBuild = [](Record, std::string&) { return 0; };
  io.iIO_RecLenGet = [](char, int&) { return 0; };
  io.iIO_KeysInsert = [](int, Record, int32_t) { return 0; };
  io.iIO_RecInsert1 = [](int, Mutable, int32_t&) { return 0; };
  io.iIO_RecDelete1 = [](int, int32_t) { return 0; };
  io.iIO_RecUpdate = [](int, Mutable, int32_t) { return 0; };
  io.iIO_TableInfo = [](char, std::string&) { return 0; };
  io.iIO_RefCheck = [](int, Record) { return 0; };
  return io;
}

DbTypeRegistration ValidType(char letter) {
  DbTypeRegistration type;
  type.letter = letter;
  type.number = 99;
  type.extension = std::string(".Q") + letter;
  type.key_length = 40;
  type.io = WorkingCallbacks();
  type.table_set = "TestTabellen";
  return type;
}

TEST(DbTypeRegistry, EveryRegistrationCheckGivesItsMessage) {
  using Change = std::function<void(DbTypeRegistration&)>;
  const std::vector<std::pair<Change, const char*>> cases = {
      {[](auto& t) { t.letter = 'Z'; }, "DbTyp schon registriert"},
      {[](auto& t) { t.interface_id = 16; }, "Kennung für VB-Schnittstelle muss 0 oder 32 sein"},
      {[](auto& t) { t.fixed_name = ""; }, "Fall FixName, muss Name muss 1..8 Zeichen enthalten"},
      {[](auto& t) { t.fixed_name = "NEUNZEICH"; },
       "Fall FixName, muss Name muss 1..8 Zeichen enthalten"},
      {[](auto& t) { t.extension = ""; }, "Dateinamenserweiterung muss aus 1..3 Zeichen bestehen"},
      {[](auto& t) { t.extension = ".QAB"; },
       "Dateinamenserweiterung muss aus 1..3 Zeichen bestehen"},
      {[](auto& t) { t.io.iIO_Convert = [](int, auto, auto&) { return 0; }; },
       "Wenn iIO_Convert<>nil muss fIO_VRecCheck=nil sein"},
      {[](auto& t) { t.io.iIO_TabKeyGet = nullptr, t.io.iIO_KeyGet = nullptr; },
       "iIO_TabKeyGet oder iIO_KeyGet muessen gesetzt sein"},
      {[](auto& t) { t.io.iIO_RecRead = nullptr; }, "iIO_RecRead muss gesetzt sein"},
      {[](auto& t) { t.io.iIO_RecInsert1 = nullptr; },
       "iIO_RecInsert1, 2 oder 3 muss gesetzt sein"},
      {[](auto& t) { t.io.iIO_RefCheck = nullptr; }, "iIO_RefCheck muss gesetzt sein"},
      {[](auto& t) { t.letter = '1'; }, "falscher DbType"},
      {[](auto& t) { t.letter = 'a'; }, "falscher DbType"},
  };
  for (const auto& [change, text] : cases) {
    SCOPED_TRACE(text);
    DbTypeRegistry registry;
    ASSERT_TRUE(registry.Register(ValidType('Z')).ok());
    DbTypeRegistration type = ValidType('Q');
    change(type);
    const DbRegistrationResult result = registry.Register(type);
    const bool bad_letter = text == std::string("falscher DbType");
    EXPECT_EQ(result.code,
              bad_letter ? storage::kDbUnknownType : storage::kDbTypeRegistrationFailed);
    EXPECT_EQ(result.message, std::string("Db registration failed:") + text);
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
  EXPECT_EQ(registry.Find('C'), nullptr);
}

TEST(RegisterDBTypes, RegistersEveryTypeAndNamesTheTableSetThatFails) {
  DbTypeRegistry registry;
  RegisterDBTypes(registry, WorkingCallbacks());
  ASSERT_EQ(registry.size(), StandardDbTypes().size());
  std::set<int> numbers;
  for (const DbTypeDefinition& definition : StandardDbTypes()) {
    const DbTypeRegistration* type = registry.Find(definition.letter);
    ASSERT_NE(type, nullptr) << definition.table_set;
    EXPECT_EQ(type->extension, std::string(".Q") + definition.letter);
    EXPECT_EQ(type->key_length, definition.key_length);
    EXPECT_EQ(type->table_set, definition.table_set);
    EXPECT_TRUE(type->shared);
    EXPECT_TRUE(numbers.insert(type->number).second) << "type numbers are unique";
  }

  DbIoCallbacks incomplete = WorkingCallbacks();
  incomplete.iIO_RefCheck = nullptr;
  DbTypeRegistry refusing;
  try {
    RegisterDBTypes(refusing, incomplete);
    FAIL() << "expected DbRegistrationError";
  } catch (const DbRegistrationError& error) {
    EXPECT_STREQ(error.what(), "RegisterDBTypes failed: DbKpTabellen");
    EXPECT_EQ(error.code(), storage::kDbTypeRegistrationFailed);
  }
  // A type registered beforehand makes its own table set fail.
  DbTypeRegistry taken;
  ASSERT_TRUE(taken.Register(ValidType('C')).ok());
  try {
    RegisterDBTypes(taken, WorkingCallbacks());
    FAIL() << "expected DbRegistrationError";
  } catch (const DbRegistrationError& error) {
    EXPECT_EQ(error.table_set(), "DbTextTabellen");
  }
}

TEST(RegisterDBTypes, UnboundCallbacksRefuseToRunAndUnknownLettersAreRefused) {
  DbTypeRegistry registry;
  RegisterDBTypes(registry, UnboundIoCallbacks());
  const DbIoCallbacks& io = registry.Find('A')->io;
  std::vector<std::byte> record;
  EXPECT_THROW(io.iIO_RecRead(1, 80, record), std::logic_error);
  EXPECT_THROW(io.fIO_VRecCheck(1, {}), std::logic_error);
  EXPECT_FALSE(static_cast<bool>(io.iIO_Convert));

  EXPECT_EQ(DbTypeGroupName('A'), "DB_LV");
  for (char unknown : {'G', 'Q', 'a', '\0'}) {
    EXPECT_THROW(DbTypeGroupName(unknown), std::invalid_argument) << unknown;
    EXPECT_THROW(DbTypeDescription(unknown), std::invalid_argument) << unknown;
  }
  EXPECT_THROW(DbTypeGroupName('P'), std::invalid_argument);  // the property type has none
}

}  // namespace
}  // namespace korvan::data
