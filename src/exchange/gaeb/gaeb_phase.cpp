#include "exchange/gaeb/gaeb_phase.h"

#include <array>
#include <charconv>

namespace korvan::exchange {
namespace {

const std::array<TGaebPhaseInfo, 6> kPhases = {{
    {kPhaseLv, "Leistungsverzeichnis", true},
    {kPhaseCostEstimate, "Kostenanschlag", true},
    {kPhaseInvitation, "Angebotsaufforderung", true},
    {kPhaseBid, "Angebotsabgabe", false},
    {kPhaseAlternative, "Nebenangebot", true},
    {kPhaseAward, "Auftragserteilung", true},
}};

}  // namespace

std::span<const TGaebPhaseInfo> ExportPhases() {
  return kPhases;
}

std::optional<TGaebPhaseInfo> ExportPhase(TGaebPhase phase) {
  for (const TGaebPhaseInfo& info : kPhases) {
    if (info.phase == phase) return info;
  }
  return std::nullopt;
}

std::string PhaseCaption(TGaebPhase phase) {
  const std::optional<TGaebPhaseInfo> info = ExportPhase(phase);
  std::string caption = std::to_string(phase);
  if (info) caption += " - " + std::string(info->name);
  return caption;
}

bool PhaseCarriesPrices(TGaebPhase phase) {
  return phase == kPhaseCostEstimate || phase == kPhaseBid || phase == kPhaseAlternative ||
         phase == kPhaseAward;
}

std::optional<TGaebPhase> PhaseOfDpText(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  const std::string_view whole = text.substr(0, text.find('.'));
  if (whole.empty()) return std::nullopt;
  TGaebPhase phase = 0;
  const auto [end, error] = std::from_chars(whole.data(), whole.data() + whole.size(), phase);
  if (error != std::errc() || end != whole.data() + whole.size() || phase < 0) return std::nullopt;
  if (whole.size() < text.size()) {
    const std::string_view fraction = text.substr(whole.size() + 1);
    for (const char c : fraction) {
      if (c < '0' || c > '9') return std::nullopt;
    }
  }
  return phase;
}

}  // namespace korvan::exchange
