#include "boq/lv/lv_tables.h"

#include "boq/lv/tb_beschr.h"
#include "boq/lv/tb_lv.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "boq/lv/tb_lv_hierarchie.h"
#include "boq/lv/tb_struktur.h"
#include "boq/qty/tb_lv_teilmenge.h"
#include "boq/qty/tb_markup_sub_qty.h"
#include "boq/qty/tb_teilmenge.h"
#include "boq/vars/tb_variable.h"

namespace korvan::boq {

void RegisterLvTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kLvDbType, kLvTableType, Registry::FactoryOf<TTbLV>());
  registry.Register(kLvDbType, kHierarchieTableType, Registry::FactoryOf<TTbLvHierarchie>());
  registry.Register(kLvDbType, kStrukturTableType, Registry::FactoryOf<TTbStruktur>());
  registry.Register(kLvDbType, kLvBgTableType, Registry::FactoryOf<TTbLvBg>());
  registry.Register(kLvDbType, kLvBeschrTableType, Registry::FactoryOf<TTbLvBeschr>());
  registry.Register(kLvDbType, kBeschrTableType, Registry::FactoryOf<TTbBeschr>());
  registry.Register(kLvDbType, kVariableTableType, Registry::FactoryOf<TTbVariable>());
  registry.Register(kLvDbType, kLvTeilmengeTableType, Registry::FactoryOf<TTbLvTeilmenge>());
  registry.Register(kLvDbType, kTeilmengeTableType, Registry::FactoryOf<TTbTeilmenge>());
  registry.Register(kLvDbType, kMarkupSubQtyTableType, Registry::FactoryOf<TTbMarkupSubQty>());
  // Field by field: the records are wide and every field counts when one is looked at.
  registry.RegisterDumpFormat(kLvTableType, kLvLayout);
  registry.RegisterDumpFormat(kHierarchieTableType, kHierarchieLayout);
  registry.RegisterDumpFormat(kStrukturTableType, kStrukturLayout);
  registry.RegisterDumpFormat(kLvBgTableType, kLvBgLayout);
  registry.RegisterDumpFormat(kLvBeschrTableType, kLvBeschrLayout);
  registry.RegisterDumpFormat(kBeschrTableType, kBeschrLayout);
  registry.RegisterDumpFormat(kVariableTableType, kVariableLayout);
  registry.RegisterDumpFormat(kLvTeilmengeTableType, kLvTeilmengeLayout);
  registry.RegisterDumpFormat(kTeilmengeTableType, kTeilmengeLayout);
  registry.RegisterDumpFormat(kMarkupSubQtyTableType, kMarkupSubQtyLayout);
}

}  // namespace korvan::boq
