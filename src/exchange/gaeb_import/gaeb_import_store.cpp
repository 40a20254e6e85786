#include "exchange/gaeb_import/gaeb_import_store.h"

#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_lv.h"
#include "boq/model/lv_pos_list_io.h"
#include "exchange/gaeb/tb_gaeb.h"

namespace korvan::exchange {
namespace {

// The fields of the LV header an import sets, over the defaults of a new LV.
void TakeImportedFields(const boq::t_Lv_DB_VERSION_3100& from, boq::t_Lv_DB_VERSION_3100& to) {
  to.Datum = from.Datum;
  to.ZusEnde = from.ZusEnde;
  to.AbgabeOrt = from.AbgabeOrt;
  to.AusfBeginn = from.AusfBeginn;
  to.AusfEnde = from.AusfEnde;
  to.CONo = from.CONo;
  to.COStatus = from.COStatus;
  to.NachlassAbs.Betrag = from.NachlassAbs.Betrag;
  to.NachlassProz = from.NachlassProz;
  if (from.Ust != 0.0) to.Ust = from.Ust;
  to.PreisAnteile = from.PreisAnteile;
  if (from.EPGenauigkeit != 0) to.EPGenauigkeit = from.EPGenauigkeit;
  to.DvNr = from.DvNr;
  to.VergabeNr = from.VergabeNr;
}

}  // namespace

int32_t StoreImportedLv(data::TStdDb& lv_db, data::TStdDb* text_db, TGaebImport& import) {
  const boq::t_Lv_DB_VERSION_3100& imported = import.lv.FLv();
  const int32_t id =
      boq::CreateLv(lv_db, {imported.Name.Get(), std::string(imported.PosMaske.Raw())});
  boq::TTbLV headers(lv_db);
  if (!headers.FindLv(id)) {
    throw boq::EStoredLvError(lv_db.BasePath() + ": das neue LV " + std::to_string(id) +
                              " ist nicht lesbar");
  }
  boq::t_Lv_DB_VERSION_3100 header = headers.Rec();
  TakeImportedFields(imported, header);
  import.lv.RefreshLvProperties(header);
  boq::SaveLvHeader(lv_db, import.lv);
  boq::SaveLvPosList(lv_db, text_db, import.lv);
  TTbGaeb gaeb(lv_db);
  const t_Gaeb_DB_VERSION_201401 values = import.header;
  gaeb.InitRecord();
  const data::TDbRecordHeader record_header = gaeb.Rec().Header;
  gaeb.Rec() = values;
  gaeb.Rec().Header = record_header;
  gaeb.Rec().IdLv = id;
  if (const int result = gaeb.UpDateRec(); result != 0) {
    throw boq::EStoredLvError(lv_db.BasePath() + ": der GAEB-Kopfsatz des LV " +
                              std::to_string(id) + " kann nicht gespeichert werden (Code " +
                              std::to_string(result) + ")");
  }
  return id;
}

}  // namespace korvan::exchange
