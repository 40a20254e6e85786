#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "data/integrity/data_rebuild.h"

namespace korvan::data {

// The contents of the databases at one moment, to compare before and after a copy:
// per data file and table letter the number of live records and an order-independent
// checksum of their bytes.
struct TDataPhase {
  struct Table {
    int records = 0;
    uint64_t checksum = 0;
    bool operator==(const Table&) const = default;
  };
  std::map<std::string, std::map<char, Table>> files;
  bool operator==(const TDataPhase&) const = default;
};

TDataPhase TakeDataPhase(const std::vector<const DatabaseFile*>& files);
// The differences between two phases, one line each.
std::vector<std::string> ComparePhases(const TDataPhase& before, const TDataPhase& after);

struct TReorgStep {
  std::string name;  // "1. I-Check", ...
  bool ok = true;
  std::vector<std::string> details;
};

struct TReorgResult {
  std::deque<TReorgStep> steps;  // a deque: a step stays where it is while others follow
  std::filesystem::path backup_folder;
  bool restored = false;  // a step after the backup failed and the backup was put back
  bool ok() const {
    for (const TReorgStep& step : steps) {
      if (!step.ok) return false;
    }
    return true;
  }
};

// "Datenreorganisation durch Kopieren": the integrity check of the current data, the
// phase of the current data, a backup of every "DB_*.Q*" file into `backup_root`, the
// copy (rebuild of every group), the integrity check of the copy, the comparison of
// the two checks (same tables, same record counts, same number of problems), the
// comparison of the phases (every record taken over unchanged) and the loading of
// every database. Stops at the first step that fails; when that is a step after the
// backup, the backed-up files are put back in place (step "Originaldateien
// wiederhergestellt"), so the data stay as they were. The backup goes into a new folder
// "Reorg_<time>" below `backup_root`. `on_step` hears each step's name when it starts.
TReorgResult doDmDataReorgWithCopy(TdmDataRebuild& rebuild,
                                   const std::filesystem::path& backup_root,
                                   const std::function<void(const std::string&)>& on_step = {});

}  // namespace korvan::data
