#include "award/compare/compare_options.h"

#include <array>
#include <utility>

namespace korvan::award {
namespace {

constexpr std::array<std::pair<const char*, TReferenceMode>, 7> kModeNames{{
    {"cheapest", TReferenceMode::kCheapest},
    {"dearest", TReferenceMode::kMostExpensive},
    {"first", TReferenceMode::kFirstBidder},
    {"mean", TReferenceMode::kMean},
    {"ideal", TReferenceMode::kIdeal},
    {"estimate", TReferenceMode::kEstimate},
    {"highest", TReferenceMode::kHighestPerLine},
}};

}  // namespace

const char* ReferenceModeText(TReferenceMode mode) {
  switch (mode) {
    case TReferenceMode::kCheapest:
      return "billigstes Angebot";
    case TReferenceMode::kMostExpensive:
      return "teuerstes Angebot";
    case TReferenceMode::kFirstBidder:
      return "erster Bieter der Liste";
    case TReferenceMode::kMean:
      return "Mittelwert";
    case TReferenceMode::kIdeal:
      return "Idealangebot";
    case TReferenceMode::kEstimate:
      return "LV-Schätzpreise";
    case TReferenceMode::kHighestPerLine:
      return "Höchstpreis je Zeile";
  }
  return "";
}

std::optional<TReferenceMode> ParseReferenceMode(std::string_view text) {
  if (text.size() == 1 && text[0] >= '0' && text[0] <= '6') {
    return static_cast<TReferenceMode>(text[0] - '0');
  }
  for (const auto& [name, mode] : kModeNames) {
    if (text == name) return mode;
  }
  return std::nullopt;
}

std::string ReferenceModeNames() {
  std::string names;
  for (const auto& [name, mode] : kModeNames) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names + " oder 0 bis 6";
}

}  // namespace korvan::award
