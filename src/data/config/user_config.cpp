#include "data/config/user_config.h"

#include "data/config/machine_config.h"

namespace korvan::data {
namespace {

constexpr std::string_view kDirectories = "Directories";
constexpr std::string_view kDataPrint = "DataPrint";
constexpr std::string_view kFlags = "Flags";
constexpr std::string_view kGUI = "GUI";
constexpr std::string_view kStrings = "Strings";
constexpr std::string_view kModulOptions = "ModulOptions";

std::string BarFileKey(int number) {
  return "BarFile_" + std::to_string(number);
}

}  // namespace

TUserConfig::TUserConfig(const TConfigContext& context) : TBaseConfig(context, "User") {}

TUserConfig TUserConfig::Open(const TConfigContext& context, const TMachineConfig& machine) {
  TUserConfig config(context);
  config.Load(machine.UserConfigFile());
  return config;
}

std::string TUserConfig::BarFile(int number) const {
  return Tree().Get(kGUI, BarFileKey(number)).value_or(std::string());
}

void TUserConfig::SetBarFile(int number, std::string_view file) {
  if (BarFile(number) == file) return;
  MutableTree().Set(kGUI, BarFileKey(number), file);
  MarkChanged();
}

void TUserConfig::BindValues(TConfigBindings& b) {
  // [Directories]
  b.Add(kDirectories, "Objektvorgabe", FObjektvorgabe);

  // [DataPrint]
  b.Add(kDataPrint, "DataPrintPath", FDataPrintPath);
  b.Add(kDataPrint, "DataPrintSelection", FDataPrintSelection);

  // [Flags]
  b.Add(kFlags, "ShowInfoStatus", FShowInfoStatus);
  b.Add(kFlags, "FractalValues", FFractalValues);
  b.Add(kFlags, "NoCalcLocking", FNoAufmassSperre);
  b.Add(kFlags, "AllwaysMaximized", FAllwaysMaximized);
  b.Add(kFlags, "ButFlat", FButFlat);
  b.Add(kFlags, "UseUndoRedo", FUseUndoRedo);
  b.Add(kFlags, "HiddenMenu", FHiddenMenu);
  b.Add(kFlags, "FixDockSize", FFixDockSize);
  b.Add(kFlags, "DblClk2Edit", FDblClk2Edit);
  b.Add(kFlags, "Splitter", FSplitter);
  b.Add(kFlags, "SaveOpenWindows", FSaveOpenWindows);
  b.Add(kFlags, "ShortContextMenu", FShortContextMenu);
  b.Add(kFlags, "UPosFromKat", FUPosFromKat);
  b.Add(kFlags, "saveZeile", FsaveZeile);
  b.Add(kFlags, "saveDeskops", FSaveDesktops);
  b.Add(kFlags, "AllwaysOwnBP", FAllwaysOwnBP);
  b.Add(kFlags, "HideNav", FHideNav);
  b.Add(kFlags, "HideKopf", FHideKopf);
  b.Add(kFlags, "SaveFeldOnEscape", FSaveFeldOnEscape);
  b.Add(kFlags, "DBDXmlOnline", FDBDXmlOnline);
  b.Add(kFlags, "SubMenus", FSubMenus);
  b.Add(kFlags, "coolBarAutoArrange", FcoolBarAutoArrange);
  b.Add(kFlags, "ButStatic", FButStatic);
  b.Add(kFlags, "LockControlAlt", FLockControlAlt);
  b.Add(kFlags, "ShowBmpInTree", FShowBmpInTree);
  b.Add(kFlags, "savePos", FsavePos);
  b.Add(kFlags, "ShowAllTextChar", FShowAllTextChar);
  b.Add(kFlags, "AnfuegenNext", FAnfuegenNext);
  b.Add(kFlags, "DirectEdit", FDirectEdit);
  b.Add(kFlags, "HideStatus", FHideStatus);
  b.Add(kFlags, "CoolBarShowText", FCoolBarShowText);
  b.Add(kFlags, "NextRawOnEnter", FNextRawOnEnter);
  b.Add(kFlags, "UseDBDXml", FUseDBDXml);
  b.Add(kFlags, "UseDBDOffline", FUseDBDOffline);
  b.Add(kFlags, "UseDBDBIMOffline", FUseDBDBIMOffline);
  b.Add(kFlags, "UseHBOOffline", FUseHBOOffline);
  b.Add(kFlags, "ListeScrollTrack", FListeScrollTrack);
  b.Add(kFlags, "LVCheck4Print", FLVCheck4Print);
  b.Add(kFlags, "ShowQuickInfo", FShowQuickInfo);
  b.Add(kFlags, "ShowCRLF", FShowCharOptions.ShowCRLF);
  b.Add(kFlags, "ShowTab", FShowCharOptions.ShowTab);
  b.Add(kFlags, "ShowSpc", FShowCharOptions.ShowSpc);
  b.Add(kFlags, "ShowBmCode", FShowCharOptions.ShowBmCode);
  b.Add(kFlags, "SelektionsModus", FSelektionsModus);
  b.Add(kFlags, "WindowsKeys", FWindowsKeys);
  b.Add(kFlags, "LineBreak", FLineBreak);
  b.Add(kFlags, "UIonEdit", FUIonEdit);
  b.Add(kFlags, "UserCounter", FUserCounter);
  b.Add(kFlags, "UseGtcConverter", FUseGtcConverter);
  b.Add(kFlags, "DisableUndoWhileImport", FDisableUndoWhileImport);
  b.Add(kFlags, "TextDiff", FTextDiff);
  b.Add(kFlags, "NewOptionsDialog", FNewOptionsDialog);
  b.Add(kFlags, "ActiveBoQChecks", FActiveBoQChecks);
  b.Add(kFlags, "BoQChecks", FBoQChecks);
  b.Add(kFlags, "BuildSumAlways", FBuildSumAlways);
  b.Add(kFlags, "DBDSBOClient", FDBDSBOClient);
  b.Add(kFlags, "DBDBIMClient", FDBDBIMClient);
  b.Add(kFlags, "ShowStringGrid", FShowStringGrid);
  b.Add(kFlags, "EditMzKTOnBG", FEditMzKTOnBG);
  b.Add(kFlags, "IncludeIfcSpaces", FIncludeIfcSpaces);
  b.Add(kFlags, "UseBRepQuantities", FUseBRepQuantities);
  b.Add(kFlags, "ChromiumZoomPctHeinze", FChromiumZoomPctHeinze);
  b.Add(kFlags, "ChromiumZoomPctOwn", FChromiumZoomPctOwn);
  b.Add(kFlags, "ChromiumZoomPctSirados", FChromiumZoomPctSirados);
  b.Add(kFlags, "ChromiumZoomPctStlbBAU", FChromiumZoomPctStlbBAU);
  b.Add(kFlags, "ChromiumZoomPctDBD", FChromiumZoomPctDBD);

  // [GUI]
  b.AddCharacter(kGUI, "AllCAD", FAllCAD);
  b.Add(kGUI, "NavWidth1", FNavWidth1);
  b.Add(kGUI, "NavWidth2", FNavWidth2);
  b.Add(kGUI, "BidUserID", FBidUserID);
  b.Add(kGUI, "BidPassword", FBidPassword);
  b.Add(kGUI, "cdrDatei", FcdrDatei);
  b.Add(kGUI, "AnzeigeWaehrung", FAnzeigeWaehrung);
  b.Add(kGUI, "Favorites", FFavorites);
  b.Add(kGUI, "BarConfigToDesktop", FBarConfigToDesktop);
  b.Add(kGUI, "UseLargeIcons", FUseLargeIcons);
  b.Add(kGUI, "BarCustomizing", FBarCustomizing);
  b.Add(kGUI, "StandardBarCustomizing", FStandardBarCustomizing);
  b.Add(kGUI, "FullStdBarCustomizeDlg", FFullStdBarCustomizeDlg);
  b.Add(kGUI, "ClassicMenuConvert", FClassicMenuConvert);
  b.Add(kGUI, "HintDuration", FHintDuration);
  b.Add(kGUI, "HintTimeLow", FHintTimeLow);
  b.Add(kGUI, "HintTimeMiddle", FHintTimeMiddle);
  b.Add(kGUI, "HintTimeHigh", FHintTimeHigh);
  b.Add(kGUI, "CurrencyPriceRegion", FCurrencyPriceRegion);
  b.Add(kGUI, "DBDSBOClientUser", FDBDSBOClientUser);
  b.Add(kGUI, "DBDSBOClientPassword", FDBDSBOClientPassword);
  b.Add(kGUI, "DBDSBOOfflineClientUser", FDBDSBOOfflineClientUser);
  b.Add(kGUI, "DBDSBOfflineOClientPassword", FDBDSBOfflineOClientPassword);
  b.Add(kGUI, "DBDBIMClientUser", FDBDBIMClientUser);
  b.Add(kGUI, "DBDBIMClientPassword", FDBDBIMClientPassword);
  b.Add(kGUI, "DBDBIMOfflineClientUser", FDBDBIMOfflineClientUser);
  b.Add(kGUI, "DBDBIMOfflineClientPassword", FDBDBIMOfflineClientPassword);
  b.Add(kGUI, "SiradosClientUser", FSiradosClientUser);
  b.Add(kGUI, "SiradosClientPassword", FSiradosClientPassword);
  b.Add(kGUI, "HeinzeClientUser", FHeinzeClientUser);
  b.Add(kGUI, "HeinzeClientPassword", FHeinzeClientPassword);

  // [Strings]
  b.Add(kStrings, "TimeManagementAccountInfo", FTimeManagementAccountInfo);
  b.Add(kStrings, "TimeManagementServerUrl", FTimeManagementServerUrl);
  b.Add(kStrings, "TimeManagementToken", FTimeManagementToken);
  b.Add(kStrings, "TimeManagementExternalProjectId", FTimeManagementExternalProjectId);

  // [ModulOptions]
  b.Add(kModulOptions, "Main_goNeuheitenOnce", FMain_goNeuheitenOnce);
  b.Add(kModulOptions, "Main_Language", FMain_Language);
  b.Add(kModulOptions, "Main_WMaxi", FMain_WMaxi);
  b.Add(kModulOptions, "Main_WPX", FMain_WPX);
  b.Add(kModulOptions, "Main_WPY", FMain_WPY);
  b.Add(kModulOptions, "Main_WPH", FMain_WPH);
  b.Add(kModulOptions, "Main_WPW", FMain_WPW);
  b.Add(kModulOptions, "lastAccess_Datum", FlastAccess_Datum);
  b.Add(kModulOptions, "lastAccess_LastUser", FlastAccess_LastUser);
  b.Add(kModulOptions, "lastAccess_Date", FlastAccess_Date);
  b.Add(kModulOptions, "lastAccess_Time", FlastAccess_Time);
  b.Add(kModulOptions, "Jingle_File", FJingle_File);
  b.Add(kModulOptions, "Jingle_go", FJingle_go);
  b.Add(kModulOptions, "Preisspiegel_MaxAbweichung", FPreisspiegel_MaxAbweichung);
}

}  // namespace korvan::data
