#pragma once

#include <string>
#include <utility>
#include <vector>

namespace korvan::storage {

// Maps kernel result codes to their German message texts. The texts are kept exactly
// as users have always seen them, including blanks lost where lines were once joined
// and limits that no longer hold (4305 still says 20 handles).
class TDBErrorTranslate {
 public:
  TDBErrorTranslate();

  // The text of a code, or "Fehlercode unbekannt" when the code has none.
  std::string GetErrorString(int code) const;

  // Each entry is a text with its code as the associated number.
  const std::vector<std::pair<std::string, int>>& FDBErrorStrings() const { return error_strings_; }

 private:
  std::vector<std::pair<std::string, int>> error_strings_;
};

// The translation object the kernel attaches to the exceptions it raises.
const TDBErrorTranslate& KernelErrorTranslate();

}  // namespace korvan::storage
