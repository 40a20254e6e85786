#include "data/integrity/integrity_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "data/common/stamped_path.h"

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

[[noreturn]] void Fail(const fs::path& path, const char* what) {
  throw std::runtime_error("Protokolldatei \"" + path.string() + "\": " + what + ": " +
                           std::strerror(errno));
}

void WriteDurably(const fs::path& path, const std::string& content) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) Fail(path, "nicht anlegbar");
  size_t written = 0;
  while (written < content.size()) {
    const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      ::close(fd);
      Fail(path, "nicht schreibbar");
    }
    written += static_cast<size_t>(n);
  }
  const bool synced = ::fsync(fd) == 0;
  if (::close(fd) != 0 || !synced) Fail(path, "nicht schreibbar");
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
  fs::path temporary = path;
  temporary += ".tmp";
  WriteDurably(temporary, text.str());
  if (::rename(temporary.c_str(), path.c_str()) != 0) {
    ::unlink(temporary.c_str());
    Fail(path, "nicht umbenennbar");
  }
  return path;
}

}  // namespace korvan::data
