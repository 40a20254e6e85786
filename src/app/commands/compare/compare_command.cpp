// `korvan compare <lv>`: the price comparison (Preisspiegel) and the rank list.
#include "app/commands/compare/compare_command.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/compare/compare_views.h"
#include "app/commands/lv/lv_operation.h"
#include "app/program/data_dir.h"
#include "award/compare/price_comparison.h"
#include "award/compare/pseudo_bidder.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {
namespace {

// The terminal's width when the output goes to one; 0 (no limit) otherwise.
int TerminalWidth(const std::ostream& out) {
  if (&out != &std::cout || ::isatty(STDOUT_FILENO) != 1) return 0;
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  if (const char* columns = std::getenv("COLUMNS")) return std::atoi(columns);
  return 80;
}

bool Colour(const std::ostream& out) {
  return TerminalWidth(out) > 0 && std::getenv("NO_COLOR") == nullptr;
}

class CompareCommand : public Command {
 public:
  std::string Name() const override { return "compare"; }
  std::string Summary() const override {
    return "Preisspiegel: die Angebote eines LV Position für Position, Mittel-, Median- und "
           "Idealangebot, Abweichungen, Rangliste";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    CLI::Option* json = app.add_flag("--json", json_, "Ausgabe als JSON für Skripte");
    app.add_flag("--csv", csv_,
                 "Ausgabe für Tabellenkalkulationen (UTF-8 mit BOM, Semikolon, Dezimalkomma)")
        ->excludes(json);
    app.add_option("--reference", reference_,
                   "100 % Bezug: cheapest, dearest, first, mean, ideal (Vorgabe), estimate, "
                   "highest oder 0 bis 6");
    app.add_option("--limit", limit_,
                   "Positionen kennzeichnen, die mehr als PROZENT vom Mittelwert abweichen");
    app.add_option("--min-share", min_share_,
                   "nur Positionen zeigen, deren Mittelwert-GP mindestens PROZENT der "
                   "Angebotssumme des Mittelwerts ausmacht");
    app.add_flag("--with-contingency", with_contingency_,
                 "alle Eventualpositionen (Bedarfspositionen ohne Gesamtpreis) mit einrechnen "
                 "(nur für den Preisspiegel)");
    app.add_option("--bidders", bidders_,
                   "nur diese Bieter vergleichen (Bieter-Nr. oder Name, durch Komma getrennt); "
                   "sonst die markierten, wenn welche markiert sind, sonst alle");
    app.add_option("--svg", svg_, "das Diagramm der Summen und Spannen in diese Datei schreiben");
    app.add_option("--as-bidder", as_bidder_,
                   "mean: die Mittelwerte, ideal: das Idealangebot als eigenen Bieter anlegen");
    app.add_option("--project", project_,
                   "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
    AddDataDirOption(app, data_dir_);
  }
  int Run(Streams& streams) override {
    const award::TCompareOptions options = Options();
    const std::optional<award::TPseudoBidKind> store = PseudoBidKind();
    BidLv target(data_dir_, project_, lv_, store.has_value());
    award::TPriceComparison comparison(target.Bidders(), target.List(), options);
    comparison.Run(ComparedBidders(target));
    if (store) return StoreAsBidder(comparison, target, *store, streams);
    if (!svg_.empty()) WriteSvg(comparison, target, streams);
    if (json_) {
      WriteCompareJson(streams.out, comparison);
    } else if (csv_) {
      WriteCompareCsv(streams.out, comparison);
    } else if (svg_.empty()) {
      WriteCompareText(streams.out, comparison, target.Converter(), TerminalWidth(streams.out),
                       Colour(streams.out));
    }
    return kExitOk;
  }

 private:
  award::TCompareOptions Options() const {
    award::TCompareOptions options;
    if (!reference_.empty()) {
      const std::optional<award::TReferenceMode> mode = award::ParseReferenceMode(reference_);
      if (!mode) {
        throw UsageError("\"" + reference_ + "\" ist kein 100 %-Bezug (--reference); erwartet " +
                         award::ReferenceModeNames() + ".");
      }
      options.reference = *mode;
    }
    options.max_deviation = Percent(limit_, "--limit");
    options.min_share = Percent(min_share_, "--min-share");
    options.with_contingency = with_contingency_;
    return options;
  }

  // A percentage of 0 or more; 0 when not given.
  static double Percent(const std::string& text, const char* option) {
    if (text.empty()) return 0.0;
    const double percent = RequireGermanNumber(text, option);
    if (percent < 0.0) {
      throw UsageError("\"" + text + "\": " + option + " erwartet einen Prozentsatz ab 0.");
    }
    return percent;
  }

  // The bidders named by --bidders in the LV's order; without it, the marked ones or all.
  std::vector<award::t_Bieter_DB_VERSION_3100> ComparedBidders(BidLv& target) const {
    const std::vector<award::t_Bieter_DB_VERSION_3100> all = target.Bidders().Bidders();
    if (bidders_.empty()) return award::MarkedOrAll(all);
    std::set<int32_t> named;
    std::istringstream names(bidders_);
    for (std::string name; std::getline(names, name, ',');) {
      if (!name.empty()) named.insert(target.Bidder(name).ID);
    }
    if (named.empty()) {
      throw UsageError("--bidders erwartet Bieter-Nummern oder Namen, durch Komma getrennt.");
    }
    std::vector<award::t_Bieter_DB_VERSION_3100> chosen;
    for (const award::t_Bieter_DB_VERSION_3100& bidder : all) {
      if (named.count(bidder.ID) != 0) chosen.push_back(bidder);
    }
    return chosen;
  }

  std::optional<award::TPseudoBidKind> PseudoBidKind() const {
    if (as_bidder_.empty()) return std::nullopt;
    if (as_bidder_ == "mean") return award::TPseudoBidKind::kMean;
    if (as_bidder_ == "ideal") return award::TPseudoBidKind::kIdeal;
    throw UsageError("\"" + as_bidder_ + "\": --as-bidder erwartet mean oder ideal.");
  }

  int StoreAsBidder(const award::TPriceComparison& comparison, BidLv& target,
                    award::TPseudoBidKind kind, Streams& streams) {
    if (comparison.Bidders().empty()) {
      throw CommandError(
          "LV \"" + target.Name() +
          "\" hat keine Bieter: es gibt nichts zu mitteln; es wurde nichts angelegt.");
    }
    const char* what = kind == award::TPseudoBidKind::kMean ? "Mittelwerte" : "Idealangebot";
    award::t_Bieter_DB_VERSION_3100 bidder{};
    target.Change(std::string(what) + " als eigenen Bieter anlegen", streams.err,
                  [&] { bidder = award::StorePseudoBidder(target.Bidders(), comparison, kind); });
    const calc::TItemCalculation rounding(target.Converter(), target.List().FLv().EPGenauigkeit);
    if (json_) {
      streams.out << BidderJson(bidder, rounding, 0) << '\n';
      return kExitOk;
    }
    streams.out << "Bieter " << static_cast<int>(bidder.BieterNrIntern) << " \"" << what
                << "\" zum LV \"" << target.Name() << "\" angelegt, geprüfte Summe "
                << target.Converter().CurrencyValueToString(bidder.Summe.Betrag, 2) << '\n';
    return kExitOk;
  }

  void WriteSvg(const award::TPriceComparison& comparison, BidLv& target, Streams& streams) {
    const storage::FileWriteResult written = storage::WriteFileAtomically(
        svg_, CompareSvg(comparison, target.Converter()), storage::Durability::kAtomic);
    if (!written.ok()) {
      throw CommandError("Das Diagramm kann nicht nach " + svg_ +
                         " geschrieben werden: " + written.ErrorText());
    }
    if (!json_ && !csv_) {
      streams.out << "Preisspiegel-Diagramm des LV \"" << target.Name() << "\" ("
                  << comparison.Bidders().size() << " Bieter) nach " << svg_ << " geschrieben\n";
    }
  }

  std::string lv_;
  std::string reference_;
  std::string limit_;
  std::string min_share_;
  std::string bidders_;
  bool with_contingency_ = false;
  std::string svg_;
  std::string as_bidder_;
  std::string project_;
  std::string data_dir_;
  bool json_ = false;
  bool csv_ = false;
};

}  // namespace

void AddCompareCommands(CommandList& commands) {
  commands.push_back(std::make_unique<CompareCommand>());
}

}  // namespace korvan::app
