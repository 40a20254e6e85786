#include "boq/lv/lv_entry_common.h"

#include <string>

#include "boq/lv/lv_codes.h"
#include "boq/lv/lv_table_types.h"
#include "data/records/null_values.h"

namespace korvan::boq {

using data::kNullId;
using data::TRepair;

namespace {

// The codes of a field that may also stay empty.
std::string OrEmpty(std::string_view codes) {
  return std::string(codes) + '\0';
}

}  // namespace

void InitCommonPart(t_LvBgBeschr_3000& common) {
  common.ID = kNullId;
  common.IDBeschr = kNullId;
  common.IdLkt = kNullId;
  common.IdVertrag = kNullId;
  common.IdAngebot = kNullId;
}

void CheckCommonPart(data::TDataCheck& check, t_LvBgBeschr_3000& common) {
  check.SetAvaRecordID(common.ID);
  check.CheckItemForMandatory("ID", common.ID, kNullId);
  check.CheckItemForUniqueKey("ID", common.ID);
  // Groups and items are reached only through their structure row.
  check.CheckItemForElementAsPrimaryKeyInTable("ID", common.ID, kNullId, kLvDbType,
                                               kStrukturTableType, TRepair::kClarify);
  check.CheckItemForElementAsPrimaryKeyInTable("IDBeschr", common.IDBeschr, kNullId, kLvDbType,
                                               kBeschrTableType);
  check.CheckItemForCharSelector("Beauftragt", common.Beauftragt, '\0', OrEmpty(kBeauftragtCodes),
                                 kBeauftragtText);
  check.CheckItemForCharSelector("NachtrStatus", common.NachtrStatus, '\0',
                                 OrEmpty(kNachtrStatusCodes), kNachtrStatusText);
  check.CheckItemForCharSelector("Bedarf", common.Bedarf, '\0', OrEmpty(kBedarfCodes), kBedarfText);
  check.CheckItemForCharSelector("Titelart", common.Titelart, '\0', OrEmpty(kTitelartCodes),
                                 kTitelartText);
  check.CheckItemForCharSelector("Status", common.Status, '\0', OrEmpty(kLvStatusCodes),
                                 kLvStatusText);
}

}  // namespace korvan::boq
