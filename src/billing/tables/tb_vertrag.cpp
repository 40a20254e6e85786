#include "billing/tables/tb_vertrag.h"

#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::billing {
namespace {

using data::KeyNumber;
using data::kNullId;

constexpr char kContractCounterKind = 'J';
constexpr char kContractCounter[] = "Vertrag";
constexpr uint8_t kCalendarDays = 3;

}  // namespace

TTbVertrag::TTbVertrag(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbVertrag") {
  InitRecord();
}

void TTbVertrag::InitRecord() {
  TStdTB::InitRecord();
  TVertrag& rec = Rec();
  // Packed fields: set one by one, never through a pointer.
  rec.ID = kNullId;
  rec.IdProjekt = kNullId;
  rec.IdLv = kNullId;
  rec.IdFormularsatz = kNullId;
  rec.IdHauptauftrag = kNullId;
  rec.IdAdresse = kNullId;
  rec.IdBieter = kNullId;
  rec.IdWaehrung = data::kOwnerCurrencyId;
  rec.Auftragsart = kMainContract;
  rec.Auftragsdatum = data::TodayAsIntDate();
  for (data::t_WaeBetrag* amount :
       {&rec.Auftragssumme, &rec.Rechnungssumme, &rec.SicherheitsbuergschaftsBetrag,
        &rec.GewaehrbuergschaftsBetrag, &rec.NachlassAbs, &rec.SummeAusLV, &rec.SummeAusLVKum,
        &rec.SummePsch, &rec.SummeNachNL, &rec.SummeBrutto, &rec.AuftragssummeKum}) {
    amount->IdWaehrung = data::kOwnerCurrencyId;
  }
  rec.RechLegung = 'R';
  rec.GwlEinheit.Set("Monate");
  rec.BasisForBrutto = kGrossFromDiscounted;
  for (boq::TCashDiscount& term : rec.CashDiscount) term.CashDiscDays.Kind = kCalendarDays;
}

int TTbVertrag::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const TVertrag rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.ID);
      break;
    case '2':
      key = KeyNumber(rec.IdProjekt) + KeyNumber(rec.IdLv) + KeyNumber(rec.ID);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbVertrag::CurrentRecordToString() const {
  return data::Printf("Vertrag %d \"%s\" des LV %d", Rec().ID, Rec().AuftragsNr.Get().c_str(),
                      Rec().IdLv);
}

void TTbVertrag::DoValidateRecord(data::TDataCheck& check) {
  check.SetAvaRecordID(Rec().ID);
  check.CheckItemForMandatory("ID", Rec().ID, kNullId);
  check.CheckItemForMandatory("IdProjekt", Rec().IdProjekt, kNullId);
  check.CheckItemForMandatory("IdLv", Rec().IdLv, kNullId);
}

int TTbVertrag::NewVertrag(int32_t project, int32_t lv) {
  int32_t id = 0;
  data::TTbCounter counters(Db());
  if (int result = counters.NextId(kContractCounterKind, kContractCounter, &id);
      result != storage::kOk) {
    return result;
  }
  InitRecord();
  Rec().ID = id;
  Rec().Sz = 1;
  Rec().IdProjekt = project;
  Rec().IdLv = lv;
  return storage::kOk;
}

bool TTbVertrag::Find(int32_t id) {
  return id != kNullId && GetKey(KeyNumber(id), '1');
}

std::vector<TVertrag> TTbVertrag::ListOfProject(int32_t project, std::optional<int32_t> lv) {
  std::vector<TVertrag> contracts;
  if (project == kNullId) return contracts;  // a null pattern would match every project
  std::string pattern = KeyNumber(project);
  if (lv) pattern += KeyNumber(*lv);
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(pattern, '2', records) != storage::kOk) return contracts;
  for (const std::vector<uint8_t>& record : records) contracts.push_back(Of(record));
  return contracts;
}

}  // namespace korvan::billing
