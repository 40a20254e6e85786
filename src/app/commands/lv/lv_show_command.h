#pragma once

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan lv show <lv>`: the LV as an indented tree with quantities and estimated prices,
// or with --json as one object with the entries in LV order.
class LvShowCommand : public LvOperation {
 public:
  std::string Name() const override { return "show"; }
  std::string Summary() const override {
    return "zeigt ein LV als Baum: OZ, Art, Kurztext, Menge, Einheit, EP, GP";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string lv_;
  bool long_texts_ = false;
};

}  // namespace korvan::app
