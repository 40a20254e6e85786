#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "data/component/std_data_module.h"

// The price comparison of an LV's bids as a list (TdmPreisspiegel): one row per group and
// item, nested by the OZ tree, then the LV's total; the columns OZ and Kurztext and one
// total (GP) per bidder, then the mean, median and ideal bids, as `korvan compare` shows
// them. Its columns follow the bidders, so they are made when the comparison has run.
namespace korvan::app {

class TdmPreisspiegel : public data::TSTDdataModule {
 public:
  static constexpr int kCDataId = 48300;
  // The first bid column; the ones before it are OZ and Kurztext.
  static constexpr int kFirstBidColumn = 2;

  // `max_deviation`: prices further than this many percent from the mean are marked; 0 none.
  TdmPreisspiegel(std::string data_dir, std::string project, int32_t lv_id, double max_deviation);

  // Runs the comparison, makes the columns and the rows; false with LastError().
  bool Loaded() override;

  // Whether the value of row z in `column` deviates from the mean beyond the threshold.
  bool Deviates(int z, int column) const;
  // Every bidder's name and checked total (in the display currency), in list order.
  const std::vector<std::pair<std::string, double>>& Totals() const { return totals_; }
  double MaxDeviation() const { return max_deviation_; }
  // Runs the comparison again marking with another threshold; false with LastError().
  bool Remark(double max_deviation);
  // What counts as 100 %.
  const std::string& ReferenceText() const { return reference_; }
  const std::string& LastError() const { return last_error_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData&, int z, data::TStringList& t, bool&, char&,
                          char& zart) override;

 private:
  struct Line {
    int level = 1;
    char kind = ' ';
    std::vector<std::string> cells;
    std::vector<bool> deviates;  // per column
  };
  void Read();

  std::string data_dir_;
  std::string project_;
  int32_t lv_id_;
  double max_deviation_;
  std::vector<std::string> definitions_;
  std::vector<Line> lines_;
  std::vector<std::pair<std::string, double>> totals_;
  std::string reference_;
  std::string last_error_;
};

}  // namespace korvan::app
