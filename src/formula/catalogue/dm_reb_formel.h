#pragma once

#include <string>
#include <vector>

#include "data/component/table_list_module.h"
#include "formula/catalogue/tb_reb_formel.h"

namespace korvan::formula {

// The formula catalogue as a list: one row per numbered formula, in number order, so that
// the master data's formulas can be looked at and corrected.
class TdmRebFormel : public data::TTableListModule {
 public:
  static constexpr int kCDataId = 46849;

  explicit TdmRebFormel(data::TStdDb& db);

  TTbRebFormel& Table() { return table_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData& sender, int z, data::TStringList& t, bool&, char&,
                          char&) override;
  void CData1C_OnInitData(data::TCData&, int, data::TStringList& t) override;

 private:
  std::string RowKey(const data::TStringList& t) const override;
  std::string DuplicateText(const data::TStringList& t) const override;
  std::string RowName(const data::TStringList& t) const override;
  void Fill(const data::TStringList& t) override;

  TTbRebFormel table_;
};

}  // namespace korvan::formula
