#include "data/config/sys_config.h"

#include <random>

#include "data/config/machine_config.h"
#include "data/config/number_pattern.h"

namespace korvan::data {
namespace {

constexpr std::string_view kFlags = "Flags";
constexpr std::string_view kRunOnce = "RunOnce";
constexpr std::string_view kNumerics = "Numerics";
constexpr std::string_view kStructs = "Structs";
constexpr std::string_view kStrings = "Strings";
constexpr std::string_view kSQL = "SQL";
constexpr std::string_view kKdCadOptions = "KdCadOptions";

// A random (version 4) GUID in registry form, "{XXXXXXXX-XXXX-4XXX-YXXX-XXXXXXXXXXXX}".
std::string NewGuid() {
  std::random_device source;
  std::uniform_int_distribution<int> nibble(0, 15);
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx}";
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string guid(kForm);
  for (char& c : guid) {
    if (c == 'x') c = kHex[nibble(source)];
    if (c == 'y') c = kHex[8 + nibble(source) % 4];
  }
  return guid;
}

}  // namespace

TSysConfig::TSysConfig(const TConfigContext& context)
    : TBaseConfig(context, "Sys"), FInstallID(NewGuid()) {}

TSysConfig TSysConfig::Open(const TConfigContext& context, const TMachineConfig& machine) {
  TSysConfig config(context);
  config.Load(machine.SysConfigFile());
  return config;
}

std::string TSysConfig::NextProjektNummer(int32_t date) {
  if (!FProjektFormatEnabled) return {};
  NumberPatternInputs inputs;
  inputs.date = date;
  inputs.project_counter = FProjektCounter;
  const NumberPatternResult result = ExpandNumberPattern(FProjektFormat, inputs);
  if (result.project_counter_advanced) SetProjektCounter(FProjektCounter + 1);
  return result.text;
}

void TSysConfig::BindValues(TConfigBindings& b) {
  // [Flags]
  b.Add(kFlags, "RundenWaehrung", FRundenWaehrung);
  b.Add(kFlags, "RoundInput", FRoundInput);
  b.Add(kFlags, "UseKatCode", FuseKatCode);
  b.Add(kFlags, "goREB", FgoREB);
  b.Add(kFlags, "ShowWaeZero", FShowWaeZero);
  b.Add(kFlags, "DontAutoLiveUpdate", FDontAutoLiveUpdate);
  b.Add(kFlags, "OZAutoNum", FOZAutoNum);
  b.Add(kFlags, "AllwaysTextergaenzungBold", FAllwaysTextergaenzungBold);
  b.Add(kFlags, "UseKatOZ", FuseKatOZ);
  b.Add(kFlags, "UseAnzeigeWaeGenauigkeit", FUseAnzeigeWaeGenauigkeit);
  b.Add(kFlags, "LktAutoNum", FLktAutoNum);
  b.Add(kFlags, "UserSelectedProjekte", FUserSelectedProjekte);
  b.Add(kFlags, "AlleCadVariableEinsetzen", FAlleCadVariableEinsetzen);
  b.Add(kFlags, "CodeUmwandlung", FCodeUmwandlung);
  b.Add(kFlags, "BTAutoNum", FBTAutoNum);
  b.Add(kFlags, "UseAliasList", FbUseAliasList);
  b.Add(kFlags, "UseLongKT", FUseLongKT);
  b.Add(kFlags, "FUseUserObjektDirectory", FUseUserObjektDirectory);
  b.Add(kFlags, "DirectoryDirty", FDirectoryDirty);
  b.Add(kFlags, "UIConfigStrgDirty", FUIConfigStrgDirty);
  b.Add(kFlags, "ContinueOnException", FContinueOnException);
  b.Add(kFlags, "UpdateNow", FUpdateNow);
  b.Add(kFlags, "UseObjLocalCopy", FUseObjLocalCopy);
  b.Add(kFlags, "UseLocalCopyForRebuild", FUseLocalCopyForRebuild);
  b.Add(kFlags, "UseLocalCopyForConvert", FUseLocalCopyForConvert);
  b.Add(kFlags, "TraceApplication", FTraceApplication);
  b.Add(kFlags, "TraceCategories", FTraceCategories);
  b.Add(kFlags, "ShowFirstStart", FShowFirstStart);
  b.Add(kFlags, "ExceptAutoMapi", FExcptAutoMapi);
  b.Add(kFlags, "ExceptAutoSmtp", FExcptAutoSmtp);
  b.Add(kFlags, "ExcptAsSMTPClient", FExcptAsSMTPClient);
  b.Add(kFlags, "UseExcptHttpServer", FExcptUseHttpServer);
  b.Add(kFlags, "UseExcptHttpsServer", FExcptUseHttpsServer);
  b.Add(kFlags, "UserGroupSelectedProjects", FUserGroupSelectedProjects);
  b.Add(kFlags, "EHelpFavoriteCount", FEHelpFavoriteCount);
  b.Add(kFlags, "EditDataPath", FEditDataPath);
  b.Add(kFlags, "ProjektFormatEnabled", FProjektFormatEnabled);
  b.Add(kFlags, "UseRecordReadCache", FUseRecordReadCache);
  b.Add(kFlags, "REBZeilenRunden", FREBZeilenRunden);
  b.Add(kFlags, "REBAltgrad", FREBAltgrad);
  b.Add(kFlags, "AutoPictureResize", FAutoPictureResize);
  b.Add(kFlags, "Language", FLanguage);
  b.Add(kFlags, "LktVariablesQty", FLktVariablesQty);
  b.AddEnum(kFlags, "QtyRoundingType", FQtyRoundingType, TRoundingType::rtArithmetic);
  b.AddEnum(kFlags, "CurrencyRoundingType", FCurrencyRoundingType, TRoundingType::rtArithmetic);
  b.Add(kFlags, "CheckForNews", FCheckForNews);
  b.Add(kFlags, "ExcelExportDetailText", FExcelExportDetailText);
  b.Add(kFlags, "KdCadLktImpRemoveDeletedQuantities", FKdCadLktImpRemoveDeletedQuantities);
  b.Add(kFlags, "KdCadLktImpDoNotExportDeletedQuantities",
        FKdCadLktImpDoNotExportDeletedQuantities);

  // [RunOnce]
  b.Add(kRunOnce, "QOfficeGUIDConvert", FQOfficeGUIDConvert);

  // [Numerics]
  b.Add(kNumerics, "LandesWaeGenauigkeit", FLandesWaeGenauigkeit);
  b.Add(kNumerics, "EuroWaeGenauigkeit", FEuroWaeGenauigkeit);
  b.Add(kNumerics, "AnzeigeWaeGenauigkeit", FAnzeigeWaeGenauigkeit);
  b.Add(kNumerics, "LoginStyle", FLoginStyle);
  b.Add(kNumerics, "AutoSaveIntervallLvPos", FAutoSaveIntervallLvPos);
  b.Add(kNumerics, "EuroFaktor", FEuroFaktor);
  b.Add(kNumerics, "IdAdrAN", FIdAdrAN);
  b.Add(kNumerics, "Mwst", FMwst);
  b.Add(kNumerics, "MwstNeu", FMwstNeu);
  b.AddDate(kNumerics, "MwstNeuDatum", FMwstNeuDatum);
  b.Add(kNumerics, "Baukostenindex", FBaukostenindex);
  b.Add(kNumerics, "REBVersion", FREBVersion);
  b.Add(kNumerics, "OZSchrittweite", FOZSchrittweite);
  b.Add(kNumerics, "BTSchrittweite", FBTSchrittweite);
  b.Add(kNumerics, "LktSchrittweite", FLktSchrittweite);
  b.Add(kNumerics, "DatenSprache1", FDatenSprache1);
  b.Add(kNumerics, "Datensprache2", FDatensprache2);
  b.Add(kNumerics, "IdAnzeigeWae", FIdAnzeigeWae);
  b.Add(kNumerics, "IdBasisWae", FIdBasisWae);
  b.Add(kNumerics, "AutoCloseTimeout", FAutoCloseTimeout);
  b.Add(kNumerics, "ExcptSmtpPort", FExcptSmtpPort);
  b.AddDate(kNumerics, "RefDateForContractDate", FRefDateForContractDate);
  b.Add(kNumerics, "LastNewsCheckDate", FLastNewsCheckDate);
  b.Add(kNumerics, "CheckForNewsInterval", FCheckForNewsInterval);
  b.Add(kNumerics, "TimeOfInactivity", FTimeOfInactivity);
  b.AddOrdinal(kNumerics, "RebMethodDescription", FRebMethodDescription, 2);
  b.Add(kNumerics, "ProjektCounter", FProjektCounter);

  // [Structs]
  b.Add(kStructs, "OZStepLengthGT", FOZSchrittweiteGT);
  b.Add(kStructs, "BTStepLengthGT", FBTSchrittweiteGT);
  b.Add(kStructs, "KatOZStepLengthGT", FKatOZSchrittweiteGT);
  b.Add(kStructs, "LktStepLengthGT", FLktSchrittweiteGT);
  b.Add(kStructs, "OZAutoNumGT", FOZAutoNumGT);
  b.Add(kStructs, "BTAutoNumGT", FBTAutoNumGT);
  b.Add(kStructs, "KatOZAutoNumGT", FKatOZAutoNumGT);
  b.Add(kStructs, "LktAutoNumGT", FLktAutoNumGT);
  b.Add(kStructs, "LktGTFormular", FLktGTFormular);
  b.Add(kStructs, "LktGTFormularAuto", FLktGTFormularAuto);
  b.Add(kStructs, "CADProgID", FCadProgID);
  b.Add(kStructs, "CADInterface", FCADInterface);
  b.Add(kStructs, "CADVersion", FCadVersion);
  b.AddOrdinal(kStructs, "AnzeigeWae", FAnzeigeWae, 1);
  b.AddOrdinal(kStructs, "BasisWae", FBasisWae, 1);

  // [Strings]
  b.Add(kStrings, "OZFormat", FOZFormat);
  b.Add(kStrings, "BTFormat", FBTFormat);
  b.Add(kStrings, "LktFormat", FLktFormat);
  b.Add(kStrings, "LandesWaeEinheit", FLandesWaeEinheit);
  b.Add(kStrings, "EuroWaeEinheit", FEuroWaeEinheit);
  b.Add(kStrings, "VertragFormat", FVertragFormat);
  b.Add(kStrings, "RechnungFormat", FRechnungFormat);
  b.Add(kStrings, "ProjektFormat", FProjektFormat);
  b.Add(kStrings, "Version", FVersion);
  b.Add(kStrings, "Absender", FAbsender);
  b.Add(kStrings, "BidCompany", FsBidCompany);
  b.Add(kStrings, "BidHost", FsBidHost);
  b.Add(kStrings, "UserAdminPassword", FUserAdminPW);
  b.ReadAlsoFrom("UserPasswort");
  b.Add(kStrings, "UserInf", FUserInf);
  b.Add(kStrings, "UserOrt", FUserOrt);
  b.Add(kStrings, "ExcptSmtpServer", FExcptSmtpServer);
  b.Add(kStrings, "ExcptSmtpMailFrom", FExcptSmtpMailFrom);
  b.Add(kStrings, "ExcptSmtpAccount", FExcptSmtpAccount);
  b.Add(kStrings, "ExcptSmtpPassword", FExcptSmtpPassword);
  b.Add(kStrings, "ExcelBidderColorEven", FExcelBidderColorEven);
  b.Add(kStrings, "ExcelBidderColorOdd", FExcelBidderColorOdd);
  b.Add(kStrings, "ExcelRevisionColor", FExcelRevisionColor);

  // [SQL]
  b.Add(kSQL, "LoginPrompt", FSQLLoginPrompt);
  b.Add(kSQL, "Protocol", FSQLProtocol);
  b.Add(kSQL, "Catalog", FSQLCatalog);
  b.Add(kSQL, "Database", FSQLDatabase);
  b.Add(kSQL, "HostName", FSQLHostName);
  b.Add(kSQL, "Port", FSQLPort);
  b.Add(kSQL, "Properties", FSQLProperties);
  b.Add(kSQL, "User", FSQLUser);
  b.Add(kSQL, "Password", FSQLPassword);
  b.Add(kSQL, "Logfile", FSQLLogfile);
  b.Add(kSQL, "Logging", FSQLLogging);
  b.Add(kSQL, "ScriptFile", FSQLScriptFile);
  b.Add(kSQL, "LibraryLocation", FSQLLibraryLocation);

  // [KdCadOptions]
  b.Add(kKdCadOptions, "KdCadLktImpUseBEZR", FKdCadLktImpParams.UseBEZR);
  b.Add(kKdCadOptions, "KdCadLktImpZeichenstile", FKdCadLktImpParams.Zeichenstile);
  b.Add(kKdCadOptions, "KdCadLktImpRohbau", FKdCadLktImpParams.Rohbau);
  b.Add(kKdCadOptions, "KdCadLktImpUpdateAll", FKdCadLktImpParams.UpdateAll);
  b.Add(kKdCadOptions, "KdCadLktImpAusbau", FKdCadLktImpParams.Ausbau);
  b.Add(kKdCadOptions, "KdCadLktImpOnlyAssignedFreeStruct",
        FKdCadLktImpParams.OnlyAssignedFreeStruct);
  b.Add(kKdCadOptions, "KdCadLktImpAddUserVars", FKdCadLktImpParams.AddUserVars);
  b.Add(kKdCadOptions, "KdCadLktImpOnlyVisibleLayer", FKdCadLktImpParams.OnlyVisibleLayer);
  b.Add(kKdCadOptions, "KdCadLktImpUseStructDef", FKdCadLktImpParams.UseStructDef);
  b.Add(kKdCadOptions, "PI_String", FKdCadLktImpParams.PI_String);
}

}  // namespace korvan::data
