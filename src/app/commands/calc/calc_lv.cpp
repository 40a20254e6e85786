#include "app/commands/calc/calc_lv.h"

#include "app/cli/command_error.h"
#include "boq/lv/lv_record.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "calc/endsum/ends_tree.h"
#include "calc/tables/tb_ends.h"
#include "data/records/null_values.h"

namespace korvan::app {
using calc::t_KpENDS;

CalcLv::CalcLv(const std::string& data_dir, const std::string& project, const std::string& lv,
               bool journal)
    : project_(data_dir, project),
      db_(project_.Db(journal)),
      list_(project_.LoadLv(lv)),
      converter_(project_.Converter(list_.FLv())),
      calculation_(converter_, list_.FLv().EPGenauigkeit) {}

calc::TLvCalculation& CalcLv::Costs(bool copy_settings) {
  if (!costs_) {
    try {
      costs_ = std::make_unique<calc::TLvCalculation>(project_.CalcDb(), project_.CalcMasterDb(),
                                                      list_.FLv().FId, copy_settings);
    } catch (const calc::ECalcError& error) {
      throw CommandError(error.what());
    }
  }
  return *costs_;
}

int CalcLv::IndexOf(const std::string& oz) const {
  const int index = boq::FindEntryByOz(list_, oz);
  if (index < 0) {
    throw CommandError("LV \"" + list_.FLv().Name.Get() +
                       "\": es gibt keinen Eintrag mit der OZ \"" + oz + "\".");
  }
  return index;
}

std::vector<int> CalcLv::Selection(const std::vector<std::string>& ozs) const {
  std::vector<int> selected;
  if (!ozs.empty()) {
    for (const std::string& oz : ozs) selected.push_back(IndexOf(oz));
    return selected;
  }
  for (int i = 0; i < list_.Count(); ++i) {
    if (list_[i].IsQuantityItem()) selected.push_back(i);
  }
  return selected;
}

calc::TEndsumme CalcLv::EndSum(bool copy_settings, int32_t group) {
  calc::TLvCalculation& costs = Costs(copy_settings);
  const int32_t lv = list_.FLv().FId;
  calc::TTbEndsP settings(project_.CalcDb());
  calc::TTbZuR master(project_.CalcMasterDb());
  const t_KpENDS record = settings.Get(lv).value_or(settings.DefaultsFor(lv, master));
  calc::TEndsumme ends(record, converter_);
  const std::unique_ptr<calc::TEndsNode> tree = calc::BuildEndsTree(list_, costs, converter_);
  if (!ends.ValidateBg(*tree, group)) {
    throw CommandError("LV \"" + list_.FLv().Name.Get() + "\": die Gruppe hat keine Endsumme.");
  }
  allocation_lv_name_.clear();
  if (record.IDUMLLV != data::kNullId) ends.SetBgk(AllocationLvTotal(record.IDUMLLV));
  ends.Validate();
  return ends;
}

double CalcLv::AllocationLvTotal(int32_t id) {
  boq::TLVPosList allocation;
  try {
    allocation = boq::LoadLvPosList(db_, nullptr, id);
  } catch (const boq::EStoredLvError& error) {
    throw CommandError("Das Umlage-LV " + std::to_string(id) + " der Endsumme fehlt (" +
                       error.what() + ").");
  }
  allocation_lv_name_ = allocation.FLv().Name.Get();
  const calc::TItemCalculation calculation(converter_, allocation.FLv().EPGenauigkeit);
  calculation.CalculateAll(allocation);
  double total = 0.0;
  for (const boq::TLvPos& entry : allocation.Entries()) {
    if (!entry.IsGroup()) total += entry.LvBgBeschr.AngebotsGP.Betrag;
  }
  return calculation.RoundAmount(total);
}

void CalcLv::ApplyMethod(bool copy_settings) {
  if (list_.FLv().KalkVerfahren != calc::kKalkArtEndsumme) return;
  const calc::TEndsumme ends = EndSum(copy_settings, data::kNullId);
  Costs(copy_settings).UseSurcharges(calc::EndSumSurcharges(ends));
}

void CalcLv::Change(const std::string& caption, std::ostream& warnings,
                    const std::function<void()>& change) {
  if (list_.FReadOnly()) throw CommandError("Das LV ist schreibgeschützt.");
  RunAsOneStep<boq::EStoredLvError, calc::ECalcError, CommandError>(
      project_.Journal(), data::TOperationKind::okEdit,
      caption + " in LV \"" + list_.FLv().Name.Get() + "\"",
      {"es wurde nichts geändert", "die Änderung konnte nicht zurückgenommen werden",
       "die Änderung"},
      warnings, [&] {
        change();
        project_.SaveWithSums(list_, warnings);
      });
}

}  // namespace korvan::app
