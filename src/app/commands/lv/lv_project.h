#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/commands/lists/journal_step.h"
#include "app/commands/lists/master_data_session.h"
#include "billing/contract/dm_vertrag.h"
#include "boq/lv/lv_record.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/currency_list.h"
#include "boq/units/unit_list.h"
#include "boq/units/value_converter.h"
#include "data/db/db_groups.h"
#include "data/tables/std_db.h"

namespace korvan::app {

// The LV database of one project of an installation, opened for one LV command with the
// installation's journal, so that every change is one step `korvan undo` can take back.
class LvProject {
 public:
  // `project` is the folder name below the project root; empty for the user's current
  // project. CommandError when there is no installation, no such project or no LV
  // database in it; UsageError for a project name that cannot be a folder.
  LvProject(const std::string& data_dir, const std::string& project);

  // The project's name as the user knows it.
  const std::string& Name() const { return name_; }
  // The project folder.
  const std::string& Directory() const { return file_->directory(); }
  // The LV database, open for writing; with `journal` the journal is taken first and
  // records every change from then on.
  data::TStdDb& Db(bool journal);
  data::TUndoRedo& Journal() { return session_->Journal(); }
  // The project's text database beside the LV database, open for writing; nullptr when
  // the project has none. Open the LV database first.
  data::TStdDb* TextDb();
  // The units of the master data in the language of entry texts, read on first use.
  const boq::TUnitList& Units();
  // The currency the project's LVs record (a conversion sets it), or none (-1); Currency()
  // falls back to the installation's base currency. CommandError when the LVs disagree.
  int16_t RecordedCurrency();
  int16_t Currency();
  // The symbol of a currency in the master data's currency table ("EUR"); its id when
  // the table does not hold it.
  std::string CurrencySymbol(int16_t id);
  // The master data's currency table, read on first use.
  const boq::TCurrencyList& Currencies();

  // The project's calculation database (DB_KP) and the installation's calculation master
  // data (DB_KR), open for writing; CommandError when either is missing. Open the LV
  // database first.
  data::TStdDb& CalcDb();
  data::TStdDb& CalcMasterDb();
  // The installation's billing database (DB_Rv, the contracts of all projects), open for
  // writing; CommandError when it is missing. Open the LV database first.
  data::TStdDb& BillingDb();
  // The project's number in the billing database, given on first use when `assign`;
  // the null id when it has none and `assign` is false.
  int32_t ContractProjectNumber(bool assign);
  // How the installation numbers new contracts, its VAT rate and the contract defaults
  // (read on first use; CommandError naming the line of a wrong defaults file).
  const billing::TContractSettings& ContractSettings();
  // The contract defaults file beside the billing database; CommandError when the
  // installation has no billing database.
  std::string ContractDefaultsPath() const;
  // How the installation rounds amounts; `euro`: the LV is kept in euros (else in the
  // national currency), which chooses the amount decimals.
  boq::TValueConverterSettings ValueSettings(bool euro) const;
  // The converter that rounds the amounts of `lv` as the installation rounds them.
  boq::TAvaUiValueConverter Converter(const boq::t_Lv_DB_VERSION_3100& lv) const;
  // Sums `list` and writes it back (header and changed entries): the one way an LV command
  // saves, so that every change of a price or quantity updates the totals. A warning of the
  // sum run goes to `warnings`.
  void SaveWithSums(boq::TLVPosList& list, std::ostream& warnings);

  // The id of the LV that the command line names by id or name; CommandError (in the
  // project's words) when it names none or more than one.
  int32_t ResolveLv(const std::string& name_or_id);
  // The LV named by id or name with its entries and short texts, loaded from the project's
  // LV database (open it first); CommandError when it names none or its records are unreadable.
  boq::TLVPosList LoadLv(const std::string& name_or_id);
  // CommandError when the project has an LV of that name already; `hint` is appended.
  void RequireFreeLvName(const std::string& name, const std::string& hint = {});

 private:
  std::string name_;
  std::unique_ptr<data::DatabaseFile> file_;
  std::unique_ptr<MasterDataSession> session_;
  data::TStdDb* db_ = nullptr;
  std::optional<boq::TUnitList> units_;
  std::optional<data::DatabaseFile> calc_master_;
  std::optional<data::DatabaseFile> billing_;
  billing::TContractSettings contract_settings_;
  bool contract_defaults_read_ = false;
  boq::TValueConverterSettings euro_settings_;
  boq::TValueConverterSettings national_settings_;
  std::optional<boq::TCurrencyList> currencies_;
  int16_t base_currency_ = 0;
};

// How a step's messages speak of its work.
struct StepWords {
  std::string nothing_done;  // "es wurde nichts gelöscht"
  std::string
      not_taken_back;  // "die bis dahin gelöschten Datensätze konnten nicht zurückgeholt werden"
  std::string work;    // "das Löschen", as in "… kann nicht rückgängig gemacht werden"
};

// Says on `warnings` when the journal could not record the step just ended, so that the
// user knows `korvan undo` will not take it back.
void WarnIfNotUndoable(data::TUndoRedo& journal, std::string_view work, std::ostream& warnings);

// Runs `change` as one step of the journal, whole or not at all: when it fails (returns a
// failure text or throws), what it wrote is taken back and the step forgotten, and a
// CommandError names the failure and whether the taking back worked.
void RunAsOneStep(data::TUndoRedo& journal, data::TOperationKind kind, const std::string& caption,
                  const StepWords& words, std::ostream& warnings,
                  const std::function<std::string()>& change);

// The failure text of `change`: empty when it returns, what() of the first of `Errors`
// it throws; other exceptions pass.
template <typename Change>
std::string FailureTextOf(Change& change) {
  change();
  return {};
}
template <typename Error, typename... More, typename Change>
std::string FailureTextOf(Change& change) {
  try {
    return FailureTextOf<More...>(change);
  } catch (const Error& error) {
    return error.what();
  }
}

// The same for a change that fails by throwing one of `Errors`.
template <typename... Errors, typename Change>
requires(sizeof...(Errors) >
         0) void RunAsOneStep(data::TUndoRedo& journal, data::TOperationKind kind,
                              const std::string& caption, const StepWords& words,
                              std::ostream& warnings, Change&& change) {
  RunAsOneStep(journal, kind, caption, words, warnings,
               [&]() -> std::string { return FailureTextOf<Errors...>(change); });
}

}  // namespace korvan::app
