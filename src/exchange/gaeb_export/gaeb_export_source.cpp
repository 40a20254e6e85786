#include "exchange/gaeb_export/gaeb_export_source.h"

#include "boq/model/lv_pos_list_io.h"
#include "exchange/gaeb/tb_gaeb.h"

namespace korvan::exchange {

TGaebExportSource LoadGaebExportSource(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                                       const std::string& project_name, bool long_texts) {
  TGaebExportSource source;
  source.lv = boq::LoadLvPosList(lv_db, text_db, lv_id, long_texts);
  TTbGaeb headers(lv_db);
  if (headers.FindLv(lv_id)) source.header = headers.Rec();
  source.project_name = project_name;
  source.project_label = project_name;
  return source;
}

}  // namespace korvan::exchange
