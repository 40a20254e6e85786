#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "award/bid/dm_angebot.h"
#include "award/tables/bieter_record.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "data/component/std_data_module.h"
#include "data/tables/std_db.h"

// The bidders of one LV (TdmBieter): adding them, finding one, recomputing every bid and
// ranking them by their checked totals.
namespace korvan::award {

class TdmBieter : public data::TSTDdataModule {
 public:
  // `text_db`: the project's text database for the bidders' addresses (none: no texts).
  TdmBieter(data::TStdDb& lv_db, data::TStdDb* text_db, const boq::TLVPosList& lv,
            const boq::TAvaUiValueConverter& converter, TBidSettings settings = {});

  // The bidders of the LV in their order.
  std::vector<t_Bieter_DB_VERSION_3100> Bidders();
  // A new bidder with its address as its text; EBidError when it cannot be written.
  t_Bieter_DB_VERSION_3100 AddBidder(const std::string& name, const std::string& address);
  // Creates the estimate bidder (kEstimateBidderName) or, when the LV has one, takes the
  // LV's estimated prices into it anew; its bid is recalculated and stored. EBidError when
  // it cannot be written. `created` tells which.
  t_Bieter_DB_VERSION_3100 EstimateBidder(bool* created = nullptr);
  // The bidder named by its running number ("Bieter-Nr."), id or name.
  std::optional<t_Bieter_DB_VERSION_3100> FindBidder(const std::string& number_or_name);
  // A bidder's address as stored; empty when it has none.
  std::string AddressOf(int32_t bidder);

  // The bid of a bidder, opened.
  std::unique_ptr<TdmAngebot> OpenBid(const t_Bieter_DB_VERSION_3100& bidder);
  // The same, computed with other settings than the LV's.
  std::unique_ptr<TdmAngebot> OpenBid(const t_Bieter_DB_VERSION_3100& bidder,
                                      TBidSettings settings);
  const TBidSettings& Settings() const { return settings_; }
  // "Alle Angebote durchkalkulieren": every bid recomputed and stored; `progress` is told
  // each bidder's name.
  void AlleBieterNeuBerechnen(const std::function<void(const std::string&)>& progress = {});

 private:
  data::TStdDb& lv_db_;
  data::TStdDb* text_db_;
  const boq::TLVPosList& lv_;
  const boq::TAvaUiValueConverter& converter_;
  TBidSettings settings_;
};

// The rank of each bidder by its net total, cheapest first ("Rangliste"); bidders without
// any price get 0. Equal totals share a rank.
std::vector<int> RankByTotal(const std::vector<t_Bieter_DB_VERSION_3100>& bidders);

}  // namespace korvan::award
