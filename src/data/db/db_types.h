#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace korvan::data {

// Every registration message starts with this text.
inline constexpr char kDbRegistrationFailedPrefix[] = "Db registration failed:";

// The record IO a database type offers to whoever maintains its files (open, check,
// rebuild, conversion). The table layer supplies one generic block for all types; a
// member is "set" when it holds a callable. Results are kernel codes (0 = success).
struct DbIoCallbacks {
  using Record = std::span<const std::byte>;
  using MutableRecord = std::span<std::byte>;

  using ConvertFn =
      std::function<int(int handle, Record old_record, std::vector<std::byte>& new_record)>;
  using VRecCheckFn = std::function<bool(int handle, Record record)>;
  using TabKeyGetFn =
      std::function<int(char table_type, char index, Record record, std::string& key)>;
  using KeyGetFn = std::function<int(int handle, char index, Record record, std::string& key)>;
  using RecReadFn =
      std::function<int(int handle, int32_t position, std::vector<std::byte>& record)>;
  using RecIDBuildFn = std::function<int(Record record, std::string& identity)>;
  using RecLenGetFn = std::function<int(char table_type, int& length)>;
  using KeysInsertFn = std::function<int(int handle, Record record, int32_t position)>;
  using RecInsertFn = std::function<int(int handle, MutableRecord record, int32_t& position)>;
  using RecDeleteFn = std::function<int(int handle, int32_t position)>;
  using RecUpdateFn = std::function<int(int handle, MutableRecord record, int32_t position)>;
  using TableInfoFn = std::function<int(char table_type, std::string& table_name)>;
  using RefCheckFn = std::function<int(int handle, Record record)>;

  ConvertFn iIO_Convert;        // converts a record of an older layout
  VRecCheckFn fIO_VRecCheck;    // checks a record with a variable-length tail
  TabKeyGetFn iIO_TabKeyGet;    // builds a key from the table letter and the record
  KeyGetFn iIO_KeyGet;          // builds a key for a record of an open database
  RecReadFn iIO_RecRead;        // reads the record at a data-file position
  RecIDBuildFn iIO_RecIDBuild;  // builds the record's identity
  RecLenGetFn iIO_RecLenGet;    // the current record length of a table
  KeysInsertFn iIO_KeysInsert;  // enters all keys of a record
  RecInsertFn iIO_RecInsert1;
  RecInsertFn iIO_RecInsert2;
  RecInsertFn iIO_RecInsert3;
  RecDeleteFn iIO_RecDelete1;
  RecDeleteFn iIO_RecDelete2;
  RecDeleteFn iIO_RecDelete3;
  RecUpdateFn iIO_RecUpdate;
  TableInfoFn iIO_TableInfo;  // the table's name for messages
  RefCheckFn iIO_RefCheck;    // checks the references of a record
};

// A complete block whose every callback throws std::logic_error naming itself. It lets
// tools that only create or copy database files register the types before any table
// layer exists; code that reads or writes records must register the table layer's block.
DbIoCallbacks UnboundIoCallbacks();

// What a single registration asks for.
struct DbTypeRegistration {
  char letter = 0;                        // "A".."Z"
  int number = 0;                         // the type's number
  int interface_id = 0;                   // identifier of the old external interface: 0 or 32
  std::optional<std::string> fixed_name;  // a fixed database name (1..8 characters), if any
  std::string extension;                  // file extension, 1..3 characters (".QA")
  int key_length = 0;                     // key length of the type's key file
  DbIoCallbacks io;
  bool shared = true;  // several users may open the type's databases (lock file)
  std::string table_set;
  std::string description;
};

// The outcome of one registration: code 0, or storage::kDbUnknownType (5888) /
// storage::kDbTypeRegistrationFailed (5890) with the message.
struct DbRegistrationResult {
  int code = 0;
  std::string message;
  bool ok() const { return code == 0; }
};

// The registry of database types, filled once at start-up.
class DbTypeRegistry {
 public:
  // Validates and enters one type and tells the kernel whether its databases are
  // shared. Nothing is entered when the result is not ok.
  DbRegistrationResult Register(DbTypeRegistration type);

  // The registered type, or nullptr.
  const DbTypeRegistration* Find(char letter) const;
  bool IsRegistered(char letter) const { return Find(letter) != nullptr; }
  std::size_t size() const { return types_.size(); }

 private:
  std::map<char, DbTypeRegistration> types_;
};

// Raised by RegisterDBTypes; what() is "RegisterDBTypes failed: " + table set, the
// registration's own code and message are kept for the protocol.
class DbRegistrationError : public std::runtime_error {
 public:
  DbRegistrationError(const std::string& table_set, DbRegistrationResult result)
      : std::runtime_error("RegisterDBTypes failed: " + table_set),
        table_set_(table_set),
        result_(std::move(result)) {}

  const std::string& table_set() const { return table_set_; }
  int code() const { return result_.code; }
  const std::string& registration_message() const { return result_.message; }

 private:
  std::string table_set_;
  DbRegistrationResult result_;
};

// One row of the system's database types.
struct DbTypeDefinition {
  char letter;
  int number;
  const char* table_set;
  const char* extension;
  int key_length;
  const char* description;
  const char* group_name;  // nullptr: the type answers no group name
};

// All database types of the system, in registration order.
std::span<const DbTypeDefinition> StandardDbTypes();

// Registers every standard type with the given IO block, sharing on and no fixed
// name. Throws DbRegistrationError at the first type that is refused.
void RegisterDBTypes(DbTypeRegistry& registry, const DbIoCallbacks& io);

// Lookups by type letter; an unknown letter throws std::invalid_argument
// "illegal DB File type key".
const DbTypeDefinition& DbTypeOf(char letter);
std::string DbTypeGroupName(char letter);
std::string DbTypeDescription(char letter);

}  // namespace korvan::data
