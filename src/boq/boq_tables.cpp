#include "boq/boq_tables.h"

#include "boq/lv/lv_tables.h"
#include "boq/text/tb_text_erg_header.h"
#include "boq/text/tb_text_header.h"
#include "boq/text/tb_texte.h"
#include "boq/text/tb_textzeile.h"
#include "boq/text/text_records.h"
#include "boq/units/builtin_currencies.h"
#include "boq/units/currency_records.h"
#include "boq/units/dm_einheit.h"
#include "boq/units/dm_waehrung.h"
#include "boq/units/tb_einheit.h"
#include "boq/units/tb_prj_wae_faktor.h"
#include "boq/units/tb_waehrung.h"
#include "boq/units/unit_record.h"

namespace korvan::boq {
namespace {

// The master-data database (DB_Stamm) keeps currencies and units.
constexpr char kStammDbType = 'E';
// The text databases (DB_Texte) keep short texts, long texts and text complements.
constexpr char kTextDbType = 'C';
// The project's global database (DB_GlobData) keeps its own exchange rates.
constexpr char kGlobDataDbType = 'L';

}  // namespace

void RegisterBoqTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kStammDbType, kWaehrungTableType, Registry::FactoryOf<TTbWaehrung>());
  registry.Register(kStammDbType, kEinheitTableType, Registry::FactoryOf<TTbEinheit>());
  registry.RegisterModule("waehrung", Registry::ModuleFactoryOf<TdmWaehrung>());
  registry.RegisterModule("einheit", Registry::ModuleFactoryOf<TdmEinheit>());
  registry.RegisterDumpFormat(kWaehrungTableType, kWaehrungLayout);
  registry.RegisterDumpFormat(kEinheitTableType, kEinheitLayout);
  registry.RegisterInitialRows(kStammDbType, FillBuiltInCurrencyRows);
  registry.Register(kGlobDataDbType, kPrjWaeFaktorTableType,
                    Registry::FactoryOf<TTbPrjWaeFaktor>());
  registry.RegisterDumpFormat(kPrjWaeFaktorTableType, kPrjWaeFaktorLayout);

  registry.Register(kTextDbType, kTexteTableType, Registry::FactoryOf<TTbTexte>());
  registry.Register(kTextDbType, kTextHeaderTableType, Registry::FactoryOf<TTbTextHeader>());
  registry.Register(kTextDbType, kTextZeileTableType, Registry::FactoryOf<TTbTextzeile>());
  registry.Register(kTextDbType, kTextErgHeaderTableType, Registry::FactoryOf<TTbTextErgHeader>());
  registry.RegisterDumpFormat(kTexteTableType, kTexteLayout);
  registry.RegisterDumpFormat(kTextHeaderTableType, kTextheaderLayout);
  registry.RegisterDumpFormat(kTextZeileTableType, kTextZeileLayout);
  registry.RegisterDumpFormat(kTextErgHeaderTableType, kTextErgHeaderLayout);

  RegisterLvTables(registry);
}

}  // namespace korvan::boq
