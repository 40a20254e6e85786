#pragma once

#include <optional>
#include <string>

#include "app/commands/lv/lv_operation.h"

namespace korvan::app {

// `korvan lv qty <lv> <oz> add|set|remove|list`: the partial quantities of an item. Every
// change recalculates the item's quantity from them at once, in the same journal step.
class LvQtyCommand : public LvOperation {
 public:
  std::string Name() const override { return "qty"; }
  std::string Summary() const override {
    return "Teilmengen einer Position: add --qty Q [--source TEXT], set N --qty Q, remove N, "
           "list";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string lv_;
  std::string oz_;
  std::string action_;
  std::optional<int> number_;
  std::optional<std::string> qty_;
  std::string source_;
};

}  // namespace korvan::app
