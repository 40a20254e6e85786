#include "app/commands/bid/bid_lv.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "award/bid/bidder_sums.h"
#include "award/bid/estimate_bidder.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"

namespace korvan::app {

void AddBidderArgument(CLI::App& app, std::string& bidder) {
  app.add_option("bidder", bidder, "der Bieter: Bieter-Nr., Nummer oder Name")->required();
}

void AddDisplayCurrencyOption(CLI::App& app, std::string& symbol) {
  app.add_option("--currency", symbol,
                 "die Summen der Bieter in dieser Währung der Währungstabelle zeigen (z. B. CHF)");
}

BidLv::BidLv(const std::string& data_dir, const std::string& project, const std::string& lv,
             bool journal, award::TBidSettings settings)
    : project_(data_dir, project),
      db_(project_.Db(journal)),
      list_(project_.LoadLv(lv)),
      name_(list_.FLv().Name.Get()),
      converter_(project_.Converter(list_.FLv())),
      bidders_(std::make_unique<award::TdmBieter>(db_, project_.TextDb(), list_, converter_,
                                                  settings)) {}

calc::TItemCalculation BidLv::Rounding() const {
  return calc::TItemCalculation(converter_, list_.FLv().EPGenauigkeit);
}

std::vector<award::t_Bieter_DB_VERSION_3100> BidLv::CurrentBidders() {
  std::vector<award::t_Bieter_DB_VERSION_3100> bidders;
  for (const award::t_Bieter_DB_VERSION_3100& bidder : bidders_->Bidders()) {
    std::unique_ptr<award::TdmAngebot> bid = bidders_->OpenBid(bidder);
    bid->Recalculate();
    bidders.push_back(bid->Bidder());
  }
  return bidders;
}

BidDisplay BidLv::Display(const std::string& symbol) {
  BidDisplay display;
  if (symbol.empty()) return display;
  const boq::TCurrency* currency = project_.Currencies().FindSymbol(symbol);
  if (currency == nullptr) {
    throw UsageError("--currency " + symbol +
                     ": keine Währung der Währungstabelle (\"korvan list waehrung\" zeigt sie).");
  }
  if (project_.Currencies().Find(project_.Currency()) == nullptr) {
    throw CommandError("LV \"" + name_ + "\": seine Währung " +
                       std::to_string(project_.Currency()) +
                       " steht nicht in der Währungstabelle; --currency kann nicht umrechnen.");
  }
  display.symbol = currency->symbol;
  display.currency = currency->id;
  boq::TValueConverterSettings settings = converter_.Settings();
  settings.project_currency = project_.Currency();
  display.converter.emplace(project_.Currencies(), settings);
  return display;
}

award::t_Bieter_DB_VERSION_3100 BidLv::Bidder(const std::string& number_or_name) {
  const std::optional<award::t_Bieter_DB_VERSION_3100> bidder =
      bidders_->FindBidder(number_or_name);
  if (!bidder) {
    throw CommandError("LV \"" + name_ + "\": es gibt keinen Bieter \"" + number_or_name +
                       "\" (Bieter-Nr., Nummer oder Name; \"korvan bidder list\" zeigt sie).");
  }
  return *bidder;
}

int BidLv::IndexOf(const std::string& oz) const {
  const int index = boq::FindEntryByOz(list_, oz);
  if (index < 0) {
    throw CommandError("LV \"" + name_ + "\": es gibt keinen Eintrag mit der OZ \"" + oz + "\".");
  }
  return index;
}

int BidLv::ItemIndexOf(const std::string& oz) const {
  const int found = IndexOf(oz);
  const std::string stored(list_[found].Oz());
  for (int i = 0; i < list_.Count(); ++i) {
    if ((list_[i].Kind() == 'P' || list_[i].Kind() == 'L') && list_[i].Oz() == stored) return i;
  }
  return found;
}

void BidLv::Change(const std::string& caption, std::ostream& warnings,
                   const std::function<void()>& change) {
  RunAsOneStep<award::EBidError, boq::EStoredLvError, CommandError>(
      project_.Journal(), data::TOperationKind::okEdit, caption + " in LV \"" + name_ + "\"",
      {"es wurde nichts geändert", "die Änderung konnte nicht zurückgenommen werden",
       "die Änderung"},
      warnings, change);
}

std::string BidderJson(const award::t_Bieter_DB_VERSION_3100& bidder,
                       const calc::TItemCalculation& rounding, int rank,
                       const BidDisplay& display) {
  award::t_Bieter_DB_VERSION_3100 copy = bidder;
  const award::TBidderTotals totals = display.Shown(award::ComputeBidderSums(copy, rounding));
  const float discount = bidder.NachlassProz;
  const std::string status = award::BidderStatusText(bidder.Status);
  return "{\"number\": " + std::to_string(bidder.BieterNrIntern) +
         ", \"id\": " + std::to_string(bidder.ID) +
         ", \"name\": " + JsonString(bidder.Bietername.Get()) +
         ", \"checked\": " + JsonNumber(totals.checked) +
         ", \"discount_percent\": " + JsonNumber(discount) +
         ", \"discount_amount\": " + JsonNumber(double{bidder.NachlassAbs.Betrag}) +
         ", \"after_discount\": " + JsonNumber(totals.after_discount) +
         ", \"lump_sum\": " + JsonNumber(totals.lump_sum) + ", \"net\": " + JsonNumber(totals.net) +
         ", \"vat_rate\": " +
         (bidder.USt < 0.0F ? std::string("null") : JsonNumber(totals.vat_rate)) +
         ", \"vat\": " + JsonNumber(totals.vat) + ", \"gross\": " + JsonNumber(totals.gross) +
         ", \"cash_discount_percent\": " + JsonNumber(totals.cash_discount_pcnt) +
         ", \"gross_after_cash_discount\": " + JsonNumber(totals.gross_after_cash_discount) +
         ", \"status\": " + (status.empty() ? std::string("null") : JsonString(status)) +
         ", \"rank\": " + (rank == 0 ? std::string("null") : std::to_string(rank)) +
         ", \"estimate\": " + (award::IsEstimateBidder(bidder) ? "true" : "false") +
         ", \"display_currency\": " +
         (display.symbol.empty() ? std::string("null") : JsonString(display.symbol)) + "}";
}

}  // namespace korvan::app
