#include "app/commands/calc/calc_endsum_command.h"

#include <cctype>
#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/calc/calc_lv.h"
#include "boq/model/lv_pos_list_io.h"
#include "calc/tables/tb_ends.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

using calc::t_KpENDS;
using calc::TEndsumme;

// The settings `set` knows: a percentage of the record, or an amount typed instead of one.
struct PercentKey {
  const char* name;
  std::size_t offset;
};
constexpr PercentKey kPercentKeys[] = {
    {"agk-el", offsetof(t_KpENDS, ENDSAGKPRZEL)}, {"agk-fl", offsetof(t_KpENDS, ENDSAGKPRZFL)},
    {"wug-el", offsetof(t_KpENDS, ENDSWUGPRZEL)}, {"wug-fl", offsetof(t_KpENDS, ENDSWUGPRZFL)},
    {"umlage-m", offsetof(t_KpENDS, UMLPRZMAT)},  {"umlage-r", offsetof(t_KpENDS, UMLPRZRSV)},
    {"umlage-s", offsetof(t_KpENDS, UMLPRZSOKO)}, {"umlage-g", offsetof(t_KpENDS, UMLPRZAVR)},
    {"umlage-b", offsetof(t_KpENDS, UMLPRZBS)},   {"umlage-f", offsetof(t_KpENDS, UMLPRZFL)},
};

struct AmountKey {
  const char* name;
  void (TEndsumme::*set)(double);
};
constexpr AmountKey kAmountKeys[] = {
    {"agk-el-betrag", &TEndsumme::SetAgkEl}, {"agk-fl-betrag", &TEndsumme::SetAgkFl},
    {"wug-el-betrag", &TEndsumme::SetWugEl}, {"wug-fl-betrag", &TEndsumme::SetWugFl},
    {"wug-betrag", &TEndsumme::SetWug},      {"target", &TEndsumme::SetAngebotssumme},
};

constexpr const char* kAllocationLvKey = "umlage-lv";
constexpr const char* kMethodKey = "verfahren";
constexpr const char* kKeyList =
    "agk-el, agk-fl, wug-el, wug-fl, umlage-m|r|s|g|b|f (Prozent), agk-el-betrag, "
    "agk-fl-betrag, wug-el-betrag, wug-fl-betrag, wug-betrag, target (Betrag), umlage-lv "
    "(LV oder keine), verfahren (Z oder E)";

// One KEY=VALUE of `set`, checked before anything is written.
struct Assignment {
  std::string key;
  std::string text;
  double number = 0.0;
};

Assignment Parse(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw UsageError("\"" + text + "\" ist keine Zuweisung SCHLÜSSEL=WERT (" + kKeyList + ").");
  }
  Assignment assignment{text.substr(0, equals), text.substr(equals + 1)};
  for (char& c : assignment.key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (assignment.key == kAllocationLvKey) return assignment;
  if (assignment.key == kMethodKey) {
    if (assignment.text != "Z" && assignment.text != "E") {
      throw UsageError("verfahren=" + assignment.text + ": Z oder E.");
    }
    return assignment;
  }
  bool known = false;
  for (const PercentKey& key : kPercentKeys) known = known || assignment.key == key.name;
  for (const AmountKey& key : kAmountKeys) known = known || assignment.key == key.name;
  if (!known) {
    throw UsageError("\"" + assignment.key + "\" ist keine Einstellung der Endsumme (" + kKeyList +
                     ").");
  }
  const std::optional<double> number = ParseGermanNumber(assignment.text);
  if (!number) {
    throw UsageError("\"" + assignment.text + "\" ist keine Zahl (" + assignment.key + ").");
  }
  assignment.number = *number;
  return assignment;
}

// Applies one checked assignment; the amounts are taken on the figures as they stand.
void Apply(const Assignment& assignment, TEndsumme& ends, CalcLv& target) {
  for (const PercentKey& key : kPercentKeys) {
    if (assignment.key == key.name) ends.SetPercent(key.offset, assignment.number);
  }
  for (const AmountKey& key : kAmountKeys) {
    if (assignment.key == key.name) (ends.*key.set)(assignment.number);
  }
  if (assignment.key == kMethodKey) {
    auto lv = target.List().FLv();
    lv.KalkVerfahren = assignment.text[0];
    target.List().RefreshLvProperties(lv);
  }
  ends.Validate();
}

const char* const kCostTypeKeys[] = {"material",       "lohn",     "rsv",  "geraet",
                                     "betriebsstoffe", "sonstige", "fremd"};

std::string Optional(const std::optional<double>& value) {
  return value ? JsonNumber(*value) : "null";
}

void PrintJson(std::ostream& out, int32_t lv, const std::string& level, const TEndsumme& ends,
               const std::string& allocation_lv) {
  const t_KpENDS& r = ends.Record();
  out << "{\"lv\": " << lv << ", \"level\": " << JsonString(level) << ", \"ekt\": {";
  for (int k = 0; k < calc::kResultCostTypes; ++k) {
    out << (k ? ", " : "") << '"' << kCostTypeKeys[k] << "\": " << JsonNumber(ends.GetEK(k));
  }
  out << "}, \"umlage_prozent\": {";
  for (int k = 0; k < calc::kResultCostTypes; ++k) {
    out << (k ? ", " : "") << '"' << kCostTypeKeys[k] << "\": " << Optional(ends.GetUmlPrz(k));
  }
  out << "}, \"umlage\": {";
  for (int k = 0; k < calc::kResultCostTypes; ++k) {
    out << (k ? ", " : "") << '"' << kCostTypeKeys[k] << "\": " << JsonNumber(ends.GetUmlAbs(k));
  }
  const double hours = ends.MengeLohn();
  out << "}, \"ekt_el\": " << JsonNumber(ends.EktEl()) << ", \"bgk\": " << JsonNumber(ends.Bgk())
      << ", \"umlage_lv\": " << (allocation_lv.empty() ? "null" : JsonString(allocation_lv))
      << ", \"hk_el\": " << JsonNumber(ends.HkEl()) << ", \"hk\": " << JsonNumber(ends.Hk())
      << ", \"agk_el_prozent\": " << JsonNumber(r.ENDSAGKPRZEL)
      << ", \"agk_fl_prozent\": " << JsonNumber(r.ENDSAGKPRZFL)
      << ", \"agk_el\": " << JsonNumber(ends.AgkEl())
      << ", \"agk_fl\": " << JsonNumber(ends.AgkFl()) << ", \"agk\": " << JsonNumber(ends.Agk())
      << ", \"wug_el_prozent\": " << JsonNumber(r.ENDSWUGPRZEL)
      << ", \"wug_fl_prozent\": " << JsonNumber(r.ENDSWUGPRZFL)
      << ", \"wug_el\": " << JsonNumber(ends.WugEl())
      << ", \"wug_fl\": " << JsonNumber(ends.WugFl()) << ", \"wug\": " << JsonNumber(ends.Wug())
      << ", \"bgk_agk\": " << JsonNumber(ends.BgkAgk())
      << ", \"gesamtumlage\": " << JsonNumber(ends.Gesamtumlage())
      << ", \"angebotssumme\": " << JsonNumber(ends.Angebotssumme())
      << ", \"festpreise\": " << JsonNumber(ends.Festpreis())
      << ", \"umlage_lohn\": " << JsonNumber(ends.UmlageLohn())
      << ", \"lohnstunden\": " << JsonNumber(hours) << ", \"umlage_je_lohnstunde\": "
      << (hours == 0.0 ? "null" : JsonNumber(ends.UmlageLohn() / hours)) << "}\n";
}

std::string Percent(double value) {
  return GermanFigure(value, "%.2f") + " %";
}

void PrintText(std::ostream& out, const std::string& lv_name, const std::string& level,
               const TEndsumme& ends, const std::string& allocation_lv) {
  const t_KpENDS& r = ends.Record();
  out << "Endsumme LV \"" << lv_name << "\", " << level << '\n';
  const char* const names[] = {
      "Material", "Lohn", "RSV", "Gerät", "Betriebsstoffe", "Sonstige Kosten", "Fremdleistungen"};
  for (int k = 0; k < calc::kResultCostTypes; ++k) {
    out << "  EKT " << names[k] << ": " << GermanMoney(ends.GetEK(k));
    if (k != 1) {
      out << ", Umlage " << Percent(*ends.GetUmlPrz(k)) << " = " << GermanMoney(ends.GetUmlAbs(k));
    }
    out << '\n';
  }
  out << "  BGK" << (allocation_lv.empty() ? "" : " (Umlage-LV \"" + allocation_lv + "\")") << ": "
      << GermanMoney(ends.Bgk()) << '\n'
      << "  Herstellkosten eigene Leistung: " << GermanMoney(ends.HkEl())
      << ", gesamt: " << GermanMoney(ends.Hk()) << '\n'
      << "  AGK: " << Percent(r.ENDSAGKPRZEL) << " = " << GermanMoney(ends.AgkEl()) << " + "
      << Percent(r.ENDSAGKPRZFL) << " = " << GermanMoney(ends.AgkFl()) << ", gesamt "
      << GermanMoney(ends.Agk()) << '\n'
      << "  W&G: " << Percent(r.ENDSWUGPRZEL) << " = " << GermanMoney(ends.WugEl()) << " + "
      << Percent(r.ENDSWUGPRZFL) << " = " << GermanMoney(ends.WugFl()) << ", gesamt "
      << GermanMoney(ends.Wug()) << '\n'
      << "  BGK + AGK: " << GermanMoney(ends.BgkAgk()) << '\n'
      << "  Gesamtumlage: " << GermanMoney(ends.Gesamtumlage()) << '\n'
      << "  Angebotssumme: " << GermanMoney(ends.Angebotssumme()) << '\n'
      << "  Festpreise: " << GermanMoney(ends.Festpreis()) << '\n'
      << "  Umlage auf Lohn: " << GermanMoney(ends.UmlageLohn());
  if (ends.MengeLohn() != 0.0) {
    out << " (" << GermanFigure(ends.MengeLohn(), "%.3f") << " Lohnstunden, je Stunde "
        << GermanMoney(ends.UmlageLohn() / ends.MengeLohn()) << ")";
  }
  out << '\n';
}

class CalcEndsumCommand : public LvOperation {
 public:
  std::string Name() const override { return "endsum"; }
  std::string Summary() const override {
    return "zeigt die Kalkulation über die Endsumme; \"set SCHLÜSSEL=WERT ...\" ändert sie";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("set", words_, std::string("set SCHLÜSSEL=WERT ... mit ") + kKeyList);
    app.add_option("--group", group_, "die Endsumme dieser Gruppe (OZ) statt des LV");
  }
  int Run(Streams& streams) override {
    const bool setting = !words_.empty();
    std::vector<Assignment> assignments;
    if (setting) {
      if (words_.front() != "set" || words_.size() < 2) {
        throw UsageError("Nach dem LV folgt nichts oder \"set SCHLÜSSEL=WERT ...\".");
      }
      for (std::size_t i = 1; i < words_.size(); ++i) assignments.push_back(Parse(words_[i]));
    }
    CalcLv target(data_dir, project, lv_, setting);
    int32_t group = data::kNullId;
    std::string level = "LV";
    if (!group_.empty()) {
      const boq::TLvPos& entry = target.List()[target.IndexOf(group_)];
      if (!entry.IsGroup()) throw UsageError("\"" + group_ + "\" ist keine Gruppe.");
      group = entry.Struktur.IdBgBeschr;
      level = "Gruppe " + group_;
    }
    if (setting) Set(target, assignments, streams);
    const TEndsumme ends = target.EndSum(false, group);
    if (json) {
      PrintJson(streams.out, target.List().FLv().FId, level, ends, target.AllocationLvName());
    } else {
      PrintText(streams.out, target.List().FLv().Name.Get(), level, ends,
                target.AllocationLvName());
    }
    return kExitOk;
  }

 private:
  void Set(CalcLv& target, const std::vector<Assignment>& assignments, Streams& streams) {
    const int32_t lv = target.List().FLv().FId;
    // The allocation LV is resolved before the step: an unknown one changes nothing.
    std::optional<int32_t> allocation_lv;
    for (const Assignment& assignment : assignments) {
      if (assignment.key != kAllocationLvKey) continue;
      allocation_lv =
          assignment.text == "keine" ? data::kNullId : target.Project().ResolveLv(assignment.text);
      if (*allocation_lv == lv) {
        throw UsageError("Ein LV kann nicht sein eigenes Umlage-LV sein.");
      }
    }
    target.Change("Endsumme einstellen", streams.err, [&] {
      calc::TTbEndsP settings(target.Project().CalcDb());
      const auto store = [&settings](const TEndsumme& ends) {
        if (int result = settings.Put(ends.Record()); result != 0) {
          throw CommandError("Die Endsummen-Einstellungen können nicht gespeichert werden (" +
                             std::to_string(result) + ").");
        }
      };
      // A new allocation LV comes first: the amounts typed are taken on its overheads.
      if (allocation_lv) {
        TEndsumme before = target.EndSum(true, data::kNullId);
        before.SetIdUmlLv(*allocation_lv);
        store(before);
      }
      TEndsumme ends = target.EndSum(true, data::kNullId);
      for (const Assignment& assignment : assignments) {
        if (assignment.key != kAllocationLvKey) Apply(assignment, ends, target);
      }
      store(ends);
      // Changed settings leave the calculated prices out of date until the next run.
      auto header = target.List().FLv();
      header.KalkAktuell = 0;
      target.List().RefreshLvProperties(header);
      boq::SaveLvHeader(target.Db(), target.List());
    });
  }

  std::string lv_, group_;
  std::vector<std::string> words_;
};

}  // namespace

std::unique_ptr<LvOperation> MakeCalcEndsumCommand() {
  return std::make_unique<CalcEndsumCommand>();
}

}  // namespace korvan::app
