#include "data/component/list_operation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>

#include "data/component/c_data.h"

namespace korvan::data {

std::string ListOpCaption(int mode) {
  switch (mode) {
    case loAddRecord:
      return "Zeile anhängen";
    case loInsertRecord:
      return "Zeile einfügen";
    case loDeleteRecord:
      return "Zeile löschen";
    case loMoveBlock:
      return "Block verschieben";
    case loDeleteBlock:
      return "Block löschen";
    case loCopyBlock:
      return "Block kopieren";
    case loSortBlock:
      return "Block sortieren";
    case loReadBlock:
      return "Block einlesen";
    case loSum:
      return "Summen bilden";
    case loCutBlock:
      return "Ausschneiden";
    case loPaste:
      return "Einfügen";
    case loPasteSpecial:
      return "Inhalte einfügen";
    default:
      return "Listenoperation";
  }
}

namespace {

// Operations that change nothing stored and so leave no undo step.
bool ChangesData(int mode) {
  switch (mode) {
    case loInit:
    case loClose:
    case loReload:
    case loChangeRecordIndex:
    case loSelectAll:
    case loSelectBlock:
    case loToggleSelection:
    case loSaveBlock:
    case loClipCopy:
      return false;
    default:
      return true;
  }
}

bool NeedsRow(int mode) {
  switch (mode) {
    case loChangeRecordIndex:
    case loDeleteRecord:
    case loSelectBlock:
    case loToggleSelection:
      return true;
    default:
      return false;
  }
}

// A list value as a number: "1.234,56" as written in German, or "1234.56".
std::optional<double> ToNumber(std::string text) {
  if (text.find(',') != std::string::npos) {
    text.erase(std::remove(text.begin(), text.end(), '.'), text.end());
    std::replace(text.begin(), text.end(), ',', '.');
  }
  if (text.empty()) return std::nullopt;
  char* end = nullptr;
  double value = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

// Orders two values of a column; values that are no numbers come first in a numeric
// column.
bool ValueLess(const std::string& a, const std::string& b, bool numeric) {
  if (!numeric) return a < b;
  std::optional<double> x = ToNumber(a);
  std::optional<double> y = ToNumber(b);
  if (!x || !y) return !x && y;
  return *x < *y;
}

}  // namespace

TListOpResult TCData::ListOperationEx(int z, int mode, const TListOpArgs& args) {
  if (FBusy) return TListOpResult::Busy;
  if (NeedsRow(mode) && !FRows.Valid(z)) return TListOpResult::InvalidRow;
  FLastError.clear();
  std::optional<UserActionGuard> action;
  if (ChangesData(mode)) action.emplace(FUndo, FC_ID, mode, ListOpCaption(mode));

  bool doListOP = true;
  if (Events.C_OnBeforeListOP) Events.C_OnBeforeListOP(*this, z, mode, doListOP);
  if (!doListOP) return TListOpResult::Cancelled;
  FBusy = true;
  TListOpResult result = Perform(z, mode, args);
  FBusy = false;
  doListOP = result == TListOpResult::Done;
  if (Events.C_OnAfterListOP) Events.C_OnAfterListOP(*this, z, mode, doListOP);
  AktualListenStatus();
  return result;
}

TListOpResult TCData::Perform(int z, int mode, const TListOpArgs& args) {
  switch (mode) {
    case loInit:
      return OpInit();
    case loClose:
      return OpClose();
    case loReload:
      return OpReload();
    case loChangeRecordIndex:
      return OpChangeRecordIndex(z);
    case loSelectAll:
      return OpSelectAll();
    case loAddRecord:
      return OpAddInsert(FRows.Count() + 1, mode);
    case loInsertRecord:
      return OpAddInsert(z, mode);
    case loDeleteRecord:
      return OpDeleteRecord(z);
    case loSelectBlock:
      return OpSelectBlock(z, args.BlockEnd);
    case loToggleSelection:
      return OpToggleSelection(z);
    case loMoveBlock:
      return OpMoveBlock(z);
    case loDeleteBlock:
      return OpDeleteBlock(z);
    case loCopyBlock:
      return OpCopyBlock(z);
    case loSortBlock:
      return OpSortBlock(z, args);
    case loSaveBlock:
      return OpSaveBlock(z, args);
    case loReadBlock:
      return OpReadBlock(z, args);
    case loSum:
      return OpSum();
    case loClipCopy:
      return OpClipCopy(z, TClipPasteType::CLIP_COPY);
    case loCutBlock:
      return OpClipCopy(z, TClipPasteType::CLIP_CUT);
    case loPaste:
      return OpPaste(z, TClipPasteType::CLIP_PASTE_DEFAULT);
    case loPasteSpecial:
      return OpPaste(z, TClipPasteType::CLIP_PASTE_SPECIAL);
  }
  return Fail("unbekannte Listenoperation " + std::to_string(mode));
}

// --- Loading and navigation ----------------------------------------------------------

TListOpResult TCData::OpInit() {
  if (!hasBeenLoaded) Loaded();
  return OpReload();
}

TListOpResult TCData::OpClose() {
  if (Events.C_OnCloseListe) Events.C_OnCloseListe(*this);
  SchreibeIndexAufPlatte(false);
  return TListOpResult::Done;
}

TListOpResult TCData::OpReload() {
  return LeseIndexVonPlatte() ? TListOpResult::Done : TListOpResult::Failed;
}

TListOpResult TCData::OpChangeRecordIndex(int z) {
  FPrevRecordIndex = FCurrentRecordIndex;
  FCurrentRecordIndex = z;
  FCurrentRecord = Data2Screen(z);
  FUnalteredRecord = FCurrentRecord;
  return TListOpResult::Done;
}

// --- Selection -----------------------------------------------------------------------

TListOpResult TCData::OpSelectAll() {
  for (int z = 1; z <= FRows.Count(); ++z) FRows[z].Markiert = true;
  return TListOpResult::Done;
}

TListOpResult TCData::OpSelectBlock(int z, int block_end) {
  if (FNoBlockOp || !FC_ValidBlockOP) return TListOpResult::NotAllowed;
  int last = std::clamp(block_end, 1, FRows.Count());
  for (int r = std::min(z, last); r <= std::max(z, last); ++r) FRows[r].Markiert = true;
  return TListOpResult::Done;
}

TListOpResult TCData::OpToggleSelection(int z) {
  FRows[z].Markiert = !FRows[z].Markiert;
  return TListOpResult::Done;
}

std::vector<int> TCData::BlockRows(int z) const {
  std::vector<int> rows = FRows.MarkedRows();
  if (rows.empty() && FRows.Valid(z)) rows.push_back(z);
  return rows;
}

// --- Adding, inserting and deleting --------------------------------------------------

void TCData::InsertRowAt(int z, TCDataRow row) {
  const int last = FRows.Count();
  FRows.Insert(z, std::move(row));
  for (int q = last; q >= z; --q) {
    if (Events.C_OnCopyData) Events.C_OnCopyData(*this, q + 1, q);
  }
  if (FCurrentRecordIndex >= z) ++FCurrentRecordIndex;
  FListModified = true;
}

void TCData::RemoveRowAt(int z) {
  FRows.Remove(z);
  for (int q = z + 1; q <= FRows.Count() + 1; ++q) {
    if (Events.C_OnCopyData) Events.C_OnCopyData(*this, q - 1, q);
  }
  if (FCurrentRecordIndex == z) {
    FCurrentRecordIndex = 0;
    FCurrentRecord.clear();
    FUnalteredRecord.clear();
  } else if (FCurrentRecordIndex > z) {
    --FCurrentRecordIndex;
  }
  FListModified = true;
}

TListOpResult TCData::OpAddInsert(int z, int mode) {
  if (FNoEdit || FNoListChange || FC_ListeLocked) return TListOpResult::NotAllowed;
  if (z < 1 || z > FRows.Count() + 1) return TListOpResult::InvalidRow;
  if (FRows.Count() >= FLZmax) {
    return Fail("die Liste hat bereits die höchste Zeilenzahl " + std::to_string(FLZmax));
  }
  InsertRowAt(z, TCDataRow{});
  TStringList values = Sized({});
  if (!FSuppressRecordInitialization && Events.C_OnInitData) Events.C_OnInitData(*this, z, values);
  FPrevRecordIndex = FCurrentRecordIndex;
  FCurrentRecordIndex = z;
  FCurrentRecord = Sized(std::move(values));
  FUnalteredRecord = FCurrentRecord;
  Notify(TListOpEventInfo(mode, z, 1));
  return TListOpResult::Done;
}

bool TCData::DeleteRow(int z, TOnDeleteMode mode) {
  if (FRows[z].Locked) return false;
  const std::string key = FRows[z].Key;
  bool ok = true;
  if (Events.C_OnDeleteZeile) Events.C_OnDeleteZeile(*this, z, key, mode, ok);
  if (!ok) return false;
  RememberRemoved(FRows[z]);
  RemoveRowAt(z);
  if (FUndo != nullptr) FUndo->RowDeleted(FC_ID, key, z);
  Notify(TDeleteRowEventInfo(z, key));
  return true;
}

TListOpResult TCData::OpDeleteRecord(int z) {
  if (FNoEdit || FNoListChange || FC_ListeLocked) return TListOpResult::NotAllowed;
  if (FRows[z].Locked) return TListOpResult::NotAllowed;
  return DeleteRow(z, TOnDeleteMode::dmNotBlind) ? TListOpResult::Done : TListOpResult::Cancelled;
}

TListOpResult TCData::OpDeleteBlock(int z) {
  if (FNoEdit || FNoListChange || FNoBlockOp || FC_ListeLocked) return TListOpResult::NotAllowed;
  std::vector<int> rows = BlockRows(z);
  if (rows.empty()) return TListOpResult::InvalidRow;
  int deleted = 0;
  // From the bottom, so that the numbers of the rows still to delete stay valid.
  for (auto it = rows.rbegin(); it != rows.rend(); ++it) {
    if (DeleteRow(*it, TOnDeleteMode::dmBlind)) ++deleted;
  }
  Notify(TListOpEventInfo(loDeleteBlock, z, deleted));
  return deleted == 0 ? TListOpResult::Cancelled : TListOpResult::Done;
}

// --- Moving, copying and sorting -----------------------------------------------------

TListOpResult TCData::OpMoveBlock(int z) {
  if (FNoListChange || FNoBlockOp || FC_ListeLocked) return TListOpResult::NotAllowed;
  std::vector<int> rows = FRows.MarkedRows();
  if (rows.empty()) return TListOpResult::NotAllowed;
  if (z < 1 || z > FRows.Count() + 1) return TListOpResult::InvalidRow;
  const std::string current_key =
      FRows.Valid(FCurrentRecordIndex) ? FRows[FCurrentRecordIndex].Key : std::string();
  const std::vector<int> order = BlockMoveOrder(FRows.Count(), rows, z);
  if (FUndo != nullptr) {
    for (const TRowMove& move : SingleMoves(order, rows)) {
      FUndo->RowMoved(FC_ID, move.From, move.To);
    }
  }
  const int first = FRows.MoveRows(rows, z);
  if (!current_key.empty()) FCurrentRecordIndex = FRows.ZeileFromKey(current_key);
  FListModified = true;
  Notify(TListOpEventInfo(loMoveBlock, first, static_cast<int>(rows.size())));
  return TListOpResult::Done;
}

TStringList TCData::ReadRow(int z) {
  TStringList values = Sized({});
  if (Events.C_OnDatenLesen) Events.C_OnDatenLesen(*this, z, values);
  return Sized(std::move(values));
}

int TCData::InsertValueRows(int z, const std::vector<TBlockRow>& rows) {
  int at = z;
  for (const TBlockRow& block_row : rows) {
    if (FRows.Count() >= FLZmax) break;
    TCDataRow row;
    row.ZArt = block_row.ZArt;
    row.Level = block_row.Level;
    InsertRowAt(at, std::move(row));
    TStringList initial = Sized({});
    if (!FSuppressRecordInitialization && Events.C_OnInitData) {
      Events.C_OnInitData(*this, at, initial);
    }
    TStringList values = Sized(block_row.Values);
    bool ok = true;
    if (Events.C_OnPutDaten) Events.C_OnPutDaten(*this, at, values, initial, block_row.ZArt, ok);
    if (!ok) {
      RemoveRowAt(at);
      continue;
    }
    if (FUndo != nullptr) FUndo->RowInserted(FC_ID, FRows[at].Key, at);
    ++at;
  }
  return at - z;
}

TListOpResult TCData::OpCopyBlock(int z) {
  if (FNoEdit || FNoListChange || FNoBlockOp || FC_ListeLocked) return TListOpResult::NotAllowed;
  if (z < 1 || z > FRows.Count() + 1) return TListOpResult::InvalidRow;
  std::vector<TBlockRow> copies;
  for (int r : FRows.MarkedRows()) {
    copies.push_back({FRows[r].Key, FRows[r].ZArt, FRows[r].Level, ReadRow(r)});
  }
  if (copies.empty()) return TListOpResult::NotAllowed;
  int inserted = InsertValueRows(z, copies);
  Notify(TListOpEventInfo(loCopyBlock, z, inserted));
  return inserted == 0 ? TListOpResult::Cancelled : TListOpResult::Done;
}

TListOpResult TCData::OpSortBlock(int z, const TListOpArgs& args) {
  if (FNoListChange || FNoBlockOp || FC_ListeLocked) return TListOpResult::NotAllowed;
  if (args.SortColumn < 0 || args.SortColumn >= FStruktur.FeldAnzahl()) {
    return Fail("Sortierspalte " + std::to_string(args.SortColumn) + " gibt es nicht");
  }
  std::vector<int> rows = FRows.MarkedRows();
  if (rows.empty()) {
    for (int r = 1; r <= FRows.Count(); ++r) rows.push_back(r);
  }
  const TColumnDef& column = FStruktur[args.SortColumn];
  const bool numeric = column.Typ != TFeldTyp::Text && column.Typ != TFeldTyp::Kodiert;
  struct Entry {
    int row;
    TStringList values;
  };
  std::vector<Entry> entries;
  for (int r : rows) entries.push_back({r, ReadRow(r)});
  const size_t field = static_cast<size_t>(column.Spalte);
  std::stable_sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
    return args.Descending ? ValueLess(b.values[field], a.values[field], numeric)
                           : ValueLess(a.values[field], b.values[field], numeric);
  });
  std::vector<int> order;
  for (int r = 1; r <= FRows.Count(); ++r) order.push_back(r);
  for (size_t i = 0; i < rows.size(); ++i) {
    order[static_cast<size_t>(rows[i] - 1)] = entries[i].row;
  }
  if (FUndo != nullptr) {
    for (const TRowMove& move : SingleMoves(order, RowsOutOfOrder(order))) {
      FUndo->RowMoved(FC_ID, move.From, move.To);
    }
  }
  FRows.Reorder(order);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (Events.C_OnDatenSchreiben) Events.C_OnDatenSchreiben(*this, rows[i], entries[i].values);
  }
  FListModified = true;
  Notify(TListOpEventInfo(loSortBlock, z, static_cast<int>(rows.size())));
  return TListOpResult::Done;
}

// Rows before and after are paired by key, the n-th row with a key before with the n-th
// row with that key after. Unpaired rows before were removed, unpaired rows after added.
void TCData::RecordRowChanges(const std::vector<std::string>& before) {
  if (FUndo == nullptr) return;
  std::map<std::string, std::vector<int>> after_rows;  // key -> rows after, ascending
  for (int r = FRows.Count(); r >= 1; --r) after_rows[FRows[r].Key].push_back(r);
  std::vector<int> paired(before.size(), 0);  // before row -> row after, 0: removed
  std::vector<bool> kept(static_cast<size_t>(FRows.Count()) + 1, false);
  for (size_t i = 0; i < before.size(); ++i) {
    std::vector<int>& candidates = after_rows[before[i]];
    if (candidates.empty()) continue;
    paired[i] = candidates.back();
    kept[static_cast<size_t>(candidates.back())] = true;
    candidates.pop_back();
  }
  for (size_t i = before.size(); i-- > 0;) {
    if (paired[i] == 0) FUndo->RowDeleted(FC_ID, before[i], static_cast<int>(i) + 1);
  }
  // The rows left, numbered 1..n, must take the relative order they have after.
  std::vector<int> left_after;
  for (int row : paired) {
    if (row != 0) left_after.push_back(row);
  }
  std::vector<int> order(left_after.size());
  std::iota(order.begin(), order.end(), 1);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return left_after[static_cast<size_t>(a - 1)] < left_after[static_cast<size_t>(b - 1)];
  });
  for (const TRowMove& move : SingleMoves(order, RowsOutOfOrder(order))) {
    FUndo->RowMoved(FC_ID, move.From, move.To);
  }
  for (int r = 1; r <= FRows.Count(); ++r) {
    if (!kept[static_cast<size_t>(r)]) FUndo->RowInserted(FC_ID, FRows[r].Key, r);
  }
}

// --- Blocks in files -----------------------------------------------------------------

TListOpResult TCData::OpSaveBlock(int z, const TListOpArgs& args) {
  std::vector<int> rows = BlockRows(z);
  if (rows.empty()) return TListOpResult::InvalidRow;
  TBlockFile block;
  block.Origin = DataPath() + ";" + std::to_string(FC_ID);
  block.Info = args.Info;
  for (int r : rows)
    block.Rows.push_back({FRows[r].Key, FRows[r].ZArt, FRows[r].Level, ReadRow(r)});
  try {
    WriteBlockFile(args.File, block);
  } catch (const EBlockFileError& error) {
    return Fail(error.what());
  }
  Notify(TListOpEventInfo(loSaveBlock, z, static_cast<int>(rows.size())));
  return TListOpResult::Done;
}

TListOpResult TCData::OpReadBlock(int z, const TListOpArgs& args) {
  if (FNoEdit || FNoListChange || FC_ListeLocked) return TListOpResult::NotAllowed;
  if (z < 1 || z > FRows.Count() + 1) return TListOpResult::InvalidRow;
  TBlockFile block;
  try {
    block = ReadBlockFile(args.File);
  } catch (const EBlockFileError& error) {
    return Fail(error.what());
  }
  if (FRows.Count() + static_cast<int>(block.Rows.size()) > FLZmax) {
    return Fail("der Block passt nicht in die Liste (höchstens " + std::to_string(FLZmax) +
                " Zeilen)");
  }
  int inserted = InsertValueRows(z, block.Rows);
  Notify(TListOpEventInfo(loReadBlock, z, inserted));
  return TListOpResult::Done;
}

TListOpResult TCData::OpSum() {
  if (Events.C_OnDoSummen) Events.C_OnDoSummen(*this);
  return TListOpResult::Done;
}

// --- Clipboard -----------------------------------------------------------------------

TListOpResult TCData::OpClipCopy(int z, TClipPasteType mode) {
  if (FClipboard == nullptr) return Fail("keine Zwischenablage");
  if (mode == TClipPasteType::CLIP_CUT && !CanCut()) return TListOpResult::NotAllowed;
  std::vector<int> rows = BlockRows(z);
  TStringList keys;
  for (int r : rows) {
    if (!FRows[r].Key.empty()) keys.push_back(FRows[r].Key);
  }
  if (keys.empty()) return TListOpResult::InvalidRow;
  const std::string path = DataPath();
  if (Events.C_OnClipCopy) Events.C_OnClipCopy(path, FC_ID, keys, mode);
  if (mode == TClipPasteType::CLIP_NONE || keys.empty()) return TListOpResult::Cancelled;
  for (int r = 1; r <= FRows.Count(); ++r) FRows[r].Cutted = false;
  FC_isClipCutting = mode == TClipPasteType::CLIP_CUT;
  if (FC_isClipCutting) {
    for (const std::string& key : keys) {
      if (int r = FRows.ZeileFromKey(key); r != 0) FRows[r].Cutted = true;
    }
  }
  FClipboard->Put({path, FC_ID, keys, mode, this});
  Notify(TListOpEventInfo(mode == TClipPasteType::CLIP_CUT ? loCutBlock : loClipCopy, z,
                          static_cast<int>(keys.size())));
  return TListOpResult::Done;
}

TListOpResult TCData::OpPaste(int z, TClipPasteType mode) {
  if (mode == TClipPasteType::CLIP_PASTE_SPECIAL && !FC_hasClipSpecial) {
    return TListOpResult::NotAllowed;
  }
  if (!CanPaste()) return TListOpResult::NotAllowed;
  TClipContent content = *FClipboard->Content();
  // The handler pastes into the stored row list, which is then read back: it must hold
  // the rows as the user sees them (moved, sorted, put back by undo).
  SchreibeIndexAufPlatte(false);
  std::vector<std::string> before;
  std::vector<std::string> cut;  // the reload below forgets which rows wait for the paste
  for (const TCDataRow& row : FRows.All()) {
    before.push_back(row.Key);
    if (row.Cutted) cut.push_back(row.Key);
  }
  FPrevRecordIndex = FCurrentRecordIndex;
  FCurrentRecordIndex = z;  // the paste handler inserts at the current row
  if (Events.C_OnClipPaste)
    Events.C_OnClipPaste(content.SourcePath, content.SourceId, content.Keys, mode);
  if (mode == TClipPasteType::CLIP_NONE) return TListOpResult::Cancelled;
  if (!LeseIndexVonPlatte()) return TListOpResult::Failed;
  for (const std::string& key : cut) {
    if (const int r = FRows.ZeileFromKey(key); r != 0) FRows[r].Cutted = true;
  }
  RecordRowChanges(before);
  if (content.Mode == TClipPasteType::CLIP_CUT) {
    if (content.Source != nullptr) content.Source->FinishCut(content.Keys);
    FClipboard->Clear();
  }
  Notify(TClipPasteEventInfo(content.SourcePath, content.SourceId, content.Keys, content.Mode, z));
  return TListOpResult::Done;
}

}  // namespace korvan::data
