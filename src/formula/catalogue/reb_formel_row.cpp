#include "formula/catalogue/reb_formel_row.h"

#include <algorithm>
#include <cctype>

namespace korvan::formula {

std::optional<std::string> CatalogueKeyOf(std::string_view nr) {
  if (nr.empty() || nr.size() > 3) return std::nullopt;
  if (!std::all_of(nr.begin(), nr.end(),
                   [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; })) {
    return std::nullopt;
  }
  return std::string(3 - nr.size(), '0') + std::string(nr);
}

}  // namespace korvan::formula
