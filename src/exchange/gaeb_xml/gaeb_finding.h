#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvan::exchange::gaeb_xml {

// The kinds of finding a read or check reports, in the order of the check report.
enum class TGaebFindingKind { kError = 1, kWarning = 2, kHint = 3, kStructure = 4 };

// "Fehler", "Warnung", "Hinweis", "Struktur".
std::string_view FindingKindText(TGaebFindingKind kind);

// One finding with the line of the file it concerns (0 when no line applies).
struct TGaebFinding {
  TGaebFindingKind kind = TGaebFindingKind::kError;
  int line = 0;
  std::string message;
};

using TGaebFindings = std::vector<TGaebFinding>;

// Whether a list holds an error (kind error or structure: both make a file unusable).
bool HasErrors(const TGaebFindings& findings);

}  // namespace korvan::exchange::gaeb_xml
