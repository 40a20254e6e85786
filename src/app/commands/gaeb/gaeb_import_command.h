#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "app/cli/command.h"
#include "app/commands/gaeb/gaeb_lv_import.h"
#include "exchange/gaeb_import/gaeb_import.h"

namespace CLI {
class App;
}

namespace korvan::app {

// `korvan gaeb import FILE [--project P] [--name NAME] [--prices KIND | --no-prices]
// [--ignore-project-info] [--ignore-currency] [--json]` reads an LV from a GAEB DA XML
// file (phases 81 to 86) into a new LV of the project, as one step `korvan undo` takes
// back whole. The file is read completely before anything is stored: a file that is
// refused stores nothing. Prints the LV's id, the counts and the findings; the protocol
// goes to "Importprotokoll.txt" in the project folder.
class GaebImportCommand {
 public:
  void Define(CLI::App& app);
  int Run(Streams& streams);

 private:
  // The import options the arguments ask for; a wrong call is refused before the file opens.
  exchange::TGaebImportOptions Options() const;
  // The findings (on `err`, with file and line) and the summary line.
  void PrintText(std::ostream& out, std::ostream& err, const GaebLvImported& imported) const;

  std::string file_;
  std::string name_;
  std::string prices_;
  bool no_prices_ = false;
  bool ignore_project_info_ = false;
  bool ignore_currency_ = false;
  std::string data_dir_;
  std::string project_;
  bool json_ = false;
};

}  // namespace korvan::app
