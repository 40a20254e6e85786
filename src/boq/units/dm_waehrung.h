#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "boq/units/tb_waehrung.h"
#include "data/component/table_list_module.h"

namespace korvan::boq {

// The currency list: one row per currency of the currency table, keyed by its ID.
class TdmWaehrung : public data::TTableListModule {
 public:
  static constexpr int kCDataId = 47111;  // also the text number of the list's title

  explicit TdmWaehrung(data::TStdDb& db);

  TTbWaehrung& Table() { return table_; }

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

  TTbWaehrung table_;
};

}  // namespace korvan::boq
