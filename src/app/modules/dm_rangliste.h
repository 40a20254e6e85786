#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/component/std_data_module.h"

// The bidders of one LV in the order of their ranks (TdmRangliste): the cheapest checked
// total first, bidders without prices last, with the sums `korvan bidder list` shows.
namespace korvan::app {

class TdmRangliste : public data::TSTDdataModule {
 public:
  static constexpr int kCDataId = 48200;
  enum Column { cRang, cNr, cBieter, cGeprueft, cNachNl, cBrutto, cStatus, kColumnCount };

  TdmRangliste(std::string data_dir, std::string project, int32_t lv_id);

  // The running number of the bidder of row z ("Bieter-Nr."), 0 for none.
  int BidderNumberOf(int z) const;
  // The checked total of the bidder of row z.
  double CheckedTotalOf(int z) const;
  const std::string& LastError() const { return last_error_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData&, int z, data::TStringList& t, bool&, char&, char&) override;

 private:
  struct Line {
    int number = 0;
    double checked = 0.0;
    std::vector<std::string> cells;
  };
  std::vector<Line> Read();
  const Line* LineOf(int z) const;

  std::string data_dir_;
  std::string project_;
  int32_t lv_id_;
  std::vector<Line> lines_;
  std::string last_error_;
};

}  // namespace korvan::app
