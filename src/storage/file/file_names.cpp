#include "storage/file/file_names.h"

#include <cctype>

namespace korvan::storage {
namespace {

constexpr char kBaseInfix[] = ".Q";
constexpr char kDataSuffix[] = "0";
constexpr char kKeySuffix[] = "1";
constexpr char kLockSuffix[] = "2";
constexpr char kCommitSuffix[] = ".commit";
constexpr char kBackupSuffix[] = ".bak";

}  // namespace

std::string DatabaseBasePath(const std::string& directory, const std::string& group,
                             char type_letter) {
  return directory + group + kBaseInfix + type_letter;
}

char TypeLetterOfBasePath(const std::string& base_path) {
  const std::string infix = kBaseInfix;
  const size_t size = base_path.size();
  if (size <= infix.size() ||
      base_path.compare(size - infix.size() - 1, infix.size(), infix) != 0) {
    return '\0';
  }
  const char letter = base_path.back();
  return std::isalpha(static_cast<unsigned char>(letter)) ? letter : '\0';
}

std::string DataFileName(const std::string& base_path) {
  return base_path + kDataSuffix;
}

std::string KeyFileName(const std::string& base_path) {
  return base_path + kKeySuffix;
}

std::string LockFileName(const std::string& base_path) {
  return base_path + kLockSuffix;
}

std::string RebuildTempBasePath(const std::string& directory, char type_letter) {
  return DatabaseBasePath(directory, kRebuildTempGroup, type_letter);
}

std::string RebuildCommitMarkName(const std::string& directory, char type_letter) {
  return RebuildTempBasePath(directory, type_letter) + kCommitSuffix;
}

std::string BackupFileName(const std::string& file) {
  return file + kBackupSuffix;
}

bool IsRebuildLeftoverName(const std::string& file_name) {
  const std::string temp_prefix = std::string(kRebuildTempGroup) + kBaseInfix;
  return file_name.starts_with(temp_prefix) ||
         (file_name.size() > sizeof kBackupSuffix - 1 && file_name.ends_with(kBackupSuffix));
}

}  // namespace korvan::storage
