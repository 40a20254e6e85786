#include "billing/billing_tables.h"

#include "billing/tables/tb_vertrag.h"

namespace korvan::billing {

void RegisterBillingTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kRvDbType, kVertragTableType, Registry::FactoryOf<TTbVertrag>());
  registry.RegisterDumpFormat(kRvDbType, kVertragTableType, kVertragLayout);
}

}  // namespace korvan::billing
