#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::formula {

// A numbered formula as the interpreter uses it.
struct TRebFormelRow {
  std::string nr;
  std::string bezeichnung;
  std::string formel;
  std::string spaltentext;
};

// Where the interpreter finds numbered formulas: the catalogue table, or the built-in
// list where no data directory is at hand.
class TRebFormelSource {
 public:
  virtual ~TRebFormelSource() = default;
  // The formula with this number ("4", "04" and "004" are the same), or nothing.
  virtual std::optional<TRebFormelRow> Find(std::string_view nr) = 0;
};

// The number as the catalogue keys it: digits zero-padded to three ("4" -> "004");
// nothing when the text is empty, longer than three or not all digits.
std::optional<std::string> CatalogueKeyOf(std::string_view nr);

}  // namespace korvan::formula
