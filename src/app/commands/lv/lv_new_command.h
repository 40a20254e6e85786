#pragma once

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan lv new <name> [--mask MASK]`: a new LV with the defaults of a new header.
class LvNewCommand : public LvOperation {
 public:
  std::string Name() const override { return "new"; }
  std::string Summary() const override { return "legt ein neues LV an und zeigt seine Nummer"; }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string name_;
  std::string mask_;
};

}  // namespace korvan::app
