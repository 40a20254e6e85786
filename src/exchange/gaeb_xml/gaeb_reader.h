#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "exchange/gaeb_xml/gaeb_document.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::exchange::gaeb_xml {

// What reading a file gave: the document when the XML could be read, and the findings
// of the read with their lines.
struct TGaebReadResult {
  std::optional<TGaebDocument> document;
  TGaebFindings findings;
};

// Reads GAEB DA XML held in memory. The parser never loads anything from the network or
// from other files: a document type declaration is refused before parsing (it is the
// only way to declare entities or load a DTD), and entities are never substituted.
// Elements the system does not know are kept in the tree. Version and phase come from
// the namespace and from Award/DP (or ElementalCosting/DP); a root that is not "GAEB" or
// a namespace of no known version is reported.
TGaebReadResult ReadGaebXml(std::string_view xml);

// The same for a file; a file that cannot be opened is reported as a finding naming it.
TGaebReadResult ReadGaebXmlFile(const std::string& path);

}  // namespace korvan::exchange::gaeb_xml
