#include "award/compare/pseudo_bidder.h"

#include <memory>

namespace korvan::award {

t_Bieter_DB_VERSION_3100 StorePseudoBidder(TdmBieter& bidders, const TPriceComparison& comparison,
                                           TPseudoBidKind kind) {
  const bool mean = kind == TPseudoBidKind::kMean;
  const TPseudoBid& pseudo = mean ? comparison.Mean() : comparison.Ideal();
  const t_Bieter_DB_VERSION_3100 added =
      bidders.AddBidder(mean ? "Mittelwerte" : "Idealangebot", "");
  std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(added);
  TAngebotList& lines = bid->FAList();
  for (std::size_t i = 0; i < pseudo.lines.size() && i < lines.size(); ++i) {
    const t_Angebot_DB_VERSION_201501& from = pseudo.lines[i].Angebot;
    t_Angebot_DB_VERSION_201501& to = lines[i].Angebot;
    to.EP.Betrag = from.EP.Betrag;
    to.NachlassProz = from.NachlassProz;
    if (!bid->Lv()[static_cast<int>(i)].IsGroup()) {
      SetStatedTotalWithoutQuantity(to, StatedTotalWithoutQuantity(from));
    }
  }
  bid->Bidder().NachlassAbs.Betrag = pseudo.bidder.NachlassAbs.Betrag;
  bid->Bidder().USt = pseudo.bidder.USt;
  bid->Recalculate();
  bid->Save();
  return bid->Bidder();
}

}  // namespace korvan::award
