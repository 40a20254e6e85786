#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace korvan::data {

// How serious a finding of the integrity check is. Conflicts and errors are problems.
enum class TLogKind { lkNONE, lkHint, lkConflict, lkError };

// One finding: the record it concerns, what was found, what follows and what was done.
struct TDiSubLogItem {
  std::string FConclusion;
  std::string FAction;
  std::string FData;
  TLogKind FKind = TLogKind::lkNONE;
  std::vector<std::string> FProperties;

  bool IsProblem() const { return FKind == TLogKind::lkConflict || FKind == TLogKind::lkError; }
};

// The findings of one table of one database.
struct TDiLogItem {
  std::string FDatabaseName;
  std::string FTableName;
  std::vector<std::string> FRecordCountResult;  // lines about the table as a whole
  std::vector<TDiSubLogItem> FDISubItems;
  bool FRecordCountDiffers = false;  // the check of the table was aborted

  int ProblemCount() const;
};

// Writes the log: per table "  DB: %s" and "    TB: %s", its table lines, then per
// finding its kind, "Daten", the further properties, "Folgerung" and "Aktion"; every
// line ends in "\r\n".
void AddLogToStream(const std::vector<TDiLogItem>& items, std::ostream& out);

// Writes the log into a new file "Integrity_<date>_<time>[_<n>].log" in `folder` (the
// system directory's "SYS" folder), under a temporary name first so that a log file is
// never seen half written. Returns the file's path; throws std::runtime_error naming
// the file when it cannot be written.
std::filesystem::path AddLogToFile(const std::vector<TDiLogItem>& items,
                                   const std::filesystem::path& folder);

}  // namespace korvan::data
