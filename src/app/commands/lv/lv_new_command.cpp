// `korvan lv new <name>`: a new LV in the project, one step of the journal.
#include "app/commands/lv/lv_new_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_project.h"
#include "boq/lv/project_lvs.h"

namespace korvan::app {

void LvNewCommand::Define(CLI::App& app) {
  app.add_option("name", name_, "Name des LV (höchstens 20 Zeichen)")->required();
  app.add_option("--mask", mask_, "OZ-Maske, z. B. 11.22.PPPP (höchstens 20 Zeichen)");
}

int LvNewCommand::Run(Streams& streams) {
  boq::NewLv lv{name_, mask_};
  if (const std::string problem = boq::CheckNewLv(lv); !problem.empty()) {
    throw UsageError(problem);
  }
  LvProject target(data_dir, project);
  data::TStdDb& db = target.Db(true);
  target.RequireFreeLvName(lv.name);
  // A project converted to another currency keeps it for its new LVs.
  lv.currency = target.RecordedCurrency();
  int32_t id = 0;
  {
    JournalStep step(target.Journal(), data::TOperationKind::okInsert,
                     "LV \"" + lv.name + "\" anlegen");
    id = boq::CreateLv(db, lv);
  }
  WarnIfNotUndoable(target.Journal(), "das Anlegen", streams.err);
  if (json) {
    streams.out << "{\"id\": " << id << ", \"name\": " << JsonString(lv.name)
                << ", \"project\": " << JsonString(target.Name()) << "}\n";
  } else {
    streams.out << "LV " << id << " \"" << lv.name << "\" im Projekt \"" << target.Name()
                << "\" angelegt\n";
  }
  return kExitOk;
}

}  // namespace korvan::app
