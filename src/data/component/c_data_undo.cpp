#include "data/component/c_data_undo.h"

#include "data/component/list_operation.h"
#include "data/undo/undo_redo.h"

namespace korvan::data {

namespace {

TOperationKind OperationKind(int operation) {
  switch (operation) {
    case 0:
      return TOperationKind::okEdit;
    case loAddRecord:
    case loInsertRecord:
      return TOperationKind::okInsert;
    case loDeleteRecord:
    case loDeleteBlock:
    case loCutBlock:
      return TOperationKind::okDelete;
    case loMoveBlock:
    case loSortBlock:
      return TOperationKind::okMove;
    case loCopyBlock:
      return TOperationKind::okCopy;
    case loPaste:
    case loPasteSpecial:
      return TOperationKind::okPaste;
    case loReadBlock:
      return TOperationKind::okImport;
    case loSum:
      return TOperationKind::okCalculate;
    default:
      return TOperationKind::okOther;
  }
}

}  // namespace

void TCDataUndoJournal::StartUndoRedo(int c_id, int operation, const std::string& caption) {
  journal_.StartTransaction(TStartItem(c_id, OperationKind(operation), caption));
}

void TCDataUndoJournal::EndUndoRedo() {
  journal_.EndTransaction();
}

void TCDataUndoJournal::RowMoved(int c_id, int source_row, int target_row) {
  TCDataUndoRedoItem item(c_id);
  item.AddMove(source_row, target_row);
  journal_.Push(item);
}

void TCDataUndoJournal::RowDeleted(int c_id, const std::string& key, int source_row) {
  TCDataUndoRedoItem item(c_id);
  item.AddDelete(key, source_row);
  journal_.Push(item);
}

void TCDataUndoJournal::RowInserted(int c_id, const std::string& key, int target_row) {
  TCDataUndoRedoItem item(c_id);
  item.AddInsert(key, target_row);
  journal_.Push(item);
}

}  // namespace korvan::data
