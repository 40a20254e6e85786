#include "boq/units/tb_waehrung.h"

#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

TTbWaehrung::TTbWaehrung(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbWaehrung") {
  InitRecord();
}

void TTbWaehrung::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID = kNullId;
  Rec().IdLand = kNullId;
  Rec().Faktor = 1.0;
  Rec().Nachkomma = 2;
  Rec().Nachkomma2 = 2;
}

int TTbWaehrung::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Waehrung currency = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(currency.ID);
      break;
    case '2':
      key = KeyNumber(currency.IdLand);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbWaehrung::CurrentRecordToString() const {
  return Rec().Symbol.Get() + " (" + std::to_string(Rec().ID) + ")";
}

void TTbWaehrung::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().ID);
  check.CheckItemForMandatory("ID", Rec().ID, kNullId);
  check.CheckItemForUniqueKey("ID", Rec().ID);
  // Booleans stored as bytes: anything but 0 and 1 is damage, read as "no".
  check.CheckItemForCharSelector("kzBasis", reinterpret_cast<char&>(Rec().kzBasis), '\0',
                                 std::string_view("\0\1", 2), "Basiswährung: 0 oder 1");
  check.CheckItemForCharSelector("kzLand", reinterpret_cast<char&>(Rec().kzLand), '\0',
                                 std::string_view("\0\1", 2), "Landeswährung: 0 oder 1");
}

}  // namespace korvan::boq
