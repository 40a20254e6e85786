#include "exchange/gaeb/gaeb_format.h"

#include <array>

namespace korvan::exchange {
namespace {

constexpr std::string_view kOptions2000[] = {"disableGaeb90", "disableGaebXml30",
                                             "disableGaebXml31", "enableGaeb2000"};
constexpr std::string_view kOptionsXml31[] = {
    "disableGaeb90", "disableGaeb2000", "disableGaebXml30", "enableGaebXml31", "xmlPrettyPrintOn"};
constexpr std::string_view kOptionsXml32[] = {"disableGaeb90",    "disableGaeb2000",
                                              "disableGaebXml30", "disableGaebXml31",
                                              "enableGaebXml32",  "xmlPrettyPrintOn"};
constexpr std::string_view kOptionsXml33[] = {
    "disableGaeb90",    "disableGaeb2000", "disableGaebXml30", "disableGaebXml31",
    "disableGaebXml32", "enableGaebXml",   "xmlPrettyPrintOn"};

const std::array<TGaebFormatInfo, 6> kFormats = {{
    {TGAEBFormat::gf90, "GAEB 90", "GAEB90", {}, 'D', ""},
    {TGAEBFormat::gf2000, "GAEB 2000", "GAEB2000", kOptions2000, 'P', ""},
    {TGAEBFormat::gfXML, "GAEB DA XML 3.1", "GAEBDAXML", kOptionsXml31, 'X', "3.1"},
    {TGAEBFormat::gfXML320, "GAEB DA XML 3.2", "GAEBDAXML", kOptionsXml32, 'X', "3.2"},
    {TGAEBFormat::gfXML330, "GAEB DA XML 3.3", "GAEBDAXML", kOptionsXml33, 'X', "3.3"},
    {TGAEBFormat::gfUnknown, "keine GAEB-Datei", "", {}, '\0', ""},
}};

}  // namespace

const TGaebFormatInfo& FormatInfo(TGAEBFormat format) {
  return kFormats[static_cast<size_t>(format)];
}

TGAEBFormat FormatOfFileType(std::string_view file_type) {
  if (file_type == "GAEBDAXML") return TGAEBFormat::gfXML;
  if (file_type == "GAEB2000") return TGAEBFormat::gf2000;
  return TGAEBFormat::gfUnknown;
}

std::optional<TGAEBFormat> XmlFormatOfVersion(std::string_view version) {
  for (const TGaebFormatInfo& info : kFormats) {
    if (!info.xml_version.empty() && info.xml_version == version) return info.format;
  }
  return std::nullopt;
}

}  // namespace korvan::exchange
