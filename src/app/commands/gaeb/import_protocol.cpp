#include "app/commands/gaeb/import_protocol.h"

#include <exception>
#include <filesystem>
#include <ostream>

#include "storage/file/atomic_file.h"

namespace korvan::app {

std::string WriteImportProtocol(const std::string& directory, const std::string& text,
                                std::ostream& warnings) {
  constexpr const char* kProtocolFile = "Importprotokoll.txt";
  const std::string protocol = (std::filesystem::path(directory) / kProtocolFile).string();
  try {
    storage::WriteFileAtomically(protocol, text, storage::Durability::kAtomic);
  } catch (const std::exception& error) {
    warnings << "Warnung: " << kProtocolFile << " nicht geschrieben: " << error.what() << '\n';
  }
  return protocol;
}

}  // namespace korvan::app
