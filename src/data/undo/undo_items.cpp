#include "data/undo/undo_items.h"

#include <algorithm>

#include "storage/record_header.h"

namespace korvan::data {

// --- TCounterItem / TStartItem ---------------------------------------------------------

void TCounterItem::SaveToStream(TUndoWriter& out) const {
  out.WriteI32(FInsert);
  out.WriteI32(FUpdate);
  out.WriteI32(FDelete);
}

void TCounterItem::LoadFromStream(TUndoReader& in) {
  FInsert = in.ReadI32();
  FUpdate = in.ReadI32();
  FDelete = in.ReadI32();
  if (FInsert < 0 || FUpdate < 0 || FDelete < 0) in.Fail("negative record counter");
}

void TStartItem::AddCounterInfo(char db_type, char table_type, TRecordChange change) {
  auto found = std::find_if(FCounters.begin(), FCounters.end(), [&](const TTableCounter& c) {
    return c.db_type == db_type && c.table_type == table_type;
  });
  if (found == FCounters.end()) {
    FCounters.push_back({db_type, table_type, {}});
    found = FCounters.end() - 1;
  }
  switch (change) {
    case TRecordChange::kInsert:
      ++found->counters.FInsert;
      break;
    case TRecordChange::kUpdate:
      ++found->counters.FUpdate;
      break;
    case TRecordChange::kDelete:
      ++found->counters.FDelete;
      break;
  }
}

// Stream form: id, tag, operation (1 byte), caption (UTF-16), reload flag (1 byte), the
// number of counters, then per counter the database and table letters and the counters.
void TStartItem::SaveToStream(TUndoWriter& out) const {
  out.WriteI32(FID);
  out.WriteI32(FTag);
  out.WriteU8(static_cast<uint8_t>(FOperation));
  out.WriteUtf16(FText);
  out.WriteU8(FReloadAll ? 1 : 0);
  out.WriteU32(static_cast<uint32_t>(FCounters.size()));
  for (const TTableCounter& counter : FCounters) {
    out.WriteU8(static_cast<uint8_t>(counter.db_type));
    out.WriteU8(static_cast<uint8_t>(counter.table_type));
    counter.counters.SaveToStream(out);
  }
}

void TStartItem::LoadFromStream(TUndoReader& in) {
  FID = in.ReadI32();
  FTag = in.ReadI32();
  const uint8_t operation = in.ReadU8();
  if (operation > kLastOperationKind)
    in.Fail("unknown operation kind " + std::to_string(operation));
  FOperation = static_cast<TOperationKind>(operation);
  FText = in.ReadUtf16();
  const uint8_t reload = in.ReadU8();
  if (reload > 1) in.Fail("bad reload flag");
  FReloadAll = reload == 1;
  const uint32_t count = in.ReadU32();
  FCounters.clear();
  for (uint32_t i = 0; i < count; ++i) {
    TTableCounter counter;
    counter.db_type = static_cast<char>(in.ReadU8());
    counter.table_type = static_cast<char>(in.ReadU8());
    counter.counters.LoadFromStream(in);
    FCounters.push_back(counter);
  }
}

// --- TCustomUndoRedoItem -----------------------------------------------------------------

int TCustomUndoRedoItem::Reverse(const TUndoTargets& targets, std::string& error) {
  const int result = Apply(targets, error);
  if (result == kUndoOk) {
    FKind =
        FKind == TUndoRedoItemKind::ikUndo ? TUndoRedoItemKind::ikRedo : TUndoRedoItemKind::ikUndo;
  }
  return result;
}

void TCustomUndoRedoItem::SaveToStream(TUndoWriter& out) const {
  out.WriteU8(static_cast<uint8_t>(FKind));
  SaveData(out);
}

void TCustomUndoRedoItem::LoadFromStream(TUndoReader& in) {
  const uint8_t kind = in.ReadU8();
  if (kind > 1) in.Fail("unknown item kind " + std::to_string(kind));
  FKind = static_cast<TUndoRedoItemKind>(kind);
  LoadData(in);
}

// --- TDBUndoRedoItem ----------------------------------------------------------------------

TDBUndoRedoItem::TDBUndoRedoItem(const TableTarget& table, JournalImage before, JournalImage after)
    : FDBFile(table.db_file),
      FAfterData(after.begin(), after.end()),
      FBeforeData(before.begin(), before.end()),
      FTBType(table.table_type),
      FDBType(table.db_type),
      FStaticLen(table.static_len) {}

std::unique_ptr<TCustomUndoRedoItem> TDBUndoRedoItem::Clone() const {
  return std::make_unique<TDBUndoRedoItem>(*this);
}

// An undo item writes the before-image over the after-image; a redo item the reverse.
int TDBUndoRedoItem::Apply(const TUndoTargets& targets, std::string& error) {
  if (targets.records == nullptr) {
    error = "No table access to restore records of \"" + FDBFile + "\"";
    return kUndoNoTarget;
  }
  const bool undo = FKind == TUndoRedoItemKind::ikUndo;
  const std::vector<uint8_t>& expected = undo ? FAfterData : FBeforeData;
  const std::vector<uint8_t>& image = undo ? FBeforeData : FAfterData;
  return targets.records->RestoreRecord(Target(), expected, image, error);
}

void TDBUndoRedoItem::SaveData(TUndoWriter& out) const {
  out.WriteU8(static_cast<uint8_t>(FTBType));
  out.WriteU8(static_cast<uint8_t>(FDBType));
  out.WriteUtf16(FDBFile);
  out.WriteI32(FStaticLen);
  out.WriteBlob(FAfterData);
  out.WriteBlob(FBeforeData);
}

// An image must be a whole record of this table: a header of the table's type letter
// whose length field covers at least the header and at most the image.
void TDBUndoRedoItem::CheckImage(const TUndoReader& in, const std::vector<uint8_t>& image) const {
  if (image.empty()) return;
  if (image.size() < static_cast<size_t>(storage::kRecordHeaderSize)) {
    in.Fail("record image of " + std::to_string(image.size()) + " bytes is shorter than a header");
  }
  storage::TDbRecordHeader header;
  std::copy_n(image.begin(), sizeof header, reinterpret_cast<uint8_t*>(&header));
  if (header.RecTyp != FTBType) in.Fail("record image of another table type");
}

void TDBUndoRedoItem::LoadData(TUndoReader& in) {
  FTBType = static_cast<char>(in.ReadU8());
  FDBType = static_cast<char>(in.ReadU8());
  FDBFile = in.ReadUtf16();
  FStaticLen = in.ReadI32();
  FAfterData = in.ReadBlob();
  FBeforeData = in.ReadBlob();
  if (FDBFile.empty()) in.Fail("record item without database path");
  if (FStaticLen < 0) in.Fail("negative record length");
  if (FAfterData.empty() && FBeforeData.empty()) in.Fail("record item without images");
  CheckImage(in, FAfterData);
  CheckImage(in, FBeforeData);
}

// --- TCDataUndoRedoItem ----------------------------------------------------------------

std::unique_ptr<TCustomUndoRedoItem> TCDataUndoRedoItem::Clone() const {
  return std::make_unique<TCDataUndoRedoItem>(*this);
}

void TCDataUndoRedoItem::AddMove(int32_t source_row, int32_t target_row) {
  TCDataCustomItem info;
  info.kind = TCDataCustomItem::Kind::kMove;
  info.move = {source_row, target_row};
  FCDataInfos.push_back(std::move(info));
}

void TCDataUndoRedoItem::AddDelete(std::string source_key, int32_t source_row) {
  TCDataCustomItem info;
  info.kind = TCDataCustomItem::Kind::kDelete;
  info.deleted = {std::move(source_key), source_row};
  FCDataInfos.push_back(std::move(info));
}

void TCDataUndoRedoItem::AddInsert(std::string target_key, int32_t target_row) {
  TCDataCustomItem info;
  info.kind = TCDataCustomItem::Kind::kInsert;
  info.inserted = {std::move(target_key), target_row};
  FCDataInfos.push_back(std::move(info));
}

// Every change is the exact opposite of its reverse: a move from A to B is taken back by
// a move from B to A, a removal by putting the row back where it was, an addition by
// removing it again.
int TCDataUndoRedoItem::ApplyOne(TCDataRowRestorer& rows, const TCDataCustomItem& info,
                                 bool backwards, std::string& error) const {
  switch (info.kind) {
    case TCDataCustomItem::Kind::kMove:
      return backwards ? rows.MoveRow(FCDataId, info.move.TargetRow, info.move.SourceRow, error)
                       : rows.MoveRow(FCDataId, info.move.SourceRow, info.move.TargetRow, error);
    case TCDataCustomItem::Kind::kDelete:
      return backwards
                 ? rows.RestoreRow(FCDataId, info.deleted.SourceKey, info.deleted.SourceRow, error)
                 : rows.RemoveRow(FCDataId, info.deleted.SourceKey, info.deleted.SourceRow, error);
    case TCDataCustomItem::Kind::kInsert:
      return backwards
                 ? rows.RemoveRow(FCDataId, info.inserted.TargetKey, info.inserted.TargetRow, error)
                 : rows.RestoreRow(FCDataId, info.inserted.TargetKey, info.inserted.TargetRow,
                                   error);
  }
  return kUndoOk;
}

// Each change numbers the rows as they stood when it was made, so undo must take the
// changes back newest first (each then finds the rows as that change left them) and
// redo make them again oldest first. When one fails, those already made are taken back,
// so the rows stay as they were.
int TCDataUndoRedoItem::Apply(const TUndoTargets& targets, std::string& error) {
  if (targets.rows == nullptr) {
    error = "No data component to restore rows of component " + std::to_string(FCDataId);
    return kUndoNoTarget;
  }
  const bool backwards = FKind == TUndoRedoItemKind::ikUndo;
  const size_t count = FCDataInfos.size();
  const auto info_at = [&](size_t step) -> const TCDataCustomItem& {
    return FCDataInfos[backwards ? count - 1 - step : step];
  };
  for (size_t step = 0; step < count; ++step) {
    const int result = ApplyOne(*targets.rows, info_at(step), backwards, error);
    if (result == kUndoOk) continue;
    for (size_t done = step; done-- > 0;) {
      std::string ignored;
      ApplyOne(*targets.rows, info_at(done), !backwards, ignored);
    }
    return result;
  }
  return kUndoOk;
}

// Stream form: the component id, the number of row changes, then per change its kind
// (1 move, 2 delete, 3 insert) and either source and target row or the row's key
// (UTF-16) and row.
void TCDataUndoRedoItem::SaveData(TUndoWriter& out) const {
  out.WriteI32(FCDataId);
  out.WriteU32(static_cast<uint32_t>(FCDataInfos.size()));
  for (const TCDataCustomItem& info : FCDataInfos) {
    out.WriteU8(static_cast<uint8_t>(info.kind));
    if (info.kind == TCDataCustomItem::Kind::kMove) {
      out.WriteI32(info.move.SourceRow);
      out.WriteI32(info.move.TargetRow);
    } else if (info.kind == TCDataCustomItem::Kind::kDelete) {
      out.WriteUtf16(info.deleted.SourceKey);
      out.WriteI32(info.deleted.SourceRow);
    } else {
      out.WriteUtf16(info.inserted.TargetKey);
      out.WriteI32(info.inserted.TargetRow);
    }
  }
}

void TCDataUndoRedoItem::LoadData(TUndoReader& in) {
  FCDataId = in.ReadI32();
  const uint32_t count = in.ReadU32();
  FCDataInfos.clear();
  for (uint32_t i = 0; i < count; ++i) {
    const uint8_t kind = in.ReadU8();
    if (kind == static_cast<uint8_t>(TCDataCustomItem::Kind::kMove)) {
      const int32_t source = in.ReadI32();
      AddMove(source, in.ReadI32());
    } else if (kind == static_cast<uint8_t>(TCDataCustomItem::Kind::kDelete)) {
      std::string key = in.ReadUtf16();
      AddDelete(std::move(key), in.ReadI32());
    } else if (kind == static_cast<uint8_t>(TCDataCustomItem::Kind::kInsert)) {
      std::string key = in.ReadUtf16();
      AddInsert(std::move(key), in.ReadI32());
    } else {
      in.Fail("unknown row change kind " + std::to_string(kind));
    }
  }
}

std::unique_ptr<TCustomUndoRedoItem> LoadUndoRedoItem(TStackEntryKind kind, TUndoReader& in) {
  std::unique_ptr<TCustomUndoRedoItem> item;
  if (kind == TStackEntryKind::kRecord) {
    item = std::make_unique<TDBUndoRedoItem>();
  } else if (kind == TStackEntryKind::kCData) {
    item = std::make_unique<TCDataUndoRedoItem>();
  } else {
    in.Fail("no item of entry kind " + std::to_string(static_cast<int>(kind)));
  }
  item->LoadFromStream(in);
  in.ExpectEnd();
  return item;
}

}  // namespace korvan::data
