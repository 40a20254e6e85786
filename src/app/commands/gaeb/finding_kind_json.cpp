#include "app/commands/gaeb/finding_kind_json.h"

namespace korvan::app {

std::string_view FindingKindJson(exchange::gaeb_xml::TGaebFindingKind kind) {
  using exchange::gaeb_xml::TGaebFindingKind;
  switch (kind) {
    case TGaebFindingKind::kError:
      return "error";
    case TGaebFindingKind::kWarning:
      return "warning";
    case TGaebFindingKind::kHint:
      return "hint";
    case TGaebFindingKind::kStructure:
      return "structure";
  }
  return "error";
}

}  // namespace korvan::app
