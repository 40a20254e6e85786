#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "data/component/table_list_module.h"
#include "data/units/tb_waehrung.h"

namespace korvan::data {

// The currency list: one row per currency of the currency table, keyed by its ID.
class TdmWaehrung : public TTableListModule {
 public:
  static constexpr int kCDataId = 47111;  // also the text number of the list's title

  explicit TdmWaehrung(TStdDb& db);

  TTbWaehrung& Table() { return table_; }

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

  TTbWaehrung table_;
};

}  // namespace korvan::data
