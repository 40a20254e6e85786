#include "calc/endsum/ends_node.h"

namespace korvan::calc {

TEndsNode& TEndsNode::AddItem(std::unique_ptr<TEndsNode> child) {
  child->parent = this;
  items_.push_back(std::move(child));
  return *items_.back();
}

double TEndsNode::GetEkt(int index) const {
  if (index < 0 || index >= kResultCostTypes) return 0.0;
  double sum = ekt[static_cast<size_t>(index)];
  for (const auto& child : items_) sum += child->GetEkt(index);
  return sum;
}

double TEndsNode::MengeLohn() const {
  double sum = dMengeLohn;
  for (const auto& child : items_) sum += child->MengeLohn();
  return sum;
}

double TEndsNode::Festpreis() const {
  double sum = dFestpreis;
  for (const auto& child : items_) sum += child->Festpreis();
  return sum;
}

const TEndsNode* TEndsNode::Find(int32_t id) const {
  if (idBg == id) return this;
  for (const auto& child : items_) {
    if (const TEndsNode* found = child->Find(id)) return found;
  }
  return nullptr;
}

}  // namespace korvan::calc
