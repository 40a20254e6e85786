// `korvan bidder add|list` and `korvan bid set|check|show`: the bidders of an LV and their
// prices, each change one step of the journal.
#include "app/commands/bid/bid_commands.h"

#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/bid/bid_import_command.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/bid/bid_price_commands.h"
#include "app/commands/lv/lv_operation.h"
#include "award/bid/bidder_sums.h"
#include "award/bid/estimate_bidder.h"
#include "data/common/cp1252.h"

namespace korvan::app {
namespace {

constexpr std::size_t kNameCapacity = 40;

class BidderAddCommand : public LvOperation {
 public:
  std::string Name() const override { return "add"; }
  std::string Summary() const override { return "einen Bieter zum LV anlegen"; }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("name", name_, "der Name des Bieters (höchstens 40 Zeichen)");
    app.add_option("--address", address_, "die Anschrift des Bieters");
    app.add_flag("--estimate", estimate_,
                 "den Schätzbieter mit den Schätzpreisen des LV anlegen oder auffrischen");
  }
  int Run(Streams& streams) override {
    if (estimate_) return RunEstimate(streams);
    if (name_.empty()) throw UsageError("Der Name des Bieters fehlt (oder --estimate).");
    if (name_ == award::kEstimateBidderName) {
      throw UsageError(
          "Der Name \"" + name_ +
          "\" gehört dem Schätzbieter; \"korvan bidder add LV --estimate\" legt ihn an.");
    }
    data::Cp1252Report report;
    const std::string stored = data::Utf8ToCp1252(name_, &report);
    if (stored.empty() || stored.size() > kNameCapacity || !report.Exact()) {
      throw UsageError("Der Bietername \"" + name_ +
                       "\" passt nicht (1 bis 40 Zeichen in Windows-1252).");
    }
    BidLv target(data_dir, project, lv_, true);
    award::t_Bieter_DB_VERSION_3100 bidder{};
    target.Change("Bieter \"" + name_ + "\" anlegen", streams.err,
                  [&] { bidder = target.Bidders().AddBidder(name_, address_); });
    if (json) {
      streams.out << BidderJson(bidder, target.Rounding(), 0) << '\n';
      return kExitOk;
    }
    streams.out << "Bieter " << static_cast<int>(bidder.BieterNrIntern) << " \"" << name_
                << "\" zum LV \"" << target.Name() << "\" angelegt\n";
    return kExitOk;
  }

 private:
  int RunEstimate(Streams& streams) {
    if (!name_.empty() || !address_.empty()) {
      throw UsageError("--estimate: der Schätzbieter heißt \"" +
                       std::string(award::kEstimateBidderName) +
                       "\" und hat keine Anschrift; Name und --address entfallen.");
    }
    BidLv target(data_dir, project, lv_, true);
    award::t_Bieter_DB_VERSION_3100 bidder{};
    bool created = false;
    target.Change("Schätzbieter", streams.err,
                  [&] { bidder = target.Bidders().EstimateBidder(&created); });
    if (json) {
      streams.out << BidderJson(bidder, target.Rounding(), 0) << '\n';
      return kExitOk;
    }
    streams.out << "Schätzbieter " << static_cast<int>(bidder.BieterNrIntern) << " \""
                << bidder.Bietername.Get() << "\" im LV \"" << target.Name() << "\" "
                << (created ? "angelegt" : "mit den Schätzpreisen aufgefrischt") << "; Geprüft "
                << GermanMoney(bidder.Summe.Betrag) << '\n';
    return kExitOk;
  }

  std::string lv_;
  std::string name_;
  std::string address_;
  bool estimate_ = false;
};

// The options of the commands that show bids: the display currency and whether
// contingency items count (they do not in what is stored).
void AddShowOptions(CLI::App& app, std::string& currency, bool& contingency) {
  AddDisplayCurrencyOption(app, currency);
  app.add_flag("--with-contingency", contingency,
               "Bedarfspositionen ohne Gesamtpreis in die Summen einrechnen (nur angezeigt)");
}

// What the header line says about how the sums are shown.
std::string ShowNote(const BidDisplay& display, bool contingency) {
  std::string note;
  if (!display.symbol.empty()) note += ", Summen in " + display.symbol;
  if (contingency) note += ", mit Bedarfspositionen";
  return note;
}

class BidderListCommand : public LvOperation {
 public:
  std::string Name() const override { return "list"; }
  std::string Summary() const override {
    return "die Bieter des LV mit Summen, Nachlass, Brutto und Rang";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddShowOptions(app, currency_, contingency_);
  }
  int Run(Streams& streams) override {
    BidLv target(data_dir, project, lv_, false, {contingency_});
    const BidDisplay display = target.Display(currency_);
    const std::vector<award::t_Bieter_DB_VERSION_3100> bidders = target.CurrentBidders();
    const std::vector<int> ranks = award::RankByTotal(bidders);
    const calc::TItemCalculation rounding = target.Rounding();
    if (json) {
      streams.out << "{\"lv\": " << target.List().FLv().FId
                  << ", \"name\": " << JsonString(target.Name()) << ", \"bidders\": [";
      for (std::size_t i = 0; i < bidders.size(); ++i) {
        streams.out << (i == 0 ? "" : ", ") << BidderJson(bidders[i], rounding, ranks[i], display);
      }
      streams.out << "]}\n";
      return kExitOk;
    }
    streams.out << "LV \"" << target.Name() << "\": " << bidders.size() << " Bieter"
                << ShowNote(display, contingency_) << '\n';
    for (std::size_t i = 0; i < bidders.size(); ++i) {
      award::t_Bieter_DB_VERSION_3100 bidder = bidders[i];
      const award::TBidderTotals totals = display.Shown(award::ComputeBidderSums(bidder, rounding));
      const std::string status = award::BidderStatusText(bidder.Status);
      streams.out << "  " << static_cast<int>(bidder.BieterNrIntern) << "  "
                  << bidder.Bietername.Get() << "  Geprüft " << GermanMoney(totals.checked)
                  << "  Summe ./. NL " << GermanMoney(totals.after_discount) << "  Netto "
                  << GermanMoney(totals.net) << "  Brutto " << GermanMoney(totals.gross)
                  << "  Rang " << (ranks[i] == 0 ? std::string("-") : std::to_string(ranks[i]))
                  << (status.empty() ? "" : "  " + status) << '\n';
    }
    return kExitOk;
  }

 private:
  std::string lv_;
  std::string currency_;
  bool contingency_ = false;
};

class BidderCommand : public LvOperationGroup {
 public:
  BidderCommand() {
    operations_.push_back(std::make_unique<BidderAddCommand>());
    operations_.push_back(std::make_unique<BidderListCommand>());
  }
  std::string Name() const override { return "bidder"; }
  std::string Summary() const override { return "Bieter eines LV: anlegen, auflisten"; }
};

class BidSetCommand : public LvOperation {
 public:
  std::string Name() const override { return "set"; }
  std::string Summary() const override {
    return "den Einheitspreis eines Bieters setzen: up=PREIS";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddBidderArgument(app, bidder_);
    app.add_option("oz", oz_, "die Position (OZ)")->required();
    app.add_option("value", value_, "up=PREIS, z. B. up=12,50")->required();
  }
  int Run(Streams& streams) override {
    if (value_.rfind("up=", 0) != 0) {
      throw UsageError("\"" + value_ + "\": erwartet up=PREIS, z. B. up=12,50.");
    }
    const double price = RequireGermanNumber(value_.substr(3), "up");
    BidLv target(data_dir, project, lv_, true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    const int index = target.ItemIndexOf(oz_);
    const boq::TLvPos& entry = target.List()[index];
    if (!entry.IsQuantityItem() || entry.Kind() == 'U') {
      throw CommandError("LV \"" + target.Name() + "\": \"" + oz_ +
                         "\" ist keine Position mit Preis.");
    }
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    target.Change("Angebotspreis " + oz_ + " von \"" + bidder.Bietername.Get() + "\" setzen",
                  streams.err, [&] {
                    bid->SetUnitPrice(index, price);
                    bid->Recalculate();
                    bid->Save();
                  });
    const award::t_Angebot_DB_VERSION_201501& line =
        bid->FAList()[static_cast<std::size_t>(index)].Angebot;
    if (json) {
      streams.out << "{\"oz\": " << JsonString(oz_)
                  << ", \"up\": " << JsonNumber(double{line.EP.Betrag})
                  << ", \"it\": " << JsonNumber(double{line.GP.Betrag})
                  << ", \"bidder\": " << BidderJson(bid->Bidder(), target.Rounding(), 0) << "}\n";
      return kExitOk;
    }
    streams.out << "Position " << oz_ << ": EP " << GermanMoney(line.EP.Betrag) << ", GP "
                << GermanMoney(line.GP.Betrag) << "; geprüfte Summe des Bieters "
                << GermanMoney(bid->Bidder().Summe.Betrag) << '\n';
    return kExitOk;
  }

 private:
  std::string lv_;
  std::string bidder_;
  std::string oz_;
  std::string value_;
};

std::string OzList(const BidLv& target, const std::vector<int>& lines) {
  std::string list = "[";
  for (std::size_t i = 0; i < lines.size(); ++i) {
    list += (i == 0 ? "" : ", ") + JsonString(target.List()[lines[i]].LvBgBeschr.OZ.Get());
  }
  return list + "]";
}

class BidCheckCommand : public LvOperation {
 public:
  std::string Name() const override { return "check"; }
  std::string Summary() const override {
    return "Angebotscheck: Positionen ohne Preis, ohne Menge, mit abweichender Menge, Rechenfehler";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddBidderArgument(app, bidder_);
  }
  int Run(Streams& streams) override {
    BidLv target(data_dir, project, lv_, false);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    bid->Recalculate();
    bid->ReadTexts();
    const award::TBidCheck check = bid->AngebotsCheck();
    const bool texts = check.bidder_texts_checked;
    const std::pair<const char*, const std::vector<int>*> counts[] = {
        {"Positionen ohne Angebotspreis", &check.without_price},
        {"Positionen ohne Menge", &check.without_quantity},
        {"Positionen mit vom LV abweichender Menge", &check.other_quantity},
        {"Positionen mit fehlenden Bieterrextergänzungen", &check.without_bidder_texts},
        {"Positionen mit EP-Anteilen ungleich EP", &check.components_differ},
        {"Positionen mit Menge * EP ungleich GP", &check.total_differs},
    };
    if (json) {
      streams.out << "{\"lv\": " << target.List().FLv().FId
                  << ", \"bidder\": " << JsonString(bidder.Bietername.Get())
                  << ", \"without_price\": " << OzList(target, check.without_price)
                  << ", \"without_quantity\": " << OzList(target, check.without_quantity)
                  << ", \"other_quantity\": " << OzList(target, check.other_quantity)
                  << ", \"components_differ\": " << OzList(target, check.components_differ)
                  << ", \"total_differs\": " << OzList(target, check.total_differs)
                  << ", \"without_bidder_texts\": " << OzList(target, check.without_bidder_texts)
                  << ", \"bidder_texts_checked\": " << (texts ? "true" : "false")
                  << ", \"found\": " << (check.Found() ? "true" : "false") << "}\n";
      return kExitOk;
    }
    streams.out << "Angebots-Check \"" << bidder.Bietername.Get() << "\", LV \"" << target.Name()
                << "\":\n";
    for (const auto& [caption, lines] : counts) {
      if (lines == &check.without_bidder_texts && !texts) {
        streams.out << "  " << caption << ": nicht geprüft (das Projekt hat keine Texte)\n";
        continue;
      }
      streams.out << "  " << caption << ": " << lines->size();
      for (int line : *lines) streams.out << ' ' << target.List()[line].LvBgBeschr.OZ.Get();
      streams.out << '\n';
    }
    return kExitOk;
  }

 private:
  std::string lv_;
  std::string bidder_;
};

// A bid line's comment as a JSON array of its lines.
std::string LinesJson(const award::TAO& line) {
  std::string json = "[";
  for (std::size_t k = 0; k < line.Kommentar.size(); ++k) {
    json += (k == 0 ? "" : ", ") + JsonString(line.Kommentar[k]);
  }
  return json + "]";
}

std::string BidderTextsJson(const award::TAO& line) {
  std::string json = "[";
  for (std::size_t k = 0; k < line.BidderTexts.size(); ++k) {
    json += (k == 0 ? "" : ", ") + std::string("{\"gap\": ") +
            std::to_string(line.BidderTexts[k].gap) +
            ", \"text\": " + JsonString(line.BidderTexts[k].text) + "}";
  }
  return json + "]";
}

// The bidder's comment and text additions under the line they belong to.
void PrintTexts(std::ostream& out, const award::TAO& line) {
  for (const std::string& comment : line.Kommentar) out << "      Kommentar: " << comment << '\n';
  for (const award::TBidderText& text : line.BidderTexts) {
    out << "      Textergänzung " << text.gap << ": " << text.text << '\n';
  }
}

class BidShowCommand : public LvOperation {
 public:
  std::string Name() const override { return "show"; }
  std::string Summary() const override { return "die Angebotszeilen eines Bieters mit Summen"; }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddBidderArgument(app, bidder_);
    AddShowOptions(app, currency_, contingency_);
  }
  int Run(Streams& streams) override {
    BidLv target(data_dir, project, lv_, false, {contingency_});
    const BidDisplay display = target.Display(currency_);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    bid->Recalculate();
    bid->ReadTexts();
    const calc::TItemCalculation rounding = target.Rounding();
    const boq::TLVPosList& list = target.List();
    if (json) {
      streams.out << "{\"lv\": " << list.FLv().FId << ", \"name\": " << JsonString(target.Name())
                  << ", \"bidder\": " << BidderJson(bid->Bidder(), rounding, 0, display)
                  << ", \"total_before_discounts\": " << JsonNumber(bid->FAngebotGP())
                  << ", \"lines\": [";
      bool first = true;
      for (int i = 0; i < list.Count(); ++i) {
        if (!list[i].IsGroup() && !list[i].IsQuantityItem()) continue;
        const award::t_Angebot_DB_VERSION_201501& line =
            bid->FAList()[static_cast<std::size_t>(i)].Angebot;
        streams.out << (first ? "" : ", ") << "{\"oz\": " << JsonString(list[i].LvBgBeschr.OZ.Get())
                    << ", \"kind\": " << JsonString(std::string(1, list[i].Kind()))
                    << ", \"qty\": " << JsonNumber(double{line.AMenge})
                    << ", \"up\": " << JsonNumber(double{line.EP.Betrag})
                    << ", \"up_components\": [";
        for (std::size_t k = 0; k < 6; ++k) {
          streams.out << (k == 0 ? "" : ", ") << JsonNumber(double{line.EPAnteil[k].Betrag});
        }
        const std::string mark(1, line.Kennz);
        streams.out << "], \"it\": " << JsonNumber(double{line.GP.Betrag})
                    << ", \"it_after_discount\": " << JsonNumber(double{line.GPnachNL.Betrag})
                    << ", \"mark\": "
                    << (line.Kennz == ' ' ? std::string("null") : JsonString(mark))
                    << ", \"comment\": " << LinesJson(bid->FAList()[static_cast<std::size_t>(i)])
                    << ", \"bidder_texts\": "
                    << BidderTextsJson(bid->FAList()[static_cast<std::size_t>(i)]) << "}";
        first = false;
      }
      streams.out << "]}\n";
      return kExitOk;
    }
    streams.out << "Angebot \"" << bidder.Bietername.Get() << "\", LV \"" << target.Name() << "\""
                << ShowNote(display, contingency_) << "\n";
    for (int i = 0; i < list.Count(); ++i) {
      if (!list[i].IsGroup() && !list[i].IsQuantityItem()) continue;
      const award::t_Angebot_DB_VERSION_201501& line =
          bid->FAList()[static_cast<std::size_t>(i)].Angebot;
      streams.out << "  " << list[i].LvBgBeschr.OZ.Get() << ' ' << list[i].Kind();
      if (!list[i].IsGroup()) {
        streams.out << "  Menge " << GermanFigure(line.AMenge, "%.3f") << "  EP "
                    << GermanMoney(line.EP.Betrag);
      }
      streams.out << "  GP " << GermanMoney(line.GP.Betrag);
      if (line.Kennz != ' ') streams.out << "  Kennz. " << line.Kennz;
      streams.out << '\n';
      PrintTexts(streams.out, bid->FAList()[static_cast<std::size_t>(i)]);
    }
    award::t_Bieter_DB_VERSION_3100 sums = bid->Bidder();
    const award::TBidderTotals totals = display.Shown(award::ComputeBidderSums(sums, rounding));
    streams.out << "Geprüft " << GermanMoney(totals.checked) << ", Summe ./. NL "
                << GermanMoney(totals.after_discount) << ", Netto " << GermanMoney(totals.net)
                << ", MwSt " << GermanMoney(totals.vat) << ", Brutto " << GermanMoney(totals.gross)
                << '\n';
    return kExitOk;
  }

 private:
  std::string lv_;
  std::string bidder_;
  std::string currency_;
  bool contingency_ = false;
};

class BidCommand : public LvOperationGroup {
 public:
  BidCommand() {
    operations_.push_back(std::make_unique<BidSetCommand>());
    operations_.push_back(std::make_unique<BidCheckCommand>());
    operations_.push_back(std::make_unique<BidShowCommand>());
    operations_.push_back(MakeBidImportCommand());
    operations_.push_back(MakeBidDiscountCommand());
    operations_.push_back(MakeBidLumpSumCommand());
    operations_.push_back(MakeBidConvertCommand());
    operations_.push_back(MakeBidCopyCommand());
  }
  std::string Name() const override { return "bid"; }
  std::string Summary() const override {
    return "Angebote der Bieter: Preis setzen, prüfen, zeigen, aus GAEB DA 84 einlesen, Nachlass, "
           "Pauschale, Umrechnung, Preise ins LV";
  }
};

}  // namespace

void AddBidCommands(CommandList& commands) {
  commands.push_back(std::make_unique<BidderCommand>());
  commands.push_back(std::make_unique<BidCommand>());
}

}  // namespace korvan::app
