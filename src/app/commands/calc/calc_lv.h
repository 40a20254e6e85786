#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands/lv/lv_project.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/endsum/endsumme.h"
#include "calc/price/item_calculation.h"
#include "calc/price/lv_calculation.h"

namespace korvan::app {

// An LV loaded for a calculation or price command: its entries, how the installation
// rounds, and (on first use) its calculation settings and cost elements.
class CalcLv {
 public:
  CalcLv(const std::string& data_dir, const std::string& project, const std::string& lv,
         bool journal);

  LvProject& Project() { return project_; }
  data::TStdDb& Db() { return db_; }
  boq::TLVPosList& List() { return list_; }
  const boq::TAvaUiValueConverter& Converter() const { return converter_; }
  const calc::TItemCalculation& Calculation() const { return calculation_; }
  // The LV's calculation; with `copy_settings` (commands that write) the LV gets its own
  // copy of the master settings.
  calc::TLvCalculation& Costs(bool copy_settings);

  // The entry of an OZ; CommandError naming the LV when there is none.
  int IndexOf(const std::string& oz) const;
  // The entries the command acts on: the items of the OZs named, or every item.
  std::vector<int> Selection(const std::vector<std::string>& ozs) const;
  // The calculation over the end sum of the LV, or of one of its groups (the group's
  // entry id; kNullId: the LV), from its settings (the master's until the LV has its own;
  // with `copy_settings` it gets them). The site overheads are the bid total of the
  // allocation LV the settings name.
  calc::TEndsumme EndSum(bool copy_settings, int32_t group);
  // The name of the allocation LV of the settings, empty when there is none.
  const std::string& AllocationLvName() const { return allocation_lv_name_; }
  // Prices the items by the LV's method: for the end-sum method (E) with the surcharges
  // its end sum gives; the fixed surcharges of method Z are already in place.
  void ApplyMethod(bool copy_settings);

  // Runs `change`, recalculates every entry and the sums and saves what changed, as one step of the
  // journal; a failure takes back what was written.
  void Change(const std::string& caption, std::ostream& warnings,
              const std::function<void()>& change);

 private:
  double AllocationLvTotal(int32_t id);

  LvProject project_;
  data::TStdDb& db_;
  boq::TLVPosList list_;
  boq::TAvaUiValueConverter converter_;
  calc::TItemCalculation calculation_;
  std::unique_ptr<calc::TLvCalculation> costs_;
  std::string allocation_lv_name_;
};

}  // namespace korvan::app
