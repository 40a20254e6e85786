#include "exchange/gaeb_xml/gaeb_document.h"

namespace korvan::exchange::gaeb_xml {

std::string GaebNamespace(TGAEBFormat format, TGaebPhase phase) {
  if (format == TGAEBFormat::gfXML) return "http://www.gaeb.de/GAEB_DA_XML/200407";
  return "http://www.gaeb.de/GAEB_DA_XML/DA" + std::to_string(phase) + "/" +
         std::string(FormatInfo(format).xml_version);
}

std::string_view GaebVersDate(TGAEBFormat format) {
  switch (format) {
    case TGAEBFormat::gfXML:
      return "2004-07";
    case TGAEBFormat::gfXML320:
      return "2013-10";
    default:
      return "2021-05";
  }
}

}  // namespace korvan::exchange::gaeb_xml
