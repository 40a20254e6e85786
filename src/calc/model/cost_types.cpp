#include "calc/model/cost_types.h"

namespace korvan::calc {

int ZuIndexOf(TResultIndex index) {
  switch (index) {
    case TResultIndex::kMaterial:
      return kZuMaterial;
    case TResultIndex::kLohn:
      return kZuLohn;
    case TResultIndex::kRsv:
      return kZuRsv;
    case TResultIndex::kGeraet:
      return kZuGeraet;
    case TResultIndex::kBetriebsstoffe:
      return kZuBetriebsstoffe;
    case TResultIndex::kSonstige:
      return kZuSonstige;
    case TResultIndex::kFremd:
      return kZuFremd;
  }
  return kZuMaterial;
}

const std::array<TDefaultSurcharge, 19>& DefaultSurcharges() {
  static const std::array<TDefaultSurcharge, 19> rows = {{
      {'Z', 'M', 5}, {'Z', 'R', 5},  {'Z', 'S', 5}, {'Z', 'G', 5},  {'Z', 'B', 5},
      {'Z', 'F', 5}, {'Z', 'E', 80}, {'Z', 'I', 5}, {'E', 'M', 5},  {'E', 'R', 5},
      {'E', 'S', 5}, {'E', 'G', 5},  {'E', 'B', 5}, {'E', 'F', 5},  {'E', 'K', 9},
      {'E', 'L', 0}, {'E', 'N', 5},  {'E', 'O', 0}, {'E', 'P', 50},
  }};
  return rows;
}

char ZuCodeOf(int zu_index) {
  static constexpr char kCodes[kZuCount] = {'M', '\0', 'R', 'S', 'G', 'B', 'F', 'E', 'I'};
  return zu_index >= 0 && zu_index < kZuCount ? kCodes[zu_index] : '\0';
}

namespace {
constexpr char kLineKinds[kResultCostTypes] = {'M', 'Z', 'R', 'G', 'B', 'S', 'F'};
}  // namespace

std::optional<TResultIndex> ResultIndexOfLineKind(char line_kind) {
  for (int i = 0; i < kResultCostTypes; ++i) {
    if (kLineKinds[i] == line_kind) return static_cast<TResultIndex>(i);
  }
  return std::nullopt;
}

char LineKindOf(TResultIndex index) {
  return kLineKinds[static_cast<int>(index)];
}

std::string_view CostTypeName(TResultIndex index) {
  static constexpr std::string_view kNames[kResultCostTypes] = {
      "Material", "Lohn", "RSV", "Gerät", "Betriebsstoffe", "Sonstige Kosten", "Fremdleistungen"};
  return kNames[static_cast<int>(index)];
}

}  // namespace korvan::calc
