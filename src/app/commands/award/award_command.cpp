// `korvan award`: a bidder's bid checked, its prices written into the LV, the LV marked
// awarded and the contract made, all one step of the journal.
#include "app/commands/award/award_command.h"

#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/award/award_action.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/contract/contract_view.h"
#include "app/commands/lv/lv_operation.h"
#include "app/program/data_dir.h"
#include "award/award/award_run.h"
#include "billing/contract/dm_vertrag.h"
#include "billing/tables/billing_table_types.h"

namespace korvan::app {
namespace {

// Whether the bid grants a discount, a lump sum or a cash discount on the whole.
bool GrantsSomething(const award::t_Bieter_DB_VERSION_3100& bidder) {
  return bidder.NachlassProz != 0.0F || bidder.NachlassAbs.Betrag != 0.0 ||
         bidder.SummePsch.Betrag != 0.0 || bidder.CashDiscount[0].DiscountPcnt != 0.0;
}

std::string CheckJson(const award::TBidCheck& check) {
  return "{\"findings\": " + std::string(check.Found() ? "true" : "false") +
         ", \"without_price\": " + std::to_string(check.without_price.size()) +
         ", \"without_quantity\": " + std::to_string(check.without_quantity.size()) +
         ", \"other_quantity\": " + std::to_string(check.other_quantity.size()) +
         ", \"components_differ\": " + std::to_string(check.components_differ.size()) +
         ", \"total_differs\": " + std::to_string(check.total_differs.size()) + "}";
}

std::string TransferJson(const award::TAwardResult& result) {
  if (!result.prices_transferred) return "null";
  const award::TTransferResult& t = result.transfer;
  return "{\"items\": " + std::to_string(t.items) + ", \"groups\": " + std::to_string(t.groups) +
         ", \"quantities\": " + std::to_string(t.quantities) +
         ", \"quantities_refused\": " + std::to_string(t.quantities_refused) +
         ", \"spread_factor\": " + JsonNumber(t.factor) +
         ", \"whole_bid_values\": " + (t.whole_bid_values ? "true" : "false") +
         ", \"scaled_by_item_discount\": " + std::to_string(t.scaled_by_item_discount) +
         ", \"scaled_groups\": " + std::to_string(t.scaled_groups) + "}";
}

class AwardCommand : public Command {
 public:
  std::string Name() const override { return "award"; }
  std::string Summary() const override {
    return "Vergabe durchführen: Angebot eines Bieters prüfen, Preise ins LV übertragen, LV "
           "vergeben, Vertrag anlegen";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("bidder", bidder_, "der Bieter: Bieter-Nr., Nummer oder Name")->required();
    app.add_option("--prices", prices_,
                   "Preise übertragen in award (Vergabepreise, Vorgabe) oder estimate "
                   "(Schätzpreise)")
        ->check(CLI::IsMember({"award", "estimate"}));
    app.add_flag("--spread", spread_, "Nachlässe und Pauschalierungen auf Einheitspreise umlegen");
    app.add_option("--quantities", quantities_,
                   "geänderte Mengen aus Angebot übernehmen: bid (ja) oder lv (nein); Vorgabe: "
                   "ja, wenn eine Angebotsmenge von der LV-Menge abweicht")
        ->check(CLI::IsMember({"bid", "lv"}));
    app.add_flag("--accept-findings", accept_,
                 "trotz Befund des Angebotschecks vergeben (Antwort Ja auf die Frage)");
    app.add_flag("--bidder-texts", bidder_texts_,
                 "Bietertextergänzungen übernehmen: die Texte des Bieters in den Lücken der "
                 "Langtexte werden Text des LV");
    app.add_flag("--no-contract", no_contract_, "keinen Vertrag anlegen");
    app.add_option("--project", project_,
                   "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
    app.add_flag("--json", json_, "Ausgabe als JSON für Skripte");
    AddDataDirOption(app, data_dir_);
  }
  int Run(Streams& streams) override {
    BidLv target(data_dir_, project_, lv_, true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    if (!no_contract_) {
      if (const std::string why = WhyNoFurtherContract(target); !why.empty()) {
        throw CommandError(why + " (--no-contract vergibt ohne Vertrag)");
      }
    }
    AwardRequest request;
    request.options = Options();
    request.bidder_texts = bidder_texts_;
    request.contract = !no_contract_;
    const AwardOutcome outcome = AwardToBidder(target, bidder, request, streams.err);
    if (json_) {
      std::vector<billing::TDeduction> deductions;
      if (outcome.contract) {
        deductions = billing::TdmAbzug(target.Project().BillingDb(), billing::kDeductionOfContract,
                                       outcome.contract->ID)
                         .List();
      }
      PrintJson(streams.out, bidder, outcome, deductions, target.Converter());
    } else {
      PrintText(streams.out, bidder, outcome);
    }
    return kExitOk;
  }

 private:
  award::TAwardOptions Options() const {
    award::TAwardOptions options;
    options.transfer.target =
        prices_ == "estimate" ? award::TBidPriceTarget::kEstimate : award::TBidPriceTarget::kAward;
    options.transfer.spread = spread_;
    if (!quantities_.empty()) options.transfer.bid_quantities = quantities_ == "bid";
    options.accept_check_findings = accept_;
    return options;
  }

  void PrintJson(std::ostream& out, const award::t_Bieter_DB_VERSION_3100& bidder,
                 const AwardOutcome& outcome, const std::vector<billing::TDeduction>& deductions,
                 const boq::TAvaUiValueConverter& converter) const {
    const boq::TLVPosList& list = outcome.lv;
    const award::TAwardResult& result = outcome.result;
    const std::optional<billing::TVertrag>& contract = outcome.contract;
    out << "{\"lv\": " << list.FLv().FId << ", \"name\": " << JsonString(list.FLv().Name.Get())
        << ", \"bidder\": {\"id\": " << bidder.ID
        << ", \"number\": " << static_cast<int>(bidder.BieterNrIntern)
        << ", \"name\": " << JsonString(bidder.Bietername.Get()) << "}"
        << ", \"prices\": " << JsonString(prices_)
        << ", \"spread\": " << (spread_ ? "true" : "false")
        << ", \"check\": " << CheckJson(result.check)
        << ", \"transferred\": " << TransferJson(result)
        << ", \"bidder_texts\": " << (bidder_texts_ ? std::to_string(outcome.texts_copied) : "null")
        << ", \"items_without_award_price\": " << result.items_without_award_price
        << ", \"status\": " << JsonString(std::string(1, list.FLv().Status))
        << ", \"award_total\": " << JsonNumber(double{list.FLv().VergabeSum.Betrag})
        << ", \"contract\": "
        << (contract
                ? ContractJson({*contract, list.FLv().Name.Get(), {}, {}, deductions}, converter)
                : std::string("null"))
        << ", \"letters\": " << JsonString(kLettersUnavailable) << "}\n";
  }

  void PrintText(std::ostream& out, const award::t_Bieter_DB_VERSION_3100& bidder,
                 const AwardOutcome& outcome) const {
    const boq::TLVPosList& list = outcome.lv;
    const award::TAwardResult& result = outcome.result;
    const std::optional<billing::TVertrag>& contract = outcome.contract;
    out << "Vergabe an \"" << bidder.Bietername.Get() << "\" im LV \"" << list.FLv().Name.Get()
        << "\":\n";
    out << "  Angebotscheck: "
        << (result.check.Found() ? "mit Befund, Vergabe bestätigt" : "ohne Befund") << '\n';
    if (result.prices_transferred) {
      const award::TTransferResult& t = result.transfer;
      out << "  Bieterpreise als " << (prices_ == "estimate" ? "Schätzpreise" : "Vergabepreise")
          << " übertragen: " << t.items << " Positionen";
      if (t.groups > 0) out << ", " << t.groups << " Gruppen mit Nachlass oder Pauschale";
      if (spread_) out << ", Nachlässe umgelegt (Faktor " << GermanFigure(t.factor, "%.6g") << ")";
      if (t.whole_bid_values && GrantsSomething(bidder)) {
        out << ", Nachlass, Pauschale und Skonto des Angebots ins LV";
      }
      out << '\n';
      if (t.quantities > 0) out << "  " << t.quantities << " Mengen aus dem Angebot übernommen\n";
      if (t.quantities_refused > 0) {
        out << "  " << t.quantities_refused
            << " Positionen konnten die neue Menge nicht übernehmen (Menge aus Teilmengen)\n";
      }
    }
    if (bidder_texts_) {
      out << "  Bietertextergänzungen ins LV übernommen: " << outcome.texts_copied << '\n';
    }
    if (result.items_without_award_price > 0) {
      out << "  Vergabecheck: " << result.items_without_award_price
          << " Positionen ohne Vergabepreis\n";
    }
    out << "  LV-Status " << list.FLv().Status << ", Vergabesumme "
        << GermanFigure(list.FLv().VergabeSum.Betrag, "%.2f") << '\n';
    if (contract) {
      out << "  Vertrag \"" << contract->AuftragsNr.Get() << "\" ("
          << billing::ContractKindText(contract->Auftragsart) << ") angelegt, Auftragssumme "
          << GermanFigure(contract->Auftragssumme.Betrag, "%.2f") << ", brutto "
          << GermanFigure(contract->SummeBrutto.Betrag, "%.2f") << '\n';
    }
    out << "  " << kLettersUnavailable << '\n';
  }

  std::string data_dir_;
  std::string project_;
  std::string lv_;
  std::string bidder_;
  std::string prices_ = "award";
  std::string quantities_;
  bool spread_ = false;
  bool accept_ = false;
  bool no_contract_ = false;
  bool bidder_texts_ = false;
  bool json_ = false;
};

}  // namespace

void AddAwardCommands(CommandList& commands) {
  commands.push_back(std::make_unique<AwardCommand>());
}

}  // namespace korvan::app
