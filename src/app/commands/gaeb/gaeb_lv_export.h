#pragma once

#include <cstdint>
#include <string>

#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::app {

// What to write: an LV (by name or id) of a project as a file of a phase.
struct GaebLvExport {
  std::string lv{};
  exchange::TGaebExportOptions options{};
  std::string bidder{};    // phase 84: this bidder's bid (number, id or name); empty: the LV's
  std::string contract{};  // phase 86: this contract (number or id); empty: the main contract
  std::string file{};      // empty: "<Projekt>_<LV>.X8x" in the current folder
};

struct GaebLvExported {
  int32_t id = 0;
  std::string lv_name{};
  std::string path{};
  // The result with the notes on the award in front of the export's own warnings.
  exchange::TGaebExportResult result{};
};

// Writes the LV as GAEB DA XML, whatever calls it: the command line or the window. The
// file is built whole before it is written through a temporary file, so `progress` (told
// after every entry) may throw to stop, and no file is left. CommandError when the LV,
// bidder or contract is not there; exchange::EGaebExportError when the LV cannot be
// written as the phase's file.
GaebLvExported ExportGaebLv(const std::string& data_dir, const std::string& project,
                            const GaebLvExport& request,
                            const exchange::TGaebExportProgress& progress = {});

// "LV 7 "Rohbau" als GAEB DA XML 3.3, Phase 83 - ..., mit 12 Einträgen geschrieben: a.X83".
std::string ExportedLvText(const GaebLvExported& exported,
                           const exchange::TGaebExportOptions& options);

}  // namespace korvan::app
