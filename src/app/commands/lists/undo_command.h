#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan undo` and `korvan redo`: take back the newest step of the data directory's
// journal, or make the newest step taken back again. The journal lasts across runs until
// `korvan undo --clear`; `korvan undo --list` shows its steps.
class UndoCommand : public Command {
 public:
  explicit UndoCommand(bool redo) : redo_(redo) {}
  std::string Name() const override { return redo_ ? "redo" : "undo"; }
  std::string Summary() const override {
    return redo_ ? "stellt die zuletzt rückgängig gemachte Änderung wieder her"
                 : "macht die letzte Änderung rückgängig (--list: zeigt das Journal, --clear: "
                   "leert es)";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  int Step(Streams& streams);
  int List(Streams& streams);
  int Clear(Streams& streams);

  bool redo_;
  bool list_ = false;
  bool clear_ = false;
  std::string data_dir_;
};

}  // namespace korvan::app
