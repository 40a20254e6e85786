#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "data/undo/undo_items.h"

namespace korvan::data {

class TCData;
class TCDataRegistry;
struct TUndoOutcome;

// A data component's entry in a registry, kept for as long as this object lives. A
// registration outlived by its registry simply ends.
class TCDataRegistration {
 public:
  TCDataRegistration() = default;
  ~TCDataRegistration() { Detach(); }
  TCDataRegistration(const TCDataRegistration&) = delete;
  TCDataRegistration& operator=(const TCDataRegistration&) = delete;

  // Enters `cdata` into `registry`, leaving the registry it was in before.
  void Attach(TCDataRegistry& registry, TCData& cdata);
  void Detach();
  bool Attached() const { return registry_ != nullptr; }

 private:
  friend class TCDataRegistry;
  TCDataRegistry* registry_ = nullptr;
  TCData* cdata_ = nullptr;
};

// The open data components, found by their component id (`FC_ID`, the id the undo
// journal stores with each row change). The journal puts rows back through it.
//
// A row change of a component that is not open is no error and is skipped: the list was
// closed after the change, and its rows are read from the tables when it opens again.
// When several open components carry the id, nobody can tell which list the change
// belongs to; the step is then refused rather than applied to a list it may not fit.
class TCDataRegistry : public TCDataRowRestorer {
 public:
  TCDataRegistry() = default;
  ~TCDataRegistry() override;
  TCDataRegistry(const TCDataRegistry&) = delete;
  TCDataRegistry& operator=(const TCDataRegistry&) = delete;

  // The open components with this id.
  std::vector<TCData*> Find(int32_t cdata_id) const;
  size_t Count() const { return entries_.size(); }

  int MoveRow(int32_t cdata_id, int32_t from_row, int32_t to_row, std::string& error) override;
  int RemoveRow(int32_t cdata_id, const std::string& key, int32_t row, std::string& error) override;
  int RestoreRow(int32_t cdata_id, const std::string& key, int32_t row,
                 std::string& error) override;

  // After the journal took a step back or made it again: the lists whose rows it
  // changed, and the list that started the step, read their rows again (`UndoRedo`);
  // all open lists reload when the step asks every view to.
  void AfterUndoRedo(const TUndoOutcome& outcome);

 private:
  friend class TCDataRegistration;
  void Add(TCDataRegistration& entry);
  void Remove(TCDataRegistration& entry);
  // Runs `change` on the one open component with the id; see the class comment.
  template <typename Change>
  int WithList(int32_t cdata_id, std::string& error, Change change);

  std::vector<TCDataRegistration*> entries_;
  std::set<int32_t> changed_;  // components whose rows changed since AfterUndoRedo
};

}  // namespace korvan::data
