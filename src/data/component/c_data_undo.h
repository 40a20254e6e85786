#pragma once

#include <string>

namespace korvan::data {

// What the data component reports to the undo journal: the bracket of one user action
// (all record changes made inside it become one undo step) and the changes to its own
// row list that undo must reverse.
class UserActionScope {
 public:
  virtual ~UserActionScope() = default;
  // `operation` is the list operation (TListOp) or 0 for an edit of a row.
  virtual void StartUndoRedo(int c_id, int operation, const std::string& caption) = 0;
  virtual void EndUndoRedo() = 0;
  // Row changes of component `c_id`, numbered as the rows stand when the change is made.
  // The component is named with each change because one action may change the rows of
  // another list too (a cut finished by a paste elsewhere).
  virtual void RowMoved(int c_id, int source_row, int target_row) = 0;
  virtual void RowDeleted(int c_id, const std::string& key, int source_row) = 0;
  virtual void RowInserted(int c_id, const std::string& key, int target_row) = 0;
};

// Brackets one user action for its lifetime; does nothing without a journal.
class UserActionGuard {
 public:
  UserActionGuard(UserActionScope* journal, int c_id, int operation, const std::string& caption)
      : journal_(journal) {
    if (journal_ != nullptr) journal_->StartUndoRedo(c_id, operation, caption);
  }
  ~UserActionGuard() {
    if (journal_ != nullptr) journal_->EndUndoRedo();
  }
  UserActionGuard(const UserActionGuard&) = delete;
  UserActionGuard& operator=(const UserActionGuard&) = delete;

 private:
  UserActionScope* journal_;
};

class TUndoRedo;

// Records the user actions of data components in the undo journal: each action is one
// transaction, row moves and deletions are data-component items in it.
class TCDataUndoJournal : public UserActionScope {
 public:
  explicit TCDataUndoJournal(TUndoRedo& journal) : journal_(journal) {}
  void StartUndoRedo(int c_id, int operation, const std::string& caption) override;
  void EndUndoRedo() override;
  void RowMoved(int c_id, int source_row, int target_row) override;
  void RowDeleted(int c_id, const std::string& key, int source_row) override;
  void RowInserted(int c_id, const std::string& key, int target_row) override;

 private:
  TUndoRedo& journal_;
};

}  // namespace korvan::data
