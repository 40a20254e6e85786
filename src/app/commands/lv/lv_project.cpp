#include "app/commands/lv/lv_project.h"

#include <filesystem>
#include <ostream>

#include "app/cli/command_error.h"
#include "app/commands/contract/contract_defaults_file.h"
#include "app/program/current_project.h"
#include "app/program/installation.h"
#include "app/program/program_tables.h"
#include "billing/contract/project_id.h"
#include "billing/tables/billing_table_types.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/units/tb_waehrung.h"
#include "calc/sums/lv_sums_save.h"
#include "calc/tables/lv_calc_delete.h"
#include "data/db/path_types.h"

namespace korvan::app {
namespace {

// The database group of the texts; a project keeps one beside its LVs.
constexpr const char* kTextDbGroup = "DB_Texte";
// The calculation's databases: the project's beside its LVs, the master data's with the
// installation's other master data.
constexpr const char* kCalcDbGroup = "DB_KP";
constexpr const char* kCalcMasterDbGroup = "DB_KR";

boq::TValueConverterSettings SettingsOf(const data::TSysConfig& system, int decimals) {
  boq::TValueConverterSettings settings;
  settings.round_amounts = system.RundenWaehrung();
  settings.currency_rounding = system.CurrencyRoundingType();
  settings.qty_rounding = system.QtyRoundingType();
  settings.amount_decimals = decimals;
  return settings;
}

data::TStdDb& OpenExisting(MasterDataSession& session, const data::DatabaseFile& file,
                           const std::string& what) {
  if (!file.Exists()) throw CommandError(what + " fehlt (" + file.DataFileName() + ")");
  return session.OpenDatabase(file);
}

}  // namespace

LvProject::LvProject(const std::string& data_dir, const std::string& project) {
  const std::string base = RequireInstallation(data_dir).string();
  Installation installation = LoadInstallation(base);
  if (!project.empty() && !IsValidProjectName(project)) {
    throw UsageError("\"" + project + "\" ist kein Projektname (ein Ordnername ohne \"/\")");
  }
  name_ = project.empty() ? CurrentProjectName(installation) : project;
  std::string directory;
  if (project.empty()) {
    OpenCurrentProject(installation);
    directory = installation.machine.ObjektDirectory();
    if (directory.empty()) {
      throw CommandError("es ist kein Projekt gewählt; bitte --project <Projekt> angeben");
    }
    if (name_.empty()) name_ = directory;
  } else {
    directory = ProjectDirectory(installation.machine, project);
  }
  const data::DbGroupDefinition* group = data::FindDbGroup(boq::kLvDbGroup);
  file_ = std::make_unique<data::DatabaseFile>(*group, data::kPathObjekt, directory);
  if (!file_->Exists()) {
    throw CommandError("Projekt \"" + name_ + "\" hat keine LV-Datenbank (" +
                       file_->DataFileName() + " fehlt)");
  }
  session_ = std::make_unique<MasterDataSession>(ProgramTables(), base, false);
  const data::DatabaseFiles files(installation.machine.ToDatabaseDirectories());
  if (const data::DatabaseFile* master = files.Find(kCalcMasterDbGroup, data::kPathStammdaten)) {
    calc_master_ = *master;
  }
  if (const data::DatabaseFile* billing = files.Find(billing::kRvDbGroup, data::kPathStammdaten)) {
    billing_ = *billing;
  }
  contract_settings_.number_pattern = installation.system.VertragFormat();
  contract_settings_.vat_rate = installation.system.Mwst();
  euro_settings_ = SettingsOf(installation.system, installation.system.EuroWaeGenauigkeit());
  national_settings_ = SettingsOf(installation.system, installation.system.LandesWaeGenauigkeit());
  base_currency_ = installation.system.IdBasisWae();
}

data::TStdDb& LvProject::CalcDb() {
  const data::DatabaseFile file(*data::FindDbGroup(kCalcDbGroup), data::kPathObjekt,
                                file_->directory());
  return OpenExisting(*session_, file, "Die Kalkulationsdatenbank des Projekts");
}

data::TStdDb& LvProject::CalcMasterDb() {
  if (!calc_master_) throw CommandError("Die Installation hat keine Kalkulationsstammdaten");
  return OpenExisting(*session_, *calc_master_, "Die Kalkulationsstammdaten");
}

data::TStdDb& LvProject::BillingDb() {
  if (!billing_) throw CommandError("Die Installation hat keine Vertragsdatenbank (DB_Rv)");
  return OpenExisting(*session_, *billing_, "Die Vertragsdatenbank");
}

std::string LvProject::ContractDefaultsPath() const {
  if (!billing_) throw CommandError("Die Installation hat keine Vertragsdatenbank (DB_Rv)");
  return (std::filesystem::path(billing_->directory()) / kContractDefaultsFileName).string();
}

const billing::TContractSettings& LvProject::ContractSettings() {
  if (!contract_defaults_read_ && billing_) {
    const std::string path = ContractDefaultsPath();
    if (std::filesystem::exists(path)) contract_settings_.defaults = ReadContractDefaults(path);
  }
  contract_defaults_read_ = true;
  return contract_settings_;
}

int32_t LvProject::ContractProjectNumber(bool assign) {
  if (!assign) return billing::ProjectNumberOf(Db(false));
  int32_t number = data::kNullId;
  if (int result = billing::AssignProjectNumber(Db(true), BillingDb(), &number); result != 0) {
    throw CommandError("Projekt \"" + name_ + "\": es bekommt keine Nummer für seine Verträge (" +
                       std::to_string(result) + ")");
  }
  return number;
}

boq::TValueConverterSettings LvProject::ValueSettings(bool euro) const {
  return euro ? euro_settings_ : national_settings_;
}

boq::TAvaUiValueConverter LvProject::Converter(const boq::t_Lv_DB_VERSION_3100& lv) const {
  const bool euro = lv.LVWaehrung == static_cast<uint8_t>(boq::TWaehrungstyp::wtEuro);
  return boq::TAvaUiValueConverter(boq::TCurrencyList(), ValueSettings(euro));
}

void LvProject::SaveWithSums(boq::TLVPosList& list, std::ostream& warnings) {
  // A removed entry's cost elements go with it, in the same step; a project without a
  // calculation database has none.
  const auto remove_costs = [this](int32_t description) {
    data::TStdDb* calc_db = nullptr;
    try {
      calc_db = &CalcDb();
    } catch (const CommandError&) {
      return;
    }
    if (int result = calc::DeleteItemCalculation(*calc_db, description); result != 0) {
      throw boq::EStoredLvError(calc_db->BasePath() +
                                "0: die Kostenansätze eines entfernten Eintrags können nicht "
                                "gelöscht werden (" +
                                std::to_string(result) + ")");
    }
  };
  const calc::TSumRunResult result =
      calc::SaveWithSums(Db(true), TextDb(), list, Converter(list.FLv()), remove_costs);
  if (const std::string warning = calc::SumRunWarning(result); !warning.empty())
    warnings << warning << '\n';
}

data::TStdDb& LvProject::Db(bool journal) {
  if (db_ == nullptr) {
    // A writer takes the journal before it opens the database, so that writers of one
    // installation follow each other; a step a killed process left is settled first.
    if (journal) {
      session_->Journal();
    } else {
      session_->Db();
    }
    db_ = &session_->OpenDatabase(*file_);
  }
  return *db_;
}

data::TStdDb* LvProject::TextDb() {
  const data::DbGroupDefinition* group = data::FindDbGroup(kTextDbGroup);
  const data::DatabaseFile texts(*group, data::kPathObjekt, file_->directory());
  return texts.Exists() ? &session_->OpenDatabase(texts) : nullptr;
}

const boq::TUnitList& LvProject::Units() {
  if (!units_) {
    try {
      units_ = boq::TUnitList::Load(session_->Db(), boq::kEntryTextLanguage);
    } catch (const boq::EStoredLvError& error) {
      throw CommandError(error.what());
    }
  }
  return *units_;
}

int16_t LvProject::RecordedCurrency() {
  try {
    return boq::ProjectCurrency(boq::ListLvs(Db(false)), data::kOwnerCurrencyId);
  } catch (const boq::EStoredLvError& error) {
    throw CommandError("Projekt \"" + name_ + "\": " + error.what());
  }
}

int16_t LvProject::Currency() {
  const int16_t recorded = RecordedCurrency();
  return recorded != data::kOwnerCurrencyId ? recorded : base_currency_;
}

const boq::TCurrencyList& LvProject::Currencies() {
  if (!currencies_) {
    boq::TTbWaehrung table(session_->Db());
    currencies_ = boq::TCurrencyList::Load(table);
  }
  return *currencies_;
}

std::string LvProject::CurrencySymbol(int16_t id) {
  const boq::TCurrency* currency = Currencies().Find(id);
  return currency != nullptr ? currency->symbol : std::to_string(id);
}

boq::TLVPosList LvProject::LoadLv(const std::string& name_or_id) {
  const int32_t id = ResolveLv(name_or_id);
  try {
    return boq::LoadLvPosList(Db(false), TextDb(), id);
  } catch (const boq::EStoredLvError& error) {
    throw CommandError(error.what());
  }
}

int32_t LvProject::ResolveLv(const std::string& name_or_id) {
  const boq::LvLookup lookup = boq::FindLvByIdOrName(Db(false), name_or_id);
  if (!lookup.found()) throw CommandError("Projekt \"" + name_ + "\": " + lookup.problem);
  return lookup.id;
}

void LvProject::RequireFreeLvName(const std::string& name, const std::string& hint) {
  if (const std::optional<boq::LvSummary> other = boq::FindLvNamed(Db(false), name)) {
    throw CommandError("Projekt \"" + name_ + "\": es gibt schon ein LV \"" + name + "\" (Nummer " +
                       std::to_string(other->id) + ")" + hint);
  }
}

void WarnIfNotUndoable(data::TUndoRedo& journal, std::string_view work, std::ostream& warnings) {
  if (journal.LastError().empty()) return;
  warnings << "Warnung: " << work
           << " kann nicht rückgängig gemacht werden: " << journal.LastError() << '\n';
}

void RunAsOneStep(data::TUndoRedo& journal, data::TOperationKind kind, const std::string& caption,
                  const StepWords& words, std::ostream& warnings,
                  const std::function<std::string()>& change) {
  std::string failure;
  data::TUndoOutcome cancelled;
  {
    JournalStep step(journal, kind, caption);
    failure = change();
    if (!failure.empty()) cancelled = step.Cancel();
  }
  if (!failure.empty()) {
    const std::string outcome =
        cancelled.ok() ? words.nothing_done : words.not_taken_back + ": " + cancelled.error;
    throw CommandError(failure + "; " + outcome);
  }
  WarnIfNotUndoable(journal, words.work, warnings);
}

}  // namespace korvan::app
