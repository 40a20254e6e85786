#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/component/std_data_module.h"

// The projects of an installation and their LVs as one list (TdmProjekte): a project row
// on level 1, its LVs below on level 2, with the LV's status and stored total. Projects
// are the folders below the installation's project root that hold an LV database.
namespace korvan::app {

class TdmProjekte : public data::TSTDdataModule {
 public:
  static constexpr int kCDataId = 48100;
  enum Column { cName, cStatus, cSumme, kColumnCount };

  explicit TdmProjekte(std::string data_dir);

  // The project of row z (of a project row or of an LV row).
  std::string ProjectOf(int z) const;
  // The LV of row z; 0 for a project row.
  int32_t LvOf(int z) const;
  // The row of the LV `lv` of `project`; 0 when none.
  int RowOf(const std::string& project, int32_t lv) const;
  // Why the rows could not be read (German).
  const std::string& LastError() const { return last_error_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData&, int z, data::TStringList& t, bool&, char&,
                          char& zart) override;

 private:
  struct Line {
    std::string project;
    int32_t lv = 0;
    std::vector<std::string> cells;
  };
  std::vector<Line> Read() const;

  std::string data_dir_;
  std::vector<Line> lines_;
  std::string last_error_;
};

}  // namespace korvan::app
