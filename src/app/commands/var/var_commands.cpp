// `korvan var set|list`: the named quantities of LV items that quantity formulas use.
#include "app/commands/var/var_commands.h"

#include <cctype>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_item_target.h"
#include "app/commands/lv/lv_operation.h"
#include "app/program/data_dir.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/common/cp1252.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

constexpr std::size_t kNameCapacity = 20;
constexpr std::size_t kUnitCapacity = 6;

// A name formulas can use: a letter or "_" first, then letters, digits and "_"; at most
// 20 characters of Windows-1252 (umlauts are letters).
bool IsFormulaName(const std::string& name) {
  data::Cp1252Report report;
  const std::string stored = data::Utf8ToCp1252(name, &report);
  if (stored.empty() || stored.size() > kNameCapacity || !report.Exact()) return false;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(stored[i]);
    const bool letter = std::isalpha(c) || c == '_' || c >= 0xC0;
    if (!(letter || (i > 0 && std::isdigit(c)))) return false;
  }
  return true;
}

std::string Figure(double value) {
  return GermanFigure(value, "%g");
}

std::string VariableJson(const std::string& oz, const boq::t_Variable_2600& variable) {
  const std::string unit = variable.Einheit.Get();
  return "{\"oz\": " + JsonString(oz) + ", \"name\": " + JsonString(variable.Name.Get()) +
         ", \"value\": " + JsonNumber(variable.Menge) +
         ", \"unit\": " + (unit.empty() ? "null" : JsonString(unit)) +
         ", \"percent\": " + (boq::IsPercentUnit(unit) ? "true" : "false") + "}";
}

class VarSetCommand : public LvOperation {
 public:
  std::string Name() const override { return "set"; }
  std::string Summary() const override {
    return "setzt eine Variable einer Position: NAME=WERT [--unit EINHEIT]";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "die Position (OZ)")->required();
    app.add_option("assignment", assignment_, "NAME=WERT, z. B. Breite=2,5")->required();
    app.add_option("--unit", unit_, "Einheit (höchstens 6 Zeichen; \"PROZENT\" wird \"%\")");
  }
  int Run(Streams& streams) override {
    const std::size_t equals = assignment_.find('=');
    if (equals == std::string::npos) {
      throw UsageError("\"" + assignment_ + "\" ist keine Zuweisung NAME=WERT.");
    }
    const std::string name = assignment_.substr(0, equals);
    if (!IsFormulaName(name)) {
      throw UsageError("\"" + name +
                       "\" ist kein Variablenname (Buchstabe oder _ zuerst, dann Buchstaben, "
                       "Ziffern, _; höchstens 20 Zeichen).");
    }
    const double value = RequireGermanNumber(assignment_.substr(equals + 1), "Variable " + name);
    std::optional<std::string> unit;
    if (unit_) {
      unit = boq::NormalizedVariableUnit(*unit_);
      data::Cp1252Report report;
      const std::string stored = data::Utf8ToCp1252(*unit, &report);
      if (!report.Exact() || stored.size() > kUnitCapacity) {
        throw UsageError("Die Einheit \"" + *unit_ +
                         "\" passt nicht (höchstens 6 Zeichen aus Windows-1252).");
      }
    }
    LvItemTarget target(data_dir, project, lv_, oz_, true);
    target.RequireQuantityItem("Variablen");
    const int32_t owner = target.Item().LvBgBeschr.ID;
    boq::t_Variable_2600 stored{};
    target.Change("Variable " + name + " von " + oz_ + " setzen", streams.err, [&] {
      boq::TTbVariable variables(target.Db(), target.Project().TextDb());
      if (!variables.FindByName(owner, boq::kOwnerLvItem, name)) {
        if (int result = variables.NewVariable(owner, boq::kOwnerLvItem, name);
            result != storage::kOk) {
          throw boq::EStoredLvError(target.Db().BasePath() +
                                    "0: für die Variable gibt es keine neue Nummer (" +
                                    std::to_string(result) + ")");
        }
      }
      variables.Rec().Menge = value;
      if (unit) variables.Rec().Einheit.Set(*unit);
      if (int result = variables.UpDateRec(); result != storage::kOk) {
        throw boq::EStoredLvError(target.Db().BasePath() + "0: die Variable \"" + name +
                                  "\" kann nicht gespeichert werden (" + std::to_string(result) +
                                  ")");
      }
      stored = variables.Rec();
    });
    if (json) {
      streams.out << VariableJson(oz_, stored) << '\n';
    } else {
      streams.out << "Variable " << name << " = " << Figure(stored.Menge) << ' '
                  << stored.Einheit.Get() << " an Position " << oz_ << " gesetzt\n";
    }
    return kExitOk;
  }

 private:
  std::string lv_, oz_, assignment_;
  std::optional<std::string> unit_;
};

class VarListCommand : public LvOperation {
 public:
  std::string Name() const override { return "list"; }
  std::string Summary() const override {
    return "listet die Variablen der Positionen eines LV oder einer Position";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "nur diese Position (OZ)");
  }
  int Run(Streams& streams) override {
    LvProject target(data_dir, project);
    data::TStdDb& db = target.Db(false);
    const boq::TLVPosList list = boq::LoadLvPosList(db, nullptr, target.ResolveLv(lv_));
    int only = -1;
    if (!oz_.empty()) {
      only = boq::FindEntryByOz(list, oz_);
      if (only < 0) {
        throw CommandError("LV \"" + list.FLv().Name.Get() +
                           "\": es gibt keinen Eintrag mit der OZ \"" + oz_ + "\".");
      }
    }
    boq::TTbVariable variables(db);
    std::string json_rows;
    for (int i = 0; i < list.Count(); ++i) {
      const boq::TLvPos& entry = list[i];
      if ((only >= 0 && i != only) || entry.IsGroup()) continue;
      const std::string oz = entry.LvBgBeschr.OZ.Get();
      for (const boq::t_Variable_2600& variable :
           variables.ListOf(entry.LvBgBeschr.ID, boq::kOwnerLvItem)) {
        if (json) {
          json_rows += (json_rows.empty() ? "" : ", ") + VariableJson(oz, variable);
        } else {
          streams.out << oz << "  " << variable.Name.Get() << " = " << Figure(variable.Menge)
                      << (variable.Einheit.Length() > 0 ? " " + variable.Einheit.Get() : "")
                      << '\n';
        }
      }
    }
    if (json)
      streams.out << "{\"lv\": " << list.FLv().FId << ", \"variables\": [" << json_rows << "]}\n";
    return kExitOk;
  }

 private:
  std::string lv_, oz_;
};

// `korvan var <operation>` with the options every LV command has.
class VarCommand : public LvOperationGroup {
 public:
  VarCommand() {
    operations_.push_back(std::make_unique<VarSetCommand>());
    operations_.push_back(std::make_unique<VarListCommand>());
  }
  std::string Name() const override { return "var"; }
  std::string Summary() const override { return "Variablen von Positionen: setzen, auflisten"; }
};

}  // namespace

void AddVarCommands(CommandList& commands) {
  commands.push_back(std::make_unique<VarCommand>());
}

}  // namespace korvan::app
