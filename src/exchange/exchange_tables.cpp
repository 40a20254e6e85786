#include "exchange/exchange_tables.h"

#include "boq/lv/lv_table_types.h"
#include "exchange/gaeb/tb_gaeb.h"

namespace korvan::exchange {

void RegisterExchangeTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(boq::kLvDbType, kGaebTableType, Registry::FactoryOf<TTbGaeb>());
  registry.RegisterDumpFormat(kGaebTableType, kGaebLayout);
}

}  // namespace korvan::exchange
