#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// "Mittelwerte bilden": the mean price of an item from the bidders' unit prices, with the
// options of the mean-value dialog, and the name of the quarterly price level it goes to.
namespace korvan::award {

// Which bids are left out when exclusion is on ("Ausschluss aller Angebote, die ...").
enum class TExclusionMode : uint8_t {
  kFromMean = 1,      // "vom arithmetischen Mittel abweichen um mehr als"
  kFromBidder = 2,    // "vom Angebot des Bieters ..."
  kFromCheapest = 3,  // "vom jeweils billigsten Bieter abweichen um mehr als"
};

struct TMeanValueOptions {
  int minimum_bidders = 4;  // "Mindestanzahl Bieter für Mittelwertbildung"
  // "gewichtetes Mittel zwischen Bieter ...": the base bidder's price weighs `base_share`
  // percent, the mean of the others `rest_share` percent.
  bool weighted = false;
  std::optional<int> base_bidder;  // index into the prices
  double base_share = 0.0;
  double rest_share = 0.0;
  bool exclusion = false;
  TExclusionMode mode = TExclusionMode::kFromMean;
  std::optional<int> deviation_bidder;  // index into the prices, for kFromBidder
  double mean_threshold = 0.0;          // percent, for kFromMean
  double bidder_threshold = 0.0;        // percent, for kFromBidder
  double cheapest_threshold = 0.0;      // percent, for kFromCheapest

  // The shares are coupled: setting one sets the other to 100 minus it.
  void SetBaseShare(double percent) {
    base_share = percent;
    rest_share = 100.0 - percent;
  }
};

// The mean of one item from the bidders' unit prices (`prices`, one per counted bidder, in
// the bid's currency, no discount); nothing when no bid is taken.
std::optional<double> MeanItemPrice(const std::vector<double>& prices,
                                    const TMeanValueOptions& options);

// The price level of a date's quarter: "3/2024" for a date in July to September 2024.
std::string QuarterLevelName(int32_t int_date);

// A stored price and a new result: the new price of the entry ("Mittelwert zwischen altem
// und neuem Preis"), so every repetition halves the weight of what was there.
double AveragedPrice(std::optional<double> stored, double result);

}  // namespace korvan::award
