#include "app/commands/db/db_format.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "app/cli/command_error.h"
#include "app/commands/db/db_database.h"
#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"

namespace korvan::app {
namespace {

// The maintenance commands do not know the registered type; "G" would ask for a library.
constexpr char kOrdinaryType = 'T';

const std::pair<int, const char*> kFormatNames[] = {
    {storage::kDkFormatCurrent, "aktuelles Format"},
    {storage::kDkFormat2018, "Format von 2018"},
    {storage::kDkFormat2016, "Format von 2016"},
    {storage::kDkFormat2014, "Format von 2014"},
    {storage::kDkFormat2013, "Format von 2013"},
    {storage::kDkFormat2011, "Format von 2011"},
    {storage::kDkFormatOstrell20, "Format von Ostrell 2.0"},
};

}  // namespace

std::string FormatCodeText(int format_code) {
  for (const auto& [code, name] : kFormatNames) {
    if (code == format_code) return std::to_string(code) + " (" + name + ")";
  }
  return ResultCodeText(format_code);
}

bool IsRecordFormat(int format_code) {
  for (const auto& [code, name] : kFormatNames) {
    if (code == format_code) return true;
  }
  return false;
}

int DataFileFormat(const std::string& base_path) {
  const int format = storage::iDK_DbCheckFile(kOrdinaryType, storage::DataFileName(base_path));
  if (format != storage::kDkDataFileMissing && format != storage::kDkIoError) return format;
  std::string message = storage::DataFileName(base_path) + ": " + ResultCodeText(format);
  std::error_code error;
  const auto size = std::filesystem::file_size(storage::DataFileName(base_path), error);
  if (!error && size < storage::kDataFileHeaderSize) {
    message += ": Datei von " + std::to_string(size) + " Bytes ist kürzer als ihr Kopf";
  }
  throw CommandError(message);
}

}  // namespace korvan::app
