#pragma once

#include <string>
#include <vector>

#include "billing/tables/vertrag_record.h"

namespace korvan::app {

// `contract set` FIELD=VALUE: the contract's terms by their field names ("xSkonto=3",
// "Kumulativ=ja", "Abnahmedatum=30.06.2026"). UsageError for an unknown field or a value
// that does not fit, naming both. A gross sum given by hand sets SummeBruttoManuell.
void SetContractTerm(billing::TVertrag& contract, const std::string& assignment);

// "FIELD=VALUE" of one term as SetContractTerm reads it back ("xSkonto=3", "Kumulativ=ja").
std::string ContractTermAssignment(const billing::TVertrag& contract, const std::string& name);

// The fields `contract set` takes, for its help.
std::vector<std::string> ContractTermNames();

}  // namespace korvan::app
