#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::award {

// What counts as 100 % in the price comparison ("100% Bezug").
enum class TReferenceMode {
  kCheapest = 0,        // "billigstes Angebot"
  kMostExpensive = 1,   // "teuerstes Angebot"
  kFirstBidder = 2,     // "erster Bieter der Liste"
  kMean = 3,            // "Mittelwert"
  kIdeal = 4,           // "Idealangebot"
  kEstimate = 5,        // "LV-Schätzpreise"
  kHighestPerLine = 6,  // the highest price of each line; no dialog offers it
};

// The caption people know a mode by.
const char* ReferenceModeText(TReferenceMode mode);
// A mode by its number (0 to 6) or its name on the command line (cheapest, dearest, first,
// mean, ideal, estimate, highest); nothing for anything else.
std::optional<TReferenceMode> ParseReferenceMode(std::string_view text);
// The names ParseReferenceMode understands, for messages.
std::string ReferenceModeNames();

struct TCompareOptions {
  TReferenceMode reference = TReferenceMode::kIdeal;
  // "Kennzeichnen von Positionen, die mehr als ... % vom Mittelwert abweichen"; 0 none.
  double max_deviation = 0.0;
  // "nur Positionen ausgeben, die mindestens ... % der Angebotssumme enthalten": items whose
  // mean total is below that share of the mean bid's total are not shown; 0 all.
  double min_share = 0.0;
  // "alle Eventualpositionen mit einrechnen": contingency items without total (Bedarf E)
  // are priced and counted in every bid's totals for this comparison; what is stored stays.
  bool with_contingency = false;
};

}  // namespace korvan::award
