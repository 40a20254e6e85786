#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "billing/deduction/contract_allocations.h"
#include "billing/tables/vertrag_record.h"

// The contract defaults ("Voreinstellungen Vertrag"): retention, bond, warranty, cash
// discount, insurance, withholding tax, the billing flags and the six allocations, which
// every new contract starts with.
namespace korvan::billing {

// The fields of the contract record the defaults carry.
inline constexpr std::array<std::string_view, 17> kDefaultTermNames = {
    "SicherheitseinbehaltProz",
    "MaxSicherheitseinbehaltProz",
    "SicherheitsBuergschaft",
    "SicherheitsbuergschaftsDatum",
    "GewaehrleistungseinbehaltProz",
    "Gewaehrdauer",
    "GwlEinheit",
    "Gewaehrbuergschaft",
    "GewaehrbuergschaftsDatum",
    "xSkonto",
    "xSkontofrist",
    "BauwesenversicherungProz",
    "BauabzugsSteuer",
    "RechLegung",
    "Kumulativ",
    "SRKumulativ",
    "ERKumulativ",
};

struct TContractDefaults {
  TVertrag terms{};  // only the fields of kDefaultTermNames count
  std::vector<TAllocation> allocations;
};

// Copies the fields of kDefaultTermNames from `defaults` into `contract`.
void TakeDefaultTerms(TVertrag& contract, const TVertrag& defaults);

}  // namespace korvan::billing
