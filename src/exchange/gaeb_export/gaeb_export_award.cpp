#include "exchange/gaeb_export/gaeb_export_award.h"

#include <string>
#include <vector>

namespace korvan::exchange {
namespace {

std::string TrimmedOz(const boq::TLvPos& entry) {
  std::string oz(entry.Oz());
  while (!oz.empty() && oz.back() == ' ') oz.pop_back();
  return oz;
}

}  // namespace

void TakeContractIntoExportSource(TGaebExportSource& source, const billing::TVertrag& contract) {
  if (!source.header) {
    source.header.emplace();
    source.header->IdLv = source.lv.FLv().FId;
  }
  t_Gaeb_DB_VERSION_201401& header = *source.header;
  header.ANBEZ.Set(contract.Auftragnehmer.Get());
  if (!contract.Auftraggeber.Get().empty()) header.AGBEZ.Set(contract.Auftraggeber.Get());
  header.ContrNo.Set(contract.AuftragsNr.Get());
  header.ContrDate = contract.Auftragsdatum;
}

}  // namespace korvan::exchange

namespace korvan::exchange {

int KeepLinesOfContract(TGaebExportSource& source, int32_t contract) {
  std::vector<boq::TLvPos>& entries = source.lv.Entries();
  std::vector<std::string> item_ozs;
  for (const boq::TLvPos& entry : entries) {
    if (!entry.IsGroup() && entry.LvBgBeschr.IdVertrag == contract) {
      item_ozs.push_back(TrimmedOz(entry));
    }
  }
  auto above_an_item = [&](const boq::TLvPos& group) {
    const std::string oz = TrimmedOz(group);
    for (const std::string& item : item_ozs) {
      if (!oz.empty() && item.rfind(oz, 0) == 0) return true;
    }
    return false;
  };
  int items = 0;
  std::vector<boq::TLvPos> kept;
  for (const boq::TLvPos& entry : entries) {
    const bool own = entry.LvBgBeschr.IdVertrag == contract;
    if (entry.IsGroup() ? !above_an_item(entry) : !own) continue;
    if (entry.IsQuantityItem()) ++items;
    kept.push_back(entry);
  }
  entries = std::move(kept);
  return items;
}

}  // namespace korvan::exchange
