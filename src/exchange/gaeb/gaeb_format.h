#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvan::exchange {

// The exchange formats; the ordinal is also the entry of the export dialog's format list.
enum class TGAEBFormat { gf90, gf2000, gfXML, gfXML320, gfXML330, gfUnknown };

// What one format is and how a writer is switched to it.
struct TGaebFormatInfo {
  TGAEBFormat format;
  std::string_view name;       // as shown: "GAEB DA XML 3.3"
  std::string_view file_type;  // the file-type answer of format detection
  // Writer options set before writing, in this order (none for GAEB 90, which has its
  // own writer).
  std::span<const std::string_view> writer_options;
  char extension_letter;         // D, P or X; '\0' for an unknown format
  std::string_view xml_version;  // "3.1", "3.2", "3.3" for DA XML, empty otherwise
};

const TGaebFormatInfo& FormatInfo(TGAEBFormat format);

// The format a file-type answer names: "GAEBDAXML" any DA XML version, "GAEB2000" GAEB
// 2000, anything else not a GAEB file.
TGAEBFormat FormatOfFileType(std::string_view file_type);

// The DA XML format of a version text "3.1", "3.2" or "3.3"; nothing for anything else.
std::optional<TGAEBFormat> XmlFormatOfVersion(std::string_view version);

// The option set after every write so that a later use starts without pretty printing.
inline constexpr std::string_view kPrettyPrintOff = "xmlPrettyPrintOff";

}  // namespace korvan::exchange
