#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "award/bid/bid_check.h"
#include "award/bid/bid_line.h"
#include "award/tables/bieter_record.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/price/item_calculation.h"
#include "data/component/std_data_module.h"
#include "data/tables/std_db.h"

// The bid of one bidder laid over the lines of its LV (TdmAngebot): line totals, group
// sums up the OZ hierarchy, the bidder's sums, the bid check, the conversion of a lump
// sum or a mark-up into unit prices, and the copy of the prices into the LV.
namespace korvan::award {

// A bid whose records cannot be read or written, naming the bidder and the table.
class EBidError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The LV column that "Bieterpreise in LV übernehmen" fills: the award prices (and with
// them the billing prices), or the estimated prices.
enum class TBidPriceTarget { kAward, kEstimate };

struct TBidSettings {
  // The project's option: contingency items without total (Bedarf E) count in totals.
  bool contingency_in_totals = false;
};

class TdmAngebot : public data::TSTDdataModule {
 public:
  // `lv`: the LV with its entries; the module keeps its own copy. `text_db`: the project's
  // text database, where the bid's comments and text additions live (none: no texts).
  TdmAngebot(data::TStdDb& lv_db, const boq::TLVPosList& lv,
             const boq::TAvaUiValueConverter& converter, TBidSettings settings = {},
             data::TStdDb* text_db = nullptr);

  // Opens the bid of `bidder` (of this LV): one line per LV line, the stored one where it
  // exists, else a new one. EBidError when the lines cannot be read.
  void Open(const t_Bieter_DB_VERSION_3100& bidder);

  // Reads the lines' comments and text additions and the gaps the LV's long texts leave
  // for the bidder. Without a text database there are none, and TextsRead stays false.
  void ReadTexts();
  bool TextsRead() const { return texts_read_; }
  // The gaps of a line's long text that are the bidder's to fill (after ReadTexts).
  const std::vector<int>& BidderGapsOf(int line) const;
  // Replaces a line's comment and text additions, to be stored by Save.
  void SetTexts(int line, std::vector<std::string> comment, TBidderTexts texts);

  const boq::TLVPosList& Lv() const { return lv_; }
  TAngebotList& FAList() { return lines_; }
  const TAngebotList& FAList() const { return lines_; }
  t_Bieter_DB_VERSION_3100& Bidder() { return bidder_; }
  const t_Bieter_DB_VERSION_3100& Bidder() const { return bidder_; }
  // The bid's total before discounts (sum of the top-level groups' totals).
  double FAngebotGP() const { return angebot_gp_; }
  const calc::TItemCalculation& Rounding() const { return rounding_; }

  // Whether the LV line is priced: a normal item or lead description that is no
  // alternative, not omitted and no contingency item without total (unless the option).
  bool IsPriced(int line) const;
  // The quantity a line is computed with when the bid has no own quantity.
  double LvBidQuantity(int line) const;

  // The totals of one line (Gesamtpreis); surcharge items take their base from the
  // lines as they stand.
  void Gesamtpreis(int line);
  // The group sums (TBoQCtgySum) and the bidder's checked total and time.
  void BuildGroupSums();
  // Every line (surcharge items after the lines they rest on), the group sums, the
  // bidder's sums and its status.
  void Recalculate();
  // The bidder's sums and status from the group sums as they stand; for callers that set
  // line totals themselves after Recalculate (the ideal bid takes each line's lowest total).
  void WriteBidderSums();

  // Sets a line's unit price as typed: the components are cleared, the mark too.
  void SetUnitPrice(int line, double price);
  // The bid check over the priced items.
  TBidCheck AngebotsCheck() const;

  // The LV's estimated prices as the bid's prices (the estimate bidder's): every priced
  // item's EP := SchaetzEP, components and marks cleared; an item without quantity takes
  // its estimated total. Answers how many items have a price.
  int TakeEstimatedPrices();
  // "Pauschalangebot auf Einheitspreise umrechnen": every EP times lump sum / net total;
  // false (nothing changed) without a lump sum or with a net total of 0. The estimate
  // bidder's prices are first taken anew from the LV's estimated prices.
  bool ConvertLumpSum();
  // "Auf-/Abschlag in Einheitspreise einrechnen": a percentage, or else an amount spread
  // over the net total, into every EP and its components; false when both are 0.
  bool ApplyMarkup(double percent, double amount);

  // Writes the lines that changed (new ones get ids), their texts, and the bidder with its
  // sums. EBidError when a record cannot be written.
  void Save();

 protected:
  void CData1C_OnDoSummen(data::TCData&) override { BuildGroupSums(); }
  void CData1C_OnStrukturSchreiben(data::TCData&, bool) override { WriteBidderSums(); }

 private:
  void IndexLines();
  void SaveTexts();
  double SurchargeBase(int line) const;
  void UpdateStatus();
  [[noreturn]] void Fail(const std::string& what, int code) const;

  data::TStdDb& lv_db_;
  data::TStdDb* text_db_;
  boq::TLVPosList lv_;
  const boq::TAvaUiValueConverter& converter_;
  calc::TItemCalculation rounding_;
  TBidSettings settings_;
  t_Bieter_DB_VERSION_3100 bidder_{};
  TAngebotList lines_;
  bool texts_read_ = false;
  std::vector<std::vector<int>> bidder_gaps_;  // per LV line, after ReadTexts
  // The LV does not change under the module: which lines each group sums is worked out
  // once, not for every sum built.
  std::vector<std::vector<int>> children_;  // per group line, its lines
  std::vector<int> outside_groups_;         // lines whose parent is no group
  double angebot_gp_ = 0.0;
  double summe_ = 0.0;
  double total_time_ = 0.0;
};

}  // namespace korvan::award
