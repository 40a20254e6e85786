#include "data/component/c_data_registry.h"

#include <algorithm>

#include "data/component/c_data.h"
#include "data/undo/undo_redo.h"

namespace korvan::data {

void TCDataRegistration::Attach(TCDataRegistry& registry, TCData& cdata) {
  Detach();
  registry_ = &registry;
  cdata_ = &cdata;
  registry.Add(*this);
}

void TCDataRegistration::Detach() {
  if (registry_ != nullptr) registry_->Remove(*this);
  registry_ = nullptr;
  cdata_ = nullptr;
}

TCDataRegistry::~TCDataRegistry() {
  for (TCDataRegistration* entry : entries_) {
    entry->registry_ = nullptr;
    entry->cdata_ = nullptr;
  }
}

void TCDataRegistry::Add(TCDataRegistration& entry) {
  entries_.push_back(&entry);
}

void TCDataRegistry::Remove(TCDataRegistration& entry) {
  std::erase(entries_, &entry);
}

std::vector<TCData*> TCDataRegistry::Find(int32_t cdata_id) const {
  std::vector<TCData*> found;
  for (const TCDataRegistration* entry : entries_) {
    if (entry->cdata_->FC_ID == cdata_id) found.push_back(entry->cdata_);
  }
  return found;
}

template <typename Change>
int TCDataRegistry::WithList(int32_t cdata_id, std::string& error, Change change) {
  const std::vector<TCData*> lists = Find(cdata_id);
  if (lists.empty()) return kUndoOk;
  if (lists.size() > 1) {
    error = "Liste " + std::to_string(cdata_id) + " ist " + std::to_string(lists.size()) +
            "-mal geöffnet; es ist nicht zu erkennen, welche Zeilen zurückzunehmen sind";
    return kUndoListAmbiguous;
  }
  if (!change(*lists.front())) {
    error = lists.front()->LastError();
    return kUndoRowMismatch;
  }
  changed_.insert(cdata_id);
  return kUndoOk;
}

int TCDataRegistry::MoveRow(int32_t cdata_id, int32_t from_row, int32_t to_row,
                            std::string& error) {
  return WithList(cdata_id, error, [&](TCData& list) { return list.MoveRow(from_row, to_row); });
}

int TCDataRegistry::RemoveRow(int32_t cdata_id, const std::string& key, int32_t row,
                              std::string& error) {
  return WithList(cdata_id, error, [&](TCData& list) { return list.RemoveRowWithKey(row, key); });
}

int TCDataRegistry::RestoreRow(int32_t cdata_id, const std::string& key, int32_t row,
                               std::string& error) {
  return WithList(cdata_id, error, [&](TCData& list) { return list.RestoreRow(row, key); });
}

void TCDataRegistry::AfterUndoRedo(const TUndoOutcome& outcome) {
  std::set<int32_t> changed;
  changed.swap(changed_);
  changed.insert(outcome.start.Modul());
  // Copied first: a list's handlers may close other lists while it refreshes.
  std::vector<TCData*> lists;
  for (const TCDataRegistration* entry : entries_) lists.push_back(entry->cdata_);
  for (TCData* list : lists) {
    const bool still_open =
        std::any_of(entries_.begin(), entries_.end(),
                    [&](const TCDataRegistration* e) { return e->cdata_ == list; });
    if (!still_open) continue;
    if (outcome.start.ReloadAll()) {
      list->LeseIndexVonPlatte();
      list->UndoRedo();
    } else if (changed.contains(list->FC_ID)) {
      list->UndoRedo();
    }
  }
}

}  // namespace korvan::data
