#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "boq/model/lv_pos_list.h"
#include "exchange/gaeb/gaeb_record.h"
#include "exchange/gaeb_import/gaeb_import_options.h"
#include "exchange/gaeb_xml/gaeb_document.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

// Reading an LV from a GAEB DA XML file (3.0 to 3.3, phases 81 to 86, 84 read as an LV):
// the whole LV is built in memory first, so that a file that cannot be read stores
// nothing. The document layer (gaeb_xml) reads the XML; this reads its meaning.
namespace korvan::exchange {

// The LV a file describes, not yet stored.
struct TGaebImport {
  boq::TLVPosList lv;  // header and entries in document order, temporary ids below zero
  t_Gaeb_DB_VERSION_201401 header{};  // the LV's GAEB header record (IdLv unset)
  TGXmlImportOptionsData data;        // what the file says about project, award and BoQ
  TGAEBFormat format = TGAEBFormat::gfXML330;
  TGaebPhase phase = 0;
  // Deviations the import read around, each with its line: texts too long, parts
  // missing, elements not known or not taken over.
  gaeb_xml::TGaebFindings findings;
  // The protocol lines "Read: No <element>" and "Read: Bad <element>" (with the line).
  std::vector<std::string> protocol;
  int groups = 0;
  int items = 0;  // items, lead and sub-descriptions
  int texts = 0;  // remarks and additional texts
};

// A file that cannot be imported, with a message naming the file, the line and what was
// expected ("a.x83:12: ... erwartet ...").
class EGaebImportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Told after every entry built: entries done, entries in all (items and sections of the file).
using TGaebImportProgress = std::function<void(int done, int total)>;

// The LV of a document already read. `file` names the file in messages.
TGaebImport ImportGaebDocument(const gaeb_xml::TGaebDocument& document, const std::string& file,
                               const TGaebImportOptions& options,
                               const TGaebImportProgress& progress = {});

// Reads the XML and imports it; EGaebImportError when it is no GAEB DA XML document of
// an LV: not XML, truncated, a DTD, entities, another root, no award or BoQ.
TGaebImport ImportGaebXml(std::string_view xml, const std::string& file,
                          const TGaebImportOptions& options,
                          const TGaebImportProgress& progress = {});
TGaebImport ImportGaebFile(const std::string& path, const TGaebImportOptions& options,
                           const TGaebImportProgress& progress = {});

// The protocol of an import as the file "Importprotokoll.txt" holds it: the file, the
// counts, each finding and each "Read:" line.
std::string ImportProtocolText(const TGaebImport& import);

}  // namespace korvan::exchange
