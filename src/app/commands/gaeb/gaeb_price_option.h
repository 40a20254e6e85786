#pragma once

#include <string>

#include "exchange/gaeb/gaeb_values.h"

namespace korvan::app {

// The unit prices a `--prices` option names: estimate, award, bid or billing. UsageError
// for anything else.
exchange::TUPKind PriceKindOption(const std::string& text);

}  // namespace korvan::app
