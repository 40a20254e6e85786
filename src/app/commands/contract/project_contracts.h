#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/commands/contract/contract_view.h"
#include "app/commands/lv/lv_project.h"
#include "billing/contract/dm_vertrag.h"
#include "boq/model/lv_pos_list.h"

namespace korvan::app {

// The contracts of one project for a contract command, with the LVs they belong to.
class ProjectContracts {
 public:
  ProjectContracts(const std::string& data_dir, const std::string& project, bool journal);

  LvProject& Project() { return project_; }
  // The project's contracts in the order they were made; none when it has no number yet.
  std::vector<billing::TVertrag> All();
  // The contract named by its number or id; CommandError naming the project when none.
  billing::TVertrag Require(const std::string& number_or_id);
  // The contract module of the project; `assign` gives the project its number first.
  billing::TdmVertrag& Book(bool assign = false);
  // The LV of a contract, loaded (cached for the command), and the converter of its amounts.
  boq::TLVPosList& LvOf(const billing::TVertrag& contract);
  const boq::TAvaUiValueConverter& ConverterOf(const billing::TVertrag& contract);
  ContractView ViewOf(const billing::TVertrag& contract);

 private:
  LvProject project_;
  std::optional<billing::TdmVertrag> book_;
  std::optional<boq::TLVPosList> lv_;
  std::optional<boq::TAvaUiValueConverter> converter_;
  boq::TAvaUiValueConverter fallback_;
};

}  // namespace korvan::app
