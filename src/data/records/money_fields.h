#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "data/records/field_descriptor.h"

namespace korvan::data {

// Calls `visit` with the offset (from the start of the record) of every money amount
// (t_WaeBetrag) of a layout, inside arrays and nested layouts too, in layout order.
void ForEachMoneyField(const RecordLayout& layout, const std::function<void(uint32_t)>& visit);

// Sets the currency id of every money amount of a record of `layout`; amounts beyond the
// end of a short record are left out.
void SetCurrencyIds(const RecordLayout& layout, std::span<uint8_t> record, int16_t currency_id);

}  // namespace korvan::data
