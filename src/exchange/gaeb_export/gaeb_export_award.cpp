#include "exchange/gaeb_export/gaeb_export_award.h"

namespace korvan::exchange {

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
