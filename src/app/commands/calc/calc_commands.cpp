// `korvan calc item|set|run` and `korvan prices copy|delete|factor|percent`: unit prices
// from cost elements, and the operations on the price columns of selected items.
#include "app/commands/calc/calc_commands.h"

#include <cctype>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/cli/progress_line.h"
#include "app/commands/calc/calc_endsum_command.h"
#include "app/commands/calc/calc_item_view.h"
#include "app/commands/calc/calc_lv.h"
#include "app/commands/lv/lv_operation.h"
#include "app/commands/lv/lv_totals_view.h"
#include "boq/model/lv_pos_list_io.h"
#include "calc/price/price_columns.h"
#include "calc/price/quantity_formula.h"
#include "calc/sums/boq_ctgy_calc_sum.h"
#include "calc/sums/lv_sums_save.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

using calc::TPriceColumn;

// The word of the quantity in `calc set`: its value is a formula of the item.
constexpr const char* kQuantityWord = "menge";
// The word of the wage hours per unit in `calc set`.
constexpr const char* kHoursWord = "stunden";

class CalcItemCommand : public LvOperation {
 public:
  std::string Name() const override { return "item"; }
  std::string Summary() const override {
    return "zeigt die Kalkulation einer Position: Kostenelemente, Zuschläge, Preise";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "die Position (OZ)")->required();
  }
  int Run(Streams& streams) override {
    CalcLv target(data_dir, project, lv_, false);
    boq::TLvPos& item = target.List()[target.IndexOf(oz_)];
    target.ApplyMethod(false);
    const calc::TItemCosts costs = target.Costs(false).CostsOf(item.LvBgBeschr.IDBeschr);
    PrintItemCalculation(streams.out, target.List().FLv().FId, item, costs, json);
    return kExitOk;
  }

 private:
  std::string lv_, oz_;
};

// One KOSTENART=BETRAG of `calc set`.
struct CostAssignment {
  std::optional<calc::TResultIndex> type;  // none: the quantity or the hours
  std::string value;
  bool hours = false;
};

CostAssignment ParseAssignment(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw UsageError("\"" + text + "\" ist keine Zuweisung KOSTENART=BETRAG.");
  }
  std::string key = text.substr(0, equals);
  for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  CostAssignment assignment{std::nullopt, text.substr(equals + 1)};
  if (key == kQuantityWord) return assignment;
  if (key == kHoursWord) {
    assignment.hours = true;
    return assignment;
  }
  assignment.type = key.size() == 1 ? calc::ResultIndexOfLineKind(static_cast<char>(
                                          std::toupper(static_cast<unsigned char>(key[0]))))
                                    : std::nullopt;
  if (!assignment.type) {
    throw UsageError("\"" + text.substr(0, equals) +
                     "\" ist keine Kostenart (M Material, Z Lohn, R RSV, G Gerät, "
                     "B Betriebsstoffe, S Sonstige Kosten, F Fremdleistungen, oder menge, "
                     "stunden).");
  }
  return assignment;
}

// A German number, or else a formula of the item's variables.
double ValueOf(const std::string& text, const calc::TFormulaVariables& variables) {
  if (const std::optional<double> number = ParseGermanNumber(text)) return *number;
  try {
    return calc::EvaluateFormula(text, variables);
  } catch (const calc::ECalcError& error) {
    throw UsageError(error.what());
  }
}

class CalcSetCommand : public LvOperation {
 public:
  std::string Name() const override { return "set"; }
  std::string Summary() const override {
    return "setzt Kostenelemente je Einheit einer Position: KOSTENART=BETRAG ...";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "die Position (OZ)")->required();
    app.add_option("assignments", assignments_,
                   "KOSTENART=BETRAG (M, Z, R, G, B, S, F; Zahl oder Formel), menge=FORMEL "
                   "oder stunden=LOHNSTUNDEN je Einheit")
        ->required();
  }
  int Run(Streams& streams) override {
    std::vector<CostAssignment> parsed;
    for (const std::string& text : assignments_) parsed.push_back(ParseAssignment(text));
    CalcLv target(data_dir, project, lv_, true);
    const int index = target.IndexOf(oz_);
    boq::TLvPos& item = target.List()[index];
    if (!item.IsQuantityItem()) {
      throw UsageError("Kostenelemente haben nur Positionen (P, L, U), nicht die Art " +
                       std::string(1, item.Kind()) + ".");
    }
    const calc::TFormulaVariables variables = calc::ItemVariables(target.Db(), item.LvBgBeschr.ID);
    std::vector<double> values;
    for (const CostAssignment& assignment : parsed) {
      values.push_back(ValueOf(assignment.value, variables));
    }
    target.Change("Kalkulation von " + oz_ + " setzen", streams.err, [&] {
      // Cost elements are kept per description: an item without texts gets one first, so
      // that it does not share them with the other items that have none.
      if (item.LvBgBeschr.IDBeschr == data::kNullId) {
        item.DescriptionWanted = true;
        boq::SaveLvPosList(target.Db(), target.Project().TextDb(), target.List());
      }
      calc::TLvCalculation& costs = target.Costs(true);
      for (std::size_t i = 0; i < parsed.size(); ++i) {
        if (parsed[i].type) {
          costs.SetCostElement(item.LvBgBeschr.IDBeschr, *parsed[i].type, values[i]);
        } else if (parsed[i].hours) {
          costs.SetWageHours(item.LvBgBeschr.IDBeschr, values[i]);
        } else {
          item.LvBeschr.FMenge = target.Converter().RoundQtyValue(values[i], 3);
        }
      }
      target.ApplyMethod(true);
      costs.UpdateCalculatedPrice(item, target.Calculation());
    });
    const calc::TItemCosts costs = target.Costs(false).CostsOf(item.LvBgBeschr.IDBeschr);
    PrintItemCalculation(streams.out, target.List().FLv().FId, item, costs, json);
    return kExitOk;
  }

 private:
  std::string lv_, oz_;
  std::vector<std::string> assignments_;
};

class CalcRunCommand : public LvOperation {
 public:
  std::string Name() const override { return "run"; }
  std::string Summary() const override {
    return "kalkuliert alle Positionen eines LV neu (Kalkulierte EP aktualisieren)";
  }
  void Define(CLI::App& app) override { AddLvArgument(app, lv_); }
  int Run(Streams& streams) override {
    CalcLv target(data_dir, project, lv_, true);
    int calculated = 0;
    target.Change("Kalkulierte EP aktualisieren", streams.err, [&] {
      calc::TLvCalculation& costs = target.Costs(true);
      target.ApplyMethod(true);
      ProgressLine progress(streams.err);
      boq::TLVPosList& list = target.List();
      for (int i = 0; i < list.Count(); ++i) {
        progress.Show("Kalkulation", i, list.Count());
        if (costs.UpdateCalculatedPrice(list[i], target.Calculation())) ++calculated;
      }
      progress.End();
      t_Lv lv = list.FLv();
      lv.KalkAktuell = 1;
      list.RefreshLvProperties(lv);
    });
    double total = 0.0;
    for (const boq::TLvPos& entry : target.List().Entries()) {
      if (!entry.IsGroup()) total += entry.LvBgBeschr.AngebotsGP.Betrag;
    }
    total = target.Calculation().RoundAmount(total);
    if (json) {
      streams.out << "{\"lv\": " << target.List().FLv().FId << ", \"calculated\": " << calculated
                  << ", \"bid_total\": " << JsonNumber(total) << "}\n";
    } else {
      streams.out << calculated << (calculated == 1 ? " Position" : " Positionen")
                  << " kalkuliert; Angebotssumme " << GermanMoney(total) << '\n';
    }
    return kExitOk;
  }

 private:
  using t_Lv = boq::t_Lv_DB_VERSION_3100;
  std::string lv_;
};

class CalcSumsCommand : public LvOperation {
 public:
  std::string Name() const override { return "sums"; }
  std::string Summary() const override {
    return "bildet die Summen der Gruppen und des LV neu (Summen), mit Nachlässen und "
           "Pauschalsummen";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("--contract", contract_,
                   "nur die Positionen dieses Vertrags (ID) in den Vergabesummen; nur anzeigen")
        ->check(CLI::PositiveNumber);
    app.add_flag("--marked", marked_,
                 "nur die markierten Positionen zählen (wenn welche markiert sind); nur anzeigen");
  }
  int Run(Streams& streams) override {
    const bool filtered = contract_.has_value() || marked_;
    // Filtered sums answer a question about part of the LV; the stored totals stay those of
    // the whole LV, so a filtered run is only shown.
    CalcLv target(data_dir, project, lv_, !filtered);
    if (filtered) {
      RequireContractItems(target.List());
      const calc::TSumRunResult result =
          calc::TBoqCtgyCalcSum(target.List(), target.Converter(), marked_)
              .Calculate(contract_.value_or(data::kNullId));
      if (const std::string warning = calc::SumRunWarning(result); !warning.empty())
        streams.err << warning << '\n';
    } else {
      target.Change("Summen", streams.err, [] {});  // the saving sums; nothing else changes
    }
    const boq::t_Lv_DB_VERSION_3100& lv = target.List().FLv();
    const StoredTotals totals = LvTotals(lv);
    if (json) {
      streams.out << "{\"lv\": " << lv.FId << ", \"totals\": " << TotalsJson(totals);
      if (filtered) {
        streams.out << ", \"contract\": "
                    << (contract_ ? std::to_string(*contract_) : std::string("null"))
                    << ", \"only_marked\": " << (marked_ ? "true" : "false")
                    << ", \"stored\": false";
      }
      streams.out << "}\n";
    } else {
      streams.out << (filtered ? "Summen" + FilterText() + " (nicht gespeichert)"
                               : std::string("Summen gebildet"))
                  << "; Schätzung " << GermanFigure(totals.estimate, "%.2f") << TotalsText(totals)
                  << '\n';
    }
    return kExitOk;
  }

 private:
  // A contract no entry names is most likely a wrong id: refused rather than summed to 0.
  void RequireContractItems(const boq::TLVPosList& list) const {
    if (!contract_) return;
    for (const boq::TLvPos& entry : list.Entries()) {
      if (entry.LvBgBeschr.IdVertrag == *contract_) return;
    }
    throw CommandError("Keine Position des LV gehört zum Vertrag " + std::to_string(*contract_));
  }
  std::string FilterText() const {
    std::string text;
    if (contract_) text += " für Vertrag " + std::to_string(*contract_);
    if (marked_) text += (contract_ ? ", " : " ") + std::string("nur markierte Positionen");
    return text;
  }

  std::string lv_;
  std::optional<int32_t> contract_;
  bool marked_ = false;
};

class CalcCommand : public LvOperationGroup {
 public:
  CalcCommand() {
    operations_.push_back(std::make_unique<CalcItemCommand>());
    operations_.push_back(std::make_unique<CalcSetCommand>());
    operations_.push_back(std::make_unique<CalcRunCommand>());
    operations_.push_back(std::make_unique<CalcSumsCommand>());
    operations_.push_back(MakeCalcEndsumCommand());
  }
  std::string Name() const override { return "calc"; }
  std::string Summary() const override {
    return "Kalkulation von Einheitspreisen: anzeigen, Kostenelemente setzen, neu kalkulieren, "
           "Summen bilden, Endsumme";
  }
};

TPriceColumn ColumnOption(const std::string& text, const char* option) {
  const std::optional<TPriceColumn> column = calc::PriceColumnOf(text);
  if (!column) {
    throw UsageError(std::string(option) + " \"" + text +
                     "\": keine Preisspalte (schaetz, einzelkosten, angebot, abrechnung, "
                     "vergabe oder 0 bis 4)");
  }
  return *column;
}

// Whether an operation changed an entry's prices (its item and common parts).
bool PricesDiffer(const boq::TLvPos& before, const boq::TLvPos& after) {
  return std::memcmp(&before.LvBeschr, &after.LvBeschr, sizeof before.LvBeschr) != 0 ||
         std::memcmp(&before.LvBgBeschr, &after.LvBgBeschr, sizeof before.LvBgBeschr) != 0;
}

// One price operation on the selected items (--oz, else every item) as one undo step.
class PriceOperation : public LvOperation {
 public:
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("--oz", ozs_, "nur diese Positionen (OZ), sonst alle");
    DefineOwn(app);
  }
  int Run(Streams& streams) override {
    Check();
    CalcLv target(data_dir, project, lv_, true);
    const std::vector<int> selection = target.Selection(ozs_);
    int changed = 0;
    target.Change(Caption(), streams.err, [&] {
      for (int index : selection) {
        boq::TLvPos& entry = target.List()[index];
        const boq::TLvPos before = entry;
        if (Apply(target, entry) && PricesDiffer(before, entry)) ++changed;
      }
    });
    if (json) {
      streams.out << "{\"lv\": " << target.List().FLv().FId
                  << ", \"operation\": " << JsonString(Name()) << ", \"changed\": " << changed
                  << ", \"selected\": " << selection.size() << "}\n";
    } else {
      streams.out << Caption() << ": " << changed << " von " << selection.size()
                  << " Positionen geändert\n";
    }
    return kExitOk;
  }

 protected:
  virtual void DefineOwn(CLI::App& app) = 0;
  virtual void Check() {}
  virtual std::string Caption() const = 0;
  // Changes one entry; whether it changed.
  virtual bool Apply(CalcLv& target, boq::TLvPos& entry) = 0;

  std::string lv_;
  std::vector<std::string> ozs_;
};

class PricesCopyCommand : public PriceOperation {
 public:
  std::string Name() const override { return "copy"; }
  std::string Summary() const override {
    return "kopiert eine Preisspalte in andere (Preise kopieren)";
  }

 protected:
  void DefineOwn(CLI::App& app) override {
    app.add_option("--from", from_, "die Quellspalte")->required();
    app.add_option("--to", to_, "die Zielspalten")->required();
  }
  void Check() override {
    source_ = ColumnOption(from_, "--from");
    targets_ = 0;
    for (const std::string& to : to_) {
      targets_ |= 1u << static_cast<unsigned>(ColumnOption(to, "--to"));
    }
  }
  std::string Caption() const override { return "Preise kopieren"; }
  bool Apply(CalcLv&, boq::TLvPos& entry) override {
    if (!entry.IsQuantityItem()) return false;
    calc::CopyPriceColumns(entry, source_, targets_);
    return true;
  }

 private:
  std::string from_;
  std::vector<std::string> to_;
  TPriceColumn source_ = TPriceColumn::kSchaetz;
  unsigned targets_ = 0;
};

class PricesDeleteCommand : public PriceOperation {
 public:
  std::string Name() const override { return "delete"; }
  std::string Summary() const override {
    return "löscht die Preise einer Spalte (Preise löschen); vergebene Positionen mit Vertrag "
           "bleiben";
  }

 protected:
  void DefineOwn(CLI::App& app) override {
    app.add_option("--from", from_, "die Spalte (schaetz, einzelkosten, angebot, vergabe)")
        ->required();
    app.add_flag("--components", components_only_, "nur die EP-Anteile");
  }
  void Check() override {
    column_ = ColumnOption(from_, "--from");
    if (column_ == TPriceColumn::kAbrechnung) {
      throw UsageError(
          "--from abrechnung: die Abrechnungspreise folgen der Vergabe und werden "
          "nicht gelöscht");
    }
  }
  std::string Caption() const override { return "Preise löschen"; }
  bool Apply(CalcLv&, boq::TLvPos& entry) override {
    return entry.IsQuantityItem() && calc::DeletePrices(entry, column_, components_only_);
  }

 private:
  std::string from_;
  bool components_only_ = false;
  TPriceColumn column_ = TPriceColumn::kSchaetz;
};

class PricesFactorCommand : public PriceOperation {
 public:
  std::string Name() const override { return "factor"; }
  std::string Summary() const override {
    return "multipliziert die Schätzpreise mit einem Faktor (Preise faktorisieren)";
  }

 protected:
  void DefineOwn(CLI::App& app) override {
    app.add_option("--factor", factor_text_, "der Faktor, z. B. 1,05")->required();
  }
  void Check() override {
    const std::optional<double> factor = ParseGermanNumber(factor_text_);
    if (!factor) throw UsageError("--factor \"" + factor_text_ + "\" ist keine Zahl.");
    factor_ = *factor;
  }
  std::string Caption() const override { return "Preise faktorisieren"; }
  bool Apply(CalcLv& target, boq::TLvPos& entry) override {
    if (entry.IsGroup()) return false;
    calc::FactorisePrices(entry, factor_, target.Converter());
    return true;
  }

 private:
  std::string factor_text_;
  double factor_ = 1.0;
};

// Percentage billing adds measurement lines, which this installation does not keep yet.
class PricesPercentCommand : public LvOperation {
 public:
  std::string Name() const override { return "percent"; }
  std::string Summary() const override {
    return "Prozentual abrechnen (noch nicht möglich: es fehlt das Aufmaß)";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("--percent", percent_, "der Prozentsatz");
    app.add_option("--oz", ozs_, "nur diese Positionen (OZ)");
  }
  int Run(Streams&) override {
    throw CommandError(
        "Prozentual abrechnen ist noch nicht möglich: Aufmaßzeilen werden von dieser "
        "Installation noch nicht geführt; es wurde nichts geändert");
  }

 private:
  std::string lv_, percent_;
  std::vector<std::string> ozs_;
};

class PricesCommand : public LvOperationGroup {
 public:
  PricesCommand() {
    operations_.push_back(std::make_unique<PricesCopyCommand>());
    operations_.push_back(std::make_unique<PricesDeleteCommand>());
    operations_.push_back(std::make_unique<PricesFactorCommand>());
    operations_.push_back(std::make_unique<PricesPercentCommand>());
  }
  std::string Name() const override { return "prices"; }
  std::string Summary() const override {
    return "Preisspalten der Positionen: kopieren, löschen, faktorisieren";
  }
};

}  // namespace

void AddCalcCommands(CommandList& commands) {
  commands.push_back(std::make_unique<CalcCommand>());
  commands.push_back(std::make_unique<PricesCommand>());
}

}  // namespace korvan::app
