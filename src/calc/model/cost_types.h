#pragma once

#include <array>
#include <optional>
#include <string_view>

// The cost types of the calculation (one character, KZKA) and the two index orders that
// name them: the results per cost type are kept in one order, the surcharge percentages
// of the calculation data in another. Both orders are historical and are kept as they are,
// because stored settings and exchanged results rely on them.
namespace korvan::calc {

// The calculation kinds: fixed surcharges per cost type, or allocation over the end sum.
inline constexpr char kKalkArtZuschlag = 'Z';
inline constexpr char kKalkArtEndsumme = 'E';

// Index of a cost type in a result (item, sub-item): TKostenPreisData order.
enum class TResultIndex : int {
  kMaterial = 0,
  kLohn = 1,
  kRsv = 2,
  kGeraet = 3,
  kBetriebsstoffe = 4,
  kSonstige = 5,
  kFremd = 6,
};
inline constexpr int kResultCostTypes = 7;

// Index of a cost type among the percentages of the calculation data (TKalkData order).
// 7 and 8 are the two further wage surcharges of the Z method (codes E and I).
inline constexpr int kZuMaterial = 0;
inline constexpr int kZuLohn = 1;
inline constexpr int kZuRsv = 2;
inline constexpr int kZuSonstige = 3;
inline constexpr int kZuGeraet = 4;
inline constexpr int kZuBetriebsstoffe = 5;
inline constexpr int kZuFremd = 6;
inline constexpr int kZuLohnE = 7;
inline constexpr int kZuLohnI = 8;
inline constexpr int kZuCount = 9;

// The percentage index of a result index (wage stays wage).
int ZuIndexOf(TResultIndex index);

// One row of the master surcharge table a new installation starts with.
struct TDefaultSurcharge {
  char kalk_art;
  char kza;
  double percent;
};
// The 19 default rows: kind Z with M, R, S, G, B, F 5 %, E 80 %, I 5 %; kind E with
// M, R, S, G, B, F 5 %, K 9 %, L 0 %, N 5 %, O 0 %, P 50 %.
const std::array<TDefaultSurcharge, 19>& DefaultSurcharges();

// The cost-type code of a percentage index of the Z method (M, L=none, R, S, G, B, F,
// E, I); '\0' for the wage, which has no code of its own.
char ZuCodeOf(int zu_index);

// The letter of a cost element entered by hand per unit of an item: the cost-type codes
// M, R, S, G, B, F and Z for the wage (time), which has no cost-type code of its own.
std::optional<TResultIndex> ResultIndexOfLineKind(char line_kind);
char LineKindOf(TResultIndex index);
// German name of a result index ("Material", "Lohn", ...).
std::string_view CostTypeName(TResultIndex index);

}  // namespace korvan::calc
