#include "data/integrity/integrity_log.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "data/common/stamped_path.h"
#include "storage/file/atomic_file.h"

namespace korvan::data {
namespace fs = std::filesystem;

int TDiLogItem::ProblemCount() const {
  const auto problems = std::count_if(FDISubItems.begin(), FDISubItems.end(),
                                      [](const TDiSubLogItem& item) { return item.IsProblem(); });
  return static_cast<int>(problems) + (FRecordCountDiffers ? 1 : 0);
}

namespace {

const char* KindText(TLogKind kind) {
  switch (kind) {
    case TLogKind::lkHint:
      return "      [Hinweis ]\r\n";
    case TLogKind::lkConflict:
      return "      [Konflikt]\r\n";
    case TLogKind::lkError:
      return "      [Fehler  ]\r\n";
    case TLogKind::lkNONE:
      break;
  }
  return "";
}

void WriteSubItem(const TDiSubLogItem& item, std::ostream& out) {
  out << KindText(item.FKind);
  out << "      Daten: <" << item.FData << ">\r\n";
  for (const std::string& property : item.FProperties) out << "            " << property << "\r\n";
  out << "      Folgerung: <" << item.FConclusion << ">\r\n";
  out << "      Aktion: <" << item.FAction << ">\r\n";
}

const char* FailedStepText(storage::FileWriteStep step) {
  switch (step) {
    case storage::FileWriteStep::kCreate:
      return "nicht anlegbar";
    case storage::FileWriteStep::kReplace:
      return "nicht umbenennbar";
    default:
      return "nicht schreibbar";
  }
}

}  // namespace

void AddLogToStream(const std::vector<TDiLogItem>& items, std::ostream& out) {
  for (const TDiLogItem& item : items) {
    out << "  DB: " << item.FDatabaseName << "\r\n";
    out << "    TB: " << item.FTableName << "\r\n";
    for (const std::string& line : item.FRecordCountResult) out << line << "\r\n";
    for (const TDiSubLogItem& sub : item.FDISubItems) WriteSubItem(sub, out);
  }
}

fs::path AddLogToFile(const std::vector<TDiLogItem>& items, const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  std::ostringstream text;
  AddLogToStream(items, text);
  const fs::path path = NewStampedPath(folder, "Integrity_", ".log");
  const storage::FileWriteResult result =
      storage::WriteFileAtomically(path.string(), text.str(), storage::Durability::kDurable);
  if (!result.ok()) {
    throw std::runtime_error("Protokolldatei \"" + path.string() +
                             "\": " + FailedStepText(result.failed) + ": " + result.ErrorText());
  }
  return path;
}

}  // namespace korvan::data
