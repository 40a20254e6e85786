#pragma once

#include "boq/lv/lv_entry_records.h"
#include "exchange/gaeb/gaeb_values.h"

namespace korvan::exchange {

// The fields of an entry that hold the unit price and the total of a kind of prices, for
// the export that writes them and the import that fills them; nullptr for a kind the
// records have no fields for (none, forecast).
data::t_WaeBetrag* UnitPriceField(boq::t_LvBeschr2_DB_VERSION_201401& item, TUPKind kind);
const data::t_WaeBetrag* UnitPriceField(const boq::t_LvBeschr2_DB_VERSION_201401& item,
                                        TUPKind kind);
data::t_WaeBetrag* TotalField(boq::t_LvBgBeschr_3000& common, TUPKind kind);

}  // namespace korvan::exchange
