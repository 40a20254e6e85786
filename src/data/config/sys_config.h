#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "data/config/base_config.h"
#include "data/records/rounding_type.h"

namespace korvan::data {

class TMachineConfig;

// Application trace categories, one bit each.
using TTraceCategories = uint32_t;
inline constexpr TTraceCategories kBuiltInTraceCategories = 0x0000000F;

// A colour as the user interface stores it (0x00BBGGRR).
using TColor = int32_t;

inline constexpr int32_t kGermanLanguage = 49;
inline constexpr double kGermanVatRate = 19.0;

// The options of the CAD quantity import ([KdCadOptions]).
struct TKdCadLktImpParams {
  bool UseBEZR = true;
  bool Zeichenstile = true;
  bool Rohbau = true;
  bool UpdateAll = false;
  bool Ausbau = true;
  bool OnlyAssignedFreeStruct = false;
  bool AddUserVars = true;
  bool OnlyVisibleLayer = false;
  bool UseStructDef = true;
  std::string PI_String;
  bool operator==(const TKdCadLktImpParams&) const = default;
};

// The options that hold for every user of a data directory ("Q_System.ini" in the
// system directory's "SYS" folder). Fields hold their defaults until Load() reads the
// file. Ordinals of enumerations defined elsewhere are kept as numbers: `FLoginStyle`
// (TLoginStyle), `FRebMethodDescription` (TQtyDetermMethodDescription: 0 none,
// 1 REB 23.003 of 1979, 2 of 2009), `FCADInterface` (TCADInterface), `FCadVersion`
// (TCadVersion), `FAnzeigeWae` and `FBasisWae` (TWaehrungstyp).
class TSysConfig : public TBaseConfig {
 public:
  explicit TSysConfig(const TConfigContext& context);

  // A system configuration read from its file in the machine's system directory.
  static TSysConfig Open(const TConfigContext& context, const TMachineConfig& machine);

  // Expands `FProjektFormat` with the project counter for a project created on `date`
  // (an integer date) and, when the pattern advances the counter, stores the new
  // counter value in [Numerics] "ProjektCounter" (saved with the next Save()).
  // Empty when project numbers are not built from the pattern.
  std::string NextProjektNummer(int32_t date);

  // [Flags]
  // A fresh system rounds amounts, commercially, and charges the German VAT rate.
  KORVAN_CONFIG_FIELD(bool, RundenWaehrung, true)
  KORVAN_CONFIG_FIELD(bool, RoundInput, false)
  KORVAN_CONFIG_FIELD(bool, useKatCode, false)
  // REB measurement is part of every installation.
  KORVAN_CONFIG_FIELD(bool, goREB, true)
  KORVAN_CONFIG_FIELD(bool, ShowWaeZero, false)
  KORVAN_CONFIG_FIELD(bool, DontAutoLiveUpdate, false)
  KORVAN_CONFIG_FIELD(bool, OZAutoNum, true)
  KORVAN_CONFIG_FIELD(bool, AllwaysTextergaenzungBold, false)
  KORVAN_CONFIG_FIELD(bool, useKatOZ, false)
  KORVAN_CONFIG_FIELD(bool, UseAnzeigeWaeGenauigkeit, false)
  KORVAN_CONFIG_FIELD(bool, LktAutoNum, true)
  KORVAN_CONFIG_FIELD(bool, UserSelectedProjekte, false)
  KORVAN_CONFIG_FIELD(bool, AlleCadVariableEinsetzen, false)
  KORVAN_CONFIG_FIELD(bool, CodeUmwandlung, false)
  KORVAN_CONFIG_FIELD(bool, BTAutoNum, true)
  KORVAN_CONFIG_FIELD(bool, bUseAliasList, false)
  KORVAN_CONFIG_FIELD(bool, UseLongKT, false)
  KORVAN_CONFIG_FIELD(bool, UseUserObjektDirectory, false)
  KORVAN_CONFIG_FIELD(bool, DirectoryDirty, false)
  KORVAN_CONFIG_FIELD(bool, UIConfigStrgDirty, false)
  KORVAN_CONFIG_FIELD(bool, ContinueOnException, false)
  KORVAN_CONFIG_FIELD(bool, UpdateNow, false)
  KORVAN_CONFIG_FIELD(bool, UseObjLocalCopy, false)
  KORVAN_CONFIG_FIELD(bool, UseLocalCopyForRebuild, false)
  KORVAN_CONFIG_FIELD(bool, UseLocalCopyForConvert, false)
  KORVAN_CONFIG_FIELD(bool, TraceApplication, false)
  KORVAN_CONFIG_FIELD(TTraceCategories, TraceCategories, kBuiltInTraceCategories)
  KORVAN_CONFIG_FIELD(bool, ShowFirstStart, false)
  KORVAN_CONFIG_FIELD(bool, ExcptAutoMapi, false)
  KORVAN_CONFIG_FIELD(bool, ExcptAutoSmtp, false)
  KORVAN_CONFIG_FIELD(bool, ExcptAsSMTPClient, false)
  KORVAN_CONFIG_FIELD(bool, ExcptUseHttpServer, false)
  KORVAN_CONFIG_FIELD(bool, ExcptUseHttpsServer, false)
  KORVAN_CONFIG_FIELD(bool, UserGroupSelectedProjects, false)
  KORVAN_CONFIG_FIELD(int32_t, EHelpFavoriteCount, 0)
  KORVAN_CONFIG_FIELD(bool, EditDataPath, false)
  KORVAN_CONFIG_FIELD(bool, ProjektFormatEnabled, true)
  KORVAN_CONFIG_FIELD(bool, UseRecordReadCache, true)
  KORVAN_CONFIG_FIELD(bool, REBZeilenRunden, false)
  KORVAN_CONFIG_FIELD(bool, REBAltgrad, false)
  KORVAN_CONFIG_FIELD(bool, AutoPictureResize, true)
  KORVAN_CONFIG_FIELD(int32_t, Language, kGermanLanguage)
  KORVAN_CONFIG_FIELD(bool, LktVariablesQty, true)
  KORVAN_CONFIG_FIELD(TRoundingType, QtyRoundingType, TRoundingType::rtCommercial)
  KORVAN_CONFIG_FIELD(TRoundingType, CurrencyRoundingType, TRoundingType::rtCommercial)
  KORVAN_CONFIG_FIELD(bool, CheckForNews, false)
  KORVAN_CONFIG_FIELD(bool, ExcelExportDetailText, false)
  KORVAN_CONFIG_FIELD(bool, KdCadLktImpRemoveDeletedQuantities, false)
  KORVAN_CONFIG_FIELD(bool, KdCadLktImpDoNotExportDeletedQuantities, true)

  // [RunOnce]
  KORVAN_CONFIG_FIELD(bool, QOfficeGUIDConvert, false)

  // [Numerics]
  KORVAN_CONFIG_FIELD(uint8_t, LandesWaeGenauigkeit, 2)
  KORVAN_CONFIG_FIELD(uint8_t, EuroWaeGenauigkeit, 2)
  KORVAN_CONFIG_FIELD(uint8_t, AnzeigeWaeGenauigkeit, 5)
  KORVAN_CONFIG_FIELD(uint8_t, LoginStyle, 0)
  KORVAN_CONFIG_FIELD(uint8_t, AutoSaveIntervallLvPos, 0)
  KORVAN_CONFIG_FIELD(double, EuroFaktor, 1.95583)
  KORVAN_CONFIG_FIELD(int32_t, IdAdrAN, 0)
  KORVAN_CONFIG_FIELD(double, Mwst, kGermanVatRate)
  KORVAN_CONFIG_FIELD(double, MwstNeu, kGermanVatRate)
  KORVAN_CONFIG_FIELD(int32_t, MwstNeuDatum, 0)
  KORVAN_CONFIG_FIELD(double, Baukostenindex, 100.0)
  KORVAN_CONFIG_FIELD(int16_t, REBVersion, 3)
  KORVAN_CONFIG_FIELD(int16_t, OZSchrittweite, 10)
  KORVAN_CONFIG_FIELD(int16_t, BTSchrittweite, 1)
  KORVAN_CONFIG_FIELD(int16_t, LktSchrittweite, 1)
  KORVAN_CONFIG_FIELD(int32_t, DatenSprache1, kGermanLanguage)
  KORVAN_CONFIG_FIELD(int32_t, Datensprache2, kGermanLanguage)
  KORVAN_CONFIG_FIELD(int16_t, IdAnzeigeWae, 32766)
  KORVAN_CONFIG_FIELD(int16_t, IdBasisWae, 32766)
  KORVAN_CONFIG_FIELD(int32_t, AutoCloseTimeout, 0)
  KORVAN_CONFIG_FIELD(int32_t, ExcptSmtpPort, 25)
  KORVAN_CONFIG_FIELD(int32_t, RefDateForContractDate, 20091217)
  KORVAN_CONFIG_FIELD(int32_t, LastNewsCheckDate, 0)
  KORVAN_CONFIG_FIELD(int32_t, CheckForNewsInterval, 0)
  KORVAN_CONFIG_FIELD(int32_t, TimeOfInactivity, 0)
  KORVAN_CONFIG_FIELD(uint8_t, RebMethodDescription, 2)
  // The last project number handed out by the project number pattern.
  KORVAN_CONFIG_FIELD(int32_t, ProjektCounter, 0)

  // [Structs]
  KORVAN_CONFIG_FIELD(TLevelSmallInts, OZSchrittweiteGT, LevelSteps(10))
  KORVAN_CONFIG_FIELD(TLevelSmallInts, BTSchrittweiteGT, LevelSteps(10))
  KORVAN_CONFIG_FIELD(TLevelSmallInts, KatOZSchrittweiteGT, LevelSteps(10))
  KORVAN_CONFIG_FIELD(TLevelSmallInts, LktSchrittweiteGT, LevelSteps(10))
  KORVAN_CONFIG_FIELD(TLevelBooleans, OZAutoNumGT, LevelFlags(true))
  KORVAN_CONFIG_FIELD(TLevelBooleans, BTAutoNumGT, LevelFlags(true))
  KORVAN_CONFIG_FIELD(TLevelBooleans, KatOZAutoNumGT, LevelFlags(true))
  KORVAN_CONFIG_FIELD(TLevelBooleans, LktAutoNumGT, LevelFlags(true))
  KORVAN_CONFIG_FIELD(TLevelTexts, LktGTFormular)
  KORVAN_CONFIG_FIELD(TLevelBooleans, LktGTFormularAuto, LevelFlags(false))
  KORVAN_CONFIG_FIELD(std::string, CadProgID)
  KORVAN_CONFIG_FIELD(uint8_t, CADInterface, 0)
  KORVAN_CONFIG_FIELD(uint8_t, CadVersion, 0)
  KORVAN_CONFIG_FIELD(uint8_t, AnzeigeWae, 0)
  KORVAN_CONFIG_FIELD(uint8_t, BasisWae, 0)

  // [Strings]
  KORVAN_CONFIG_FIELD(std::string, OZFormat, "11.22.PPPP")
  KORVAN_CONFIG_FIELD(std::string, BTFormat, "11.22.33.BB.TT")
  // The mask of the full program; the smaller edition uses "11.22.33.RR".
  KORVAN_CONFIG_FIELD(std::string, LktFormat, "1.22.RRR")
  KORVAN_CONFIG_FIELD(std::string, LandesWaeEinheit, "DEM")
  KORVAN_CONFIG_FIELD(std::string, EuroWaeEinheit, "EUR")
  KORVAN_CONFIG_FIELD(std::string, VertragFormat, "{*LNR*}-{*MM*}-{*JJJJ*}")
  KORVAN_CONFIG_FIELD(std::string, RechnungFormat, "{*%5.5+*}-{*MM*}-{*JJJJ*}")
  KORVAN_CONFIG_FIELD(std::string, ProjektFormat, "{*JJJJ*}-{*MM*}-{*&5.5+*}")
  KORVAN_CONFIG_FIELD(std::string, Version, "70")
  KORVAN_CONFIG_FIELD(std::string, Absender)
  KORVAN_CONFIG_FIELD(std::string, sBidCompany)
  // No online bid platform is preset.
  KORVAN_CONFIG_FIELD(std::string, sBidHost)
  // Empty until the administrator sets one; older files keep it as "UserPasswort".
  KORVAN_CONFIG_FIELD(std::string, UserAdminPW)
  KORVAN_CONFIG_FIELD(std::string, UserInf)
  KORVAN_CONFIG_FIELD(std::string, UserOrt)
  KORVAN_CONFIG_FIELD(std::string, ExcptSmtpServer)
  KORVAN_CONFIG_FIELD(std::string, ExcptSmtpMailFrom)
  KORVAN_CONFIG_FIELD(std::string, ExcptSmtpAccount)
  KORVAN_CONFIG_FIELD(std::string, ExcptSmtpPassword)
  KORVAN_CONFIG_FIELD(TColor, ExcelBidderColorEven, 0)
  KORVAN_CONFIG_FIELD(TColor, ExcelBidderColorOdd, 0)
  KORVAN_CONFIG_FIELD(TColor, ExcelRevisionColor, 0)

  // [SQL]
  KORVAN_CONFIG_FIELD(bool, SQLLoginPrompt, false)
  KORVAN_CONFIG_FIELD(std::string, SQLProtocol)
  KORVAN_CONFIG_FIELD(std::string, SQLCatalog)
  KORVAN_CONFIG_FIELD(std::string, SQLDatabase)
  KORVAN_CONFIG_FIELD(std::string, SQLHostName)
  KORVAN_CONFIG_FIELD(int32_t, SQLPort, 0)
  KORVAN_CONFIG_FIELD(std::string, SQLProperties)
  KORVAN_CONFIG_FIELD(std::string, SQLUser)
  KORVAN_CONFIG_FIELD(std::string, SQLPassword)
  KORVAN_CONFIG_FIELD(std::string, SQLLogfile)
  KORVAN_CONFIG_FIELD(bool, SQLLogging, false)
  KORVAN_CONFIG_FIELD(std::string, SQLScriptFile)
  KORVAN_CONFIG_FIELD(std::string, SQLLibraryLocation)

  // [KdCadOptions]
  KORVAN_CONFIG_FIELD(TKdCadLktImpParams, KdCadLktImpParams)

  // Not stored.
  KORVAN_CONFIG_FIELD(bool, IsChromiumProcess, false)
  KORVAN_CONFIG_FIELD(std::string, InstallID)
  KORVAN_CONFIG_FIELD(int32_t, IdGsOem, 0)
  KORVAN_CONFIG_FIELD(std::string, EditLookUpSettings)
  KORVAN_CONFIG_FIELD(std::string, SupportOptions)

 protected:
  void BindValues(TConfigBindings& bindings) override;
};

}  // namespace korvan::data
