#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::exchange::gaeb_xml {

std::string_view FindingKindText(TGaebFindingKind kind) {
  switch (kind) {
    case TGaebFindingKind::kError:
      return "Fehler";
    case TGaebFindingKind::kWarning:
      return "Warnung";
    case TGaebFindingKind::kHint:
      return "Hinweis";
    case TGaebFindingKind::kStructure:
      return "Struktur";
  }
  return "Fehler";
}

bool HasErrors(const TGaebFindings& findings) {
  for (const TGaebFinding& finding : findings) {
    if (finding.kind == TGaebFindingKind::kError || finding.kind == TGaebFindingKind::kStructure) {
      return true;
    }
  }
  return false;
}

}  // namespace korvan::exchange::gaeb_xml
