#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "app/cli/command.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace CLI {
class App;
}

namespace korvan::app {

// `korvan gaeb export <lv> --phase 8x [--version 3.1|3.2|3.3] [--prices KIND] [-o FILE]`
// writes an LV of the project as a GAEB DA XML file of a phase. Without -o the file is
// named after the project and the LV with the phase's extension ("Schule_Rohbau.X83") in
// the current folder. What the file holds in place of data the LV lacks is said on
// standard error as warnings.
class GaebExportCommand {
 public:
  void Define(CLI::App& app);
  int Run(Streams& streams);

 private:
  // The export options the arguments ask for; a wrong call is refused before any file opens.
  exchange::TGaebExportOptions Options() const;
  void PrintJson(std::ostream& out, const std::string& path, int32_t id, const std::string& version,
                 const exchange::TGaebExportResult& result) const;

  std::string lv_;
  int phase_ = 0;
  std::string version_ = "3.3";
  std::string prices_;
  std::string bidder_;
  std::string contract_;
  std::string file_;
  bool short_texts_only_ = false;
  bool multiline_short_text_ = false;
  bool fill_empty_complements_ = false;
  bool billing_quantity_ = false;
  bool vat_on_sections_ = false;
  std::string data_dir_;
  std::string project_;
  bool json_ = false;
};

}  // namespace korvan::app
