#pragma once

#include <cstdint>
#include <string>

#include "exchange/gaeb/gaeb_format.h"
#include "exchange/gaeb/gaeb_phase.h"
#include "exchange/gaeb/gaeb_values.h"

namespace korvan::exchange {

// Which quantity of an entry is written as Qty.
enum class TGaebQtyKind {
  kVergabeMenge,      // "Vergabemenge ausgeben": the LV quantity
  kAbrechnungsMenge,  // "Abrechnungsmenge ausgeben": the billing quantity
};

// What the user chose for one export, with the defaults of a new export. Options of the
// export dialog that the LV model has no data for yet (catalog columns, quantity splits,
// standard-text keys, record 75, the bid-program package) are not offered.
struct TGaebExportOptions {
  TGAEBFormat format = TGAEBFormat::gfXML330;
  TGaebPhase phase = kPhaseInvitation;
  // The unit price written as UP; upkNONE takes the phase's own (82 estimate, 84 and 85
  // bid, 86 award). Forecast and unknown kinds write the award prices.
  TUPKind price_kind = TUPKind::upkNONE;
  bool long_text = true;                // "Langtextfassung"
  bool multiline_short_text = false;    // all lines of the short text, not only the first
  bool fill_empty_complements = false;  // "leere Textergänzungen füllen"
  TGaebQtyKind quantity = TGaebQtyKind::kVergabeMenge;
  bool vat_on_sections = false;  // "MwSt. an Bereichsgruppen ausgeben"
  // The day and time the file says it was written (integer date, "HH:MM:SS"); 0 and
  // empty take the clock, so that tests can fix them.
  int32_t date = 0;
  std::string time;
};

// The price kind the export writes: the chosen one, or the phase's own.
TUPKind EffectivePriceKind(const TGaebExportOptions& options);

// The German name of a price kind as the export dialog shows it ("Schätzpreise", ...).
std::string PriceKindCaption(TUPKind kind);

// The text a complement without a value gets when empty complements are to be filled.
inline constexpr const char* kEmptyComplementFiller = "..........";

}  // namespace korvan::exchange
