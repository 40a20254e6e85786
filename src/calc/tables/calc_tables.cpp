#include "calc/tables/calc_tables.h"

#include "calc/tables/tb_aupos.h"
#include "calc/tables/tb_bas.h"
#include "calc/tables/tb_ends.h"
#include "calc/tables/tb_item_calc.h"
#include "calc/tables/tb_kagr.h"
#include "calc/tables/tb_ltext.h"
#include "calc/tables/tb_mittellohn.h"
#include "calc/tables/tb_zuschlag.h"

namespace korvan::calc {
namespace {

data::TInitialRowsResult FillMasterSurcharges(data::TStdDb& db) {
  TTbZuR surcharges(db);
  return {surcharges.InitTable(), {}};
}

}  // namespace

// The letters of the calculation tables repeat those of other databases, so their dump
// formats (which the currency conversion reads too) are registered per database type.
void RegisterCalcTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kKrDbType, kZuTableType, Registry::FactoryOf<TTbZuR>());
  registry.Register(kKrDbType, kMLohnTableType, Registry::FactoryOf<TTbMLohnR>());
  registry.Register(kKrDbType, kBasTableType, Registry::FactoryOf<TTbBASR>());
  registry.Register(kKrDbType, kKaGrTableType, Registry::FactoryOf<TTbKaGrR>());
  registry.RegisterInitialRows(kKrDbType, FillMasterSurcharges);
  registry.RegisterDumpFormat(kKrDbType, kZuTableType, kKrZULayout);
  registry.RegisterDumpFormat(kKrDbType, kMLohnTableType, kKrMLOHNLayout);
  registry.RegisterDumpFormat(kKrDbType, kBasTableType, kKrBAS_729Layout);
  registry.RegisterDumpFormat(kKrDbType, kKaGrTableType, kKpKAGR_729Layout);

  registry.Register(kKpDbType, kZuTableType, Registry::FactoryOf<TTbZuP>());
  registry.Register(kKpDbType, kMLohnTableType, Registry::FactoryOf<TTbMLohnP>());
  registry.Register(kKpDbType, kBasTableType, Registry::FactoryOf<TTbBASP>());
  registry.Register(kKpDbType, kEndsTableType, Registry::FactoryOf<TTbEndsP>());
  registry.Register(kKpDbType, kKaGrTableType, Registry::FactoryOf<TTbKaGrP>());
  registry.Register(kKpDbType, kAUPosTableType, Registry::FactoryOf<TTbAUPos>());
  registry.Register(kKpDbType, kUPosTableType, Registry::FactoryOf<TTbUPos>());
  registry.Register(kKpDbType, kMatTableType, Registry::FactoryOf<TTbMatP>());
  registry.Register(kKpDbType, kSIdentTableType, Registry::FactoryOf<TTbSIdent>());
  registry.RegisterDumpFormat(kKpDbType, kZuTableType, kKpZULayout);
  registry.RegisterDumpFormat(kKpDbType, kMLohnTableType, kKpMLOHNLayout);
  registry.RegisterDumpFormat(kKpDbType, kBasTableType, kKpBAS_729Layout);
  registry.RegisterDumpFormat(kKpDbType, kEndsTableType, kKpENDSLayout);
  registry.RegisterDumpFormat(kKpDbType, kKaGrTableType, kKpKAGR_729Layout);
  registry.RegisterDumpFormat(kKpDbType, kAUPosTableType, kKpAUPos_729Layout);
  registry.RegisterDumpFormat(kKpDbType, kUPosTableType, kKpUPosLayout);
  registry.RegisterDumpFormat(kKpDbType, kMatTableType, kKpMAT_729Layout);
  registry.RegisterDumpFormat(kKpDbType, kSIdentTableType, kKpSIDENTLayout);
  registry.Register(kKpDbType, kLTextTableType, Registry::FactoryOf<TTbLText>());
  registry.RegisterDumpFormat(kKpDbType, kLTextTableType, kKpLTEXTLayout);

  registry.Register(kUpDbType, kUpStrukturTableType, Registry::FactoryOf<TTbUpStruktur>());
  registry.Register(kUpDbType, kUpBgTableType, Registry::FactoryOf<TTbUpBg>());
  registry.RegisterDumpFormat(kUpDbType, kUpStrukturTableType, kUpStrukturLayout);
  registry.RegisterDumpFormat(kUpDbType, kUpBgTableType, kUpBg_729Layout);
}

}  // namespace korvan::calc
