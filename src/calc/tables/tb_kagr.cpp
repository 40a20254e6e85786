#include "calc/tables/tb_kagr.h"

#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

TTbKaGrR::TTbKaGrR(data::TStdDb& db, char table_type, const char* name)
    : TTypedTB(db, table_type, kLayoutVersion, name) {
  InitRecord();
}

void TTbKaGrR::InitRecord() {
  TStdTB::InitRecord();
  t_KrKAGR_729& group = Rec();
  group.KZKA = ' ';
  group.ID = data::kNullId;
  for (data::t_WaeBetrag* amount :
       {&group.MATW, &group.RSVW, &group.SOKOW, &group.MLAVR, &group.MLBS}) {
    amount->IdWaehrung = data::kOwnerCurrencyId;
  }
}

int TTbKaGrR::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_KrKAGR_729 group = Of(record);
  key = std::string(1, group.KZKA) + KeyNumber(group.ID);
  return static_cast<int>(key.size());
}

std::string TTbKaGrR::CurrentRecordToString() const {
  return std::string("Kostenartengruppe ") + Rec().KZKA + " " + std::to_string(Rec().ID);
}

}  // namespace korvan::calc
