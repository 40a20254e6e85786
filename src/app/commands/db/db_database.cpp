#include "app/commands/db/db_database.h"

#include <cstring>
#include <exception>
#include <utility>

#include "app/cli/command_error.h"
#include "app/program/database_open_failure.h"
#include "data/common/result_code_text.h"
#include "storage/db_error_translate.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "storage/key_file.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

// The maintenance commands do not know a database's registered type; any letter but
// the library type "G" makes the kernel treat the files as an ordinary database.
constexpr char kAnyDatabaseType = 'T';

}  // namespace

std::string ResultCodeText(int code) {
  return data::ResultCodeText(code);
}

OpenDatabase::OpenDatabase(const std::string& base_path, Access access) : base_path_(base_path) {
  const bool write = access == Access::kExclusiveWrite;
  // Read-only opens share the files with everybody; a writer keeps others from writing.
  const int result = storage::iDK_DbOpen(kAnyDatabaseType, base_path, write, !write, &handle_);
  if (result != storage::kOk) {
    handle_ = 0;  // with 4290 the handle is another user's in this process: not ours to close
    throw CommandError(DatabaseOpenFailureText(base_path, result));
  }
}

OpenDatabase::~OpenDatabase() {
  if (handle_ != 0) storage::iDK_DbClose(handle_);
}

int OpenDatabase::KeyLength() const {
  int key_length = 0;
  int result = storage::kOk;
  try {
    result = storage::KeyFileKeyLength(handle_, &key_length);
  } catch (const std::exception& error) {
    throw CommandError(storage::KeyFileName(base_path_) + ": " + error.what());
  }
  if (result != storage::kOk) {
    throw CommandError(storage::KeyFileName(base_path_) + ": " + ResultCodeText(result));
  }
  return key_length;
}

uint32_t OpenDatabase::KeyCount(bool with_free_space_keys) const {
  uint8_t pattern[storage::kMaxKeyLength];
  std::memset(pattern, storage::kKeyPad, sizeof pattern);  // pad bytes only: matches all
  uint32_t count = 0;
  const int result =
      storage::iDK_KeyMatchesCount(handle_, pattern, 0, with_free_space_keys, &count);
  if (result == storage::kDkKeyNotFound) return 0;  // an empty tree
  if (result != storage::kOk) {
    throw CommandError(storage::KeyFileName(base_path_) + ": " + ResultCodeText(result));
  }
  return count;
}

void OpenDatabase::Close() {
  if (handle_ == 0) return;
  const int result = storage::iDK_DbClose(handle_);
  if (result != storage::kOk) {
    throw CommandError(storage::DataFileName(base_path_) + ", " + storage::KeyFileName(base_path_) +
                       ": " + ResultCodeText(result));
  }
  handle_ = 0;
}

}  // namespace korvan::app
