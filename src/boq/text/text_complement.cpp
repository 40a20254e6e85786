#include "boq/text/text_complement.h"

#include <algorithm>

namespace korvan::boq {
namespace {

auto ByName(const std::vector<TTEItem>& items, const std::string& name) {
  return std::lower_bound(
      items.begin(), items.end(), name,
      [](const TTEItem& item, const std::string& key) { return item.name < key; });
}

}  // namespace

std::string ComplementName(int32_t knr, char knr_art) {
  if (knr <= 0) return {};
  return std::string(knr_art == 'B' ? "TB" : "TA") + std::to_string(knr);
}

int TTEList::Add(const std::string& name, TTEItem item) {
  if (name.empty()) return -1;
  const auto at = ByName(items_, name);
  if (at != items_.end() && at->name == name) return -1;
  item.name = name;
  const auto inserted = items_.insert(at, std::move(item));
  return static_cast<int>(inserted - items_.begin());
}

bool TTEList::Delete(int index) {
  if (index < 0 || index >= Count()) return false;
  items_.erase(items_.begin() + index);
  return true;
}

bool TTEList::Delete(const std::string& name) {
  const auto at = ByName(items_, name);
  if (at == items_.end() || at->name != name) return false;
  items_.erase(at);
  return true;
}

const TTEItem* TTEList::GetTE(const std::string& name) const {
  const auto at = ByName(items_, name);
  return at != items_.end() && at->name == name ? &*at : nullptr;
}

}  // namespace korvan::boq
