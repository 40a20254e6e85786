// The bidders' side of the demo: prices are entered as a bidder's program would hold them,
// all at once rather than by a hundred `korvan bid set` runs.
#include "app/commands/demo/sample_bid.h"

#include <memory>
#include <ostream>
#include <vector>

#include "app/cli/command_error.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/demo/demo_sample.h"

namespace korvan::app::demo {
namespace {

// The sample items in LV order.
std::vector<const SampleItem*> SampleItems() {
  std::vector<const SampleItem*> items;
  for (const SampleGroup& group : SampleGroups()) {
    for (const SampleItem& item : group.items) items.push_back(&item);
  }
  return items;
}

}  // namespace

int EnterSampleBid(const std::string& data_dir, const std::string& lv, int bidder_number,
                   std::ostream& warnings) {
  BidLv target(data_dir, "", lv, true);
  const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder("1");
  std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
  const std::vector<const SampleItem*> items = SampleItems();
  int priced = 0;
  for (int line = 0; line < target.List().Count(); ++line) {
    const boq::TLvPos& entry = target.List()[line];
    if (entry.Kind() != 'P') continue;
    if (priced == static_cast<int>(items.size()) || entry.ShortText != items[priced]->short_text) {
      throw CommandError("LV \"" + target.Name() + "\", OZ " + entry.LvBgBeschr.OZ.Get() +
                         ": erwartet die Position \"" +
                         std::string(priced < static_cast<int>(items.size())
                                         ? items[priced]->short_text
                                         : "(keine weitere)") +
                         "\" des Beispiels, gefunden \"" + entry.ShortText + "\"");
    }
    bid->SetUnitPrice(line, SampleBidPrice(*items[priced], priced, bidder_number));
    ++priced;
  }
  if (priced != static_cast<int>(items.size())) {
    throw CommandError("LV \"" + target.Name() + "\" hat " + std::to_string(priced) +
                       " Positionen, das Beispiel " + std::to_string(items.size()));
  }
  target.Change("Angebotspreise von \"" + bidder.Bietername.Get() + "\"", warnings, [&] {
    bid->Recalculate();
    bid->Save();
  });
  return priced;
}

}  // namespace korvan::app::demo
