#include "award/award_tables.h"

#include "award/prices/price_table_types.h"
#include "award/prices/tb_price_tables.h"
#include "award/tables/tb_angebot.h"
#include "award/tables/tb_bieter.h"
#include "boq/lv/lv_delete_cascade.h"
#include "boq/lv/lv_table_types.h"

namespace korvan::award {

void RegisterAwardTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(boq::kLvDbType, kBieterTableType, Registry::FactoryOf<TTbBieter>());
  registry.Register(boq::kLvDbType, kAngebotTableType, Registry::FactoryOf<TTbAngebot>());
  registry.RegisterDumpFormat(boq::kLvDbType, kBieterTableType, kBieterLayout);
  registry.RegisterDumpFormat(boq::kLvDbType, kAngebotTableType, kAngebotLayout);
  registry.Register(kPriceDbType, kPrNiveauTableType, Registry::FactoryOf<TTbPrNiveau>());
  registry.Register(kPriceDbType, kPrEntryTableType, Registry::FactoryOf<TTbPrEntry>());
  registry.RegisterDumpFormat(kPriceDbType, kPrNiveauTableType, kPrNiveauLayout);
  registry.RegisterDumpFormat(kPriceDbType, kPrEntryTableType, kPrEntryLayout);
  // The bidders' texts live in the text database, which the cascade does not reach; the
  // LV's deletion deletes them with the LV's other texts (DeleteBidderTexts).
  boq::TLvDeleteCascades::Instance().Register("Bieter", [](data::TStdDb& lv_db, int32_t lv_id) {
    return TTbBieter(lv_db).DeleteAllOfLv(lv_id);
  });
}

}  // namespace korvan::award
