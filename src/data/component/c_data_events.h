#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "data/component/c_data_rows.h"

namespace korvan::data {

class TCData;

// One text per column: a row's values as shown and edited.
using TStringList = std::vector<std::string>;

enum class TViewArt { Liste, vaLISTE, vaMASKE, vaWAHL, vaTREE, vaNONE, vaFREMDMASKE };
enum class TdefOpenUI {
  uiTree,
  uiListe,
  uiMaske,
  uiDefault,
  uiFremdmaske,
  uiDRUCK,
  uiNone,
  uiListeDocked
};
enum class TDatenDir {
  ProgrammDir,
  SystemDir,
  ConfigDir,
  ObjektDir,
  FormularDir,
  HelpDir,
  StammdatenDir,
  AusdruckDir,
  FreiDir,
  ExtObjectDir,
  KatalogDir,
  Undefined
};
enum class TSpeicherMethode { Strings, Records };
enum class TIndexTyp { Kein, Indiziert, Next, ArrayListe };
enum class TOnDeleteMode { dmNotBlind, dmBlind };
enum class TClipPasteType {
  CLIP_PASTE_DEFAULT,
  CLIP_PASTE_SPECIAL,
  CLIP_PASTE_TEXT_ONLY_unused,
  CLIP_COPY,
  CLIP_CUT,
  CLIP_PASTE_BLOCK,
  CLIP_COPY_BLOCK,
  CLIP_NONE,
  CLIP_MOVE,
  CLIP_LINK
};
// What a block operation handler (`C_OnDoBS`, `C_OnDoBI`) is asked to do.
enum class TBlockOpKind { boAssignment, boFilter };

// Detailed notifications raised through `C_OnEventInfo` after list operations.
class TEventInfo {
 public:
  virtual ~TEventInfo() = default;
};

class TDeleteRowEventInfo : public TEventInfo {
 public:
  TDeleteRowEventInfo(int row, std::string key) : Row(row), Key(std::move(key)) {}
  int Row;
  std::string Key;
};

class TListOpEventInfo : public TEventInfo {
 public:
  TListOpEventInfo(int mode, int row, int count) : Mode(mode), Row(row), Count(count) {}
  int Mode;   // the list operation (TListOp)
  int Row;    // the row it was applied at
  int Count;  // rows concerned
};

class TClipPasteEventInfo : public TEventInfo {
 public:
  TClipPasteEventInfo(std::string source_path, int source_id, TStringList keys,
                      TClipPasteType source_mode, int target_row)
      : SourcePath(std::move(source_path)),
        SourceId(source_id),
        Keys(std::move(keys)),
        SourceMode(source_mode),
        TargetRow(target_row) {}
  std::string SourcePath;
  int SourceId;
  TStringList Keys;
  TClipPasteType SourceMode;  // CLIP_COPY or CLIP_CUT: how the rows were taken
  int TargetRow;
};

class TValidC_IDEventInfo : public TEventInfo {
 public:
  explicit TValidC_IDEventInfo(int c_id) : C_ID(c_id) {}
  int C_ID;
  bool Valid = true;
};

// The handlers a data module attaches to its data component. Every handler is optional;
// a missing one leaves the by-reference arguments as they are.
//
// Events that exist only for windows are not modelled here because nothing headless can
// raise them: `C_OnDrOperation` (printing), `C_OnSendDoc` (mail), `C_onKeyDown`,
// `C_OnInitMenu`, `C_OnBeforeSwapEditOn`/`C_OnAfterSwapEditOff` (edit mode of a view),
// `OnActionUpdate`, `OnGetCellViewProperties`, `OnDropFiles`, `OnDropText`,
// `OnGetCompleteText`, `OnGetAVADragData`, `OnConvertDraggedKey`, `OnGetHint`,
// `OnGetHintStr`, `OnBuildHierarchieMenu`, `OnAcceptDraggedRowKindBeforeRow`
// (drag and drop, hints and menus of the views).
struct TCDataEvents {
  std::function<void(TCData& sender, int z, TStringList& t, bool& aMark, char& aButt, char& aZart)>
      C_OnGetDaten;
  std::function<void(TCData& sender, int z, TStringList& t, const TStringList& tOld, char aZart,
                     bool& ok)>
      C_OnPutDaten;
  std::function<void(TCData& sender, int z, TStringList& aT)> C_OnInitData;
  std::function<void(TCData& sender, int z, TStringList& aT)> C_OnDatenLesen;
  std::function<void(TCData& sender, int z, TStringList& aT)> C_OnDatenSchreiben;
  std::function<void(TCData& sender, std::vector<TCDataRow>& aR, int& aRMax, bool doVerdichten)>
      C_OnStrukturLesen;
  std::function<void(TCData& sender, bool doVerdichten)> C_OnStrukturSchreiben;
  std::function<void(TCData& sender)> C_OnAfterUserStrukturLesen;
  std::function<void(TCData& sender, int z, TStringList& aT)> C_OnGetStruktur;
  std::function<void(TCData& sender, int z)> C_OnAktualDaten;
  std::function<void(TCData& sender, int z, const std::string& key, TOnDeleteMode mode, bool& ok)>
      C_OnDeleteZeile;
  std::function<void(TCData& sender, int z, int q)> C_OnCopyData;
  std::function<void(TCData& sender, int z, int mode, bool& doListOP)> C_OnBeforeListOP;
  std::function<void(TCData& sender, int z, int mode, bool& doListOP)> C_OnAfterListOP;
  std::function<void(TCData& sender)> C_OnDoSummen;
  std::function<void(TCData& sender, TBlockOpKind& aMode, bool aResult)> C_OnDoBS;
  std::function<void(TCData& sender, TBlockOpKind& aMode, bool aResult)> C_OnDoBI;
  std::function<void(TCData& sender)> C_OnMakeListe;
  std::function<void(TCData& sender)> C_OnCloseListe;
  std::function<void(const std::string& zielPfad, int quellID, TStringList& keyList,
                     TClipPasteType& clipMode)>
      C_OnClipCopy;
  std::function<void(const std::string& quellPfad, int quellID, const TStringList& keyList,
                     TClipPasteType& clipMode)>
      C_OnClipPaste;
  std::function<void(TCData& sender, TdefOpenUI& openUI)> C_OnDblClick;
  std::function<void(const std::string& aKey, const std::string& aOwnLockedKey, bool& aFremdLocked,
                     bool doUnlock)>
      C_onLockZeile;
  std::function<void(TCData& sender)> C_onModifiedByChild;
  std::function<void(TCData& sender)> C_OnGoActive;
  std::function<void(TCData& sender)> C_OnGoDeActive;
  std::function<void(TCData& sender)> C_OnAktualListenStatus;
  std::function<void(char mode, int gt)> C_OnAddInsertHierarchie;
  std::function<void(TCData& sender, uint8_t aMode, const std::string& aT, int aMin, int aMax)>
      C_OnWait;
  std::function<void(TCData& sender, const TEventInfo& aEventInfo)> C_OnEventInfo;
  std::function<void(TCData& sender, int zielzeile, int quellID, bool& accept)> C_OnAcceptDragOver;
  std::function<void(TCData& sender, bool& canPaste)> OnCanPaste;
  std::function<void(TCData& sender, int& maxHierarchie)> OnGetMaxHierarchie;
  std::function<void(TCData& sender)> OnAfterUndo;
  std::function<void(TCData& sender, int aRow, int& aMaxLevel)> OnGetMaxLevels;
  std::function<void(TCData& sender, int column, bool& hidden)> OnGetFeldHidden;
  std::function<void(TCData& sender, double& faktor)> OnGetCurrentMwstFaktor;
};

}  // namespace korvan::data
