// `korvan lv delete <lv>`: an LV with everything that hangs on it, one step of the
// journal.
#include "app/commands/lv/lv_delete_command.h"

#include <filesystem>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_project.h"
#include "award/tables/tb_bieter.h"
#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_lv.h"
#include "boq/model/lv_pos_list_io.h"
#include "calc/tables/lv_calc_delete.h"

namespace korvan::app {
namespace {

// The LV as the list shows it.
boq::LvSummary SummaryOf(data::TStdDb& db, int32_t id) {
  for (boq::LvSummary& lv : boq::ListLvs(db)) {
    if (lv.id == id) return std::move(lv);
  }
  return {id, "", 'N', 0, 0.0};
}

}  // namespace

void LvDeleteCommand::Define(CLI::App& app) {
  AddLvArgument(app, lv_);
}

int LvDeleteCommand::Run(Streams& streams) {
  LvProject target(data_dir, project);
  data::TStdDb& db = target.Db(true);
  const boq::LvSummary lv = SummaryOf(db, target.ResolveLv(lv_));
  const std::string caption = "LV \"" + lv.name + "\" löschen";
  const std::string bim_folder = boq::TTbLV::BimImportFolder(target.Directory(), lv.id);
  std::error_code missing;
  const bool had_bim_folder = std::filesystem::exists(bim_folder, missing);

  data::TStdDb* text_db = target.TextDb();
  // The calculation of the LV goes with it: its settings and its items' cost elements.
  std::vector<int32_t> descriptions;
  const boq::TLVPosList entries = boq::LoadLvPosList(db, nullptr, lv.id);
  for (const boq::TLvPos& entry : entries.Entries()) {
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    descriptions.push_back(description);
  }
  // The bidders go with the LV through its delete cascade; their texts are deleted here.
  std::vector<int32_t> bidders;
  for (const award::t_Bieter_DB_VERSION_3100& bidder : award::TTbBieter(db).ListOfLv(lv.id)) {
    bidders.push_back(bidder.ID);
  }
  data::TStdDb* calc_db = nullptr;  // a project without a calculation database has nothing there
  try {
    calc_db = &target.CalcDb();
  } catch (const CommandError&) {
  }
  // What was deleted before a failure comes back at once: an LV is deleted whole or not at all.
  RunAsOneStep<boq::EStoredLvError>(
      target.Journal(), data::TOperationKind::okDelete, caption,
      {"es wurde nichts gelöscht",
       "die bis dahin gelöschten Datensätze konnten nicht zurückgeholt werden", "das Löschen"},
      streams.err, [&] {
        if (text_db != nullptr) {
          for (int32_t bidder : bidders) {
            if (int result = award::DeleteBidderTexts(db, *text_db, bidder); result != 0) {
              throw boq::EStoredLvError(text_db->BasePath() +
                                        "0: die Texte der Bieter können nicht gelöscht werden (" +
                                        std::to_string(result) + ")");
            }
          }
        }
        boq::DeleteLv(db, lv.id, text_db);
        if (calc_db == nullptr) return;
        if (int result = calc::DeleteLvCalculation(*calc_db, lv.id, descriptions); result != 0) {
          throw boq::EStoredLvError(calc_db->BasePath() +
                                    "0: die Kalkulation des LV kann nicht gelöscht werden (" +
                                    std::to_string(result) + ")");
        }
      });
  if (json) {
    streams.out << "{\"id\": " << lv.id << ", \"name\": " << JsonString(lv.name)
                << ", \"project\": " << JsonString(target.Name()) << ", \"entries\": " << lv.entries
                << ", \"deleted\": true}\n";
    return kExitOk;
  }
  streams.out << "LV " << lv.id << " \"" << lv.name << "\" mit " << lv.entries
              << (lv.entries == 1 ? " Eintrag" : " Einträgen") << " gelöscht; \"korvan undo\" "
              << "holt es zurück\n";
  if (had_bim_folder) {
    streams.out << "Der BIM-Importordner \"" << bim_folder
                << "\" wurde mit gelöscht; ihn holt \"korvan undo\" nicht zurück\n";
  }
  return kExitOk;
}

}  // namespace korvan::app
