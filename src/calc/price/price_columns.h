#pragma once

#include <optional>
#include <string_view>

#include "boq/model/lv_pos.h"
#include "data/records/wae_betrag.h"

// The five price columns of an item and the operations on them that a user starts for
// selected items: copy a column into others, delete a column, factorise the estimate.
namespace korvan::calc {

// In the numbering of the price dialogs.
enum class TPriceColumn : int {
  kSchaetz = 0,       // estimated (cost estimate of the client)
  kEinzelkosten = 1,  // direct costs
  kAngebot = 2,       // bid (the calculated price)
  kAbrechnung = 3,    // billing
  kVergabe = 4,       // awarded
};

// The column a command line names: "schaetz", "einzelkosten", "angebot", "abrechnung",
// "vergabe" or its number 0 … 4.
std::optional<TPriceColumn> PriceColumnOf(std::string_view name);
std::string_view PriceColumnName(TPriceColumn column);

data::t_WaeBetrag& UnitPrice(boq::TLvPos& entry, TPriceColumn column);
data::t_WaeBetrag& Total(boq::TLvPos& entry, TPriceColumn column);

// Copies the unit price of `source` into every column of `targets` (a set of bits
// 1 << column), in the order estimated, direct costs, bid, billing, awarded, each taking
// the source as it stands at that moment. Copying the estimate into the award also
// takes over the components; the description keeps none in this installation, so the
// awarded components are cleared then.
void CopyPriceColumns(boq::TLvPos& entry, TPriceColumn source, unsigned targets);

// Clears a column's unit price (the billing column has no delete: it follows the award).
// `components_only` clears only the awarded components. False, and nothing changed, for
// an item whose prices are locked (awarded under a contract) or for the billing column.
bool DeletePrices(boq::TLvPos& entry, TPriceColumn column, bool components_only);

// Whether an item's prices are locked: awarded under a contract.
bool PricesLocked(const boq::TLvPos& entry);

}  // namespace korvan::calc

namespace korvan::boq {
class TAvaUiValueConverter;
}

namespace korvan::calc {

// Multiplies the estimated unit price and total by `factor`, each rounded to 2 decimals
// as the project rounds amounts. The totals are formed anew by the next calculation.
void FactorisePrices(boq::TLvPos& entry, double factor, const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::calc
