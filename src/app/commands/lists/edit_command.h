#pragma once

#include <string>
#include <vector>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan edit <module> <row> <column>=<value> ...`: stores an edit of one row the way
// the list's mask does, as one step of the data directory's undo journal.
class EditCommand : public Command {
 public:
  std::string Name() const override { return "edit"; }
  std::string Summary() const override { return "ändert eine Zeile einer Stammdatenliste"; }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  std::string module_;
  int row_ = 0;
  std::vector<std::string> assignments_;
  bool force_ = false;
};

}  // namespace korvan::app
