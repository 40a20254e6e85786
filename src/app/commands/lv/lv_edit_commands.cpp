#include "app/commands/lv/lv_edit_commands.h"

#include <functional>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_entry_edit.h"
#include "app/commands/lv/lv_project.h"
#include "boq/lv/lv_codes.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_references.h"
#include "boq/oz/oz_format.h"

namespace korvan::app {
namespace {

// What an edit tells the user: the text for people and the JSON object for scripts.
struct EditOutcome {
  std::string text;
  std::string json;
};

// Loads the LV, runs `edit` on it in memory (which refuses by throwing before anything is
// written), then saves it in one journal step; a failed save takes back what it wrote.
class LvEditOperation : public LvOperation {
 protected:
  using Edit = std::function<EditOutcome(boq::TLVPosList&, LvProject&)>;

  int RunEdit(Streams& streams, const std::string& caption, bool long_texts, const Edit& edit) {
    LvProject target(data_dir, project);
    target.Db(true);
    const int32_t id = target.ResolveLv(lv_);
    EditOutcome outcome;
    EditLvInOneStep(
        target, id, caption, long_texts, levels_changed_,
        [&](boq::TLVPosList& list) { outcome = edit(list, target); }, streams.err);
    streams.out << (json ? outcome.json : outcome.text) << '\n';
    return kExitOk;
  }

  static int EntryAt(const boq::TLVPosList& list, const std::string& oz) {
    const int index = boq::FindEntryByOz(list, oz);
    if (index < 0) throw CommandError("Im LV gibt es keinen Eintrag mit der OZ \"" + oz + "\".");
    return index;
  }

  static std::string EntryJson(const boq::TLvPos& entry, const std::string& action) {
    return "{\"oz\": " + JsonString(entry.LvBgBeschr.OZ.Get()) +
           ", \"kind\": " + JsonString(std::string(1, entry.Kind())) + ", \"" + action +
           "\": true}";
  }

  std::string lv_;
  bool levels_changed_ = false;
};

class LvAddCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "add"; }
  std::string Summary() const override {
    return "fügt einen Eintrag an (B Gruppe, P Position, H Hinweis, ...), nummeriert nach der "
           "Maske";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("kind", kind_, "Art: B, P, L, U, H, A, E, K oder T")->required();
    auto* under =
        app.add_option("--under", under_, "unter dieser Gruppe (OZ), als letzter Eintrag");
    app.add_option("--after", after_, "hinter diesem Eintrag (OZ) und seinen Untereinträgen")
        ->excludes(under);
    app.add_option("--oz", oz_, "diese OZ statt der automatischen Nummer");
    app.add_option("--short", values_.short_text, "Kurztext");
    app.add_option("--long-file", values_.long_file,
                   "Datei mit dem Langtext (RTF oder reiner Text)");
    app.add_option("--qty", qty_, "Menge, z. B. 2,5");
    app.add_option("--unit", values_.unit, "Einheit");
    app.add_option("--up", unit_price_, "Einheitspreis (Schätzung), z. B. 12,50");
  }
  int Run(Streams& streams) override {
    if (kind_.size() != 1 || boq::kKzBgBeschrCodes.find(kind_[0]) == std::string_view::npos) {
      throw UsageError("Unbekannte Art \"" + kind_ + "\": " + std::string(boq::kKzBgBeschrText));
    }
    if (qty_) values_.qty = RequireGermanNumber(*qty_, "--qty");
    if (unit_price_) values_.unit_price = RequireGermanNumber(*unit_price_, "--up");
    return RunEdit(
        streams, "Eintrag anfügen", false, [this](boq::TLVPosList& list, LvProject& target) {
          boq::TLvPos entry = boq::NewLvPos(kind_[0]);
          ApplyEntryValues(values_, entry, target);
          boq::TLvPlace place;
          if (!under_.empty()) {
            place = {boq::TLvPlace::Kind::kUnder, EntryAt(list, under_)};
            if (!list[place.index].IsGroup())
              throw UsageError("\"" + under_ + "\" ist keine Gruppe.");
          } else if (!after_.empty()) {
            place = {boq::TLvPlace::Kind::kAfter, EntryAt(list, after_)};
          }
          const boq::TLvPos& added = list[boq::AddEntry(list, std::move(entry), place, oz_)];
          return EditOutcome{
              "Eintrag " + added.LvBgBeschr.OZ.Get() + " (" + added.Kind() + ") angefügt",
              EntryJson(added, "added")};
        });
  }

 private:
  std::string kind_, under_, after_, oz_;
  std::optional<std::string> qty_, unit_price_;
  EntryValues values_;
};

class LvSetCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "set"; }
  std::string Summary() const override {
    return "ändert Felder eines Eintrags: short=, long-file=, qty=, unit=, up=, oz=, ref= (Bezug "
           "einer Zuschlagsposition S), discount=, lumpsum= (Gruppe); ohne OZ Nachlass und "
           "Pauschalsumme des LV";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "OZ des Eintrags (ohne: das LV selbst)");
    app.add_option("assignments", assignments_, "Feld=Wert ...");
  }
  int Run(Streams& streams) override {
    // An OZ has no "=": without one the assignments are the LV's own.
    if (oz_.find('=') != std::string::npos) {
      assignments_.insert(assignments_.begin(), oz_);
      oz_.clear();
    }
    if (assignments_.empty()) throw UsageError("Es fehlt Feld=Wert.");
    std::optional<double> discount, lump_sum;
    EntryValues values;
    std::optional<std::string> new_oz;
    std::optional<std::string> reference;  // the OZ of the surcharge's base, "" for none
    for (const std::string& assignment : assignments_) {
      const std::size_t equals = assignment.find('=');
      if (equals == std::string::npos)
        throw UsageError("\"" + assignment + "\" ist kein Feld=Wert.");
      const std::string field = assignment.substr(0, equals);
      const std::string value = assignment.substr(equals + 1);
      if (field == "short") {
        values.short_text = value;
      } else if (field == "long-file") {
        values.long_file = value;
      } else if (field == "qty") {
        values.qty = RequireGermanNumber(value, "Feld " + field);
      } else if (field == "up") {
        values.unit_price = RequireGermanNumber(value, "Feld " + field);
      } else if (field == "unit") {
        values.unit = value;
      } else if (field == "oz") {
        new_oz = value;
      } else if (field == "ref") {
        reference = value;
      } else if (field == "discount") {
        discount = Percent(value);
      } else if (field == "lumpsum") {
        lump_sum = Amount(value);
      } else {
        throw UsageError("Unbekanntes Feld \"" + field +
                         "\" (short, long-file, qty, up, unit, oz, ref, discount, lumpsum).");
      }
    }
    if (oz_.empty()) {
      if (values.short_text || values.long_file || values.qty || values.unit_price || values.unit ||
          new_oz || reference) {
        throw UsageError("Ohne OZ ändert \"lv set\" nur das LV selbst: discount=, lumpsum=.");
      }
      return SetLvDiscount(streams, discount, lump_sum);
    }
    return RunEdit(streams, "Eintrag ändern", false, [&](boq::TLVPosList& list, LvProject& target) {
      const int index = EntryAt(list, oz_);
      if ((discount || lump_sum) && !list[index].IsGroup()) {
        throw UsageError(std::string("Nachlass und Pauschalsumme haben nur Gruppen (B) und das LV, "
                                     "nicht die Art ") +
                         list[index].Kind() + ".");
      }
      if (discount) list[index].LvBgBeschr.NachlassProz = *discount;
      if (lump_sum) list[index].LvBg.SummePsch.Betrag = *lump_sum;
      if (reference) SetReference(list, index, *reference);
      boq::TLvPos& entry = list[index];
      ApplyEntryValues(values, entry, target);
      if (new_oz) entry.SetOz(boq::FormLvOZ(*new_oz, list.FOzMask().FMask()));
      return EditOutcome{"Eintrag " + entry.LvBgBeschr.OZ.Get() + " geändert",
                         EntryJson(entry, "changed")};
    });
  }

 private:
  // A discount percent: at most the whole amount.
  static double Percent(const std::string& value) {
    const double percent = RequireGermanNumber(value, "Feld discount");
    if (percent < 0.0 || percent > 100.0)
      throw UsageError("Der Nachlass \"" + value + "\" liegt nicht zwischen 0 und 100 Prozent.");
    return percent;
  }
  static double Amount(const std::string& value) {
    const double amount = RequireGermanNumber(value, "Feld lumpsum");
    if (amount < 0.0) throw UsageError("Die Pauschalsumme \"" + value + "\" ist negativ.");
    return amount;
  }

  int SetLvDiscount(Streams& streams, std::optional<double> discount,
                    std::optional<double> lump_sum) {
    return RunEdit(streams, "LV-Nachlass ändern", false, [&](boq::TLVPosList& list, LvProject&) {
      boq::t_Lv_DB_VERSION_3100 lv = list.FLv();
      if (discount) lv.NachlassProz = *discount;
      if (lump_sum) lv.SummePsch.Betrag = *lump_sum;
      list.RefreshLvProperties(lv);
      return EditOutcome{"LV \"" + lv.Name.Get() + "\" geändert",
                         "{\"lv\": " + std::to_string(lv.FId) + ", \"changed\": true}"};
    });
  }

  // ref=OZ makes the entry a surcharge item "S" on the item OZ; ref= drops its reference.
  static void SetReference(boq::TLVPosList& list, int index, const std::string& base) {
    if (base.empty()) {
      boq::ClearReferences(list, index);
      return;
    }
    if (std::string problem = boq::SetReference(list, index, EntryAt(list, base)); !problem.empty())
      throw UsageError("Bezug geht nicht: " + problem + ".");
  }

  std::string oz_;
  std::vector<std::string> assignments_;
};

class LvMoveCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "move"; }
  std::string Summary() const override {
    return "verschiebt einen Eintrag mit seinen Untereinträgen";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "OZ des Eintrags")->required();
    app.add_option("--after", after_, "hinter diesen Eintrag (OZ)")->required();
  }
  int Run(Streams& streams) override {
    return RunEdit(
        streams, "Eintrag verschieben", false, [this](boq::TLVPosList& list, LvProject&) {
          const int index = EntryAt(list, oz_);
          const int32_t id = list[index].Struktur.IdBgBeschr;
          if (std::string problem = boq::MoveEntry(list, index, EntryAt(list, after_));
              !problem.empty()) {
            throw UsageError("\"" + oz_ + "\": " + problem + ".");
          }
          const boq::TLvPos& moved = list[list.SearchItemIndexByIdLvBgBeschr(id)];
          return EditOutcome{"Eintrag " + oz_ + " verschoben, jetzt " + moved.LvBgBeschr.OZ.Get(),
                             EntryJson(moved, "moved")};
        });
  }

 private:
  std::string oz_, after_;
};

class LvRemoveCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "remove"; }
  std::string Summary() const override {
    return "entfernt einen Eintrag mit seinen Untereinträgen";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("oz", oz_, "OZ des Eintrags")->required();
  }
  int Run(Streams& streams) override {
    return RunEdit(streams, "Eintrag entfernen", false, [this](boq::TLVPosList& list, LvProject&) {
      const int index = EntryAt(list, oz_);
      const boq::TLvPos removed = list[index];
      const int count = boq::SubtreeEnd(list, index) - index;
      if (std::string problem = boq::RemoveEntry(list, index); !problem.empty())
        throw CommandError("\"" + oz_ + "\" bleibt: " + problem + ".");
      return EditOutcome{"Eintrag " + removed.LvBgBeschr.OZ.Get() + " entfernt (" +
                             std::to_string(count) + (count == 1 ? " Eintrag)" : " Einträge)"),
                         EntryJson(removed, "removed")};
    });
  }

 private:
  std::string oz_;
};

class LvRenumberCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "renumber"; }
  std::string Summary() const override { return "nummeriert das LV nach seiner Maske neu"; }
  void Define(CLI::App& app) override { AddLvArgument(app, lv_); }
  int Run(Streams& streams) override {
    return RunEdit(streams, "Positionsnumerierung", false, [](boq::TLVPosList& list, LvProject&) {
      std::vector<std::string> before;
      for (const boq::TLvPos& entry : list.Entries()) before.emplace_back(entry.Oz());
      boq::RenumberLv(list);
      int changed = 0;
      for (int i = 0; i < list.Count(); ++i)
        changed += before[static_cast<std::size_t>(i)] != list[i].Oz();
      return EditOutcome{std::to_string(changed) + " von " + std::to_string(list.Count()) +
                             " Einträgen neu nummeriert",
                         "{\"entries\": " + std::to_string(list.Count()) +
                             ", \"renumbered\": " + std::to_string(changed) + "}"};
    });
  }
};

class LvStructureCommand : public LvEditOperation {
 public:
  std::string Name() const override { return "structure"; }
  std::string Summary() const override {
    return "gibt dem LV eine neue OZ-Maske und nummeriert neu";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("--mask", mask_, "die neue OZ-Maske, z. B. 11.22.PPPP")->required();
  }
  int Run(Streams& streams) override {
    if (std::string problem = boq::CheckOzMask(mask_); !problem.empty()) {
      throw UsageError("Die Maske geht nicht: " + problem + ".");
    }
    levels_changed_ = true;
    return RunEdit(
        streams, "Positionsnumerierung", false, [this](boq::TLVPosList& list, LvProject&) {
          if (std::string problem = boq::RestructureLv(list, mask_); !problem.empty()) {
            throw CommandError("Die Maske geht nicht: " + problem + ".");
          }
          return EditOutcome{
              "Maske " + mask_ + ", " + std::to_string(list.Count()) + " Einträge neu nummeriert",
              "{\"mask\": " + JsonString(mask_) + ", \"entries\": " + std::to_string(list.Count()) +
                  "}"};
        });
  }

 private:
  std::string mask_;
};

}  // namespace

void AddLvEditOperations(std::vector<std::unique_ptr<LvOperation>>& operations) {
  operations.push_back(std::make_unique<LvAddCommand>());
  operations.push_back(std::make_unique<LvSetCommand>());
  operations.push_back(std::make_unique<LvMoveCommand>());
  operations.push_back(std::make_unique<LvRemoveCommand>());
  operations.push_back(std::make_unique<LvRenumberCommand>());
  operations.push_back(std::make_unique<LvStructureCommand>());
}

}  // namespace korvan::app
