// The currencies and units the demo's sample needs beside the built-in currency list.
#include "app/commands/demo/sample_master_data.h"

#include <ostream>
#include <string_view>

#include "app/cli/command_error.h"
#include "app/commands/db/db_database.h"
#include "app/program/command_sign_in.h"
#include "app/program/data_dir.h"
#include "app/program/installation.h"
#include "boq/units/currency_records.h"
#include "boq/units/tb_einheit.h"
#include "boq/units/tb_waehrung.h"
#include "data/db/db_groups.h"
#include "data/records/null_values.h"
#include "data/tables/std_db.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::app::demo {
namespace {

// The language of the sample units: German, the program's default language.
constexpr int16_t kGerman = 49;

struct SampleCurrency {
  int32_t id;
  std::string_view land;
  std::string_view bez;
  std::string_view symbol;
  double faktor;  // units per euro
  bool basis;
  bool national;
  int32_t id_land;
};

// Currencies beside the built-in list a new installation starts with (the euro and its
// former national currencies), under their country numbers.
constexpr SampleCurrency kSampleCurrencies[] = {
    {41, "Schweiz", "Schweizer Franken", "CHF", 0.94, false, false, 41},
    {1, "Vereinigte Staaten", "US-Dollar", "USD", 1.08, false, false, 1},
    {44, "Vereinigtes Königreich", "Pfund Sterling", "GBP", 0.85, false, false, 44},
};

struct SampleUnit {
  int16_t id;
  std::string_view symbol;
  std::string_view name;
  uint8_t decimals;
};

constexpr SampleUnit kSampleUnits[] = {
    {1, "m", "Meter", 3},      {2, "m2", "Quadratmeter", 3}, {3, "m3", "Kubikmeter", 3},
    {4, "St", "Stück", 0},     {5, "psch", "pauschal", 0},   {6, "h", "Stunde", 2},
    {7, "kg", "Kilogramm", 3}, {8, "t", "Tonne", 3},
};

// Writes the table's current record as a new one; a refusal stops the demo with the
// table layer's own message.
void Insert(data::TStdTB& table, const data::TCollectedMessages& messages) {
  if (const int result = table.UpDateRec(); result != storage::kOk) {
    const std::string text =
        messages.errors.empty() ? table.LastErrorText() : messages.errors.back();
    throw CommandError(table.CurrentRecordToString() + " kann nicht gespeichert werden: " +
                       (text.empty() ? ResultCodeText(result) : text));
  }
}

int AddCurrencies(data::TStdDb& db, const data::TCollectedMessages& messages) {
  boq::TTbWaehrung table(db);
  int added = 0;
  for (const SampleCurrency& sample : kSampleCurrencies) {
    if (table.ExistsRec(data::KeyNumber(sample.id))) continue;
    table.InitRecord();
    boq::t_Waehrung& currency = table.Rec();
    currency.ID = sample.id;
    currency.Land.Set(sample.land);
    currency.Bez.Set(sample.bez);
    currency.Symbol.Set(sample.symbol);
    currency.Faktor = sample.faktor;
    currency.Nachkomma = 2;
    currency.Nachkomma2 = 2;
    currency.kzBasis = sample.basis ? 1 : 0;
    currency.kzLand = sample.national ? 1 : 0;
    currency.IdLand = sample.id_land;
    Insert(table, messages);
    ++added;
  }
  return added;
}

int AddUnits(data::TStdDb& db, const data::TCollectedMessages& messages) {
  boq::TTbEinheit table(db);
  int added = 0;
  for (const SampleUnit& sample : kSampleUnits) {
    if (table.ExistsRec(data::KeyNumber16(kGerman) + data::KeyNumber16(sample.id))) continue;
    table.InitRecord();
    boq::t_Einheit& unit = table.Rec();
    unit.IdLang = kGerman;
    unit.IdEinheit = sample.id;
    unit.Sz = static_cast<int16_t>(sample.id * 10);
    unit.Bezeichnung.Set(sample.name);
    unit.Einheit.Set(sample.symbol);
    unit.Nachkommastellen = sample.decimals;
    Insert(table, messages);
    ++added;
  }
  return added;
}

}  // namespace

void AddSampleMasterData(const std::string& base_dir, std::ostream& out) {
  const Installation installation = LoadInstallation(base_dir);
  const data::DatabaseFiles files(installation.machine.ToDatabaseDirectories());
  const data::DatabaseFile* stamm = files.Find("DB_Stamm", data::kPathStammdaten);
  if (stamm == nullptr) throw CommandError("die Installation hat kein Stammdatenverzeichnis");

  const auto sign_in = SignInToDirectories(CommandUser(installation.machine.SystemUserName()),
                                           {stamm->directory()}, false);
  data::TCollectedMessages messages;
  data::TStdDb db(*stamm);
  db.SetMessages(&messages);
  db.SetModifiedById(installation.machine.SystemUserName());
  if (const int opened = db.DbOpen(true); opened != storage::kOk) {
    throw CommandError(stamm->DataFileName() + ": " + ResultCodeText(opened));
  }
  const int currencies = AddCurrencies(db, messages);
  const int units = AddUnits(db, messages);
  if (const int closed = db.DbClose(); closed != storage::kOk) {
    throw CommandError(stamm->DataFileName() + ": " + ResultCodeText(closed));
  }
  out << "Stammdaten " << stamm->DataFileName() << ": " << currencies << " Währungen und " << units
      << " Einheiten eingetragen\n";
}

}  // namespace korvan::app::demo
