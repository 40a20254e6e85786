#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "boq/model/lv_pos_list.h"
#include "exchange/gaeb/gaeb_record.h"
#include "exchange/gaeb_export/gaeb_export_options.h"
#include "exchange/gaeb_xml/gaeb_document.h"

// Writing an LV as a GAEB DA XML file (3.1, 3.2, 3.3) of a phase 81 ... 86: which LV data
// go to which element, in which order, under which options. The XML syntax is the
// document layer's (gaeb_xml).
namespace korvan::exchange {

// What an export reads: the LV in memory (with its long texts when they are to be
// written), its GAEB header record when it has one, and the project around it.
struct TGaebExportSource {
  boq::TLVPosList lv;
  std::optional<t_Gaeb_DB_VERSION_201401> header;
  std::string project_name;   // the project's short name (NamePrj)
  std::string project_label;  // its label (LblPrj), used when the header has none
  // The items' components (EPAnteil) belong to the bid prices written, not to the estimate.
  bool components_of_bid = false;
};

struct TGaebExportResult {
  gaeb_xml::TGaebDocument document;
  // What the file holds in place of data the LV does not have (German, one line each).
  std::vector<std::string> warnings;
  int entries = 0;  // entries of the LV walked
};

// Told after every entry: entries done, entries in all.
using TGaebExportProgress = std::function<void(int done, int total)>;

// An LV that cannot be written as the phase's file (German, naming the LV, the entry by
// its OZ and what was expected), or an option the export does not support.
class EGaebExportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Builds the document: GAEBInfo, PrjInfo, Award (DP, AwardInfo, client, contractor,
// BoQ with BoQInfo and the body walked depth first), then the document's additional
// texts (the LV's leading and trailing texts). The LV is not changed.
TGaebExportResult BuildGaebExport(const TGaebExportSource& source,
                                  const TGaebExportOptions& options,
                                  const TGaebExportProgress& progress = {});

// Builds the document and writes it to `path` through a temporary file, so that a
// failure never leaves half a file and never touches an older file of that name.
TGaebExportResult ExportGaebFile(const TGaebExportSource& source, const TGaebExportOptions& options,
                                 const std::string& path, const TGaebExportProgress& progress = {});

}  // namespace korvan::exchange
