#include "data/component/column_view.h"

#include "data/common/text_catalogue.h"

namespace korvan::data {

std::string ColumnCaption(const TColumnDef& column) {
  if (!column.CaptionTextNr) return column.Name;
  return TTextCatalogue::German().cLoadStr(*column.CaptionTextNr);
}

bool ColumnEditable(const TColumnDef& column) {
  return column.LayoutFlags.size() > 1 && column.LayoutFlags[1] == "1";
}

bool ColumnIsNumber(const TColumnDef& column) {
  return column.Typ == TFeldTyp::Integer || column.Typ == TFeldTyp::Real ||
         column.Typ == TFeldTyp::Betrag;
}

}  // namespace korvan::data
