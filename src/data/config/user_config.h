#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "data/config/base_config.h"
#include "data/config/sys_config.h"

namespace korvan::data {

class TMachineConfig;

// Which control characters the text editor shows.
struct TShowCharOptions {
  bool ShowCRLF = false;
  bool ShowTab = false;
  bool ShowSpc = false;
  bool ShowBmCode = false;
  bool operator==(const TShowCharOptions&) const = default;
};

// The current user's working preferences ("Q_User.ini" in the user's folder below the
// system directory's "USER"). Fields hold their defaults until Load() reads the file.
// `FUIonEdit` is the ordinal of TUIOnEdit; `FAllCAD` holds at most one character.
class TUserConfig : public TBaseConfig {
 public:
  explicit TUserConfig(const TConfigContext& context);

  // A user configuration read from its file in the machine's user directory.
  static TUserConfig Open(const TConfigContext& context, const TMachineConfig& machine);

  // The toolbar configuration file of toolbar set `number` ([GUI] "BarFile_<number>");
  // empty when none is kept.
  std::string BarFile(int number) const;
  void SetBarFile(int number, std::string_view file);

  // [Directories]
  KORVAN_CONFIG_FIELD(std::string, Objektvorgabe)

  // [DataPrint]
  KORVAN_CONFIG_FIELD(std::string, DataPrintPath)
  KORVAN_CONFIG_FIELD(int32_t, DataPrintSelection, 0)

  // [Flags]
  KORVAN_CONFIG_FIELD(bool, ShowInfoStatus, false)
  KORVAN_CONFIG_FIELD(bool, FractalValues, false)
  KORVAN_CONFIG_FIELD(bool, NoAufmassSperre, false)
  KORVAN_CONFIG_FIELD(bool, AllwaysMaximized, false)
  KORVAN_CONFIG_FIELD(bool, ButFlat, false)
  KORVAN_CONFIG_FIELD(bool, UseUndoRedo, true)
  KORVAN_CONFIG_FIELD(bool, HiddenMenu, false)
  KORVAN_CONFIG_FIELD(bool, FixDockSize, false)
  KORVAN_CONFIG_FIELD(bool, DblClk2Edit, false)
  KORVAN_CONFIG_FIELD(bool, Splitter, false)
  KORVAN_CONFIG_FIELD(bool, SaveOpenWindows, false)
  KORVAN_CONFIG_FIELD(bool, ShortContextMenu, false)
  KORVAN_CONFIG_FIELD(bool, UPosFromKat, false)
  KORVAN_CONFIG_FIELD(bool, saveZeile, false)
  KORVAN_CONFIG_FIELD(bool, SaveDesktops, false)
  KORVAN_CONFIG_FIELD(bool, AllwaysOwnBP, false)
  KORVAN_CONFIG_FIELD(bool, HideNav, false)
  KORVAN_CONFIG_FIELD(bool, HideKopf, false)
  KORVAN_CONFIG_FIELD(bool, SaveFeldOnEscape, true)
  KORVAN_CONFIG_FIELD(bool, DBDXmlOnline, false)
  KORVAN_CONFIG_FIELD(bool, SubMenus, false)
  KORVAN_CONFIG_FIELD(bool, coolBarAutoArrange, false)
  KORVAN_CONFIG_FIELD(bool, ButStatic, false)
  KORVAN_CONFIG_FIELD(bool, LockControlAlt, false)
  KORVAN_CONFIG_FIELD(bool, ShowBmpInTree, false)
  KORVAN_CONFIG_FIELD(bool, savePos, false)
  KORVAN_CONFIG_FIELD(bool, ShowAllTextChar, false)
  KORVAN_CONFIG_FIELD(bool, AnfuegenNext, false)
  KORVAN_CONFIG_FIELD(bool, DirectEdit, false)
  KORVAN_CONFIG_FIELD(bool, HideStatus, false)
  KORVAN_CONFIG_FIELD(bool, CoolBarShowText, false)
  KORVAN_CONFIG_FIELD(bool, NextRawOnEnter, false)
  KORVAN_CONFIG_FIELD(bool, UseDBDXml, false)
  KORVAN_CONFIG_FIELD(bool, UseDBDOffline, false)
  KORVAN_CONFIG_FIELD(bool, UseDBDBIMOffline, false)
  KORVAN_CONFIG_FIELD(bool, UseHBOOffline, false)
  KORVAN_CONFIG_FIELD(bool, ListeScrollTrack, false)
  KORVAN_CONFIG_FIELD(bool, LVCheck4Print, false)
  KORVAN_CONFIG_FIELD(bool, ShowQuickInfo, false)
  KORVAN_CONFIG_FIELD(TShowCharOptions, ShowCharOptions)
  KORVAN_CONFIG_FIELD(uint8_t, SelektionsModus, 0)
  KORVAN_CONFIG_FIELD(uint8_t, WindowsKeys, 0)
  KORVAN_CONFIG_FIELD(uint8_t, LineBreak, 0)
  KORVAN_CONFIG_FIELD(uint8_t, UIonEdit, 0)
  KORVAN_CONFIG_FIELD(bool, UserCounter, false)
  KORVAN_CONFIG_FIELD(bool, UseGtcConverter, false)
  KORVAN_CONFIG_FIELD(bool, DisableUndoWhileImport, false)
  KORVAN_CONFIG_FIELD(bool, TextDiff, false)
  KORVAN_CONFIG_FIELD(bool, NewOptionsDialog, false)
  KORVAN_CONFIG_FIELD(bool, ActiveBoQChecks, false)
  KORVAN_CONFIG_FIELD(bool, BoQChecks, false)
  KORVAN_CONFIG_FIELD(bool, BuildSumAlways, false)
  KORVAN_CONFIG_FIELD(bool, DBDSBOClient, false)
  KORVAN_CONFIG_FIELD(bool, DBDBIMClient, false)
  KORVAN_CONFIG_FIELD(bool, ShowStringGrid, false)
  KORVAN_CONFIG_FIELD(bool, EditMzKTOnBG, false)
  KORVAN_CONFIG_FIELD(bool, IncludeIfcSpaces, false)
  KORVAN_CONFIG_FIELD(bool, UseBRepQuantities, false)
  KORVAN_CONFIG_FIELD(int32_t, ChromiumZoomPctHeinze, 100)
  KORVAN_CONFIG_FIELD(int32_t, ChromiumZoomPctOwn, 100)
  KORVAN_CONFIG_FIELD(int32_t, ChromiumZoomPctSirados, 100)
  KORVAN_CONFIG_FIELD(int32_t, ChromiumZoomPctStlbBAU, 100)
  KORVAN_CONFIG_FIELD(int32_t, ChromiumZoomPctDBD, 100)

  // [GUI]
  KORVAN_CONFIG_FIELD(std::string, AllCAD)
  KORVAN_CONFIG_FIELD(int16_t, NavWidth1, 0)
  KORVAN_CONFIG_FIELD(int16_t, NavWidth2, 0)
  KORVAN_CONFIG_FIELD(std::string, BidUserID)
  KORVAN_CONFIG_FIELD(std::string, BidPassword)
  KORVAN_CONFIG_FIELD(std::string, cdrDatei)
  KORVAN_CONFIG_FIELD(int32_t, AnzeigeWaehrung, 0)
  KORVAN_CONFIG_FIELD(std::string, Favorites)
  KORVAN_CONFIG_FIELD(bool, BarConfigToDesktop, false)
  KORVAN_CONFIG_FIELD(bool, UseLargeIcons, false)
  KORVAN_CONFIG_FIELD(bool, BarCustomizing, false)
  KORVAN_CONFIG_FIELD(bool, StandardBarCustomizing, false)
  KORVAN_CONFIG_FIELD(bool, FullStdBarCustomizeDlg, false)
  KORVAN_CONFIG_FIELD(bool, ClassicMenuConvert, false)
  KORVAN_CONFIG_FIELD(int32_t, HintDuration, 0)
  KORVAN_CONFIG_FIELD(int32_t, HintTimeLow, 0)
  KORVAN_CONFIG_FIELD(int32_t, HintTimeMiddle, 0)
  KORVAN_CONFIG_FIELD(int32_t, HintTimeHigh, 0)
  KORVAN_CONFIG_FIELD(bool, CurrencyPriceRegion, false)
  KORVAN_CONFIG_FIELD(std::string, DBDSBOClientUser)
  KORVAN_CONFIG_FIELD(std::string, DBDSBOClientPassword)
  KORVAN_CONFIG_FIELD(std::string, DBDSBOOfflineClientUser)
  KORVAN_CONFIG_FIELD(std::string, DBDSBOfflineOClientPassword)
  KORVAN_CONFIG_FIELD(std::string, DBDBIMClientUser)
  KORVAN_CONFIG_FIELD(std::string, DBDBIMClientPassword)
  KORVAN_CONFIG_FIELD(std::string, DBDBIMOfflineClientUser)
  KORVAN_CONFIG_FIELD(std::string, DBDBIMOfflineClientPassword)
  KORVAN_CONFIG_FIELD(std::string, SiradosClientUser)
  KORVAN_CONFIG_FIELD(std::string, SiradosClientPassword)
  KORVAN_CONFIG_FIELD(std::string, HeinzeClientUser)
  KORVAN_CONFIG_FIELD(std::string, HeinzeClientPassword)

  // [Strings]
  KORVAN_CONFIG_FIELD(std::string, TimeManagementAccountInfo)
  KORVAN_CONFIG_FIELD(std::string, TimeManagementServerUrl)
  KORVAN_CONFIG_FIELD(std::string, TimeManagementToken)
  KORVAN_CONFIG_FIELD(std::string, TimeManagementExternalProjectId)

  // [ModulOptions]
  KORVAN_CONFIG_FIELD(bool, Main_goNeuheitenOnce, false)
  KORVAN_CONFIG_FIELD(int32_t, Main_Language, kGermanLanguage)
  KORVAN_CONFIG_FIELD(bool, Main_WMaxi, false)
  KORVAN_CONFIG_FIELD(int32_t, Main_WPX, 0)
  KORVAN_CONFIG_FIELD(int32_t, Main_WPY, 0)
  KORVAN_CONFIG_FIELD(int32_t, Main_WPH, 0)
  KORVAN_CONFIG_FIELD(int32_t, Main_WPW, 0)
  KORVAN_CONFIG_FIELD(std::string, lastAccess_Datum)
  KORVAN_CONFIG_FIELD(std::string, lastAccess_LastUser)
  KORVAN_CONFIG_FIELD(std::string, lastAccess_Date)
  KORVAN_CONFIG_FIELD(std::string, lastAccess_Time)
  KORVAN_CONFIG_FIELD(std::string, Jingle_File)
  KORVAN_CONFIG_FIELD(bool, Jingle_go, false)
  // The price comparison's "Kennzeichnen von Positionen, die mehr als … % vom Mittelwert
  // abweichen" (eMaxAbweichung); 0 marks none.
  KORVAN_CONFIG_FIELD(double, Preisspiegel_MaxAbweichung, 0.0)

 protected:
  void BindValues(TConfigBindings& bindings) override;
};

}  // namespace korvan::data
