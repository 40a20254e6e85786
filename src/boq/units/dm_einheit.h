#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "boq/units/tb_einheit.h"
#include "data/component/table_list_module.h"

namespace korvan::boq {

// The unit list: one row per unit of the unit table, keyed by language and unit id.
class TdmEinheit : public data::TTableListModule {
 public:
  static constexpr int kCDataId = 47211;  // also the text number of the list's title

  explicit TdmEinheit(data::TStdDb& db);

  TTbEinheit& Table() { return table_; }

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
  data::TStringList Values() const;

  TTbEinheit table_;
};

}  // namespace korvan::boq
