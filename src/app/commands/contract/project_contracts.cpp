#include "app/commands/contract/project_contracts.h"

#include "app/cli/command_error.h"
#include "billing/tables/billing_table_types.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos_list_io.h"
#include "data/records/null_values.h"

namespace korvan::app {

ProjectContracts::ProjectContracts(const std::string& data_dir, const std::string& project,
                                   bool journal)
    : project_(data_dir, project), fallback_(boq::TCurrencyList(), project_.ValueSettings(true)) {
  project_.Db(journal);
}

billing::TdmVertrag& ProjectContracts::Book(bool assign) {
  if (!book_) {
    const int32_t number = project_.ContractProjectNumber(assign);
    book_.emplace(project_.BillingDb(), number, fallback_);
  }
  return *book_;
}

std::vector<billing::TVertrag> ProjectContracts::All() {
  if (project_.ContractProjectNumber(false) == data::kNullId) return {};
  return Book().Contracts();
}

billing::TVertrag ProjectContracts::Require(const std::string& number_or_id) {
  std::optional<billing::TVertrag> found;
  if (project_.ContractProjectNumber(false) != data::kNullId) found = Book().Find(number_or_id);
  if (!found) {
    throw CommandError("Projekt \"" + project_.Name() + "\": es gibt keinen Vertrag \"" +
                       number_or_id +
                       "\" (Auftrags-Nummer oder ID; \"korvan contract list\" "
                       "zeigt sie).");
  }
  return *found;
}

boq::TLVPosList& ProjectContracts::LvOf(const billing::TVertrag& contract) {
  if (!lv_ || lv_->FLv().FId != contract.IdLv) {
    try {
      lv_ = boq::LoadLvPosList(project_.Db(false), project_.TextDb(), contract.IdLv);
    } catch (const boq::EStoredLvError& error) {
      throw CommandError("Vertrag \"" + contract.AuftragsNr.Get() + "\": " + error.what());
    }
    converter_ = project_.Converter(lv_->FLv());
  }
  return *lv_;
}

const boq::TAvaUiValueConverter& ProjectContracts::ConverterOf(const billing::TVertrag& contract) {
  LvOf(contract);
  return *converter_;
}

ContractView ProjectContracts::ViewOf(const billing::TVertrag& contract) {
  ContractView view;
  view.contract = contract;
  const std::vector<billing::TVertrag> all = All();
  for (const billing::TVertrag& other : all) {
    if (other.ID == contract.IdHauptauftrag) view.main_number = other.AuftragsNr.Get();
    if (other.IdHauptauftrag == contract.ID) view.supplements.push_back(other.AuftragsNr.Get());
  }
  view.deductions =
      billing::TdmAbzug(project_.BillingDb(), billing::kDeductionOfContract, contract.ID).List();
  for (const boq::LvSummary& lv : boq::ListLvs(project_.Db(false))) {
    if (lv.id == contract.IdLv) view.lv_name = lv.name;
  }
  return view;
}

}  // namespace korvan::app
