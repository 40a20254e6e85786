#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvan::exchange {

// The coded values of GAEB elements the system writes and expects, with their GAEB
// texts. Each enumeration keeps the system's ordinal order.

enum class TAwardInfoCatType {
  aicOpenProc,
  aicClosedProc,
  aicNegProc,
  aicOpenCall,
  aicSelectCall,
  aicNegCont,
  aicIntNATO
};
enum class TAwardInfoSpecialType { aisNone, aisMaint, aisMastAgree, aisMastMaintAgree };
enum class TAwardInfoWarrUnit { aiwuNONE, aiwuYears, aiwuMonths };
enum class TCashDiscDaysTypeOfDays { cddtNONE, cddtWorkDays, cddtWeekDays, cddtCalendarDays };
enum class TAvaCntryType { cntrEEA, cntrOther };
enum class TSectorType { stNONE, stCrafts, stIndustrie, stDealer, stUtilityComp, stOther };
enum class TPrefBidType {
  pbtNONE,
  pbtDisplPers,
  pbtRefugee,
  pbtPersecutee,
  pbtWrkShopForDis,
  pbtWrkShopForBli,
  pbtOther
};
enum class TSCType { sctNONE, sctInHouseWrk, sctDespInHouseCap, sctLackOfInHouseCap };
enum class TBoQBkdnType { bbtLot, bbtBoQLevel, bbtItem, bbtIndex };
enum class TBoQBkdnAligment { bbaLeft, bbaRight };
enum class TQtyDetermMethodDescription { qdmNONE, qdm23003_1979, qdm23003_2009 };
// Which unit price of an entry is meant: estimate, award, bid, forecast, billing.
enum class TUPKind { upkNONE, upkSchaetz, upkVergabe, upkAngebot, upkPrognose, upkAbrechnung };
enum class TPriceInfo { piNONE, piScope, piTo, piApprox, piLump };
enum class TCOPhase { copNONE, copCallChangOrder, copSupplBid, copSupplAgree };
enum class TAvaLoadFormat { alfNONE, alfDefault, alfAvaDB, alfGXml };
enum class TAvaSaveFormat { asfNONE, asfDefault, asfAvaDB, asfGXml };
// Bedarfsposition with or without total.
enum class TProvis { WithTotal, WithoutTotal };
enum class TMarkupType { IdentAsMark, AllInCat, ListInSubQty };
enum class TTextOrigin { Bidder, Owner };
enum class TStandardTextSource { STLB_BauZ, StLB, StLK };
enum class TUPCostType { Wages, Materials, Plant, Miscellaneous };
// The internal catalog columns of an LV entry.
enum class TIntCtlgColumnType {
  ictUnused,
  ictCtlg1,
  ictCtlg2,
  ictCtlg3,
  ictCtlg4,
  ictCtlg5,
  ictCtlg6,
  ictCtlg7,
  ictCtlg8,
  ictCtlg9,
  ictCtlg10,
  ictVE,
  ictLB,
  ictLKT,
  ictUnits,
  ictCtlgDefinition,
  ictBimLvContainer,
  ictDBDPreisRegion
};
// The GAEB catalog types the system distinguishes.
enum class TExtCtlgType {
  ectUnused,
  ectDIN276_81,
  ectDIN276_93,
  ectDIN276_06,
  ectDIN276_1_2008_12,
  ectLocality,
  ectWorkCategory,
  ectCostUnit,
  ectMiscellaneous,
  ectDIN276_2018_12
};

// The text every set Boolean element carries.
inline constexpr std::string_view kGaebYes = "Yes";

std::string_view GaebText(TAwardInfoCatType value);
std::string_view GaebText(TBoQBkdnType value);
std::string_view GaebText(TProvis value);
std::string_view GaebText(TMarkupType value);
std::string_view GaebText(TTextOrigin value);
std::string_view GaebText(TStandardTextSource value);
std::string_view GaebText(TUPCostType value);
// Empty for ectUnused, which has no CtlgType.
std::string_view GaebText(TExtCtlgType value);

std::optional<TAwardInfoCatType> AwardInfoCatTypeOf(std::string_view text);
std::optional<TBoQBkdnType> BoQBkdnTypeOf(std::string_view text);
std::optional<TProvis> ProvisOf(std::string_view text);
std::optional<TMarkupType> MarkupTypeOf(std::string_view text);
std::optional<TExtCtlgType> ExtCtlgTypeOf(std::string_view text);

// The hierarchy-row type of the LV ("Los", "LVStufe", "Position", "Index") and the
// breakdown type it is exchanged as, by position in the two lists.
std::string_view HierarchyRowType(TBoQBkdnType value);
std::optional<TBoQBkdnType> BoQBkdnTypeOfHierarchyRow(std::string_view row_type);

// The change-order status "1" ... "8" as its GAEB text ("Recog" ... "Approved"); nothing
// for any other status.
std::optional<std::string_view> COStatusText(char status);
std::optional<char> COStatusOf(std::string_view text);

// The Provis text of a Bedarf code: "E" without total, "M" with total, else nothing.
std::optional<TProvis> ProvisOfBedarf(char bedarf);

// A graphic's length unit; anything unknown counts as "cm".
std::string_view GraphicLengthUnit(std::string_view unit);

// The part of an OZ after its last separator, every "_" turned into a blank.
std::string GetLastRNoPart(std::string_view oz, char separator);

// Range checks of the bounded value types.
inline bool IsValidUPFracDig(int digits) {
  return digits == 2 || digits == 3;
}
inline bool IsValidWarrDur(int duration) {
  return duration >= 0 && duration <= 99;
}
inline bool IsValidBoQBkdnLength(int length) {
  return length >= 0 && length <= 14;
}

}  // namespace korvan::exchange
