#include "app/program/database_open_failure.h"

#include "data/common/result_code_text.h"
#include "storage/db_kernel_codes.h"
#include "storage/file/file_names.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

bool IsKeyFileCode(int code) {
  return code == storage::kDkKeyFileMissing || code < storage::kDkInvalidHandle;
}

bool IsKeyFileDamage(int code) {
  return code == storage::kKeyLengthOutOfRange || code == storage::kKeyFileCorrupt ||
         code == storage::kKeyFileUnknownVersion;
}

}  // namespace

std::string FileOfOpenFailure(const std::string& base_path, int code) {
  return IsKeyFileCode(code) ? storage::KeyFileName(base_path) : storage::DataFileName(base_path);
}

std::string DatabaseOpenFailureText(const std::string& base_path, int code) {
  std::string text = FileOfOpenFailure(base_path, code) + ": " + data::ResultCodeText(code);
  if (IsKeyFileDamage(code)) text += "\n" + std::string(kDamageAdvice);
  return text;
}

}  // namespace korvan::app
