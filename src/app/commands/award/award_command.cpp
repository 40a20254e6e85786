// `korvan award`: a bidder's bid checked, its prices written into the LV, the LV marked
// awarded and the contract made, all one step of the journal.
#include "app/commands/award/award_command.h"

#include <memory>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/contract/contract_view.h"
#include "app/commands/lv/lv_operation.h"
#include "app/program/data_dir.h"
#include "award/award/award_run.h"
#include "award/bid/bid_texts.h"
#include "billing/contract/dm_vertrag.h"
#include "billing/tables/billing_table_types.h"
#include "boq/lv/project_lvs.h"

namespace korvan::app {
namespace {

// What the award says of the letters, which need printing.
constexpr const char* kLettersUnavailable =
    "Zuschlags- und Absageschreiben: noch nicht verfügbar (der Druck fehlt), es wurden keine "
    "Briefe erstellt.";

billing::TContractParty PartyOf(const award::t_Bieter_DB_VERSION_3100& bidder) {
  billing::TContractParty party;
  party.bidder = bidder.ID;
  party.address = bidder.IdAdresse;
  party.name = bidder.Bietername.Get();
  party.bid_date = bidder.Rueckgabedatum;
  party.vat_rate = bidder.USt < 0.0F ? -1.0 : double{bidder.USt};
  party.cash_discount = bidder.CashDiscount[0];
  return party;
}

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
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    bid->Recalculate();
    LvProject& project = target.Project();
    boq::TLVPosList list = target.List();
    RefuseFurtherContract(project, list, target.Converter());
    award::TAwardResult result;
    std::optional<billing::TVertrag> contract;
    const billing::TContractSettings& settings = project.ContractSettings();  // before any write
    RunAsOneStep<award::EAwardRefused, award::ETransferRefused, billing::EContractError,
                 award::EBidError, boq::EStoredLvError, CommandError>(
        project.Journal(), data::TOperationKind::okEdit,
        "Vergabe an \"" + bidder.Bietername.Get() + "\" im LV \"" + target.Name() + "\"",
        {"es wurde nichts geändert", "die Änderungen konnten nicht zurückgenommen werden",
         "die Vergabe"},
        streams.err, [&] {
          const std::vector<int32_t> open_lines = DescriptionsUnderNoContract(list);
          result = award::AwardBid(*bid, list, Options());
          if (bidder_texts_) CopyBidderTexts(project, bidder.ID, open_lines);
          if (!no_contract_) {
            billing::TdmVertrag book(project.BillingDb(), project.ContractProjectNumber(true),
                                     target.Converter());
            contract = book.Create(list, PartyOf(bidder), settings);
          }
          project.SaveWithSums(list, streams.err);
        });
    if (json_) {
      std::vector<billing::TDeduction> deductions;
      if (contract) {
        deductions =
            billing::TdmAbzug(project.BillingDb(), billing::kDeductionOfContract, contract->ID)
                .List();
      }
      PrintJson(streams.out, list, bidder, result, contract, deductions, target.Converter());
    } else {
      PrintText(streams.out, list, bidder, result, contract);
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

  // Checked before the step, so that a refused contract leaves the LV's prices alone.
  void RefuseFurtherContract(LvProject& project, const boq::TLVPosList& list,
                             const boq::TAvaUiValueConverter& converter) const {
    if (no_contract_) return;
    const int32_t number = project.ContractProjectNumber(false);
    if (number == data::kNullId) return;
    billing::TdmVertrag book(project.BillingDb(), number, converter);
    if (const std::string why = book.WhyNoContract(list); !why.empty()) {
      throw CommandError(why + " (--no-contract vergibt ohne Vertrag)");
    }
  }

  // The items the transfer may change: those under no contract yet.
  static std::vector<int32_t> DescriptionsUnderNoContract(const boq::TLVPosList& list) {
    std::vector<int32_t> descriptions;
    for (const boq::TLvPos& entry : list.Entries()) {
      if (entry.IsQuantityItem() && entry.LvBgBeschr.IdVertrag == data::kNullId) {
        descriptions.push_back(int32_t{entry.LvBgBeschr.IDBeschr});
      }
    }
    return descriptions;
  }

  void CopyBidderTexts(LvProject& project, int32_t bidder,
                       const std::vector<int32_t>& descriptions) {
    data::TStdDb* text_db = project.TextDb();
    if (text_db == nullptr) {
      throw CommandError("Bietertextergänzungen: das Projekt hat keine Textdatenbank");
    }
    award::TBidTextStore texts(*text_db);
    texts_copied_ = 0;
    for (int32_t description : descriptions) {
      int copied = 0;
      if (int code = texts.CopyIntoLv(bidder, description, &copied); code != 0) {
        throw CommandError("Bietertextergänzungen können nicht ins LV übernommen werden (" +
                           std::to_string(code) + ")");
      }
      texts_copied_ += copied;
    }
  }

  void PrintJson(std::ostream& out, const boq::TLVPosList& list,
                 const award::t_Bieter_DB_VERSION_3100& bidder, const award::TAwardResult& result,
                 const std::optional<billing::TVertrag>& contract,
                 const std::vector<billing::TDeduction>& deductions,
                 const boq::TAvaUiValueConverter& converter) const {
    out << "{\"lv\": " << list.FLv().FId << ", \"name\": " << JsonString(list.FLv().Name.Get())
        << ", \"bidder\": {\"id\": " << bidder.ID
        << ", \"number\": " << static_cast<int>(bidder.BieterNrIntern)
        << ", \"name\": " << JsonString(bidder.Bietername.Get()) << "}"
        << ", \"prices\": " << JsonString(prices_)
        << ", \"spread\": " << (spread_ ? "true" : "false")
        << ", \"check\": " << CheckJson(result.check)
        << ", \"transferred\": " << TransferJson(result)
        << ", \"bidder_texts\": " << (bidder_texts_ ? std::to_string(texts_copied_) : "null")
        << ", \"items_without_award_price\": " << result.items_without_award_price
        << ", \"status\": " << JsonString(std::string(1, list.FLv().Status))
        << ", \"award_total\": " << JsonNumber(double{list.FLv().VergabeSum.Betrag})
        << ", \"contract\": "
        << (contract
                ? ContractJson({*contract, list.FLv().Name.Get(), {}, {}, deductions}, converter)
                : std::string("null"))
        << ", \"letters\": " << JsonString(kLettersUnavailable) << "}\n";
  }

  void PrintText(std::ostream& out, const boq::TLVPosList& list,
                 const award::t_Bieter_DB_VERSION_3100& bidder, const award::TAwardResult& result,
                 const std::optional<billing::TVertrag>& contract) const {
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
      out << "  Bietertextergänzungen ins LV übernommen: " << texts_copied_ << '\n';
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
  int texts_copied_ = 0;
  bool json_ = false;
};

}  // namespace

void AddAwardCommands(CommandList& commands) {
  commands.push_back(std::make_unique<AwardCommand>());
}

}  // namespace korvan::app
