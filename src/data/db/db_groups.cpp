#include "data/db/db_groups.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "data/db/control_list.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

constexpr std::array<DbGroupDefinition, 20> kStandardGroups = {{
    {"DB_Lv", 'A', '4', 70, "OCB"},       {"DB_Kat", 'B', '6', 55, "OCBK"},
    {"DB_Texte", 'C', '3', 45, "OCBUK"},  {"DB_Ris", 'D', '6', 51, "OCBK"},
    {"DB_Prop", 'P', '2', 35, "O"},       {"DB_Stamm", 'E', '3', 33, "U"},
    {"DB_LvEx", 'M', '6', 35, "OCB"},     {"DB_Rv", 'N', '4', 40, "UCB"},
    {"DB_Ansatz", 'H', '5', 25, "OCBK"},  {"DB_KR", 'R', '3', 67, "U"},
    {"DB_KP", 'K', '2', 67, "OCB"},       {"DB_UP", 'S', '3', 67, "U"},
    {"DB_QProjekt", 'W', '4', 25, "U"},   {"DB_UserFelderDef", 'Y', '1', 30, "U"},
    {"DB_UserFelder", 'X', '2', 85, "O"}, {"DB_QOffice", 'U', '6', 46, "UO"},
    {"DB_Struct", 'F', '4', 19, "O"},     {"DB_CONTRO", 'I', '2', 25, "Y"},
    {"DB_QPR", 'T', '7', 70, "U"},        {"DB_GlobData", 'L', '4', 87, "OUK"},
}};

bool IsDirectory(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

bool IsFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

// Creates one database and closes it again.
int CreateOne(const DatabaseFile& file, const DbTypeRegistry& registry) {
  DatabaseHandle handle;
  const int result = file.Create(registry, handle);
  if (result != storage::kOk) return result;
  return handle.Close();
}

}  // namespace

std::span<const DbGroupDefinition> StandardDbGroups() {
  return kStandardGroups;
}

const DbGroupDefinition* FindDbGroup(std::string_view name) {
  for (const DbGroupDefinition& group : kStandardGroups) {
    if (name == group.name) return &group;
  }
  return nullptr;
}

// ---------------------------------------------------------------------------------------

DatabaseHandle::~DatabaseHandle() {
  Close();
}

DatabaseHandle& DatabaseHandle::operator=(DatabaseHandle&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, 0);
  }
  return *this;
}

int DatabaseHandle::Close() {
  if (handle_ == 0) return storage::kOk;
  const int result = storage::iDK_DbClose(handle_);
  // A failed close leaves the kernel's handle usable; it is given up here all the
  // same, the caller learns the code.
  handle_ = 0;
  return result;
}

// ---------------------------------------------------------------------------------------

DatabaseFile::DatabaseFile(const DbGroupDefinition& group, char path_type, std::string directory)
    : group_name_(group.name),
      path_type_(path_type),
      directory_(WithTrailingSeparator(std::move(directory))),
      type_letter_(group.type_letter),
      version_char_(group.version_char),
      key_length_(group.key_length) {}

std::string DatabaseFile::BasePath() const {
  return storage::DatabaseBasePath(directory_, group_name_, type_letter_);
}

bool DatabaseFile::Exists() const {
  return IsFile(DataFileName());
}

int DatabaseFile::Create(const DbTypeRegistry& registry, DatabaseHandle& handle) const {
  if (!registry.IsRegistered(type_letter_)) return storage::kDbUnknownType;
  int raw = 0;
  const int result = storage::iDK_DbCreate(type_letter_, BasePath(), key_length_, &raw);
  if (result == storage::kOk) handle = DatabaseHandle(raw);
  return result;
}

int DatabaseFile::Open(const DbTypeRegistry& registry, bool write_wanted,
                       DatabaseHandle& handle) const {
  const DbTypeRegistration* type = registry.Find(type_letter_);
  if (type == nullptr) return storage::kDbUnknownType;
  int raw = 0;
  const int result =
      storage::iDK_DbOpen(type_letter_, BasePath(), write_wanted, type->shared, &raw);
  if (result == storage::kOk) handle = DatabaseHandle(raw);
  return result;
}

// ---------------------------------------------------------------------------------------

DatabaseFiles::DatabaseFiles(const DatabaseDirectories& directories) {
  for (const DbGroupDefinition& group : kStandardGroups) {
    for (char path_type : group.path_types) {
      std::string directory = DirectoryOfPathType(path_type, directories);
      if (!directory.empty()) files_.emplace_back(group, path_type, std::move(directory));
    }
  }
}

const DatabaseFile* DatabaseFiles::Find(std::string_view group, char path_type) const {
  for (const DatabaseFile& file : files_) {
    if (file.group_name() == group && file.path_type() == path_type) return &file;
  }
  return nullptr;
}

std::vector<std::string> DatabaseFiles::Directories() const {
  std::vector<std::string> directories;
  for (const DatabaseFile& file : files_) {
    if (std::find(directories.begin(), directories.end(), file.directory()) == directories.end()) {
      directories.push_back(file.directory());
    }
  }
  return directories;
}

// ---------------------------------------------------------------------------------------

DatabaseCreation CreateDatabases(const DatabaseFiles& files, const DbTypeRegistry& registry) {
  DatabaseCreation creation;
  storage::iDK_DbSetVersion(kDataFileVersion);
  for (const DatabaseFile& file : files.all()) {
    if (!IsDirectory(file.directory())) continue;
    if (file.Exists()) {
      creation.existing.push_back(file.DataFileName());
      continue;
    }
    creation.result = CreateOne(file, registry);
    if (creation.result != storage::kOk) {
      creation.failed_file = file.DataFileName();
      return creation;
    }
    creation.created.push_back(file.DataFileName());
  }
  for (const std::string& directory : files.Directories()) {
    if (IsDirectory(directory) && CreateControlFile(directory)) {
      creation.control_files.push_back(directory + kControlFileName);
    }
  }
  return creation;
}

}  // namespace korvan::data
