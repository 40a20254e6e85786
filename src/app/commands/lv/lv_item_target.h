#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "app/commands/lv/lv_project.h"
#include "boq/model/lv_pos_list.h"

namespace korvan::app {

// One item of an LV that a command reads or changes: the LV loaded, the entry found by
// its OZ. CommandError when the LV or the OZ names nothing.
class LvItemTarget {
 public:
  LvItemTarget(const std::string& data_dir, const std::string& project, const std::string& lv,
               const std::string& oz, bool journal);

  LvProject& Project() { return project_; }
  data::TStdDb& Db() { return db_; }
  const boq::TLVPosList& List() const { return list_; }
  boq::TLvPos& Item() { return list_[index_]; }
  // UsageError unless the entry is a quantity item (P, L, U).
  void RequireQuantityItem(const std::string& what);

  // Runs `change` and recalculates the item's quantity from its partial quantities, then
  // saves what changed, all as one step of the journal (`korvan undo` takes it back
  // whole); a failure takes back what was written.
  void Change(const std::string& caption, std::ostream& warnings,
              const std::function<void()>& change);

 private:
  LvProject project_;
  data::TStdDb& db_;
  boq::TLVPosList list_;
  int index_ = -1;
};

}  // namespace korvan::app
