#pragma once

#include "billing/tables/vertrag_record.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange {

// Puts the LV's contract into what phase 86 writes: its contractor (CTR), its client
// (OWN) when it names one, and the contract's number and date in AwardInfo.
void TakeContractIntoExportSource(TGaebExportSource& source, const billing::TVertrag& contract);

// Leaves in the LV only the lines of one contract: the lines it holds and the groups above
// its items, so that the award file of a supplementary contract holds its own items.
// Returns the number of items left.
int KeepLinesOfContract(TGaebExportSource& source, int32_t contract);

}  // namespace korvan::exchange
