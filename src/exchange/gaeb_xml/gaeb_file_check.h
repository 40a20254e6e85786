#pragma once

#include <optional>
#include <string>

#include "exchange/gaeb_xml/gaeb_document.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::exchange::gaeb_xml {

// What a check of a GAEB DA XML file found.
struct TGaebFileCheck {
  std::optional<TGaebDocument> document;  // when the file could be read
  TGaebFindings findings;                 // ordered by line
  bool schema_checked = false;            // validated against an official schema
  std::string schema_file;                // the schema used, when one was
};

// Reads a file and checks it: the reader's findings, the structure rules, the arithmetic
// and, when `schema_dir` names a folder of the official 3.3 schemas, the schema of the
// file's phase (a file of another version, or of a phase the folder has no schema for,
// gets a hint instead).
TGaebFileCheck CheckGaebFile(const std::string& path,
                             const std::optional<std::string>& schema_dir = std::nullopt);

}  // namespace korvan::exchange::gaeb_xml
