#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "data/std_data_module.h"
#include "data/tb_einheit.h"

namespace korvan::data {

// The unit list: one row per unit of the unit table, keyed by language and unit id.
// Values are checked column by column before anything is written; a refused edit
// leaves the table unchanged and says why in LastError().
class TdmEinheit : public TSTDdataModule {
 public:
  static constexpr int kCDataId = 47211;  // also the text number of the list's title

  explicit TdmEinheit(TStdDb& db);

  // Empty when `value` fits the column, otherwise the expected form in words.
  std::string CheckValue(int column, std::string_view value) const;
  const std::string& LastError() const { return last_error_; }
  TTbEinheit& Table() { return table_; }

 protected:
  void CData1C_OnGetStruktur(TCData&, int, TStringList& t) override;
  void CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) override;
  void CData1C_OnGetDaten(TCData& sender, int z, TStringList& t, bool&, char&, char&) override;
  void CData1C_OnPutDaten(TCData& sender, int z, TStringList& t, const TStringList&, char,
                          bool& ok) override;
  void CData1C_OnInitData(TCData&, int, TStringList& t) override;
  void CData1C_OnDeleteZeile(TCData&, int, const std::string& key, TOnDeleteMode,
                             bool& ok) override;

 private:
  bool Refuse(std::string message);
  // Takes checked values into the table's current record.
  void Fill(const TStringList& t);
  TStringList Values() const;

  TTbEinheit table_;
  std::string last_error_;
};

}  // namespace korvan::data
