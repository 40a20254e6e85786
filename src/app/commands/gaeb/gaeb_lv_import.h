#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "exchange/gaeb_import/gaeb_import.h"

namespace korvan::app {

// An LV read from a GAEB file and stored.
struct GaebLvImported {
  exchange::TGaebImport import{};
  int32_t id = 0;
  std::string project{};   // the project's name as the user knows it
  std::string protocol{};  // the path of "Importprotokoll.txt"
};

// Reads `file` (GAEB DA XML, phases 81 to 86) whole and then stores it as a new LV of
// `project` (empty: the current project) as one step of the journal, whatever calls it:
// the command line or the window. `progress` is told after every entry read; it may throw
// to stop the reading, and then nothing is stored. CommandError when the file is refused
// or its LV's name is taken: nothing is stored. Warnings of the sums and of the protocol
// go to `warnings`.
GaebLvImported ImportGaebLv(const std::string& data_dir, const std::string& project,
                            const std::string& file, const exchange::TGaebImportOptions& options,
                            std::ostream& warnings,
                            const exchange::TGaebImportProgress& progress = {});

// "LV 7 "Rohbau" aus a.x83 eingelesen (GAEB DA XML 3.3, Phase 83 - ...): 2 Gruppen, ...".
std::string ImportedLvText(const GaebLvImported& imported, const std::string& file);

}  // namespace korvan::app
