#pragma once

#include <string_view>

#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::app {

// The kind of a finding as the commands' JSON names it: "error", "warning", "hint",
// "structure".
std::string_view FindingKindJson(exchange::gaeb_xml::TGaebFindingKind kind);

}  // namespace korvan::app
