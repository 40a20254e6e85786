#pragma once

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan lv list`: the LVs of the project with id, name, status, entries and total.
class LvListCommand : public LvOperation {
 public:
  std::string Name() const override { return "list"; }
  std::string Summary() const override { return "listet die LVs des Projekts"; }
  void Define(CLI::App& app) override { (void)app; }
  int Run(Streams& streams) override;
};

}  // namespace korvan::app
