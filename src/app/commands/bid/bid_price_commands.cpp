// `korvan bid discount|lumpsum|convert|copy`: what a bidder grants on its whole bid, how
// that is worked into its unit prices, and its prices taken into the LV; each change one
// step of the journal.
#include "app/commands/bid/bid_price_commands.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/bid/bid_lv.h"
#include "award/award/bid_price_transfer.h"
#include "award/bid/bidder_sums.h"

namespace korvan::app {
namespace {

// "percent=P" or "amount=A" as the discount and mark-up commands take them.
struct PercentOrAmount {
  double percent = 0.0;
  double amount = 0.0;
};

PercentOrAmount ParsePercentOrAmount(const std::string& text) {
  PercentOrAmount value;
  if (text.rfind("percent=", 0) == 0) {
    value.percent = RequireGermanNumber(text.substr(8), "percent");
  } else if (text.rfind("amount=", 0) == 0) {
    value.amount = RequireGermanNumber(text.substr(7), "amount");
  } else {
    throw UsageError("\"" + text +
                     "\": erwartet percent=PROZENT oder amount=BETRAG, z. B. percent=3,5.");
  }
  return value;
}

// The bidder's sums after a change, as text or JSON.
void PrintBidder(std::ostream& out, bool json, BidLv& target, award::TdmAngebot& bid,
                 const std::string& done) {
  const calc::TItemCalculation rounding(target.Converter(), target.List().FLv().EPGenauigkeit);
  if (json) {
    out << BidderJson(bid.Bidder(), rounding, 0) << '\n';
    return;
  }
  award::t_Bieter_DB_VERSION_3100 sums = bid.Bidder();
  const award::TBidderTotals totals = award::ComputeBidderSums(sums, rounding);
  out << done << "; \"" << sums.Bietername.Get() << "\": Geprüft "
      << GermanFigure(totals.checked, "%.2f") << ", Summe ./. NL "
      << GermanFigure(totals.after_discount, "%.2f") << ", Netto "
      << GermanFigure(totals.net, "%.2f") << ", Brutto " << GermanFigure(totals.gross, "%.2f")
      << '\n';
}

// A command on one bidder's bid: `lv` and `bidder` as its first arguments.
class BidderOperation : public LvOperation {
 public:
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddBidderArgument(app, bidder_);
    DefineMore(app);
  }

 protected:
  virtual void DefineMore(CLI::App& app) = 0;

  // Opens the bid, lets `edit` change it in memory, and stores it as one step.
  int ChangeBid(Streams& streams, const std::string& caption,
                const std::function<std::string(award::TdmAngebot&)>& edit) {
    BidLv target(data_dir, project, lv_, true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    bid->Recalculate();
    const std::string done = edit(*bid);
    target.Change(caption + " von \"" + bidder.Bietername.Get() + "\"", streams.err, [&] {
      bid->Recalculate();
      bid->Save();
    });
    PrintBidder(streams.out, json, target, *bid, done);
    return kExitOk;
  }

  std::string lv_;
  std::string bidder_;
};

class BidDiscountCommand : public BidderOperation {
 public:
  std::string Name() const override { return "discount"; }
  std::string Summary() const override {
    return "den Nachlass eines Bieters setzen: percent=P oder amount=A (0 entfernt ihn)";
  }
  void DefineMore(CLI::App& app) override {
    app.add_option("value", value_,
                   "percent=PROZENT oder amount=BETRAG; der eine ersetzt den anderen")
        ->required();
  }
  int Run(Streams& streams) override {
    const PercentOrAmount discount = ParsePercentOrAmount(value_);
    if (discount.percent < 0.0 || discount.percent > 100.0) {
      throw UsageError("Nachlass " + GermanFigure(discount.percent, "%.2f") +
                       " %: erwartet 0 bis 100.");
    }
    return ChangeBid(streams, "Nachlass", [&](award::TdmAngebot& bid) {
      bid.Bidder().NachlassProz = static_cast<float>(discount.percent);
      bid.Bidder().NachlassAbs.Betrag = discount.amount;
      return std::string("Nachlass gesetzt");
    });
  }

 private:
  std::string value_;
};

class BidLumpSumCommand : public BidderOperation {
 public:
  std::string Name() const override { return "lumpsum"; }
  std::string Summary() const override {
    return "die Pauschalsumme eines Bieters setzen (0 entfernt sie)";
  }
  void DefineMore(CLI::App& app) override {
    app.add_option("amount", amount_, "die Pauschalsumme netto, z. B. 9500,00")->required();
  }
  int Run(Streams& streams) override {
    const double amount = RequireGermanNumber(amount_, "Pauschalsumme");
    if (amount < 0.0) throw UsageError("Die Pauschalsumme darf nicht negativ sein.");
    return ChangeBid(streams, "Pauschalsumme", [&](award::TdmAngebot& bid) {
      bid.Bidder().SummePsch.Betrag = amount;
      return std::string(amount == 0.0 ? "Pauschalsumme entfernt" : "Pauschalsumme gesetzt");
    });
  }

 private:
  std::string amount_;
};

class BidConvertCommand : public BidderOperation {
 public:
  std::string Name() const override { return "convert"; }
  std::string Summary() const override {
    return "Pauschale (lumpsum) oder Auf-/Abschlag (markup percent=P|amount=A) in "
           "Einheitspreise einrechnen";
  }
  void DefineMore(CLI::App& app) override {
    app.add_option("what", what_, "lumpsum oder markup")
        ->required()
        ->check(CLI::IsMember({"lumpsum", "markup"}));
    app.add_option("value", value_, "bei markup: percent=PROZENT oder amount=BETRAG");
  }
  int Run(Streams& streams) override {
    if (what_ == "lumpsum") {
      if (!value_.empty()) throw UsageError("lumpsum nimmt keinen Wert: \"" + value_ + "\".");
      return ChangeBid(streams, "Pauschalangebot auf Einheitspreise umrechnen",
                       [](award::TdmAngebot& bid) {
                         if (bid.Bidder().SummePsch.Betrag == 0.0) {
                           throw CommandError(
                               "Der Bieter hat keine Pauschalsumme "
                               "(\"korvan bid lumpsum\" setzt sie).");
                         }
                         if (!bid.ConvertLumpSum()) {
                           throw CommandError(
                               "Die Nettosumme des Angebots ist 0: es gibt "
                               "keine Preise, auf die die Pauschale verteilt "
                               "werden kann.");
                         }
                         return std::string("Pauschale in Einheitspreise eingerechnet");
                       });
    }
    if (value_.empty()) throw UsageError("markup braucht percent=PROZENT oder amount=BETRAG.");
    const PercentOrAmount markup = ParsePercentOrAmount(value_);
    if (markup.percent <= -100.0) throw UsageError("Ein Abschlag von 100 % oder mehr geht nicht.");
    return ChangeBid(streams, "Auf-/Abschlag in Einheitspreise einrechnen",
                     [&](award::TdmAngebot& bid) {
                       if (!bid.ApplyMarkup(markup.percent, markup.amount)) {
                         throw CommandError("Auf-/Abschlag 0: es wurde nichts geändert.");
                       }
                       return std::string("Auf-/Abschlag in Einheitspreise eingerechnet");
                     });
  }

 private:
  std::string what_;
  std::string value_;
};

class BidCopyCommand : public BidderOperation {
 public:
  std::string Name() const override { return "copy"; }
  std::string Summary() const override {
    return "Bieterpreise in LV übernehmen: als Vergabe- und Abrechnungspreise (award) oder "
           "Schätzpreise (estimate)";
  }
  void DefineMore(CLI::App& app) override {
    app.add_option("--to", to_, "award (Vorgabe), estimate oder catalog")
        ->check(CLI::IsMember({"award", "estimate", "catalog"}));
  }
  int Run(Streams& streams) override {
    if (to_ == "catalog") {
      throw CommandError(
          "Bieterpreise in Katalog übertragen: noch nicht verfügbar (es gibt noch keine "
          "Kataloge); es wurde nichts geändert");
    }
    BidLv target(data_dir, project, lv_, true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    bid->Recalculate();
    const award::TBidPriceTarget to =
        to_ == "estimate" ? award::TBidPriceTarget::kEstimate : award::TBidPriceTarget::kAward;
    boq::TLVPosList list = target.List();
    int changed = 0;
    target.Change("Bieterpreise von \"" + bidder.Bietername.Get() + "\" übernehmen", streams.err,
                  [&] {
                    award::TTransferOptions options;
                    options.target = to;
                    try {
                      changed = award::TransferBidPrices(*bid, list, options).items;
                    } catch (const award::ETransferRefused& refused) {
                      throw CommandError(refused.what());
                    }
                    target.Project().SaveWithSums(list, streams.err);
                  });
    if (json) {
      streams.out << "{\"lv\": " << list.FLv().FId
                  << ", \"bidder\": " << JsonString(bidder.Bietername.Get())
                  << ", \"to\": " << JsonString(to_) << ", \"changed\": " << changed << "}\n";
      return kExitOk;
    }
    streams.out << changed << " Positionen mit den Preisen von \"" << bidder.Bietername.Get()
                << "\" als "
                << (to == award::TBidPriceTarget::kEstimate ? "Schätzpreise" : "Vergabepreise")
                << " in LV \"" << target.Name() << "\" übernommen\n";
    return kExitOk;
  }

 private:
  std::string to_ = "award";
};

}  // namespace

std::unique_ptr<LvOperation> MakeBidDiscountCommand() {
  return std::make_unique<BidDiscountCommand>();
}
std::unique_ptr<LvOperation> MakeBidLumpSumCommand() {
  return std::make_unique<BidLumpSumCommand>();
}
std::unique_ptr<LvOperation> MakeBidConvertCommand() {
  return std::make_unique<BidConvertCommand>();
}
std::unique_ptr<LvOperation> MakeBidCopyCommand() {
  return std::make_unique<BidCopyCommand>();
}

}  // namespace korvan::app
