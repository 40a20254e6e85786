#include "exchange/exchange_tables.h"

#include "boq/lv/lv_delete_cascade.h"
#include "boq/lv/lv_table_types.h"
#include "exchange/gaeb/tb_gaeb.h"

namespace korvan::exchange {

void RegisterExchangeTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(boq::kLvDbType, kGaebTableType, Registry::FactoryOf<TTbGaeb>());
  registry.RegisterDumpFormat(kGaebTableType, kGaebLayout);
  boq::TLvDeleteCascades::Instance().Register(
      "GAEB-Kopfdaten",
      [](data::TStdDb& lv_db, int32_t lv_id) { return TTbGaeb(lv_db).DeleteOfLv(lv_id); });
}

}  // namespace korvan::exchange
