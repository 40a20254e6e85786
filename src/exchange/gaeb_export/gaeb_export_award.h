#pragma once

#include "billing/tables/vertrag_record.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange {

// Puts the LV's contract into what phase 86 writes: its contractor (CTR), its client
// (OWN) when it names one, and the contract's number and date in AwardInfo.
void TakeContractIntoExportSource(TGaebExportSource& source, const billing::TVertrag& contract);

}  // namespace korvan::exchange
