#include "exchange/gaeb_export/gaeb_export_options.h"

namespace korvan::exchange {

TUPKind EffectivePriceKind(const TGaebExportOptions& options) {
  if (options.price_kind != TUPKind::upkNONE) return options.price_kind;
  switch (options.phase) {
    case kPhaseCostEstimate:
      return TUPKind::upkSchaetz;
    case kPhaseBid:
    case kPhaseAlternative:
      return TUPKind::upkAngebot;
    default:
      return TUPKind::upkVergabe;
  }
}

std::string PriceKindCaption(TUPKind kind) {
  switch (kind) {
    case TUPKind::upkSchaetz:
      return "Schätzpreise";
    case TUPKind::upkAngebot:
      return "Angebotspreise";
    case TUPKind::upkAbrechnung:
      return "Abrechnungspreise";
    default:
      return "Vergabepreise";
  }
}

}  // namespace korvan::exchange
