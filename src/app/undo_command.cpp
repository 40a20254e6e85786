// `korvan undo` / `korvan redo`: one step of the data directory's journal.
#include "app/undo_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/data_dir.h"
#include "app/master_data_session.h"
#include "data/tb_einheit.h"
#include "data/tb_waehrung.h"

namespace korvan::app {

void UndoCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
}

int UndoCommand::Run(Streams& streams) {
  MasterDataSession session(data_dir_, false);
  // The journal puts records back through the table objects of the master data.
  const data::TTbWaehrung currencies(session.Db());
  const data::TTbEinheit units(session.Db());
  data::TUndoRedo& journal = session.Journal();
  if (redo_ ? !journal.CanRedo() : journal.Empty()) {
    streams.err << (redo_ ? "Es gibt nichts wiederherzustellen\n"
                          : "Es gibt nichts rückgängig zu machen\n");
    return kExitFailure;
  }
  const data::TUndoOutcome outcome = redo_ ? journal.PopRedo() : journal.PopUndo();
  if (!outcome.ok()) {
    streams.err << (redo_ ? "Wiederherstellen" : "Rückgängig")
                << " nicht möglich: " << outcome.error << '\n';
    return kExitFailure;
  }
  streams.out << (redo_ ? "Wiederhergestellt: " : "Rückgängig gemacht: ") << outcome.start.Caption()
              << '\n';
  return kExitOk;
}

}  // namespace korvan::app
