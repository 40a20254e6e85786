#include "billing/contract/dm_vertrag.h"

#include "award/award/bid_price_transfer.h"
#include "billing/contract/contract_sums.h"
#include "billing/deduction/dm_abzug.h"
#include "billing/tables/tb_vertrag.h"
#include "boq/lv/lv_codes.h"
#include "data/common/result_code_text.h"
#include "data/config/config_error.h"
#include "data/config/number_pattern.h"
#include "data/records/int_date.h"
#include "storage/result_codes.h"

namespace korvan::billing {
namespace {

constexpr int kDataModuleId = 6400;

bool IsItem(const boq::TLvPos& entry) {
  return entry.Kind() == 'P' || entry.Kind() == 'L';
}

const TVertrag* MainContractOf(const std::vector<TVertrag>& contracts) {
  for (const TVertrag& contract : contracts) {
    if (contract.Auftragsart == kMainContract) return &contract;
  }
  return contracts.empty() ? nullptr : &contracts.front();
}

double VatRate(const TContractParty& party, const boq::t_Lv_DB_VERSION_3100& lv,
               const TContractSettings& settings) {
  if (party.vat_rate >= 0.0) return party.vat_rate;
  if (lv.Ust >= 0.0) return lv.Ust;
  return settings.vat_rate;
}

// The lines the contract takes: every line under no contract, for a supplementary
// contract the supplement items only.
void AssignLines(boq::TLVPosList& lv, int32_t contract, bool supplement) {
  for (boq::TLvPos& entry : lv.Entries()) {
    if (entry.LvBgBeschr.IdVertrag != data::kNullId) continue;
    if (supplement && !(IsItem(entry) && entry.IsSupplement())) continue;
    entry.LvBgBeschr.IdVertrag = contract;
  }
}

}  // namespace

TdmVertrag::TdmVertrag(data::TStdDb& billing_db, int32_t project,
                       const boq::TAvaUiValueConverter& converter)
    : TSTDdataModule(kDataModuleId, "Vertrag"),
      db_(billing_db),
      project_(project),
      converter_(converter) {}

std::vector<TVertrag> TdmVertrag::Contracts(std::optional<int32_t> lv) {
  TTbVertrag table(db_);
  return table.ListOfProject(project_, lv);
}

std::optional<TVertrag> TdmVertrag::Find(const std::string& number_or_id) {
  const std::vector<TVertrag> contracts = Contracts();
  for (const TVertrag& contract : contracts) {
    if (contract.AuftragsNr.Get() == number_or_id) return contract;
  }
  for (const TVertrag& contract : contracts) {
    if (std::to_string(contract.ID) == number_or_id) return contract;
  }
  return std::nullopt;
}

std::vector<TVertrag> TdmVertrag::SupplementsOf(const TVertrag& main) {
  std::vector<TVertrag> supplements;
  for (const TVertrag& contract : Contracts(int32_t{main.IdLv})) {
    if (contract.IdHauptauftrag == main.ID && contract.ID != main.ID) {
      supplements.push_back(contract);
    }
  }
  return supplements;
}

std::string TdmVertrag::WhyNoContract(const boq::TLVPosList& lv) {
  const std::vector<TVertrag> existing = Contracts(int32_t{lv.FLv().FId});
  if (existing.empty()) return {};
  if (boq::IsAwardedStatus(lv.FLv().Status) && award::HasUncontractedSupplements(lv)) return {};
  return "LV \"" + lv.FLv().Name.Get() + "\" hat schon den Vertrag \"" +
         MainContractOf(existing)->AuftragsNr.Get() +
         "\"; ein weiterer Vertrag entsteht nur für Nachtragspositionen ohne Vertrag in einem "
         "vergebenen LV.";
}

TVertrag TdmVertrag::Create(boq::TLVPosList& lv, const TContractParty& party,
                            const TContractSettings& settings) {
  if (const std::string why = WhyNoContract(lv); !why.empty()) throw EContractError(why);
  const std::vector<TVertrag> existing = Contracts(int32_t{lv.FLv().FId});
  const std::string number = NextNumber(settings);
  TTbVertrag table(db_);
  if (int result = table.NewVertrag(project_, lv.FLv().FId); result != storage::kOk) {
    Fail("für den Vertrag gibt es keine Nummer", result);
  }
  TVertrag contract = table.Rec();
  const boq::t_Lv_DB_VERSION_3100& header = lv.FLv();
  const TVertrag* main = MainContractOf(existing);
  if (settings.defaults) TakeDefaultTerms(contract, settings.defaults->terms);
  contract.AuftragsNr.Set(number);
  contract.Auftragsart = main == nullptr ? kMainContract : kSupplementContract;
  if (main != nullptr) contract.IdHauptauftrag = main->ID;
  contract.IdBieter = party.bidder;
  contract.IdAdresse = party.address;
  contract.Auftragnehmer.Set(party.name);
  contract.AngebotsDatum = party.bid_date;
  contract.IdWaehrung = header.IdWae;
  contract.Mwst = VatRate(party, header, settings);
  contract.CashDiscount[0] = party.cash_discount;
  if (main == nullptr) {
    // The LV's own discount and lump sum (the bid's, when the award kept them whole) are
    // the contract's: the contract's sum from the LV is taken before them.
    contract.NachlassProz = header.NachlassProz;
    contract.NachlassAbs = header.NachlassAbs;
    contract.SummePsch = header.SummePsch;
  }
  AssignLines(lv, contract.ID, main != nullptr);
  Store(contract, lv);
  if (settings.defaults) TakeDefaultAllocations(contract, settings.defaults->allocations);
  return contract;
}

void TdmVertrag::Store(TVertrag& contract, const boq::TLVPosList& lv) {
  ComputeContractSums(contract, lv, SupplementsOf(contract), converter_);
  ++contract.Sz;
  Write(contract);
  if (contract.IdHauptauftrag == data::kNullId) return;
  TTbVertrag table(db_);
  if (!table.Find(contract.IdHauptauftrag)) return;  // a main contract deleted meanwhile
  TVertrag main = table.Rec();
  ComputeContractSums(main, lv, SupplementsOf(main), converter_);
  Write(main);
}

void TdmVertrag::TakeDefaultAllocations(const TVertrag& contract,
                                        const std::vector<TAllocation>& allocations) {
  TdmAbzug deductions(db_, kDeductionOfContract, contract.ID);
  try {
    for (const TAllocation& allocation : allocations) SetAllocation(deductions, allocation);
  } catch (const EDeductionError& error) {
    throw EContractError("Vertrag \"" + contract.AuftragsNr.Get() + "\": " + error.what());
  }
}

void TdmVertrag::Write(const TVertrag& contract) {
  TTbVertrag table(db_);
  if (!table.Find(contract.ID)) table.InitRecord();
  const data::TDbRecordHeader header = table.Rec().Header;
  table.Rec() = contract;
  table.Rec().Header = header;
  if (int result = table.UpDateRec(); result != storage::kOk) {
    Fail("der Vertrag \"" + contract.AuftragsNr.Get() + "\" kann nicht geschrieben werden", result);
  }
}

std::string TdmVertrag::NextNumber(const TContractSettings& settings) {
  data::NumberPatternInputs inputs;
  inputs.date = data::TodayAsIntDate();
  inputs.running_number = static_cast<int32_t>(Contracts().size()) + 1;
  try {
    return data::ExpandNumberPattern(settings.number_pattern, inputs).text;
  } catch (const data::EAvaConfigError& error) {
    throw EContractError(std::string("Die Vertragsnummer kann nicht gebildet werden: ") +
                         error.what());
  }
}

void TdmVertrag::Fail(const std::string& what, int code) const {
  throw EContractError(db_.BasePath() + "0: " + what + " (" + data::ResultCodeText(code) + ")");
}

const char* ContractKindText(char kind) {
  return kind == kSupplementContract ? "Nachauftrag" : "Hauptauftrag";
}

}  // namespace korvan::billing
