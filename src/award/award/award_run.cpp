#include "award/award/award_run.h"

#include <cmath>

namespace korvan::award {
namespace {

constexpr char kAwarded = 'V';
constexpr char kBilled = 'F';

// "Vergabecheck": the priced items of the LV that carry no award price.
int ItemsWithoutAwardPrice(const TdmAngebot& bid, const boq::TLVPosList& lv) {
  int count = 0;
  for (int i = 0; i < bid.Lv().Count(); ++i) {
    if (!bid.IsPriced(i)) continue;
    const int index = lv.SearchItemIndexByIdLvBgBeschr(bid.Lv()[i].Struktur.IdBgBeschr);
    if (index >= 0 && std::fabs(lv[index].LvBeschr.VergabeEP.Betrag) < 0.0001) ++count;
  }
  return count;
}

}  // namespace

std::string CheckFindingsText(const TBidCheck& check) {
  std::string text;
  const auto add = [&text](const std::vector<int>& lines, const char* what) {
    if (lines.empty()) return;
    text += (text.empty() ? "" : ", ") + std::to_string(lines.size()) + " " + what;
  };
  add(check.without_price, "Positionen ohne Angebotspreis");
  add(check.without_quantity, "Positionen ohne Menge");
  add(check.other_quantity, "Positionen mit vom LV abweichender Menge");
  add(check.components_differ, "Positionen mit EP-Anteilen <> EP");
  add(check.total_differs, "Positionen mit Menge * EP <> GP");
  return text;
}

TAwardResult AwardBid(const TdmAngebot& bid, boq::TLVPosList& lv, const TAwardOptions& options) {
  TAwardResult result;
  result.check = bid.AngebotsCheck();
  if (result.check.Found() && !options.accept_check_findings) {
    throw EAwardRefused(std::string(kCheckQuestion) + " Das Angebot von \"" +
                        bid.Bidder().Bietername.Get() + "\" im LV \"" + lv.FLv().Name.Get() +
                        "\": " + CheckFindingsText(result.check) + ".");
  }
  if (options.transfer_prices) {
    result.transfer = TransferBidPrices(bid, lv, options.transfer);
    result.prices_transferred = true;
  }
  result.items_without_award_price = ItemsWithoutAwardPrice(bid, lv);
  boq::t_Lv_DB_VERSION_3100 header = lv.FLv();
  if (header.Status != kBilled) header.Status = kAwarded;
  lv.RefreshLvProperties(header);
  return result;
}

}  // namespace korvan::award
