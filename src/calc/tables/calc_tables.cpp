#include "calc/tables/calc_tables.h"

#include "calc/tables/tb_aupos.h"
#include "calc/tables/tb_bas.h"
#include "calc/tables/tb_ends.h"
#include "calc/tables/tb_item_calc.h"
#include "calc/tables/tb_kagr.h"
#include "calc/tables/tb_mittellohn.h"
#include "calc/tables/tb_zuschlag.h"

namespace korvan::calc {
namespace {

data::TInitialRowsResult FillMasterSurcharges(data::TStdDb& db) {
  TTbZuR surcharges(db);
  return {surcharges.InitTable(), {}};
}

}  // namespace

// The calculation records are shown field by field only where a dump format is known;
// their letters repeat those of other databases, so none is registered for them.
void RegisterCalcTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kKrDbType, kZuTableType, Registry::FactoryOf<TTbZuR>());
  registry.Register(kKrDbType, kMLohnTableType, Registry::FactoryOf<TTbMLohnR>());
  registry.Register(kKrDbType, kBasTableType, Registry::FactoryOf<TTbBASR>());
  registry.Register(kKrDbType, kKaGrTableType, Registry::FactoryOf<TTbKaGrR>());
  registry.RegisterInitialRows(kKrDbType, FillMasterSurcharges);

  registry.Register(kKpDbType, kZuTableType, Registry::FactoryOf<TTbZuP>());
  registry.Register(kKpDbType, kMLohnTableType, Registry::FactoryOf<TTbMLohnP>());
  registry.Register(kKpDbType, kBasTableType, Registry::FactoryOf<TTbBASP>());
  registry.Register(kKpDbType, kEndsTableType, Registry::FactoryOf<TTbEndsP>());
  registry.Register(kKpDbType, kKaGrTableType, Registry::FactoryOf<TTbKaGrP>());
  registry.Register(kKpDbType, kAUPosTableType, Registry::FactoryOf<TTbAUPos>());
  registry.Register(kKpDbType, kUPosTableType, Registry::FactoryOf<TTbUPos>());
  registry.Register(kKpDbType, kMatTableType, Registry::FactoryOf<TTbMatP>());
  registry.Register(kKpDbType, kSIdentTableType, Registry::FactoryOf<TTbSIdent>());

  registry.Register(kUpDbType, kUpStrukturTableType, Registry::FactoryOf<TTbUpStruktur>());
  registry.Register(kUpDbType, kUpBgTableType, Registry::FactoryOf<TTbUpBg>());
}

}  // namespace korvan::calc
