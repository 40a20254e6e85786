#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exchange/gaeb/gaeb_info_objects.h"
#include "exchange/gaeb/gaeb_values.h"

namespace korvan::exchange {

// What a file says about its project, award and BoQ, read before anything is stored, so
// that the user can review it and leave values out. Absent elements stay empty optionals.
struct TGXmlImportOptionsData {
  TAvaGXmlPrjInfo FPrjInfo;
  TAvaGXmlAwardInfo FAwardInfo;
  TAvaGXmlBoQInfo FBoQInfo;
  std::optional<TAvaGXmlOWN> FOWN;
  std::optional<TAvaGXmlCTR> FCTR;
  std::string FImportPath;  // the file read
  std::string FDP;          // the phase as the file writes it ("83")
  bool FModified = false;   // the user changed something
  bool FAsCatalog = false;  // a description catalog rather than an LV: not offered
};

// The choices of one import that the import dialog offers, given on the command line.
struct TGaebImportOptions {
  // Unit prices and totals of a phase that carries them are taken over.
  bool prices = true;
  // Where the file's unit prices go; upkNONE takes the phase's own (81, 82 estimate,
  // 84 bid, 85 bid and award, 86 award).
  TUPKind price_kind = TUPKind::upkNONE;
  // "ignorieren": the project information (label, currency, permissions, decimals) and
  // the parties are left out.
  bool ignore_project_info = false;
  bool ignore_currency = false;
  // The LV's name; empty takes BoQInfo/Name.
  std::string lv_name;
};

}  // namespace korvan::exchange
