#include "formula/catalogue/tb_reb_formel.h"

#include "data/integrity/data_check.h"
#include "data/tables/table_key.h"

namespace korvan::formula {

TTbRebFormel::TTbRebFormel(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbRebFormel") {
  InitRecord();
}

int TTbRebFormel::GetKeyString(data::RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  // A number that is not one (only damaged or hand-made records) keys as written.
  const t_REBFormel formula = Of(record);
  key = CatalogueKeyOf(formula.FormelNr.Raw()).value_or(data::KeyText(formula.FormelNr.Raw(), 3));
  return static_cast<int>(key.size());
}

std::string TTbRebFormel::CurrentRecordToString() const {
  return Rec().FormelNr.Get() + " " + Rec().Bezeichnung.Get();
}

void TTbRebFormel::DoValidateRecord(data::TDataCheck& check) {
  // A formula without number can be neither found nor used.
  check.CheckItemForMandatory("FormelNr", static_cast<int32_t>(Rec().FormelNr.Length()), 0);
}

bool TTbRebFormel::FindNr(std::string_view nr) {
  const std::optional<std::string> key = CatalogueKeyOf(nr);
  return key && GetKey(*key, '1');
}

std::vector<TRebFormelRow> TTbRebFormel::All() {
  std::vector<TRebFormelRow> rows;
  for (bool found = GetFirstKey("", '1'); found; found = GetNextKey()) rows.push_back(RowOf(Rec()));
  return rows;
}

TRebFormelRow TTbRebFormel::RowOf(const t_REBFormel& record) {
  return {record.FormelNr.Get(), record.Bezeichnung.Get(), record.Formel.Get(),
          record.Spaltentext.Get()};
}

std::optional<TRebFormelRow> TRebFormelTableSource::Find(std::string_view nr) {
  if (!table_.FindNr(nr)) return std::nullopt;
  return TTbRebFormel::RowOf(table_.Rec());
}

}  // namespace korvan::formula
