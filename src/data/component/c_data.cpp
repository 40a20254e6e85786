#include "data/component/c_data.h"

#include <algorithm>
#include <string>

#include "data/common/text_catalogue.h"

namespace korvan::data {

TCData::~TCData() {
  if (FClipboard != nullptr) FClipboard->Forget(this);
}

// --- Column structure ----------------------------------------------------------------

void TCData::SetStruktur(const std::vector<std::string>& definitions) {
  FStruktur =
      definitions.empty() ? TColumnStructure::Default() : TColumnStructure::Parse(definitions);
  FStrukturStrings = definitions;
}

void TCData::SetUserStruktur(const std::vector<std::string>& definitions) {
  SetStruktur(definitions);
  FC_StrukturModified = true;
  if (Events.C_OnAfterUserStrukturLesen) Events.C_OnAfterUserStrukturLesen(*this);
}

std::vector<std::string> TCData::GetStructOrg() {
  TStringList definitions;
  if (Events.C_OnGetStruktur) Events.C_OnGetStruktur(*this, 0, definitions);
  if (definitions.empty()) definitions.emplace_back(kDefaultColumnStructure);
  return definitions;
}

void TCData::Loaded() {
  if (FStrukturStrings.empty()) SetStruktur(GetStructOrg());
  hasBeenLoaded = true;
}

std::string TCData::GetFeldName(int column) const {
  if (column < 0 || column >= FStruktur.FeldAnzahl()) return {};
  return FStruktur[column].Name;
}

bool TCData::GetFeldHidden(int column) {
  bool hidden = false;
  if (Events.OnGetFeldHidden) Events.OnGetFeldHidden(*this, column, hidden);
  return hidden;
}

// --- Rows ------------------------------------------------------------------------------

bool TCData::LeseIndexVonPlatte(bool doVerdichten) {
  std::vector<TCDataRow> rows;
  int rmax = 0;
  if (Events.C_OnStrukturLesen) Events.C_OnStrukturLesen(*this, rows, rmax, doVerdichten);
  if (rmax < 0 || rmax > static_cast<int>(rows.size())) {
    FLastError = "Zeilenliste: " + std::to_string(rmax) + " Zeilen gemeldet, " +
                 std::to_string(rows.size()) + " geliefert";
    return false;
  }
  rows.resize(static_cast<size_t>(rmax));
  if (rmax > FLZmax) {
    FLastError = "Zeilenliste: " + std::to_string(rmax) + " Zeilen, höchstens " +
                 std::to_string(FLZmax) + " erlaubt";
    return false;
  }
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].Key.size() > kMaxRowKeyLength) {
      FLastError = "Zeilenliste: Schlüssel der Zeile " + std::to_string(i + 1) +
                   " ist länger als " + std::to_string(kMaxRowKeyLength) + " Zeichen";
      return false;
    }
  }
  FRows.Assign(std::move(rows));
  FListModified = false;
  if (FCurrentRecordIndex > FRows.Count()) FCurrentRecordIndex = 0;
  return true;
}

void TCData::SchreibeIndexAufPlatte(bool force, bool doVerdichten) {
  if (!FListModified && !force) return;
  if (FVaterTCD != nullptr && !FC_Solo) {
    // A detail list is saved with the list it depends on.
    FVaterTCD->FListModified = true;
    FVaterTCD->SchreibeIndexAufPlatte(force, doVerdichten);
  } else if (Events.C_OnStrukturSchreiben) {
    if (Events.C_OnWait) {
      Events.C_OnWait(*this, 1, TTextCatalogue::German().cLoadStr(kTextListeSpeichern), 0, 0);
    }
    Events.C_OnStrukturSchreiben(*this, doVerdichten);
    if (Events.C_OnWait) Events.C_OnWait(*this, 0, "", 0, 0);
  }
  FListModified = false;
}

void TCData::SetR(int z, const TCDataRow& row) {
  if (!FRows.Valid(z)) return;
  FRows[z] = row;
  FRows[z].Key.resize(std::min(row.Key.size(), kMaxRowKeyLength));
}

void TCData::SetKey(int z, const std::string& key) {
  if (FRows.Valid(z)) FRows[z].Key = key.substr(0, kMaxRowKeyLength);
}

bool TCData::isMarkiertPerKey(const std::string& key) const {
  int z = ZeileFromKey(key);
  return z != 0 && FRows[z].Markiert;
}

char TCData::ZeilenartPerKey(const std::string& key) const {
  int z = ZeileFromKey(key);
  return z == 0 ? ' ' : FRows[z].ZArt;
}

// --- Rows taken back or made again by the undo journal ----------------------------------

bool TCData::RefuseRowChange(std::string message) {
  FLastError = "Liste " + std::to_string(FC_ID) + ": " + std::move(message);
  return false;
}

bool TCData::MoveRow(int from, int to) {
  if (FBusy) return RefuseRowChange("eine Listenoperation läuft noch");
  for (int z : {from, to}) {
    if (!FRows.Valid(z)) {
      return RefuseRowChange("Zeile " + std::to_string(z) + " gibt es nicht, die Liste hat " +
                             std::to_string(FRows.Count()) + " Zeilen");
    }
  }
  FRows.Move(from, to);
  if (FCurrentRecordIndex == from) {
    FCurrentRecordIndex = to;
  } else if (from < FCurrentRecordIndex && FCurrentRecordIndex <= to) {
    --FCurrentRecordIndex;
  } else if (to <= FCurrentRecordIndex && FCurrentRecordIndex < from) {
    ++FCurrentRecordIndex;
  }
  FListModified = true;
  return true;
}

bool TCData::RemoveRowWithKey(int z, const std::string& key) {
  if (FBusy) return RefuseRowChange("eine Listenoperation läuft noch");
  if (!FRows.Valid(z)) {
    return RefuseRowChange("Zeile " + std::to_string(z) + " mit dem Schlüssel \"" + key +
                           "\" gibt es nicht, die Liste hat " + std::to_string(FRows.Count()) +
                           " Zeilen");
  }
  if (FRows[z].Key != key) {
    return RefuseRowChange("in Zeile " + std::to_string(z) + " steht der Schlüssel \"" +
                           FRows[z].Key + "\", nicht \"" + key + "\"");
  }
  RememberRemoved(FRows[z]);
  RemoveRowAt(z);
  return true;
}

bool TCData::RestoreRow(int z, const std::string& key) {
  if (FBusy) return RefuseRowChange("eine Listenoperation läuft noch");
  if (z < 1 || z > FRows.Count() + 1) {
    return RefuseRowChange("Zeile " + std::to_string(z) + " für den Schlüssel \"" + key +
                           "\" liegt außerhalb der Liste mit " + std::to_string(FRows.Count()) +
                           " Zeilen");
  }
  if (key.size() > kMaxRowKeyLength) {
    return RefuseRowChange("der Schlüssel \"" + key + "\" ist länger als " +
                           std::to_string(kMaxRowKeyLength) + " Zeichen");
  }
  if (FRows.Count() >= FLZmax) {
    return RefuseRowChange("die Liste hat bereits die höchste Zeilenzahl " +
                           std::to_string(FLZmax));
  }
  TCDataRow row;
  if (auto removed = FRemovedRows.find(key); removed != FRemovedRows.end()) {
    row = std::move(removed->second);
    FRemovedRows.erase(removed);
  }
  row.Key = key;
  InsertRowAt(z, std::move(row));
  Data2Screen(z);
  FRowsToReread.push_back(key);
  return true;
}

// Bounded by the row limit: a list that forgot what a removed row carried still puts
// it back, only with the kind and marks its module gives it.
void TCData::RememberRemoved(const TCDataRow& row) {
  if (row.Key.empty()) return;
  if (static_cast<int>(FRemovedRows.size()) >= FLZmax) FRemovedRows.clear();
  TCDataRow kept = row;
  kept.Cutted = false;
  kept.Locked = false;
  FRemovedRows[row.Key] = std::move(kept);
}

// --- Current row ---------------------------------------------------------------------

TStringList TCData::Sized(TStringList values) const {
  values.resize(static_cast<size_t>(FStruktur.ValueCount()));
  return values;
}

TStringList TCData::Data2Screen(int z) {
  if (!FRows.Valid(z)) return {};
  TStringList values = Sized({});
  TCDataRow& row = FRows[z];
  if (Events.C_OnGetDaten) {
    Events.C_OnGetDaten(*this, z, values, row.Markiert, row.Button, row.ZArt);
  }
  return Sized(std::move(values));
}

TScreen2DataResult TCData::Screen2Data(int z, const TStringList& values) {
  if (FBusy) return TScreen2DataResult::Busy;
  if (!FRows.Valid(z)) return TScreen2DataResult::InvalidRow;
  if (FNoEdit || FC_ListeLocked) return TScreen2DataResult::NotEditable;
  if (FRows[z].Locked) return TScreen2DataResult::RowLocked;
  const std::string key = FRows[z].Key;
  bool foreign_locked = false;
  if (Events.C_onLockZeile) Events.C_onLockZeile(key, key, foreign_locked, false);
  if (foreign_locked) return TScreen2DataResult::RowLocked;

  UserActionGuard action(FUndo, FC_ID, 0, "Bearbeiten");
  TStringList old = FCurrentRecordIndex == z ? FUnalteredRecord : Data2Screen(z);
  TStringList edited = Sized(values);
  bool ok = true;
  FBusy = true;
  if (Events.C_OnPutDaten) Events.C_OnPutDaten(*this, z, edited, old, FRows[z].ZArt, ok);
  FBusy = false;
  if (Events.C_onLockZeile) Events.C_onLockZeile(key, key, foreign_locked, true);
  if (!ok) return TScreen2DataResult::Refused;
  if (FUndo != nullptr && FRows.Valid(z) && FRows[z].Key != key) {
    // A new key is a different record: undo must show the row with the old one again.
    FUndo->RowDeleted(FC_ID, key, z);
    FUndo->RowInserted(FC_ID, FRows[z].Key, z);
  }

  FPrevRecordIndex = FCurrentRecordIndex;
  FCurrentRecordIndex = z;
  FCurrentRecord = Sized(std::move(edited));
  FUnalteredRecord = FCurrentRecord;
  if (Events.C_OnAktualDaten) Events.C_OnAktualDaten(*this, z);
  return TScreen2DataResult::Stored;
}

// --- Clipboard -----------------------------------------------------------------------

std::string TCData::DataPath() const {
  return FfreiesDatenDirectory + FDatenName;
}

namespace {

bool IdListed(const std::string& list, int id) {
  std::string number;
  auto matches = [&] { return !number.empty() && number == std::to_string(id); };
  for (char c : list) {
    if (c == ',' || c == ';' || c == ' ') {
      if (matches()) return true;
      number.clear();
    } else {
      number += c;
    }
  }
  return matches();
}

}  // namespace

bool TCData::CanPaste() {
  if (FClipboard == nullptr || !FClipboard->Content() || FNoEdit || FNoListChange) return false;
  const TClipContent& content = *FClipboard->Content();
  bool accept = content.SourceId == FC_ID || IdListed(FC_letIdDrop, content.SourceId);
  if (accept && Events.OnCanPaste) Events.OnCanPaste(*this, accept);
  return accept;
}

void TCData::FinishCut(const TStringList& keys) {
  for (const std::string& key : keys) {
    int z = ZeileFromKey(key);
    if (z != 0 && FRows[z].Cutted) DeleteRow(z, TOnDeleteMode::dmBlind);
  }
  AktualListenStatus();
}

// --- State ---------------------------------------------------------------------------

void TCData::GoActive() {
  if (Events.C_OnGoActive) Events.C_OnGoActive(*this);
}

void TCData::GoDeActive() {
  if (Events.C_OnGoDeActive) Events.C_OnGoDeActive(*this);
}

void TCData::ModifiedByChild() {
  if (Events.C_onModifiedByChild) Events.C_onModifiedByChild(*this);
}

void TCData::SetRegistry(TCDataRegistry* registry) {
  if (registry == nullptr) {
    FRegistration.Detach();
  } else {
    FRegistration.Attach(*registry, *this);
  }
}

void TCData::UndoRedo() {
  if (FRegistration.Attached()) {
    for (const std::string& key : FRowsToReread) {
      if (const int z = ZeileFromKey(key); z != 0) Data2Screen(z);
    }
    if (FRows.Valid(FCurrentRecordIndex)) {
      FCurrentRecord = Data2Screen(FCurrentRecordIndex);
      FUnalteredRecord = FCurrentRecord;
    }
  } else {
    LeseIndexVonPlatte();
  }
  FRowsToReread.clear();
  if (Events.OnAfterUndo) Events.OnAfterUndo(*this);
  AktualListenStatus();
}

void TCData::Notify(const TEventInfo& info) {
  if (Events.C_OnEventInfo) Events.C_OnEventInfo(*this, info);
}

void TCData::AktualListenStatus() {
  if (Events.C_OnAktualListenStatus) Events.C_OnAktualListenStatus(*this);
}

TListOpResult TCData::Fail(std::string message) {
  FLastError = std::move(message);
  return TListOpResult::Failed;
}

}  // namespace korvan::data
