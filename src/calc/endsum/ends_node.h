#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "calc/price/lv_calculation.h"
#include "data/records/null_values.h"

namespace korvan::calc {

// One group of an LV in the end-sum calculation (the root stands for the LV): the direct
// costs per cost type (result order), wage hours and fixed prices of its own items, and
// its subgroups. Amounts are in the LV's currency.
class TEndsNode {
 public:
  int32_t idBg = data::kNullId;
  double dMengeLohn = 0.0;
  TCostAmounts ekt{};
  double dFestpreis = 0.0;
  TEndsNode* parent = nullptr;

  // Appends a subgroup and answers it.
  TEndsNode& AddItem(std::unique_ptr<TEndsNode> child);
  // The node's own amount of a cost type plus that of every subgroup; 0 outside 0 … 6.
  double GetEkt(int index) const;
  double MengeLohn() const;
  double Festpreis() const;
  // The node of a group, searched depth first from this one; nullptr when not found.
  const TEndsNode* Find(int32_t id) const;

 private:
  std::vector<std::unique_ptr<TEndsNode>> items_;
};

}  // namespace korvan::calc
