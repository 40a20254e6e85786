#include "app/commands/lv/lv_entry_edit.h"

#include <fstream>
#include <sstream>

#include "app/cli/command_error.h"
#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_lv_hierarchie.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/oz/oz_hierarchy.h"
#include "boq/text/text_conversions.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

std::string ReadLongText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("Die Datei \"" + path + "\" kann nicht gelesen werden.");
  std::ostringstream content;
  content << in.rdbuf();
  const std::string text = content.str();
  // A rich text is stored as it is; a plain text becomes one.
  return text.rfind("{\\rtf", 0) == 0 ? text : boq::WrapPlainAsRtf(text);
}

void CheckFieldsOfKind(const EntryValues& values, const boq::TLvPos& entry) {
  if (values.unit) {
    if (const std::string problem = boq::UnitProblem(*values.unit); !problem.empty())
      throw UsageError(problem + ".");
    if (!entry.IsQuantityItem())
      throw UsageError(std::string("Eine Einheit haben nur Positionen (P, L, U), nicht die Art ") +
                       entry.Kind() + ".");
  }
  if ((values.qty || values.unit_price) && !entry.IsQuantityItem()) {
    throw UsageError(std::string("Menge und Preis haben nur Positionen (P, L, U), nicht die Art ") +
                     entry.Kind() + ".");
  }
  if (values.unit_price && entry.Kind() == 'U') {
    throw UsageError("Eine Unterbeschreibung (U) hat keinen Preis.");
  }
}

// The hierarchy rows follow the mask whenever it changed.
void SaveLevels(data::TStdDb& db, const boq::TLVPosList& list) {
  boq::TTbLvHierarchie levels(db);
  if (int result = levels.DeleteAllOf(list.FLv().FId); result != storage::kOk) {
    throw boq::EStoredLvError(db.BasePath() + "0: die OZ-Stufen können nicht gelöscht werden");
  }
  for (const boq::THierarchyLevel& level : boq::HierarchyFromMask(list.FOzMask().FMask())) {
    levels.InitRecord();
    boq::FillHierarchieRecord(level, list.FLv().FId, levels.Rec());
    if (int result = levels.UpDateRec(); result != storage::kOk) {
      throw boq::EStoredLvError(db.BasePath() + "0: die OZ-Stufe " + std::to_string(level.SzLv) +
                                " kann nicht gespeichert werden");
    }
  }
}

}  // namespace

void ApplyEntryValues(const EntryValues& values, boq::TLvPos& entry, LvProject& target) {
  CheckFieldsOfKind(values, entry);
  if ((values.short_text || values.long_file) && target.TextDb() == nullptr) {
    throw CommandError(
        "Das Projekt hat keine Textdatenbank; Texte können nicht gespeichert werden.");
  }
  if (values.short_text) entry.ShortText = *values.short_text;
  if (values.long_file) {
    entry.LongText = ReadLongText(*values.long_file);
    entry.LongTextChanged = true;
  }
  if (values.qty) entry.LvBeschr.FMenge = *values.qty;
  if (values.unit_price) entry.LvBeschr.SchaetzEP.Betrag = *values.unit_price;
  if (values.unit) {
    // A symbol of the unit list is linked to its unit; any other stays free text.
    const boq::t_Einheit* listed = target.Units().FindSymbol(*values.unit);
    entry.SetUnit(*values.unit, listed != nullptr ? listed->IdEinheit : data::kNullId16);
  }
}

void EditLvInOneStep(LvProject& target, int32_t lv_id, const std::string& caption, bool long_texts,
                     bool save_levels, const std::function<void(boq::TLVPosList&)>& edit,
                     std::ostream& warnings) {
  data::TStdDb& db = target.Db(true);
  boq::TLVPosList list = boq::LoadLvPosList(db, target.TextDb(), lv_id, long_texts);
  if (list.FReadOnly()) throw CommandError("Das LV ist schreibgeschützt.");
  edit(list);
  RunAsOneStep<boq::EStoredLvError>(
      target.Journal(), data::TOperationKind::okEdit,
      caption + " in LV \"" + list.FLv().Name.Get() + "\"",
      {"es wurde nichts geändert", "die Änderung konnte nicht zurückgenommen werden",
       "die Änderung"},
      warnings, [&] {
        if (save_levels) SaveLevels(db, list);
        target.SaveWithSums(list, warnings);
      });
}

}  // namespace korvan::app
