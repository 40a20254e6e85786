#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "award/bid/bidder_sums.h"
#include "data/component/std_data_module.h"

// The lines of one bidder's bid as a list a window drives (TdmAngebotZeilen): one row per
// LV line with the bid's quantity, prices, discount and comment, in the columns of the
// bid's grid; the bidder's sums beside them. Read-only: the bid is read whole, computed as
// `korvan bid show` computes it, and nothing is written.
namespace korvan::app {

class TdmAngebotZeilen : public data::TSTDdataModule {
 public:
  static constexpr int kCDataId = 48300;

  // The bid of the bidder with the running number `bidder` on LV `lv_id` of `project`.
  TdmAngebotZeilen(std::string data_dir, std::string project, int32_t lv_id, int bidder);

  const std::string& BidderName() const { return bidder_name_; }
  const award::TBidderTotals& Totals() const { return totals_; }
  // "Geprüft 69,00 · Summe ./. NL 69,00 · Netto … · MwSt … · Brutto …" with the currency.
  std::string TotalsText() const;
  const std::string& LastError() const { return last_error_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData&, int z, data::TStringList& t, bool&, char&,
                          char& zart) override;

 private:
  struct Line {
    char kind = ' ';
    int level = 1;
    std::vector<std::string> cells;
  };
  void Read();

  std::string data_dir_;
  std::string project_;
  int32_t lv_id_;
  int bidder_;
  std::string bidder_name_;
  std::string currency_;
  award::TBidderTotals totals_;
  std::vector<Line> lines_;
  std::string last_error_;
};

}  // namespace korvan::app
