#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvan::exchange {

// A GAEB exchange phase (Datenaustauschphase, DA): a two-digit number.
using TGaebPhase = int32_t;

inline constexpr TGaebPhase kPhaseLv = 81;            // Leistungsbeschreibung
inline constexpr TGaebPhase kPhaseCostEstimate = 82;  // Kostenanschlag
inline constexpr TGaebPhase kPhaseInvitation = 83;    // Angebotsaufforderung
inline constexpr TGaebPhase kPhaseBid = 84;           // Angebotsabgabe
inline constexpr TGaebPhase kPhaseAlternative = 85;   // Nebenangebot
inline constexpr TGaebPhase kPhaseAward = 86;         // Auftragserteilung
// Recognised on import only.
inline constexpr TGaebPhase kPhaseElementalCosting = 50;
inline constexpr TGaebPhase kPhaseQtyDeterm = 31;

// One phase of the tendering cycle as the export offers it.
struct TGaebPhaseInfo {
  TGaebPhase phase;
  std::string_view name;  // German phase name
  bool lv_import;         // the LV import reads it (84 goes to the bid import)
};

// The six phases 81 ... 86 in order.
std::span<const TGaebPhaseInfo> ExportPhases();

// The phase's entry; nothing for a phase outside 81 ... 86.
std::optional<TGaebPhaseInfo> ExportPhase(TGaebPhase phase);

// The text of a phase in the phase list: "81 - Leistungsverzeichnis".
std::string PhaseCaption(TGaebPhase phase);

// Whether the writer takes the bid set of filling routines (DA 84) or the common one.
inline bool UsesBidVariant(TGaebPhase phase) {
  return phase == kPhaseBid;
}

// Whether an item carries prices (UP, UPComp, IT) in a file of this phase.
bool PhaseCarriesPrices(TGaebPhase phase);

// The phase of a DP text: a whole number, or for elemental costing a decimal number
// with "." whose integer part counts; nothing when the text is neither.
std::optional<TGaebPhase> PhaseOfDpText(std::string_view text);

}  // namespace korvan::exchange
