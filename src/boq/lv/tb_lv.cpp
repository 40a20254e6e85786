#include "boq/lv/tb_lv.h"

#include <cstring>
#include <filesystem>

#include "boq/lv/lv_codes.h"
#include "boq/lv/lv_delete_cascade.h"
#include "boq/lv/tb_lv_hierarchie.h"
#include "boq/lv/tb_struktur.h"
#include "data/integrity/data_check.h"
#include "data/records/int_date.h"
#include "data/records/money_fields.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;
using data::kTriStateDefaultByte;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

constexpr uint8_t kTrue = 1;
constexpr int32_t kFirstSzPrj = 100000;
constexpr uint8_t kDefaultCashDiscDaysKind = 3;

void InitPrintOptions(LvDruckOptionen& options) {
  std::memset(&options, kTriStateDefaultByte, sizeof options);
  options.DruckeLV = kTrue;
  options.KaBetriebsstoff = kTrue;
  options.KaMaschinen = kTrue;
  options.KaSonstige = kTrue;
  options.KaFremd = kTrue;
  options.LKTextDrucken = kTrue;
}

}  // namespace

TTbLV::TTbLV(TStdDb& db, char table_type) : TTypedTB(db, table_type, kLayoutVersion, "TTbLV") {
  InitRecord();
}

void TTbLV::InitRecord() {
  TStdTB::InitRecord();
  t_Lv_DB_VERSION_3100& lv = Rec();
  data::SetCurrencyIds(kLvLayout, CurrentRecord(), data::kOwnerCurrencyId);
  lv.FId = kNullId;
  lv.SzPrj = kFirstSzPrj;
  lv.IdCad = kNullId;
  lv.DBState = static_cast<uint8_t>(TDBLVState::lvOK);
  lv.IdWae = data::kOwnerCurrencyId;
  lv.ForceTeilmengen = kTrue;
  lv.UseLongKT = kTriStateDefaultByte;
  lv.Datum = data::TodayAsIntDate();
  lv.IdLkt = kNullId;
  lv.Ust = data::kDefaultPercent;
  lv.Status = 'N';
  lv.KalkStatus = 'N';
  lv.LvArt = ' ';
  lv.AngVerfahren = 'P';
  lv.KalkVerfahren = 'Z';
  lv.LvForm = 'S';
  InitPrintOptions(lv.Druckoptionen);
  lv.EPGenauigkeit = 2;
  lv.xSchrittweite = 1;
  lv.Autocalc = kTrue;
  lv.LVWaehrung = static_cast<uint8_t>(TWaehrungstyp::wtLand);
  lv.Zugriffsrecht = 'S';
  lv.Zeilenart = '9';
  lv.VergabeArt = 'N';
  lv.OZSchrittweiteGT.fill(-1);
  lv.OZAutoNumGT.fill(kTriStateDefaultByte);
  lv.useKatOZ = kTriStateDefaultByte;
  lv.unterschrift = kTriStateDefaultByte;
  lv.lohnmaterial = kTriStateDefaultByte;
  lv.deckblatt = kTrue;
  lv.AngebotsmengenGleichLvMengen = kTrue;
  lv.GwlEinheit.Set("Months");
  lv.NachtrPhase = ' ';
  lv.LBArt = 'P';
  lv.UstAbrechnung = data::kDefaultPercent;
  lv.SpecialType = static_cast<uint8_t>(TAwardInfoSpecialType::aisNone);
  lv.COStatus = static_cast<uint8_t>(TCOStatus::cosNONE);
  for (TCashDiscount& term : lv.CashDiscount) term.CashDiscDays.Kind = kDefaultCashDiscDaysKind;
}

int TTbLV::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Lv_DB_VERSION_3100 lv = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(lv.FId);
      break;
    case '2':
      key = KeyNumber(lv.SzPrj);
      break;
    case '3':
      key = KeyNumber(lv.SzPrj) + std::string(1, lv.Zeilenart) + KeyNumber(lv.FId);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbLV::CurrentRecordToString() const {
  return "LV " + std::to_string(Rec().FId) + " \"" + Rec().Name.Get() + "\"";
}

void TTbLV::DoValidateRecord(TDataCheck& check) {
  t_Lv_DB_VERSION_3100& lv = Rec();
  check.SetAvaRecordID(lv.FId);
  check.CheckItemForMandatory("FId", lv.FId, kNullId);
  check.CheckItemForUniqueKey("FId", lv.FId);
  check.CheckItemForCharSelector("Status", lv.Status, 'N', kLvStatusCodes, kLvStatusText);
  check.CheckItemForCharSelector("KalkStatus", lv.KalkStatus, 'N', kLvStatusCodes, kLvStatusText);
  check.CheckItemForCharSelector("LvArt", lv.LvArt, ' ', kLvArtCodes, kLvArtText);
  check.CheckItemForCharSelector("AngVerfahren", lv.AngVerfahren, 'P', kAngVerfahrenCodes,
                                 kAngVerfahrenText);
  check.CheckItemForCharSelector("KalkVerfahren", lv.KalkVerfahren, 'Z', kKalkVerfahrenCodes,
                                 kKalkVerfahrenText);
  check.CheckItemForCharSelector("Zeilenart", lv.Zeilenart, '9', kZeilenartCodes, kZeilenartText);
  check.CheckItemForCharSelector("LBArt", lv.LBArt, 'P', kLBArtCodes, kLBArtText);
}

bool TTbLV::FindLv(int32_t id) {
  return GetKey(KeyNumber(id), '1');
}

TTbLV::TSetStateResult TTbLV::SetDBState(int32_t id, TDBLVState state) {
  if (!FindLv(id)) return TSetStateResult::kNotFound;
  if (Rec().DBState == static_cast<uint8_t>(state)) return TSetStateResult::kUnchanged;
  Rec().DBState = static_cast<uint8_t>(state);
  return UpDateRec() == storage::kOk ? TSetStateResult::kUpdated : TSetStateResult::kFailed;
}

std::string TTbLV::BimImportFolder(const std::string& project_dir, int32_t lv_id) {
  return (std::filesystem::path(project_dir) / "Bim-Lv-Container" / "Import" /
          std::to_string(lv_id))
      .string();
}

int TTbLV::DeleteRec() {
  const int32_t id = Rec().FId;
  // What the layers above keep of the LV goes first (the GAEB header record); the
  // texts, documents, bidders, calculation rows, contracts, invoices, address relations,
  // measurements and access rights of an LV join this cascade, in their place before and
  // after these steps, with their tables.
  if (int result = TLvDeleteCascades::Instance().Run(Db(), id); result != storage::kOk) {
    return result;
  }
  TTbLvHierarchie levels(Db());
  if (int result = levels.DeleteAllOf(id); result != storage::kOk) return result;
  TTbStruktur entries(Db());
  if (int result = entries.DeleteAllOf(id); result != storage::kOk) return result;
  if (int result = TStdTB::DeleteRec(); result != storage::kOk) return result;
  // Files that the LV's BIM import left; an LV without them is no failure.
  std::error_code ignored;
  std::filesystem::remove_all(BimImportFolder(Db().Directory(), id), ignored);
  return storage::kOk;
}

}  // namespace korvan::boq
