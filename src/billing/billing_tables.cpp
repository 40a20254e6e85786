#include "billing/billing_tables.h"

#include "billing/tables/tb_abzug.h"
#include "billing/tables/tb_vertrag.h"
#include "boq/text/tb_texte.h"

namespace korvan::billing {

void RegisterBillingTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kRvDbType, kVertragTableType, Registry::FactoryOf<TTbVertrag>());
  registry.RegisterDumpFormat(kRvDbType, kVertragTableType, kVertragLayout);
  registry.Register(kRvDbType, kAbzugTableType, Registry::FactoryOf<TTbAbzug>());
  registry.RegisterDumpFormat(kRvDbType, kAbzugTableType, kAbzugLayout);
  // The deductions' names live beside them: the project's text database may be absent.
  registry.Register(kRvDbType, kRvTexteTableType, Registry::FactoryOf<boq::TTbTexte>());
}

}  // namespace korvan::billing
