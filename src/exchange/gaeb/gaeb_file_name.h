#pragma once

#include <string>
#include <string_view>

#include "exchange/gaeb/gaeb_format.h"
#include "exchange/gaeb/gaeb_phase.h"

namespace korvan::exchange {

// ".X83", ".P86", ".D81"; a catalog-data transfer takes "BD" in place of the phase
// digits (".DBD").
std::string GaebExtension(TGAEBFormat format, TGaebPhase phase, bool catalog_transfer = false);

// The default file name without extension: the project name, "_" and the LV name, each
// without the characters a file name may not hold.
std::string DefaultGaebFileName(std::string_view project_name, std::string_view lv_name);

// Whether a file name has an extension of the import filter ".D8*;.P8*;.X8*;.XML", in any
// case.
bool IsGaebFileName(std::string_view file_name);

}  // namespace korvan::exchange
