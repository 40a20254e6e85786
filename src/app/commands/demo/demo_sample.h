#pragma once

#include <span>
#include <string_view>

// The built-in sample of `korvan demo`: the bill of quantities of a small new building and
// the bidders who price it. Data only; the demo and its test read the same tables.
namespace korvan::app::demo {

struct SampleItem {
  std::string_view short_text;
  std::string_view long_text;
  std::string_view unit;
  double quantity;
  double base_price;  // a fair unit price in euros, around which the bidders price
};

struct SampleGroup {
  std::string_view title;
  std::span<const SampleItem> items;
};

struct SampleBidder {
  std::string_view name;
  std::string_view address;
  std::string_view file_name;  // the bid file the bidder sends
  double factor;               // how dear the bidder is against the base prices
};

inline constexpr std::string_view kSampleProject = "Kindergarten";
inline constexpr std::string_view kSampleLv = "Rohbau Kindergarten";
inline constexpr std::string_view kSampleMask = "11.PPPP";

std::span<const SampleGroup> SampleGroups();
std::span<const SampleBidder> SampleBidders();

// The unit price a bidder offers for the item at `item_number` (counted through the whole
// LV from 0): the base price times the bidder's factor with a scatter of a few percent
// that differs from item to item and bidder to bidder, to the cent.
double SampleBidPrice(const SampleItem& item, int item_number, int bidder_number);

// The bidder whose bid totals least (each item's total rounded to the cent): the bid the
// demo awards.
int CheapestSampleBidder();

}  // namespace korvan::app::demo
