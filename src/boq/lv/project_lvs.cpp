#include "boq/lv/project_lvs.h"

#include <algorithm>
#include <climits>
#include <optional>

#include "boq/lv/lv_texts.h"
#include "boq/lv/tb_lv.h"
#include "boq/lv/tb_struktur.h"
#include "boq/qty/item_quantities.h"
#include "boq/text/tb_texte.h"
#include "boq/vars/variable_codes.h"
#include "data/common/cp1252.h"
#include "data/common/result_code_text.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::boq {
namespace {

// The id counter of the LVs in the LV database.
constexpr char kLvCounterKind = 'L';
constexpr std::string_view kLvCounterName = "LV";

using NameCapacity = decltype(t_Lv_DB_VERSION_3100::Name);
using MaskCapacity = decltype(t_Lv_DB_VERSION_3100::PosMaske);

[[noreturn]] void Fail(const data::TStdDb& db, const std::string& what, int code,
                       const data::TStdTB* table = nullptr) {
  std::string text = db.BasePath() + "0: " + what + ": " + data::ResultCodeText(code);
  if (table != nullptr && !table->LastErrorText().empty())
    text += " (" + table->LastErrorText() + ")";
  throw EStoredLvError(text);
}

bool OnlyDigits(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Why `text` does not fit a short string of `capacity` characters ("" when it does).
std::string FitProblem(std::string_view what, std::string_view text, size_t capacity) {
  data::Cp1252Report report;
  const std::string stored = data::Utf8ToCp1252(text, &report);
  if (!report.Exact()) {
    return std::string(what) + " \"" + std::string(text) +
           "\" enthält Zeichen, die nicht gespeichert werden können (nur Windows-1252)";
  }
  if (stored.size() > capacity) {
    return std::string(what) + " \"" + std::string(text) + "\" ist zu lang (" +
           std::to_string(stored.size()) + " Zeichen, höchstens " + std::to_string(capacity) + ")";
  }
  return {};
}

// The id `text` means, when it is one.
std::optional<int32_t> AsId(std::string_view text) {
  if (!OnlyDigits(text) || text.size() > 10) return std::nullopt;
  const int64_t value = std::stoll(std::string(text));
  if (value > INT32_MAX) return std::nullopt;
  return static_cast<int32_t>(value);
}

std::string Describe(const LvSummary& lv) {
  return "LV " + std::to_string(lv.id) + " \"" + lv.name + "\"";
}

}  // namespace

std::vector<LvSummary> ListLvs(data::TStdDb& db) {
  TTbLV headers(db);
  std::vector<std::vector<uint8_t>> records;
  if (int result = headers.GetBatch("", '3', records); result != storage::kOk) {
    Fail(db, "die LVs können nicht gelesen werden", result, &headers);
  }
  TTbStruktur entries(db);
  std::vector<LvSummary> lvs;
  for (const std::vector<uint8_t>& record : records) {
    const t_Lv_DB_VERSION_3100 header = TTbLV::Of(record);
    LvSummary lv{header.FId, header.Name.Get(),   header.Status,
                 0,          header.Summe.Betrag, header.IdWae};
    if (int result = entries.CountOf(lv.id, &lv.entries); result != storage::kOk) {
      Fail(db, "die Einträge von " + Describe(lv) + " können nicht gezählt werden", result,
           &entries);
    }
    lvs.push_back(std::move(lv));
  }
  return lvs;
}

int16_t ProjectCurrency(const std::vector<LvSummary>& lvs, int16_t fallback) {
  const LvSummary* recorded = nullptr;
  for (const LvSummary& lv : lvs) {
    if (lv.currency == data::kOwnerCurrencyId) continue;
    if (recorded != nullptr && recorded->currency != lv.currency) {
      throw EStoredLvError("die LVs des Projekts sind in verschiedenen Währungen: " +
                           Describe(*recorded) + " in " + std::to_string(recorded->currency) +
                           ", " + Describe(lv) + " in " + std::to_string(lv.currency));
    }
    recorded = &lv;
  }
  return recorded != nullptr ? recorded->currency : fallback;
}

LvLookup FindLvByIdOrName(data::TStdDb& db, std::string_view name_or_id) {
  const std::optional<int32_t> id = AsId(name_or_id);
  std::vector<LvSummary> meant;
  for (LvSummary& lv : ListLvs(db)) {
    if ((id && lv.id == *id) || lv.name == name_or_id) meant.push_back(std::move(lv));
  }
  LvLookup lookup;
  if (meant.size() == 1) {
    lookup.id = meant.front().id;
  } else if (meant.empty()) {
    lookup.problem = "kein LV mit der Nummer oder dem Namen \"" + std::string(name_or_id) + "\"";
  } else {
    lookup.problem = "\"" + std::string(name_or_id) + "\" ist nicht eindeutig:";
    for (const LvSummary& lv : meant) lookup.problem += " " + Describe(lv) + ";";
    lookup.problem.back() = '.';
    lookup.problem += " Bitte die Nummer angeben.";
  }
  return lookup;
}

std::string CheckNewLv(const NewLv& lv) {
  if (lv.name.empty()) return "das LV braucht einen Namen";
  if (std::string problem = FitProblem("der Name", lv.name, NameCapacity::kCapacity);
      !problem.empty()) {
    return problem;
  }
  if (OnlyDigits(lv.name)) {
    return "der Name \"" + lv.name +
           "\" besteht nur aus Ziffern und wäre von einer LV-Nummer nicht zu unterscheiden";
  }
  return FitProblem("die OZ-Maske", lv.mask, MaskCapacity::kCapacity);
}

std::optional<LvSummary> FindLvNamed(data::TStdDb& db, std::string_view name) {
  for (LvSummary& lv : ListLvs(db)) {
    if (lv.name == name) return std::move(lv);
  }
  return std::nullopt;
}

int32_t CreateLv(data::TStdDb& db, const NewLv& lv) {
  TTbLV headers(db);
  int32_t sort_number = 0;
  const bool any = headers.GetLastKey("", '2');
  if (any) sort_number = headers.Rec().SzPrj;

  data::TTbCounter counters(db);
  int32_t id = 0;
  if (int result = counters.NextId(kLvCounterKind, kLvCounterName, &id); result != storage::kOk) {
    Fail(db, "keine neue LV-Nummer", result, &counters);
  }
  headers.InitRecord();
  t_Lv_DB_VERSION_3100& header = headers.Rec();
  header.FId = id;
  if (any) header.SzPrj = sort_number < INT32_MAX ? sort_number + 1 : sort_number;
  header.Name.Set(lv.name);
  header.PosMaske.Set(lv.mask);
  header.IdWae = lv.currency;
  if (int result = headers.UpDateRec(); result != storage::kOk) {
    Fail(db, "LV \"" + lv.name + "\" kann nicht gespeichert werden", result, &headers);
  }
  return id;
}

void DeleteLv(data::TStdDb& db, int32_t id, data::TStdDb* text_db) {
  TTbLV headers(db);
  if (!headers.FindLv(id)) {
    throw EStoredLvError(db.BasePath() + "0: LV " + std::to_string(id) + " gibt es nicht");
  }
  const std::string name = headers.CurrentRecordToString();
  if (text_db != nullptr) {
    if (int result = DeleteLvTexts(*text_db, id, DescriptionsOf(db, id)); result != storage::kOk) {
      Fail(*text_db, "die Texte von " + name + " können nicht gelöscht werden", result);
    }
    TTbTexte variable_lines(*text_db);
    for (const int32_t variable : VariablesOfLv(db, id)) {
      if (int result = variable_lines.DeleteOwner(variable, kVariableTextKind);
          result != storage::kOk) {
        Fail(*text_db, "die Texte der Variablen von " + name + " können nicht gelöscht werden",
             result);
      }
    }
  }
  if (int result = headers.DeleteRec(); result != storage::kOk) {
    Fail(db, name + " kann nicht gelöscht werden", result, &headers);
  }
}

}  // namespace korvan::boq
