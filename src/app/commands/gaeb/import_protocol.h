#pragma once

#include <iosfwd>
#include <string>

namespace korvan::app {

// Writes the protocol `text` of an import as "Importprotokoll.txt" into the project folder
// `directory` and answers its path. The protocol is a help, not the result: one that
// cannot be written is a warning on `warnings`.
std::string WriteImportProtocol(const std::string& directory, const std::string& text,
                                std::ostream& warnings);

}  // namespace korvan::app
