#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/db/db_types.h"
#include "data/db/path_types.h"
#include "storage/file/file_names.h"

namespace korvan::data {

// The version written into every data file this program creates.
inline constexpr uint32_t kDataFileVersion = 810;

// One database group: a set of tables stored together under one file base name, in
// each of the directories its path-type letters name.
struct DbGroupDefinition {
  const char* name;  // the group and file base name, e.g. "DB_Lv"
  char type_letter;
  char version_char;
  int key_length;
  std::string_view path_types;
};

// All database groups of the system.
std::span<const DbGroupDefinition> StandardDbGroups();
// The group of that name, or nullptr.
const DbGroupDefinition* FindDbGroup(std::string_view name);

// An open kernel handle, closed when the object goes away.
class DatabaseHandle {
 public:
  DatabaseHandle() = default;
  explicit DatabaseHandle(int handle) : handle_(handle) {}
  ~DatabaseHandle();
  DatabaseHandle(DatabaseHandle&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  DatabaseHandle& operator=(DatabaseHandle&& other) noexcept;

  int get() const { return handle_; }
  bool is_open() const { return handle_ != 0; }
  // Closes now and returns the kernel's result; 0 when nothing was open.
  int Close();

 private:
  int handle_ = 0;
};

// The database of one group in one directory.
class DatabaseFile {
 public:
  DatabaseFile(const DbGroupDefinition& group, char path_type, std::string directory);

  const std::string& group_name() const { return group_name_; }
  char path_type() const { return path_type_; }
  const std::string& directory() const { return directory_; }
  char type_letter() const { return type_letter_; }
  char version_char() const { return version_char_; }
  int key_length() const { return key_length_; }

  // The base path of the database's files (storage/file/file_names.h).
  std::string BasePath() const;
  std::string DataFileName() const { return storage::DataFileName(BasePath()); }
  std::string KeyFileName() const { return storage::KeyFileName(BasePath()); }
  std::string LockFileName() const { return storage::LockFileName(BasePath()); }
  bool Exists() const;

  // Create and open through the kernel; the type must be registered (else 5888).
  // Results are kernel codes.
  int Create(const DbTypeRegistry& registry, DatabaseHandle& handle) const;
  int Open(const DbTypeRegistry& registry, bool write_wanted, DatabaseHandle& handle) const;

 private:
  std::string group_name_;
  char path_type_;
  std::string directory_;
  char type_letter_;
  char version_char_;
  int key_length_;
};

// The database file objects of all groups, one per group and available directory,
// so that code asks for "the project's LV database" and not for a path.
class DatabaseFiles {
 public:
  explicit DatabaseFiles(const DatabaseDirectories& directories);

  // The database of a group in the directory of a path type, or nullptr when the group
  // does not live there or the directory is not available.
  const DatabaseFile* Find(std::string_view group, char path_type) const;
  const std::vector<DatabaseFile>& all() const { return files_; }
  // Every directory that holds at least one database, once each.
  std::vector<std::string> Directories() const;

 private:
  std::vector<DatabaseFile> files_;
};

// What CreateDatabases did.
struct DatabaseCreation {
  std::vector<std::string> created;        // data files created now
  std::vector<std::string> existing;       // data files that were already there
  std::vector<std::string> control_files;  // "DATA.QDC" files written now
  int result = 0;                          // the first failure's kernel code
  std::string failed_file;                 // and the data file it concerns
  bool ok() const { return result == 0; }
};

// Sets the data-file version 810 and creates every database whose directory exists
// and whose data file does not; writes an empty "DATA.QDC" into each such directory
// that has none. Stops at the first failure. The types must be registered.
DatabaseCreation CreateDatabases(const DatabaseFiles& files, const DbTypeRegistry& registry);

}  // namespace korvan::data
