#include "app/commands/lv/lv_item_target.h"

#include "app/cli/command_error.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"

namespace korvan::app {

LvItemTarget::LvItemTarget(const std::string& data_dir, const std::string& project,
                           const std::string& lv, const std::string& oz, bool journal)
    : project_(data_dir, project), db_(project_.Db(journal)) {
  list_ = project_.LoadLv(lv);
  index_ = boq::FindEntryByOz(list_, oz);
  if (index_ < 0) {
    throw CommandError("LV \"" + list_.FLv().Name.Get() +
                       "\": es gibt keinen Eintrag mit der OZ \"" + oz + "\".");
  }
}

void LvItemTarget::RequireQuantityItem(const std::string& what) {
  if (!Item().IsQuantityItem()) {
    throw UsageError(what + " haben nur Positionen (P, L, U), nicht die Art " +
                     std::string(1, Item().Kind()) + ".");
  }
}

void LvItemTarget::Change(const std::string& caption, std::ostream& warnings,
                          const std::function<void()>& change) {
  if (list_.FReadOnly()) throw CommandError("Das LV ist schreibgeschützt.");
  RunAsOneStep<boq::EStoredLvError>(
      project_.Journal(), data::TOperationKind::okEdit,
      caption + " in LV \"" + list_.FLv().Name.Get() + "\"",
      {"es wurde nichts geändert", "die Änderung konnte nicht zurückgenommen werden",
       "die Änderung"},
      warnings, [&] {
        change();
        Item().RecalcQuantity(db_, list_.FLv().ForceTeilmengen != 0);
        // Writes only what differs from the stored records: the item and the totals above it.
        project_.SaveWithSums(list_, warnings);
      });
}

}  // namespace korvan::app
