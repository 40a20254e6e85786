#pragma once

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan lv delete <lv>`: the LV with its levels, entries and descriptions, as one step
// that `korvan undo` takes back.
class LvDeleteCommand : public LvOperation {
 public:
  std::string Name() const override { return "delete"; }
  std::string Summary() const override {
    return "löscht ein LV mit allen Einträgen (\"korvan undo\" holt es zurück)";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string lv_;
};

}  // namespace korvan::app
