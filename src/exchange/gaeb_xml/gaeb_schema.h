#pragma once

#include <optional>
#include <string>

#include "exchange/gaeb/gaeb_phase.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::exchange::gaeb_xml {

// The official schema of a phase in a folder of the GAEB DA XML 3.3 schemas:
// "GAEB_DA_XML_83_3.3_<date>.xsd"; nothing when the folder holds none for the phase.
std::optional<std::string> SchemaFileOfPhase(const std::string& folder, TGaebPhase phase);

// Validates XML text against a schema file. Schema and document are read without network
// access; a document type declaration is refused as by the reader. Every violation is a
// finding with its line; a schema that cannot be read is one finding naming it.
TGaebFindings ValidateAgainstSchema(const std::string& xml, const std::string& schema_file);

}  // namespace korvan::exchange::gaeb_xml
