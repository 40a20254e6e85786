#include "boq/units/tb_prj_wae_faktor.h"

#include "data/common/cp1252.h"
#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::boq {

using data::KeyNumber;
using data::KeyText;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

std::string ProjectKey(std::string_view prj_nr_cp1252, int32_t id_land) {
  return KeyText(prj_nr_cp1252, 20) + KeyNumber(id_land);
}

}  // namespace

TTbPrjWaeFaktor::TTbPrjWaeFaktor(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbPrjWaeFaktor") {
  InitRecord();
}

void TTbPrjWaeFaktor::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdLand = data::kNullId;
  Rec().Faktor = 1.0;
  Rec().NachKomma = 2;
}

int TTbPrjWaeFaktor::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_PrjWaeFaktor rate = Of(record);
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = ProjectKey(rate.PrjNr.Raw(), rate.IdLand) + KeyNumber(rate.Datum);
  return static_cast<int>(key.size());
}

std::string TTbPrjWaeFaktor::CurrentRecordToString() const {
  return "Kurs " + Rec().PrjNr.Get() + data::Printf(" Land %d ab %d", Rec().IdLand, Rec().Datum);
}

void TTbPrjWaeFaktor::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().IdLand);
  check.CheckItemForMandatory("IdLand", Rec().IdLand, data::kNullId);
}

std::optional<t_PrjWaeFaktor> TTbPrjWaeFaktor::RateOn(std::string_view prj_nr, int32_t id_land,
                                                      int32_t date) {
  const std::string pattern = ProjectKey(data::Utf8ToCp1252(prj_nr), id_land);
  std::optional<t_PrjWaeFaktor> valid;
  for (bool more = GetFirstKey(pattern); more; more = GetNextKey(pattern)) {
    if (Rec().Datum > date) break;  // keys run by date
    valid = Rec();
  }
  return valid;
}

}  // namespace korvan::boq
