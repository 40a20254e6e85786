#include "app/commands/gaeb/gaeb_price_option.h"

#include <map>

#include "app/cli/command_error.h"

namespace korvan::app {

exchange::TUPKind PriceKindOption(const std::string& text) {
  using exchange::TUPKind;
  static const std::map<std::string, TUPKind> kinds = {{"estimate", TUPKind::upkSchaetz},
                                                       {"award", TUPKind::upkVergabe},
                                                       {"bid", TUPKind::upkAngebot},
                                                       {"billing", TUPKind::upkAbrechnung}};
  const auto kind = kinds.find(text);
  if (kind == kinds.end()) {
    throw UsageError("--prices " + text + ": erwartet estimate, award, bid oder billing");
  }
  return kind->second;
}

}  // namespace korvan::app
