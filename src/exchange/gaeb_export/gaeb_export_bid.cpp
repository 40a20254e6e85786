#include "exchange/gaeb_export/gaeb_export_bid.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace korvan::exchange {

void TakeBidIntoExportSource(TGaebExportSource& source, const award::TdmAngebot& bid) {
  std::unordered_map<int32_t, int> bid_line;
  for (int i = 0; i < bid.Lv().Count(); ++i) bid_line[bid.Lv()[i].Struktur.IdBgBeschr] = i;
  int components = 0;
  for (boq::TLvPos& entry : source.lv.Entries()) {
    const auto found = bid_line.find(entry.Struktur.IdBgBeschr);
    if (found == bid_line.end() || entry.IsGroup()) continue;
    const award::t_Angebot_DB_VERSION_201501& line =
        bid.FAList()[static_cast<std::size_t>(found->second)].Angebot;
    boq::t_LvBeschr2_DB_VERSION_201401& item = entry.LvBeschr;
    item.AngebotsEP.Betrag = line.EP.Betrag;
    entry.LvBgBeschr.AngebotsGP.Betrag = line.GP.Betrag;
    if (item.KzFrMenge != 0) item.AngMenge = line.AMenge;
    for (std::size_t k = 0; k < 6; ++k) {
      item.EPAnteil[k].Betrag = line.EPAnteil[k].Betrag;
      if (std::fabs(line.EPAnteil[k].Betrag) >= 0.0001) {
        components = std::max(components, static_cast<int>(k) + 1);
      }
    }
  }
  boq::t_Lv_DB_VERSION_3100 header = source.lv.FLv();
  const award::t_Bieter_DB_VERSION_3100& bidder = bid.Bidder();
  header.NachlassProz = bidder.NachlassProz;
  header.NachlassAbs.Betrag = bidder.NachlassAbs.Betrag;
  header.Ust = bidder.USt;
  if (components > 0) {
    header.PreisAnteile = static_cast<uint8_t>(std::max(components, 2));
    source.components_of_bid = true;
  }
  source.lv.RefreshLvProperties(header);
  if (!source.header) {
    source.header.emplace();
    source.header->IdLv = header.FId;
  }
  source.header->ANBEZ.Set(bidder.Bietername.Get());
}

}  // namespace korvan::exchange
