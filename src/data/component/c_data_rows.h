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
  // Takes row `from` out and puts it back so that it becomes row `to`; both must exist.
  void Move(int from, int to);

  // The first row carrying the key, or 0.
  int ZeileFromKey(const std::string& key) const;
  std::vector<int> MarkedRows() const;
  const std::vector<TCDataRow>& All() const { return rows_; }

 private:
  std::vector<TCDataRow> rows_;
};

// One row taken out at `From` and put back so that it becomes row `To`.
struct TRowMove {
  int From = 0;
  int To = 0;
  bool operator==(const TRowMove&) const = default;
};

// The order of `count` rows after the rows `rows` (ascending) were taken out and put,
// in their order, before row `target` (count + 1: at the end); entry i is the old
// number of new row i + 1.
std::vector<int> BlockMoveOrder(int count, const std::vector<int>& rows, int target);

// The old rows of `order` that must move so that the others keep their relative order:
// all but one longest ascending run, so that as few rows as possible move.
std::vector<int> RowsOutOfOrder(const std::vector<int>& order);

// Single-row moves that, made one after the other, turn rows 1..n into `order`. Only the
// rows in `moving` are moved; the others must already stand in ascending order within
// `order`. Each move names the rows as they are numbered at the moment it is made, so
// the moves taken back newest first, each from `To` to `From`, give back the old order.
std::vector<TRowMove> SingleMoves(const std::vector<int>& order, const std::vector<int>& moving);

}  // namespace korvan::data
