#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "data/component/table_list_module.h"
#include "data/units/tb_einheit.h"

namespace korvan::data {

// The unit list: one row per unit of the unit table, keyed by language and unit id.
class TdmEinheit : public TTableListModule {
 public:
  static constexpr int kCDataId = 47211;  // also the text number of the list's title

  explicit TdmEinheit(TStdDb& db);

  TTbEinheit& Table() { return table_; }

 protected:
  void CData1C_OnGetStruktur(TCData&, int, TStringList& t) override;
  void CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) override;
  void CData1C_OnGetDaten(TCData& sender, int z, TStringList& t, bool&, char&, char&) override;
  void CData1C_OnInitData(TCData&, int, TStringList& t) override;

 private:
  std::string RowKey(const TStringList& t) const override;
  std::string DuplicateText(const TStringList& t) const override;
  std::string RowName(const TStringList& t) const override;
  void Fill(const TStringList& t) override;
  TStringList Values() const;

  TTbEinheit table_;
};

}  // namespace korvan::data
