#pragma once

#include <filesystem>
#include <string>

namespace korvan::data {

// The list operations of a data component, passed to `C_OnBeforeListOP` and
// `C_OnAfterListOP` as their mode.
enum TListOp : int {
  loInit = 1,
  loClose,
  loReload,
  loChangeRecordIndex,
  loSelectAll,
  loAddRecord,
  loInsertRecord,
  loDeleteRecord,
  loSelectBlock,
  loToggleSelection,
  loMoveBlock,
  loDeleteBlock,
  loCopyBlock,  // duplicates the block before the row
  loSortBlock,
  loSaveBlock,
  loReadBlock,
  loSum,
  loClipCopy,
  loCutBlock,
  loPaste,
  loPasteSpecial,
};

// What some operations need beyond the row.
struct TListOpArgs {
  int BlockEnd = 0;              // loSelectBlock: the last row of the block
  int SortColumn = 0;            // loSortBlock: index into the column structure
  bool Descending = false;       // loSortBlock
  std::filesystem::path File{};  // loSaveBlock, loReadBlock
  std::string Info{};            // loSaveBlock: the "Info=" text
};

enum class TListOpResult {
  Done,
  Cancelled,   // `C_OnBeforeListOP` or a handler said no
  InvalidRow,  // the row does not exist
  NotAllowed,  // the list, the row or the component forbids the change
  Busy,        // raised from inside another operation of the same component
  Failed       // the operation could not be carried out; see LastError()
};

// The caption of an operation in the undo menu.
std::string ListOpCaption(int mode);

}  // namespace korvan::data
