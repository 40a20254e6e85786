#pragma once

#include <any>
#include <cstddef>
#include <string>
#include <vector>

namespace korvan::data {

// The longest key a row can carry: the key string of the business record.
inline constexpr size_t kMaxRowKeyLength = 80;

// One row of a data component. The row's values are not kept here: the data module
// supplies them on demand (`C_OnGetDaten`); the component keeps what it needs to
// navigate, mark and identify the row.
struct TCDataRow {
  std::string Key{};  // key string of the business record; empty for an unsaved row
  char ZArt = ' ';    // row kind: hierarchy level or item kind
  bool Markiert = false;
  char Button = ' ';
  int Level = 0;
  bool Locked = false;
  bool Cutted = false;  // taken by a cut that has not been pasted yet
  bool MarkSpecial = false;
  int ImageIndex = -1;  // tree image
  std::any Object{};    // whatever the data module attaches to the row
};

// The rows of a data component, numbered from 1 as the data modules address them.
class TCDataRows {
 public:
  int Count() const { return static_cast<int>(rows_.size()); }
  bool Valid(int z) const { return z >= 1 && z <= Count(); }
  // Row z (1-based); the caller checks Valid(z).
  TCDataRow& operator[](int z) { return rows_[static_cast<size_t>(z - 1)]; }
  const TCDataRow& operator[](int z) const { return rows_[static_cast<size_t>(z - 1)]; }

  void Assign(std::vector<TCDataRow> rows) { rows_ = std::move(rows); }
  void Clear() { rows_.clear(); }
  // Inserts before row z; z = Count() + 1 appends.
  void Insert(int z, TCDataRow row);
  void Remove(int z);
  // Takes the rows `rows` (ascending row numbers) out and puts them, in their order,
  // before row `target` as numbered before the move (Count() + 1: at the end). Returns
  // the row number of the first moved row afterwards.
  int MoveRows(const std::vector<int>& rows, int target);
  // Puts the rows into the given order: new row i is old row order[i - 1].
  void Reorder(const std::vector<int>& order);

  // The first row carrying the key, or 0.
  int ZeileFromKey(const std::string& key) const;
  std::vector<int> MarkedRows() const;
  const std::vector<TCDataRow>& All() const { return rows_; }

 private:
  std::vector<TCDataRow> rows_;
};

}  // namespace korvan::data
