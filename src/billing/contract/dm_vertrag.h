#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "billing/contract/contract_defaults.h"
#include "billing/tables/vertrag_record.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "data/component/std_data_module.h"
#include "data/records/null_values.h"
#include "data/tables/std_db.h"

// The contracts of one project (TdmVertrag): made by the award or by hand, a main contract
// per LV with supplementary contracts for supplement items awarded later, their sums from
// the LV's award prices.
namespace korvan::billing {

// A contract refused or not written; the message names the LV or the contract.
class EContractError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Who the contract is made with.
struct TContractParty {
  int32_t bidder = data::kNullId;
  int32_t address = data::kNullId;
  std::string name;                    // "Auftragnehmer", UTF-8
  int32_t bid_date = 0;                // integer date of the bid
  double vat_rate = -1.0;              // the bid's VAT percent; -1 none
  boq::TCashDiscount cash_discount{};  // the bid's first cash-discount term
};

// What the installation sets for new contracts.
struct TContractSettings {
  std::string number_pattern = "{*LNR*}-{*MM*}-{*JJJJ*}";  // FVertragFormat
  double vat_rate = 19.0;                                  // the system's VAT percent
  std::optional<TContractDefaults> defaults;               // "STANDARD-WERTE.VSW"
};

class TdmVertrag : public data::TSTDdataModule {
 public:
  // `project`: the project's number in the billing database (project_id.h).
  TdmVertrag(data::TStdDb& billing_db, int32_t project, const boq::TAvaUiValueConverter& converter);

  // The project's contracts (of one LV when `lv` is set), in the order they were made.
  std::vector<TVertrag> Contracts(std::optional<int32_t> lv = std::nullopt);
  // The project's contract with this number ("Auftrags-Nummer") or id.
  std::optional<TVertrag> Find(const std::string& number_or_id);
  // The supplementary contracts of a main contract.
  std::vector<TVertrag> SupplementsOf(const TVertrag& main);

  // Why the LV can take no further contract, empty when it can: an LV that has a contract
  // takes a supplementary one only when it is awarded or billed and has supplement items
  // without a contract.
  std::string WhyNoContract(const boq::TLVPosList& lv);
  // A new contract of `lv` with `party`: the main contract, or a supplementary contract of
  // the LV's main contract when it has one. The LV's lines under no contract (for a
  // supplementary contract its supplement items) get the contract's id; the contract takes
  // the defaults of `settings` with their allocations. The caller saves
  // `lv`. EContractError when WhyNoContract says no or the contract cannot be written.
  TVertrag Create(boq::TLVPosList& lv, const TContractParty& party,
                  const TContractSettings& settings);
  // Writes `contract` with its sums from `lv` and a new version, then the cumulative sums
  // of its main contract. EContractError when it cannot be written.
  void Store(TVertrag& contract, const boq::TLVPosList& lv);

 private:
  void Write(const TVertrag& contract);
  void TakeDefaultAllocations(const TVertrag& contract,
                              const std::vector<TAllocation>& allocations);
  std::string NextNumber(const TContractSettings& settings);
  [[noreturn]] void Fail(const std::string& what, int code) const;

  data::TStdDb& db_;
  int32_t project_;
  const boq::TAvaUiValueConverter& converter_;
};

// The kind of a contract as the list shows it: "Hauptauftrag" or "Nachauftrag".
const char* ContractKindText(char kind);

}  // namespace korvan::billing
