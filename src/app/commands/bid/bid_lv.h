#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands/lv/lv_project.h"
#include "award/bid/bidder_sums.h"
#include "award/bid/dm_angebot.h"
#include "award/bid/dm_bieter.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "data/records/null_values.h"

namespace CLI {
class App;
}

namespace korvan::app {

// The argument of every command on one bidder's bid, after the LV (AddLvArgument): the
// bidder, named by its running number, id or name (BidLv::Bidder resolves it).
void AddBidderArgument(CLI::App& app, std::string& bidder);

// The currency a command shows the bidders' sums in ("Währung Anzeige"): the LV's, or one
// of the currency table that --currency names.
struct BidDisplay {
  std::string symbol;  // empty: the LV's currency
  int32_t currency = data::kOwnerCurrencyId;
  std::optional<boq::TAvaUiValueConverter> converter;

  award::TBidderTotals Shown(const award::TBidderTotals& totals) const {
    return converter ? award::InDisplayCurrency(totals, *converter, currency) : totals;
  }
};

// Declares --currency on a command that shows the bidders' sums.
void AddDisplayCurrencyOption(CLI::App& app, std::string& symbol);

// An LV loaded for a bid command: its entries, how the installation rounds, and its
// bidders.
class BidLv {
 public:
  // `settings`: how the bids are computed (contingency items counted or not).
  BidLv(const std::string& data_dir, const std::string& project, const std::string& lv,
        bool journal, award::TBidSettings settings = {});

  LvProject& Project() { return project_; }
  data::TStdDb& Db() { return db_; }
  const boq::TLVPosList& List() const { return list_; }
  const std::string& Name() const { return name_; }
  const boq::TAvaUiValueConverter& Converter() const { return converter_; }
  award::TdmBieter& Bidders() { return *bidders_; }
  // How the bids of this LV round: the LV's unit-price decimals and the installation's rules.
  calc::TItemCalculation Rounding() const;
  // The bidders with their sums as their bid lines give them now.
  std::vector<award::t_Bieter_DB_VERSION_3100> CurrentBidders();

  // The bidder named by its number, id or name; CommandError naming the LV when none.
  award::t_Bieter_DB_VERSION_3100 Bidder(const std::string& number_or_name);
  // The display currency of a --currency symbol (empty: the LV's); UsageError when the
  // currency table does not hold it.
  BidDisplay Display(const std::string& symbol);
  // The entry of an OZ; CommandError naming the LV when there is none.
  int IndexOf(const std::string& oz) const;
  // The item (P or L) of an OZ, before a sub-description of the same OZ.
  int ItemIndexOf(const std::string& oz) const;

  // Runs `change` as one step of the journal; a failure takes back what was written.
  void Change(const std::string& caption, std::ostream& warnings,
              const std::function<void()>& change);

 private:
  LvProject project_;
  data::TStdDb& db_;
  boq::TLVPosList list_;
  std::string name_;
  boq::TAvaUiValueConverter converter_;
  std::unique_ptr<award::TdmBieter> bidders_;
};

// The JSON object of a bidder with its sums (in the display currency) and rank (0: no
// prices).
std::string BidderJson(const award::t_Bieter_DB_VERSION_3100& bidder,
                       const calc::TItemCalculation& rounding, int rank,
                       const BidDisplay& display = {});

}  // namespace korvan::app
