#include "boq/units/tb_einheit.h"

#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::boq {

using data::KeyNumber16;
using data::kNullId16;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

TTbEinheit::TTbEinheit(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbEinheit") {
  InitRecord();
}

void TTbEinheit::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdLang = kNullId16;
  Rec().IdEinheit = kNullId16;
  Rec().Sz = kNullId16;
  Rec().Preisanteile = '1';
  Rec().Nachkommastellen = 3;
  Rec().ValFormat = static_cast<uint8_t>(TValFormat::vfDec);
}

int TTbEinheit::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Einheit unit = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber16(unit.IdLang) + KeyNumber16(unit.IdEinheit);
      break;
    case '2':
      key = KeyNumber16(unit.IdLang) + KeyNumber16(unit.Sz);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbEinheit::CurrentRecordToString() const {
  return Rec().Einheit.Get() + " (" + std::to_string(Rec().IdEinheit) + ")";
}

void TTbEinheit::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().IdEinheit);
  check.CheckItemForMandatory("IdLang", Rec().IdLang, kNullId16);
  check.CheckItemForMandatory("IdEinheit", Rec().IdEinheit, kNullId16);
  check.CheckItemForCharSelector("Preisanteile", Rec().Preisanteile, '1', "123AB",
                                 "Preisanteile: 1, 2, 3, A oder B");
}

}  // namespace korvan::boq
