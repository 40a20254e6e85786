#pragma once

#include <map>
#include <string>
#include <vector>

#include "data/component/c_data_events.h"
#include "data/component/c_data_registry.h"
#include "data/component/c_data_rows.h"
#include "data/component/c_data_undo.h"
#include "data/component/clip_block.h"
#include "data/component/column_structure.h"
#include "data/component/list_operation.h"

namespace korvan::data {

// Result of storing an edited row.
enum class TScreen2DataResult { Stored, Refused, InvalidRow, NotEditable, RowLocked, Busy };

// The data component: the rows of one business list and the operations on them. It
// knows nothing of the business data; every read, write, delete, sum and copy is asked
// of the owning data module through the events in `Events`. Views (list, mask, choice
// list, tree) are the shell's; this class is the part that works without them.
class TCData {
 public:
  TCData() = default;
  ~TCData();
  TCData(const TCData&) = delete;
  TCData& operator=(const TCData&) = delete;

  TCDataEvents Events;

  // --- Configuration ----------------------------------------------------------------
  int FC_AddInsertStringID = 0;
  bool Fc_AcceptParentLock = false;
  std::string FDatenName;
  TDatenDir FDatenPfad = TDatenDir::Undefined;
  int FDemoLZmax = 0;
  bool FC_hasClipSpecial = false;
  int FC_ID = 0;
  std::string FIndexName;
  TIndexTyp FIndiziert = TIndexTyp::Kein;
  TViewArt Fc_LastView = TViewArt::vaNONE;
  std::string FC_letIdDrop;  // ids of components whose rows may be pasted here
  int FLZmax = 16000;
  bool FC_NoSpaltenUserEdit = false;
  bool FC_ShowInTree = false;
  bool FC_Solo = false;
  TSpeicherMethode FSpeicherMethode = TSpeicherMethode::Strings;
  uint8_t FTreeNo = 0;
  bool FC_ValidBlockOP = true;
  TViewArt FView = TViewArt::vaNONE;
  bool FShowMarkiertStatus = false;
  std::string FfreiesDatenDirectory;
  bool FNoEdit = false;
  bool FNoListChange = false;
  bool FNoBlockOp = false;
  TCData* FVaterTCD = nullptr;  // parent component of a master-detail pair
  bool FKeyGesteuert = true;
  bool FSuppressRecordInitialization = false;
  // Left out: the views and menus (FcMaske, FcWahl, FcMaskeExtern, FcQTree, FTreeWindow,
  // FC_MainMenu, Fc_MenuShortID, FActionListData, FExternMenuTop, DruckMenuListe) belong
  // to the shell.

  void SetUndoJournal(UserActionScope* journal) { FUndo = journal; }
  // Enters the component into the registry through which the undo journal finds it
  // (nullptr: leaves it); the entry ends with the component.
  void SetRegistry(TCDataRegistry* registry);
  void SetClipboard(TCDataClipboard* clipboard) { FClipboard = clipboard; }

  // --- Column structure -------------------------------------------------------------
  // Reads the structure from its strings; throws EColumnStructureError and keeps the
  // old structure when a string is malformed.
  void SetStruktur(const std::vector<std::string>& definitions);
  // The structure a user saved; raises `C_OnAfterUserStrukturLesen`.
  void SetUserStruktur(const std::vector<std::string>& definitions);
  // The module's default structure (`C_OnGetStruktur`), or the single column "Nr".
  std::vector<std::string> GetStructOrg();
  const TColumnStructure& Struktur() const { return FStruktur; }
  int GetFeldAnzahl() const { return FStruktur.FeldAnzahl(); }
  std::string GetFeldName(int column) const;
  bool GetFeldHidden(int column);
  bool StrukturModified() const { return FC_StrukturModified; }
  // Called once the owner has configured the component: takes the module's default
  // structure when none was set.
  void Loaded();

  // --- Rows -------------------------------------------------------------------------
  // Fills the row list from the module (`C_OnStrukturLesen`). false with LastError()
  // when the module delivers more rows than allowed or a key that is too long.
  bool LeseIndexVonPlatte(bool doVerdichten = false);
  // Saves the row list (`C_OnStrukturSchreiben`) when it changed or when forced.
  void SchreibeIndexAufPlatte(bool force, bool doVerdichten = false);
  int GetRmax() const { return FRows.Count(); }
  const TCDataRows& Rows() const { return FRows; }
  TCDataRow& GetR(int z) { return FRows[z]; }
  void SetR(int z, const TCDataRow& row);
  void SetKey(int z, const std::string& key);
  const std::string& GetKey(int z) const { return FRows[z].Key; }
  bool GetMarkiert(int z) const { return FRows[z].Markiert; }
  char GetZArt(int z) const { return FRows[z].ZArt; }
  int GetLevel(int z) const { return FRows[z].Level; }
  bool GetLocked(int z) const { return FRows[z].Locked; }
  int ZeileFromKey(const std::string& key) const { return FRows.ZeileFromKey(key); }
  bool KeyExists(const std::string& key) const { return ZeileFromKey(key) != 0; }
  bool isMarkiertPerKey(const std::string& key) const;
  char ZeilenartPerKey(const std::string& key) const;

  // --- Rows taken back or made again by the undo journal -----------------------------
  // These change the row list only; the records are put back by the journal itself, and
  // nothing here is recorded. Rows are numbered as they stand when the call is made.
  // false with LastError() (German, naming list, row and key) when the rows are not as
  // the journal left them; the list is then unchanged.
  //
  // Row `from` becomes row `to`.
  bool MoveRow(int from, int to);
  // Takes out row z, which must carry `key`.
  bool RemoveRowWithKey(int z, const std::string& key);
  // Puts a row with `key` back as row z (1 to GetRmax() + 1) and reads it through
  // `C_OnGetDaten`; a row this component took out keeps its kind, level and marks. As
  // the journal may put the record back only after the row, UndoRedo() reads it again.
  bool RestoreRow(int z, const std::string& key);

  // --- Current row ------------------------------------------------------------------
  // Asks the module for row z's values (`C_OnGetDaten`) and takes mark, button and row
  // kind from the answer. Empty for a row that does not exist.
  TStringList Data2Screen(int z);
  // Stores the edited values of row z through `C_OnPutDaten`.
  TScreen2DataResult Screen2Data(int z, const TStringList& values);
  const TStringList& CurrentRecord() const { return FCurrentRecord; }
  const TStringList& UnalteredRecord() const { return FUnalteredRecord; }
  int CurrentRecordIndex() const { return FCurrentRecordIndex; }

  // --- List operations --------------------------------------------------------------
  TListOpResult ListOperation(int z, int mode) { return ListOperationEx(z, mode, {}); }
  TListOpResult ListOperationEx(int z, int mode, const TListOpArgs& args);
  const std::string& LastError() const { return FLastError; }

  // --- Clipboard --------------------------------------------------------------------
  bool CanPaste();
  bool CanCut() const { return !FNoEdit && !FNoListChange && FClipboard != nullptr; }
  // Removes the rows of a cut after they were pasted (also into another component).
  void FinishCut(const TStringList& keys);
  // The path given with clipboard rows: the free data directory and the data name.
  std::string DataPath() const;

  // --- State ------------------------------------------------------------------------
  void GoActive();
  void GoDeActive();
  void ModifiedByChild();
  // After the undo journal took a step back or made it again. A registered component
  // reads the rows the journal put back and its current row again (its row list is kept
  // in step by the journal); one without registry reloads its rows from the tables.
  // Raises `OnAfterUndo`.
  void UndoRedo();

 private:
  struct OpContext;
  TListOpResult Perform(int z, int mode, const TListOpArgs& args);
  TListOpResult OpInit();
  TListOpResult OpClose();
  TListOpResult OpReload();
  TListOpResult OpChangeRecordIndex(int z);
  TListOpResult OpSelectAll();
  TListOpResult OpSelectBlock(int z, int block_end);
  TListOpResult OpToggleSelection(int z);
  TListOpResult OpAddInsert(int z, int mode);
  TListOpResult OpDeleteRecord(int z);
  TListOpResult OpDeleteBlock(int z);
  TListOpResult OpMoveBlock(int z);
  TListOpResult OpCopyBlock(int z);
  TListOpResult OpSortBlock(int z, const TListOpArgs& args);
  TListOpResult OpSaveBlock(int z, const TListOpArgs& args);
  TListOpResult OpReadBlock(int z, const TListOpArgs& args);
  TListOpResult OpSum();
  TListOpResult OpClipCopy(int z, TClipPasteType mode);
  TListOpResult OpPaste(int z, TClipPasteType mode);

  // The marked rows, or row z alone when none is marked (and z exists).
  std::vector<int> BlockRows(int z) const;
  // Inserts an empty row before z, moving the module's rows below down.
  void InsertRowAt(int z, TCDataRow row);
  // Removes row z, moving the module's rows below up.
  void RemoveRowAt(int z);
  // Deletes row z through `C_OnDeleteZeile`; true when it was removed.
  bool DeleteRow(int z, TOnDeleteMode mode);
  // Inserts rows with the given values before z and stores them through
  // `C_OnInitData`/`C_OnPutDaten`; a refused row is taken out again. Rows inserted.
  int InsertValueRows(int z, const std::vector<TBlockRow>& rows);
  // Keeps what a removed row carried (kind, level, marks) for when undo puts it back.
  void RememberRemoved(const TCDataRow& row);
  // Tells the journal how the row list changed from the keys `before` to the rows now,
  // as removals (bottom first), moves and additions (top first).
  void RecordRowChanges(const std::vector<std::string>& before);
  bool RefuseRowChange(std::string message);
  TStringList ReadRow(int z);
  TStringList Sized(TStringList values) const;
  void Notify(const TEventInfo& info);
  void AktualListenStatus();
  TListOpResult Fail(std::string message);

  TColumnStructure FStruktur = TColumnStructure::Default();
  std::vector<std::string> FStrukturStrings;
  bool FC_StrukturModified = false;
  bool FC_ListeLocked = false;
  bool hasBeenLoaded = false;
  bool FC_isClipCutting = false;
  bool FListModified = false;  // the row list must be written (`SchreibeIndexAufPlatte`)
  TStringList FCurrentRecord;
  TStringList FUnalteredRecord;
  int FCurrentRecordIndex = 0;
  int FPrevRecordIndex = 0;
  TCDataRows FRows;
  bool FBusy = false;
  std::string FLastError;
  UserActionScope* FUndo = nullptr;
  TCDataClipboard* FClipboard = nullptr;
  std::map<std::string, TCDataRow> FRemovedRows;  // by key, see RememberRemoved
  std::vector<std::string> FRowsToReread;         // keys of rows put back by undo
  // Last, so that the registry forgets the component before any of it is gone.
  TCDataRegistration FRegistration;
};

}  // namespace korvan::data
