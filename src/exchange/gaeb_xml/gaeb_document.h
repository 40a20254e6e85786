#pragma once

#include <string>
#include <string_view>

#include "exchange/gaeb/gaeb_format.h"
#include "exchange/gaeb/gaeb_phase.h"
#include "exchange/gaeb_xml/gaeb_element.h"

namespace korvan::exchange::gaeb_xml {

// A GAEB DA XML document: the root element "GAEB" with its branches (GAEBInfo, PrjInfo,
// Award with AwardInfo, OWN, CTR and BoQ, AddText), and the version and phase it is
// written in.
struct TGaebDocument {
  TGAEBFormat format = TGAEBFormat::gfXML330;
  TGaebPhase phase = kPhaseInvitation;
  TGaebElement root{"GAEB"};
};

// The namespace of a DA XML file of a version and phase:
// "http://www.gaeb.de/GAEB_DA_XML/DA83/3.3"; 3.1 has one namespace for all phases.
std::string GaebNamespace(TGAEBFormat format, TGaebPhase phase);

// The schema date a file of the version names in GAEBInfo/VersDate.
std::string_view GaebVersDate(TGAEBFormat format);

}  // namespace korvan::exchange::gaeb_xml
