#include "award/prices/mean_value.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace korvan::award {
namespace {

constexpr double kTolerance = 0.0001;
constexpr double kNoCheapest = 2147483647.0;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

double At(const std::vector<double>& prices, std::optional<int> index) {
  if (!index || *index < 0 || static_cast<std::size_t>(*index) >= prices.size()) return 0.0;
  return prices[static_cast<std::size_t>(*index)];
}

// What the bids are measured against, and how far they may lie from it.
struct TExclusionRule {
  double reference = 0.0;
  double threshold = 0.0;
};

TExclusionRule RuleOf(const std::vector<double>& prices, const TMeanValueOptions& options) {
  switch (options.mode) {
    case TExclusionMode::kFromMean: {
      double sum = 0.0;
      int count = 0;
      for (double price : prices) {
        if (IsZero(price)) continue;
        sum += price;
        ++count;
      }
      return {count == 0 ? 0.0 : sum / count, options.mean_threshold};
    }
    case TExclusionMode::kFromBidder:
      return {At(prices, options.deviation_bidder), options.bidder_threshold};
    case TExclusionMode::kFromCheapest: {
      // A zero bid is the cheapest too, and then nothing can be measured against it.
      double cheapest = kNoCheapest;
      for (double price : prices) cheapest = std::min(cheapest, price);
      return {cheapest, options.cheapest_threshold};
    }
  }
  return {};
}

}  // namespace

std::optional<double> MeanItemPrice(const std::vector<double>& prices,
                                    const TMeanValueOptions& options) {
  const TExclusionRule rule = options.exclusion ? RuleOf(prices, options) : TExclusionRule{};
  double sum = 0.0;
  int count = 0;
  double base = 0.0;
  for (std::size_t b = 0; b < prices.size(); ++b) {
    const double price = prices[b];
    if (options.weighted && options.base_bidder && static_cast<int>(b) == *options.base_bidder) {
      base = price;
      continue;
    }
    if (IsZero(price)) continue;
    if (options.exclusion) {
      if (IsZero(rule.reference)) continue;
      if (std::fabs(100.0 - price / rule.reference * 100.0) > rule.threshold) continue;
    }
    sum += price;
    ++count;
  }
  if (count == 0) return std::nullopt;
  const double mean = sum / count;
  if (!options.weighted) return mean;
  return (base * options.base_share + mean * options.rest_share) / 100.0;
}

std::string QuarterLevelName(int32_t int_date) {
  const int year = int_date / 10000;
  const int month = int_date / 100 % 100;
  const int quarter = (month + 2) / 3;
  char digits[16];
  std::snprintf(digits, sizeof digits, "%02d", year);
  std::string year_text = digits;
  if (year_text.size() < 3) year_text = "20" + year_text;
  return std::to_string(quarter) + "/" + year_text;
}

double AveragedPrice(std::optional<double> stored, double result) {
  return stored ? (*stored + result) / 2.0 : result;
}

}  // namespace korvan::award
