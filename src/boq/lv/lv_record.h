#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// The LV header as it is stored in the project's LV database, with the small layouts it
// is made of (print options, cash-discount terms, per-level numbering settings).
namespace korvan::boq {

// The values of the one-byte enumerations of the header, in stored order.
enum class TDBLVState : uint8_t {
  lvOK,
  lvDummy01,
  lvDummy02,
  lvDummy03,
  lvDummy04,
  lvDummy05,
  lvDummy06,
  lvDummy07,
  lvDummy08,
  lvDummy09,
  lvDummy10,
  lvInvalidCosts,  // the LV's cost figures must be recalculated
};
enum class TWaehrungstyp : uint8_t { wtEuro, wtLand };
enum class TAwardInfoSpecialType : uint8_t { aisNone, aisMaint, aisMastAgree, aisMastMaintAgree };
enum class TCOStatus : uint8_t {
  cosNONE,
  cosRecog,
  cosFiled,
  cosOffered,
  cosWithdrawn,
  cosRejected,
  cosObjToRecj,
  cosFormAckn,
  cosApproved,
};

inline constexpr std::string_view kDbLvStateNames[] = {
    "lvOK",      "lvDummy01", "lvDummy02", "lvDummy03", "lvDummy04", "lvDummy05",
    "lvDummy06", "lvDummy07", "lvDummy08", "lvDummy09", "lvDummy10", "lvInvalidCosts"};
inline constexpr std::string_view kWaehrungstypNames[] = {"wtEuro", "wtLand"};
inline constexpr std::string_view kAwardInfoSpecialTypeNames[] = {
    "aisNone", "aisMaint", "aisMastAgree", "aisMastMaintAgree"};
inline constexpr std::string_view kCoStatusNames[] = {
    "cosNONE",     "cosRecog",     "cosFiled",    "cosOffered", "cosWithdrawn",
    "cosRejected", "cosObjToRecj", "cosFormAckn", "cosApproved"};

#pragma pack(push, 1)

// What printing the LV includes: one tri-state byte each (128: take the user's default).
// Bytes 12 to 14 (KaLohn, KaMaterial, KaBauhilfsstoff) are also read as VollstaendigeOZ,
// OZvorHinweistexten and PersistentPrintedPreText.
struct LvDruckOptionen {
  uint8_t DruckeVortext;
  uint8_t DruckeLV;
  uint8_t DruckeMengen;
  uint8_t KtextDrucken;
  uint8_t LTextDrucken;
  uint8_t OZDrucken;
  uint8_t StLBNrDrucken;
  uint8_t KogrDruck;
  uint8_t TeilmengenDruck;
  uint8_t PreiseDrucken;
  uint8_t UnformatiertDrucken;
  uint8_t NurBieterAngaben;
  uint8_t KaLohn;
  uint8_t KaMaterial;
  uint8_t KaBauhilfsstoff;
  uint8_t KaBetriebsstoff;
  uint8_t KaMaschinen;
  uint8_t KaSonstige;
  uint8_t KaFremd;
  uint8_t LvNurTitelsummen;
  uint8_t bFormFeedBG;
  uint8_t DruckeMengenErmittlung;
  uint8_t LKTextDrucken;
};

// A number of days and what kind of days they are.
struct TCashDiscDays {
  uint8_t Kind;  // 3 unless set otherwise
  int32_t Days;
};

// One cash-discount term: percent, a fixed date or a number of days.
struct TCashDiscount {
  double DiscountPcnt;
  int32_t CashDiscDate;  // integer date
  TCashDiscDays CashDiscDays;
};

using TCashDiscountArray = std::array<TCashDiscount, 3>;
// Per-level numbering settings, ten levels.
using TLevelInt16s = std::array<int16_t, 10>;
using TLevelBools = std::array<uint8_t, 10>;

// The LV header: one per LV of the project.
struct t_Lv_DB_VERSION_3100 {
  data::TDbRecordHeader Header;
  int32_t FId;          // LV id (primary key)
  int32_t SzPrj;        // sort number of the LV within the project
  int32_t IdCad;        // linked CAD object id
  uint8_t DBState;      // TDBLVState: lvOK, lvDummy01 … lvDummy10, lvInvalidCosts (the LV's cost
                        // figures must be recalculated)
  uint8_t Reserve1[8];  // reserved
  int16_t IdWae;        // currency id of the LV (a Word on disk; read signed like every
                        // currency id, so that -1 is "none")
  uint8_t ForceTeilmengen;             // quantities of items must come from partial quantities
  uint8_t UseLongKT;                   // use long short texts
  int32_t Datum;                       // LV date (date as integer)
  data::ShortString<9> PreisregionID;  // price region id for catalog prices
  uint8_t Reserve2[21];                // reserved
  data::ShortString<9> LBNr;           // number of the standard performance book the LV refers to
  double Deckungsbeitrag;              // contribution margin (percent)
  data::t_WaeBetrag SchaetzGPDeckung;  // estimated total covered
  uint8_t Reserve3[3];                 // reserved
  int32_t IdLkt;                       // linked cost-element (Lkt) id
  uint8_t Reserve4[21];                // reserved
  data::t_WaeBetrag Summe;             // LV total (net, before discount)
  double NachlassProz;                 // discount percent (Nachlass)
  data::t_WaeBetrag NachlassAbs;       // absolute discount
  data::t_WaeBetrag SumNachNL;         // total after discount
  data::t_WaeBetrag SummePsch;         // lump-sum total (Pauschalsumme)
  double Ust;                          // VAT percent (MwSt/USt); −1 = use the project default
  uint8_t Reserve5[25];                // reserved
  char Status;  // LV status: N new, S estimated, A tendered, B bid received, V awarded, F billed
  char KalkStatus;    // calculation status, same codes as Status
  char LvArt;         // LV kind: N normal, A alternative, E contingency (Eventual); blank = normal
  char AngVerfahren;  // bid procedure: A discounts/surcharges against reference prices, P price bid
  char KalkVerfahren;  // calculation method: Z surcharge calculation (Zuschlagskalkulation), E
                       // end-sum calculation (Endsummenkalkulation)
  char LvForm;         // LV form code
  data::t_WaeBetrag Aktuell;         // current total (contract + supplements)
  data::t_WaeBetrag Budget;          // budget
  data::t_WaeBetrag SchaetzSum;      // estimated total (cost estimate)
  data::t_WaeBetrag VergabeSum;      // awarded total
  data::t_WaeBetrag NachtragsSum;    // supplements total
  data::t_WaeBetrag ZahlungsSum;     // payments total
  data::t_WaeBetrag Prognose;        // forecast total
  data::t_WaeBetrag GepruefteSum;    // checked (certified) total
  data::t_WaeBetrag Abgerechnet;     // billed total
  data::t_WaeBetrag AngebotsSum;     // bid total
  double xSkonto;                    // cash discount percent (superseded by CashDiscount)
  int32_t xSkontofrist;              // cash discount period in days (superseded)
  data::TArray6OfWaeBetrag ZKosten;  // six additional cost amounts (Zusatzkosten 1 … 6)
  double GkAnteilProz;               // share of general costs, percent
  double KNFZeit;                    // time factor of the cost calculation
  double KNFMaterial;                // material factor of the cost calculation
  LvDruckOptionen Druckoptionen;     // print options (LvDruckOptionen, 23 Booleans, see below)
  uint8_t KalkAktuell;               // the calculation is up to date
  data::ShortString<20> PosMaske;    // OZ mask
  uint8_t EPGenauigkeit;             // number of decimals of unit prices
  uint8_t xSchrittweite;             // default OZ step width
  uint8_t PreisAnteile;              // number of unit-price components used (0 … 6)
  uint8_t AutoMenge;     // take quantities automatically from partial quantities / measurements
  uint8_t Autocalc;      // calculate automatically
  uint8_t Ausgelagert;   // LV is swapped out (archived)
  uint8_t LVWaehrung;    // TWaehrungstyp: wtEuro or wtLand (national currency)
  char Zugriffsrecht;    // access right code
  uint8_t Passwort[33];  // password data protecting the LV against change (33 bytes)
  char Zeilenart;        // line kind for printing: 0 empty, 1 single, 2 double, 3 PA, 4 comment, 5
                         // ZSumme, 6 HSumme, 7 GSumme, 9 normal
  char VergabeArt;       // award kind code
  int32_t ErDatum;       // creation date
  int32_t ErUhrzeit;     // creation time
  int32_t ZusEnde;       // end of the binding period (Zuschlagsfrist)
  data::ShortString<60> AbgabeOrt;       // place where bids are to be submitted
  int32_t AusfBeginn;                    // execution start date
  int32_t AusfEnde;                      // execution end date
  TLevelInt16s OZSchrittweiteGT;         // OZ step width per level; −1 = default
  TLevelBools OZAutoNumGT;               // automatic counter per level
  uint8_t useKatOZ;                      // take OZ from catalog items
  uint8_t unterschrift;                  // print signature block
  uint8_t lohnmaterial;                  // print wage and material shares
  uint8_t deckblatt;                     // print cover sheet
  TLevelBools OZDurchNumGT;              // continuous counter per level
  double ProzGesamt;                     // overall percentage
  int32_t KontrollID;                    // control id
  uint8_t MittelwerteGebildet;           // mean prices have been formed from bids
  uint8_t AngebotsmengenGleichLvMengen;  // bid quantities equal LV quantities
  uint8_t eLose;                         // single lots
  uint8_t mLose;                         // several lots
  uint8_t aLose;                         // all lots
  int32_t AbnahmeDatum;                  // acceptance date
  int32_t GwlDauer;                      // warranty duration
  data::ShortString<6> GwlEinheit;       // warranty duration unit
  int32_t GwlEnde;                       // warranty end date
  int16_t NachtrNr;                      // supplement number (for supplement LVs)
  char NachtrPhase;                      // supplement phase code
  char LBArt;  // L bill of quantities (Leistungsverzeichnis), P performance programme
               // (Leistungsprogramm)
  data::t_WaeBetrag EinzelkostenSum;       // direct costs total (Einzelkosten)
  uint8_t Reserve6[10];                    // reserved
  double ZeitAufwand;                      // total time effort
  data::t_WaeBetrag VergabeSumBrutto;      // awarded total incl. VAT
  data::t_WaeBetrag NachtragsSumBrutto;    // supplements total incl. VAT
  data::t_WaeBetrag ZahlungsSumBrutto;     // payments total incl. VAT
  data::t_WaeBetrag AbgerechnetBrutto;     // billed total incl. VAT
  data::t_WaeBetrag AktuellBrutto;         // current total incl. VAT
  data::t_WaeBetrag PrognoseBrutto;        // forecast incl. VAT
  double UstAbrechnung;                    // VAT percent used for billing; −1 = as Ust
  data::t_WaeBetrag GPPrognoseAusAufmass;  // forecast total from measurements
  data::ShortString<20> Name;              // short name of the LV
  uint8_t SpecialType;  // TAwardInfoSpecialType: aisNone, aisMaint, aisMastAgree, aisMastMaintAgree
  int32_t CONo;         // change-order number
  uint8_t COStatus;     // TCOStatus: cosNONE, cosRecog, cosFiled, cosOffered, cosWithdrawn,
                        // cosRejected, cosObjToRecj, cosFormAckn, cosApproved
  data::t_WaeBetrag BudgetBrutto;                      // budget incl. VAT
  data::t_WaeBetrag SchaetzSumBrutto;                  // estimated total incl. VAT
  data::t_WaeBetrag GepruefteSumBrutto;                // checked total incl. VAT
  data::t_WaeBetrag AngebotsSumBrutto;                 // bid total incl. VAT
  data::t_WaeBetrag VergabeSumInclNachlass;            // awarded total incl. discount
  data::t_WaeBetrag VergabeSumInclNachlassBrutto;      // same, incl. VAT
  data::t_WaeBetrag BudgetExclVergabeSumInclNachlass;  // budget minus awarded total incl. discount
  data::t_WaeBetrag BudgetExclVergabeSumInclNachlassBrutto;  // same, incl. VAT
  data::t_WaeBetrag
      PrognoseExclVergabeSumInclNachlass;  // forecast minus awarded total incl. discount
  data::t_WaeBetrag PrognoseExclVergabeSumInclNachlassBrutto;  // same, incl. VAT
  double ProzVergabeSumInclNachlassToBudget;  // awarded total incl. discount as percent of budget
  double
      ProzAbgerechnetToVergabeSumInclNachlass;  // billed as percent of awarded total incl. discount
  data::t_WaeBetrag BudgetExclAbgerechnet;      // budget minus billed
  double ProzBudgetExclAbgerechnetToBudget;     // budget minus billed, percent of budget
  double ProzPrognoseToBudget;                  // forecast as percent of budget
  data::t_WaeBetrag
      AktuellExclNachlassExclSkonto;  // current total without discount and cash discount
  data::t_WaeBetrag AktuellExclNachlassExclSkontoBrutto;  // same, incl. VAT
  data::t_WaeBetrag SkontoValue;                          // cash discount amount
  data::t_WaeBetrag SkontoValueBrutto;                    // same, incl. VAT
  data::t_WaeBetrag PrognoseAuftrag;                      // forecast of the order
  data::t_WaeBetrag PrognoseAuftragBrutto;                // same, incl. VAT
  data::t_WaeBetrag PrognoseAuftragInclNachlass;          // forecast of the order incl. discount
  data::t_WaeBetrag PrognoseAuftragInclNachlassBrutto;    // same, incl. VAT
  data::t_WaeBetrag NotContractedNachtrag;                // supplements not yet contracted
  data::t_WaeBetrag NotContractedNachtragBrutto;          // same, incl. VAT
  data::t_WaeBetrag NotContractedNachtragInclNachlass;    // same, incl. discount
  data::t_WaeBetrag NotContractedNachtragInclNachlassBrutto;  // same, incl. discount and VAT
  uint8_t markiert;                                           // marked in lists
  data::ShortString<50> CtlgAssignCode1;                      // catalog assignment code 1
  data::ShortString<50> CtlgAssignCode2;                      // catalog assignment code 2
  data::ShortString<50> CtlgAssignCode3;                      // catalog assignment code 3
  data::ShortString<50> CtlgAssignCode4;                      // catalog assignment code 4
  data::ShortString<50> CtlgAssignCode5;                      // catalog assignment code 5
  data::ShortString<50> CtlgAssignCode6;                      // catalog assignment code 6
  data::ShortString<50> CtlgAssignCode7;                      // catalog assignment code 7
  data::ShortString<50> CtlgAssignCode8;                      // catalog assignment code 8
  data::ShortString<50> CtlgAssignCode9;                      // catalog assignment code 9
  data::ShortString<50> CtlgAssignCode10;                     // catalog assignment code 10
  uint8_t GUID[16];                                           // global id of the LV
  data::t_WaeBetrag Abzuege1Netto;                            // deductions 1, net
  data::t_WaeBetrag Abzuege2Netto;                            // deductions 2, net
  data::t_WaeBetrag Abzuege1Brutto;                           // deductions 1, incl. VAT
  data::t_WaeBetrag Abzuege2Brutto;                           // deductions 2, incl. VAT
  TCashDiscountArray CashDiscount;          // three cash-discount terms (TCashDiscount, see below)
  data::ShortString<30> LktCode;            // cost-element code
  data::t_WaeBetrag kumFreigabeExclSkonto;  // cumulated payment releases without cash discount
  data::t_WaeBetrag kumFreigabeExclSkontoBrutto;  // same, incl. VAT
  data::t_WaeBetrag GewaehrFreigabe;              // released retention (Gewährleistung)
  data::t_WaeBetrag GewaehrFreigabeBrutto;        // same, incl. VAT
  data::ShortString<60> DvNr;                     // award procedure number (DV-Nr.)
  data::ShortString<60> VergabeNr;                // award number
  uint8_t Padding[6];                             // reserved
};

#pragma pack(pop)

static_assert(sizeof(LvDruckOptionen) == 23);
static_assert(offsetof(LvDruckOptionen, LKTextDrucken) == 22);
static_assert(sizeof(TCashDiscDays) == 5);
static_assert(sizeof(TCashDiscount) == 17);
static_assert(offsetof(TCashDiscount, CashDiscDate) == 8);
static_assert(offsetof(TCashDiscount, CashDiscDays) == 12);
static_assert(sizeof(TCashDiscountArray) == 51);
static_assert(sizeof(TLevelInt16s) == 20);
static_assert(sizeof(TLevelBools) == 10);

static_assert(sizeof(t_Lv_DB_VERSION_3100) == 1912);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Header) == 0);
static_assert(offsetof(t_Lv_DB_VERSION_3100, FId) == 48);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SzPrj) == 52);
static_assert(offsetof(t_Lv_DB_VERSION_3100, IdCad) == 56);
static_assert(offsetof(t_Lv_DB_VERSION_3100, DBState) == 60);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve1) == 61);
static_assert(offsetof(t_Lv_DB_VERSION_3100, IdWae) == 69);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ForceTeilmengen) == 71);
static_assert(offsetof(t_Lv_DB_VERSION_3100, UseLongKT) == 72);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Datum) == 73);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PreisregionID) == 77);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve2) == 87);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LBNr) == 108);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Deckungsbeitrag) == 118);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SchaetzGPDeckung) == 126);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve3) == 136);
static_assert(offsetof(t_Lv_DB_VERSION_3100, IdLkt) == 139);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve4) == 143);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Summe) == 164);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachlassProz) == 174);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachlassAbs) == 182);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SumNachNL) == 192);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SummePsch) == 202);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Ust) == 212);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve5) == 220);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Status) == 245);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KalkStatus) == 246);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LvArt) == 247);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AngVerfahren) == 248);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KalkVerfahren) == 249);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LvForm) == 250);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Aktuell) == 251);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Budget) == 261);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SchaetzSum) == 271);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeSum) == 281);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachtragsSum) == 291);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ZahlungsSum) == 301);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Prognose) == 311);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GepruefteSum) == 321);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Abgerechnet) == 331);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AngebotsSum) == 341);
static_assert(offsetof(t_Lv_DB_VERSION_3100, xSkonto) == 351);
static_assert(offsetof(t_Lv_DB_VERSION_3100, xSkontofrist) == 359);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ZKosten) == 363);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GkAnteilProz) == 423);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KNFZeit) == 431);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KNFMaterial) == 439);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Druckoptionen) == 447);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KalkAktuell) == 470);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PosMaske) == 471);
static_assert(offsetof(t_Lv_DB_VERSION_3100, EPGenauigkeit) == 492);
static_assert(offsetof(t_Lv_DB_VERSION_3100, xSchrittweite) == 493);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PreisAnteile) == 494);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AutoMenge) == 495);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Autocalc) == 496);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Ausgelagert) == 497);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LVWaehrung) == 498);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Zugriffsrecht) == 499);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Passwort) == 500);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Zeilenart) == 533);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeArt) == 534);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ErDatum) == 535);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ErUhrzeit) == 539);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ZusEnde) == 543);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AbgabeOrt) == 547);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AusfBeginn) == 608);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AusfEnde) == 612);
static_assert(offsetof(t_Lv_DB_VERSION_3100, OZSchrittweiteGT) == 616);
static_assert(offsetof(t_Lv_DB_VERSION_3100, OZAutoNumGT) == 636);
static_assert(offsetof(t_Lv_DB_VERSION_3100, useKatOZ) == 646);
static_assert(offsetof(t_Lv_DB_VERSION_3100, unterschrift) == 647);
static_assert(offsetof(t_Lv_DB_VERSION_3100, lohnmaterial) == 648);
static_assert(offsetof(t_Lv_DB_VERSION_3100, deckblatt) == 649);
static_assert(offsetof(t_Lv_DB_VERSION_3100, OZDurchNumGT) == 650);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ProzGesamt) == 660);
static_assert(offsetof(t_Lv_DB_VERSION_3100, KontrollID) == 668);
static_assert(offsetof(t_Lv_DB_VERSION_3100, MittelwerteGebildet) == 672);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AngebotsmengenGleichLvMengen) == 673);
static_assert(offsetof(t_Lv_DB_VERSION_3100, eLose) == 674);
static_assert(offsetof(t_Lv_DB_VERSION_3100, mLose) == 675);
static_assert(offsetof(t_Lv_DB_VERSION_3100, aLose) == 676);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AbnahmeDatum) == 677);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GwlDauer) == 681);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GwlEinheit) == 685);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GwlEnde) == 692);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachtrNr) == 696);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachtrPhase) == 698);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LBArt) == 699);
static_assert(offsetof(t_Lv_DB_VERSION_3100, EinzelkostenSum) == 700);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Reserve6) == 710);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ZeitAufwand) == 720);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeSumBrutto) == 728);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NachtragsSumBrutto) == 738);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ZahlungsSumBrutto) == 748);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AbgerechnetBrutto) == 758);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AktuellBrutto) == 768);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseBrutto) == 778);
static_assert(offsetof(t_Lv_DB_VERSION_3100, UstAbrechnung) == 788);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GPPrognoseAusAufmass) == 796);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Name) == 806);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SpecialType) == 827);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CONo) == 828);
static_assert(offsetof(t_Lv_DB_VERSION_3100, COStatus) == 832);
static_assert(offsetof(t_Lv_DB_VERSION_3100, BudgetBrutto) == 833);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SchaetzSumBrutto) == 843);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GepruefteSumBrutto) == 853);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AngebotsSumBrutto) == 863);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeSumInclNachlass) == 873);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeSumInclNachlassBrutto) == 883);
static_assert(offsetof(t_Lv_DB_VERSION_3100, BudgetExclVergabeSumInclNachlass) == 893);
static_assert(offsetof(t_Lv_DB_VERSION_3100, BudgetExclVergabeSumInclNachlassBrutto) == 903);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseExclVergabeSumInclNachlass) == 913);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseExclVergabeSumInclNachlassBrutto) == 923);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ProzVergabeSumInclNachlassToBudget) == 933);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ProzAbgerechnetToVergabeSumInclNachlass) == 941);
static_assert(offsetof(t_Lv_DB_VERSION_3100, BudgetExclAbgerechnet) == 949);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ProzBudgetExclAbgerechnetToBudget) == 959);
static_assert(offsetof(t_Lv_DB_VERSION_3100, ProzPrognoseToBudget) == 967);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AktuellExclNachlassExclSkonto) == 975);
static_assert(offsetof(t_Lv_DB_VERSION_3100, AktuellExclNachlassExclSkontoBrutto) == 985);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SkontoValue) == 995);
static_assert(offsetof(t_Lv_DB_VERSION_3100, SkontoValueBrutto) == 1005);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftrag) == 1015);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragBrutto) == 1025);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragInclNachlass) == 1035);
static_assert(offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragInclNachlassBrutto) == 1045);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtrag) == 1055);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragBrutto) == 1065);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragInclNachlass) == 1075);
static_assert(offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragInclNachlassBrutto) == 1085);
static_assert(offsetof(t_Lv_DB_VERSION_3100, markiert) == 1095);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode1) == 1096);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode2) == 1147);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode3) == 1198);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode4) == 1249);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode5) == 1300);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode6) == 1351);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode7) == 1402);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode8) == 1453);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode9) == 1504);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode10) == 1555);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GUID) == 1606);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Abzuege1Netto) == 1622);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Abzuege2Netto) == 1632);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Abzuege1Brutto) == 1642);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Abzuege2Brutto) == 1652);
static_assert(offsetof(t_Lv_DB_VERSION_3100, CashDiscount) == 1662);
static_assert(offsetof(t_Lv_DB_VERSION_3100, LktCode) == 1713);
static_assert(offsetof(t_Lv_DB_VERSION_3100, kumFreigabeExclSkonto) == 1744);
static_assert(offsetof(t_Lv_DB_VERSION_3100, kumFreigabeExclSkontoBrutto) == 1754);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GewaehrFreigabe) == 1764);
static_assert(offsetof(t_Lv_DB_VERSION_3100, GewaehrFreigabeBrutto) == 1774);
static_assert(offsetof(t_Lv_DB_VERSION_3100, DvNr) == 1784);
static_assert(offsetof(t_Lv_DB_VERSION_3100, VergabeNr) == 1845);
static_assert(offsetof(t_Lv_DB_VERSION_3100, Padding) == 1906);

// --- Field descriptions ----------------------------------------------------------------

inline constexpr data::FieldDescriptor kLvDruckOptionenFields[] = {
    {"DruckeVortext", 0, 1, data::FieldType::kTriState},
    {"DruckeLV", 1, 1, data::FieldType::kTriState},
    {"DruckeMengen", 2, 1, data::FieldType::kTriState},
    {"KtextDrucken", 3, 1, data::FieldType::kTriState},
    {"LTextDrucken", 4, 1, data::FieldType::kTriState},
    {"OZDrucken", 5, 1, data::FieldType::kTriState},
    {"StLBNrDrucken", 6, 1, data::FieldType::kTriState},
    {"KogrDruck", 7, 1, data::FieldType::kTriState},
    {"TeilmengenDruck", 8, 1, data::FieldType::kTriState},
    {"PreiseDrucken", 9, 1, data::FieldType::kTriState},
    {"UnformatiertDrucken", 10, 1, data::FieldType::kTriState},
    {"NurBieterAngaben", 11, 1, data::FieldType::kTriState},
    {"KaLohn", 12, 1, data::FieldType::kTriState},
    {"KaMaterial", 13, 1, data::FieldType::kTriState},
    {"KaBauhilfsstoff", 14, 1, data::FieldType::kTriState},
    {"KaBetriebsstoff", 15, 1, data::FieldType::kTriState},
    {"KaMaschinen", 16, 1, data::FieldType::kTriState},
    {"KaSonstige", 17, 1, data::FieldType::kTriState},
    {"KaFremd", 18, 1, data::FieldType::kTriState},
    {"LvNurTitelsummen", 19, 1, data::FieldType::kTriState},
    {"bFormFeedBG", 20, 1, data::FieldType::kTriState},
    {"DruckeMengenErmittlung", 21, 1, data::FieldType::kTriState},
    {"LKTextDrucken", 22, 1, data::FieldType::kTriState},
};
inline constexpr data::RecordLayout kLvDruckOptionenLayout{
    "LvDruckOptionen", sizeof(LvDruckOptionen), kLvDruckOptionenFields};
static_assert(data::DescribesLayoutExactly(kLvDruckOptionenLayout));

inline constexpr data::FieldDescriptor kCashDiscDaysFields[] = {
    {"Kind", 0, 1, data::FieldType::kByte},
    {"Days", 1, 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kCashDiscDaysLayout{"TCashDiscDays", sizeof(TCashDiscDays),
                                                        kCashDiscDaysFields};
static_assert(data::DescribesLayoutExactly(kCashDiscDaysLayout));

inline constexpr data::FieldDescriptor kCashDiscountFields[] = {
    {"DiscountPcnt", offsetof(TCashDiscount, DiscountPcnt), 8, data::FieldType::kDouble},
    {"CashDiscDate", offsetof(TCashDiscount, CashDiscDate), 4, data::FieldType::kIntDate},
    {"CashDiscDays", offsetof(TCashDiscount, CashDiscDays), 5, data::FieldType::kNested,
     &kCashDiscDaysLayout},
};
inline constexpr data::RecordLayout kCashDiscountLayout{"TCashDiscount", sizeof(TCashDiscount),
                                                        kCashDiscountFields};
static_assert(data::DescribesLayoutExactly(kCashDiscountLayout));

inline constexpr data::FieldDescriptor kCashDiscountArrayFields[] = {
    {"[1]", 0, 17, data::FieldType::kNested, &kCashDiscountLayout},
    {"[2]", 17, 17, data::FieldType::kNested, &kCashDiscountLayout},
    {"[3]", 34, 17, data::FieldType::kNested, &kCashDiscountLayout},
};
inline constexpr data::RecordLayout kCashDiscountArrayLayout{
    "TCashDiscountArray", sizeof(TCashDiscountArray), kCashDiscountArrayFields};
static_assert(data::DescribesLayoutExactly(kCashDiscountArrayLayout));

inline constexpr data::FieldDescriptor kLevelInt16sFields[] = {
    {"[1]", 0, 2, data::FieldType::kInt16},  {"[2]", 2, 2, data::FieldType::kInt16},
    {"[3]", 4, 2, data::FieldType::kInt16},  {"[4]", 6, 2, data::FieldType::kInt16},
    {"[5]", 8, 2, data::FieldType::kInt16},  {"[6]", 10, 2, data::FieldType::kInt16},
    {"[7]", 12, 2, data::FieldType::kInt16}, {"[8]", 14, 2, data::FieldType::kInt16},
    {"[9]", 16, 2, data::FieldType::kInt16}, {"[10]", 18, 2, data::FieldType::kInt16},
};
inline constexpr data::RecordLayout kLevelInt16sLayout{"LevelInt16s", 20, kLevelInt16sFields};
static_assert(data::DescribesLayoutExactly(kLevelInt16sLayout));

inline constexpr data::FieldDescriptor kLevelBoolsFields[] = {
    {"[1]", 0, 1, data::FieldType::kBool}, {"[2]", 1, 1, data::FieldType::kBool},
    {"[3]", 2, 1, data::FieldType::kBool}, {"[4]", 3, 1, data::FieldType::kBool},
    {"[5]", 4, 1, data::FieldType::kBool}, {"[6]", 5, 1, data::FieldType::kBool},
    {"[7]", 6, 1, data::FieldType::kBool}, {"[8]", 7, 1, data::FieldType::kBool},
    {"[9]", 8, 1, data::FieldType::kBool}, {"[10]", 9, 1, data::FieldType::kBool},
};
inline constexpr data::RecordLayout kLevelBoolsLayout{"LevelBools", 10, kLevelBoolsFields};
static_assert(data::DescribesLayoutExactly(kLevelBoolsLayout));

inline constexpr data::FieldDescriptor kLevelTriStatesFields[] = {
    {"[1]", 0, 1, data::FieldType::kTriState}, {"[2]", 1, 1, data::FieldType::kTriState},
    {"[3]", 2, 1, data::FieldType::kTriState}, {"[4]", 3, 1, data::FieldType::kTriState},
    {"[5]", 4, 1, data::FieldType::kTriState}, {"[6]", 5, 1, data::FieldType::kTriState},
    {"[7]", 6, 1, data::FieldType::kTriState}, {"[8]", 7, 1, data::FieldType::kTriState},
    {"[9]", 8, 1, data::FieldType::kTriState}, {"[10]", 9, 1, data::FieldType::kTriState},
};
inline constexpr data::RecordLayout kLevelTriStatesLayout{"LevelTriStates", 10,
                                                          kLevelTriStatesFields};
static_assert(data::DescribesLayoutExactly(kLevelTriStatesLayout));

inline constexpr data::FieldDescriptor kLvFields[] = {
    data::HeaderField(),
    {"FId", offsetof(t_Lv_DB_VERSION_3100, FId), 4, data::FieldType::kInt32},
    {"SzPrj", offsetof(t_Lv_DB_VERSION_3100, SzPrj), 4, data::FieldType::kInt32},
    {"IdCad", offsetof(t_Lv_DB_VERSION_3100, IdCad), 4, data::FieldType::kInt32},
    {"DBState", offsetof(t_Lv_DB_VERSION_3100, DBState), 1, data::FieldType::kEnum8, nullptr,
     kDbLvStateNames},
    {"Reserve1", offsetof(t_Lv_DB_VERSION_3100, Reserve1), 8, data::FieldType::kBytes},
    {"IdWae", offsetof(t_Lv_DB_VERSION_3100, IdWae), 2, data::FieldType::kInt16},
    {"ForceTeilmengen", offsetof(t_Lv_DB_VERSION_3100, ForceTeilmengen), 1, data::FieldType::kBool},
    {"UseLongKT", offsetof(t_Lv_DB_VERSION_3100, UseLongKT), 1, data::FieldType::kTriState},
    {"Datum", offsetof(t_Lv_DB_VERSION_3100, Datum), 4, data::FieldType::kIntDate},
    {"PreisregionID", offsetof(t_Lv_DB_VERSION_3100, PreisregionID), 10,
     data::FieldType::kShortString},
    {"Reserve2", offsetof(t_Lv_DB_VERSION_3100, Reserve2), 21, data::FieldType::kBytes},
    {"LBNr", offsetof(t_Lv_DB_VERSION_3100, LBNr), 10, data::FieldType::kShortString},
    {"Deckungsbeitrag", offsetof(t_Lv_DB_VERSION_3100, Deckungsbeitrag), 8,
     data::FieldType::kDouble},
    {"SchaetzGPDeckung", offsetof(t_Lv_DB_VERSION_3100, SchaetzGPDeckung), 10,
     data::FieldType::kWaeBetrag},
    {"Reserve3", offsetof(t_Lv_DB_VERSION_3100, Reserve3), 3, data::FieldType::kBytes},
    {"IdLkt", offsetof(t_Lv_DB_VERSION_3100, IdLkt), 4, data::FieldType::kInt32},
    {"Reserve4", offsetof(t_Lv_DB_VERSION_3100, Reserve4), 21, data::FieldType::kBytes},
    {"Summe", offsetof(t_Lv_DB_VERSION_3100, Summe), 10, data::FieldType::kWaeBetrag},
    {"NachlassProz", offsetof(t_Lv_DB_VERSION_3100, NachlassProz), 8, data::FieldType::kDouble},
    {"NachlassAbs", offsetof(t_Lv_DB_VERSION_3100, NachlassAbs), 10, data::FieldType::kWaeBetrag},
    {"SumNachNL", offsetof(t_Lv_DB_VERSION_3100, SumNachNL), 10, data::FieldType::kWaeBetrag},
    {"SummePsch", offsetof(t_Lv_DB_VERSION_3100, SummePsch), 10, data::FieldType::kWaeBetrag},
    {"Ust", offsetof(t_Lv_DB_VERSION_3100, Ust), 8, data::FieldType::kDouble},
    {"Reserve5", offsetof(t_Lv_DB_VERSION_3100, Reserve5), 25, data::FieldType::kBytes},
    {"Status", offsetof(t_Lv_DB_VERSION_3100, Status), 1, data::FieldType::kChar},
    {"KalkStatus", offsetof(t_Lv_DB_VERSION_3100, KalkStatus), 1, data::FieldType::kChar},
    {"LvArt", offsetof(t_Lv_DB_VERSION_3100, LvArt), 1, data::FieldType::kChar},
    {"AngVerfahren", offsetof(t_Lv_DB_VERSION_3100, AngVerfahren), 1, data::FieldType::kChar},
    {"KalkVerfahren", offsetof(t_Lv_DB_VERSION_3100, KalkVerfahren), 1, data::FieldType::kChar},
    {"LvForm", offsetof(t_Lv_DB_VERSION_3100, LvForm), 1, data::FieldType::kChar},
    {"Aktuell", offsetof(t_Lv_DB_VERSION_3100, Aktuell), 10, data::FieldType::kWaeBetrag},
    {"Budget", offsetof(t_Lv_DB_VERSION_3100, Budget), 10, data::FieldType::kWaeBetrag},
    {"SchaetzSum", offsetof(t_Lv_DB_VERSION_3100, SchaetzSum), 10, data::FieldType::kWaeBetrag},
    {"VergabeSum", offsetof(t_Lv_DB_VERSION_3100, VergabeSum), 10, data::FieldType::kWaeBetrag},
    {"NachtragsSum", offsetof(t_Lv_DB_VERSION_3100, NachtragsSum), 10, data::FieldType::kWaeBetrag},
    {"ZahlungsSum", offsetof(t_Lv_DB_VERSION_3100, ZahlungsSum), 10, data::FieldType::kWaeBetrag},
    {"Prognose", offsetof(t_Lv_DB_VERSION_3100, Prognose), 10, data::FieldType::kWaeBetrag},
    {"GepruefteSum", offsetof(t_Lv_DB_VERSION_3100, GepruefteSum), 10, data::FieldType::kWaeBetrag},
    {"Abgerechnet", offsetof(t_Lv_DB_VERSION_3100, Abgerechnet), 10, data::FieldType::kWaeBetrag},
    {"AngebotsSum", offsetof(t_Lv_DB_VERSION_3100, AngebotsSum), 10, data::FieldType::kWaeBetrag},
    {"xSkonto", offsetof(t_Lv_DB_VERSION_3100, xSkonto), 8, data::FieldType::kDouble},
    {"xSkontofrist", offsetof(t_Lv_DB_VERSION_3100, xSkontofrist), 4, data::FieldType::kInt32},
    {"ZKosten", offsetof(t_Lv_DB_VERSION_3100, ZKosten), 60, data::FieldType::kWaeBetragArray},
    {"GkAnteilProz", offsetof(t_Lv_DB_VERSION_3100, GkAnteilProz), 8, data::FieldType::kDouble},
    {"KNFZeit", offsetof(t_Lv_DB_VERSION_3100, KNFZeit), 8, data::FieldType::kDouble},
    {"KNFMaterial", offsetof(t_Lv_DB_VERSION_3100, KNFMaterial), 8, data::FieldType::kDouble},
    {"Druckoptionen", offsetof(t_Lv_DB_VERSION_3100, Druckoptionen), 23, data::FieldType::kNested,
     &kLvDruckOptionenLayout},
    {"KalkAktuell", offsetof(t_Lv_DB_VERSION_3100, KalkAktuell), 1, data::FieldType::kBool},
    {"PosMaske", offsetof(t_Lv_DB_VERSION_3100, PosMaske), 21, data::FieldType::kShortString},
    {"EPGenauigkeit", offsetof(t_Lv_DB_VERSION_3100, EPGenauigkeit), 1, data::FieldType::kByte},
    {"xSchrittweite", offsetof(t_Lv_DB_VERSION_3100, xSchrittweite), 1, data::FieldType::kByte},
    {"PreisAnteile", offsetof(t_Lv_DB_VERSION_3100, PreisAnteile), 1, data::FieldType::kByte},
    {"AutoMenge", offsetof(t_Lv_DB_VERSION_3100, AutoMenge), 1, data::FieldType::kBool},
    {"Autocalc", offsetof(t_Lv_DB_VERSION_3100, Autocalc), 1, data::FieldType::kBool},
    {"Ausgelagert", offsetof(t_Lv_DB_VERSION_3100, Ausgelagert), 1, data::FieldType::kBool},
    {"LVWaehrung", offsetof(t_Lv_DB_VERSION_3100, LVWaehrung), 1, data::FieldType::kEnum8, nullptr,
     kWaehrungstypNames},
    {"Zugriffsrecht", offsetof(t_Lv_DB_VERSION_3100, Zugriffsrecht), 1, data::FieldType::kChar},
    {"Passwort", offsetof(t_Lv_DB_VERSION_3100, Passwort), 33, data::FieldType::kBytes},
    {"Zeilenart", offsetof(t_Lv_DB_VERSION_3100, Zeilenart), 1, data::FieldType::kChar},
    {"VergabeArt", offsetof(t_Lv_DB_VERSION_3100, VergabeArt), 1, data::FieldType::kChar},
    {"ErDatum", offsetof(t_Lv_DB_VERSION_3100, ErDatum), 4, data::FieldType::kIntDate},
    {"ErUhrzeit", offsetof(t_Lv_DB_VERSION_3100, ErUhrzeit), 4, data::FieldType::kInt32},
    {"ZusEnde", offsetof(t_Lv_DB_VERSION_3100, ZusEnde), 4, data::FieldType::kIntDate},
    {"AbgabeOrt", offsetof(t_Lv_DB_VERSION_3100, AbgabeOrt), 61, data::FieldType::kShortString},
    {"AusfBeginn", offsetof(t_Lv_DB_VERSION_3100, AusfBeginn), 4, data::FieldType::kIntDate},
    {"AusfEnde", offsetof(t_Lv_DB_VERSION_3100, AusfEnde), 4, data::FieldType::kIntDate},
    {"OZSchrittweiteGT", offsetof(t_Lv_DB_VERSION_3100, OZSchrittweiteGT), 20,
     data::FieldType::kNested, &kLevelInt16sLayout},
    {"OZAutoNumGT", offsetof(t_Lv_DB_VERSION_3100, OZAutoNumGT), 10, data::FieldType::kNested,
     &kLevelTriStatesLayout},
    {"useKatOZ", offsetof(t_Lv_DB_VERSION_3100, useKatOZ), 1, data::FieldType::kTriState},
    {"unterschrift", offsetof(t_Lv_DB_VERSION_3100, unterschrift), 1, data::FieldType::kTriState},
    {"lohnmaterial", offsetof(t_Lv_DB_VERSION_3100, lohnmaterial), 1, data::FieldType::kTriState},
    {"deckblatt", offsetof(t_Lv_DB_VERSION_3100, deckblatt), 1, data::FieldType::kBool},
    {"OZDurchNumGT", offsetof(t_Lv_DB_VERSION_3100, OZDurchNumGT), 10, data::FieldType::kNested,
     &kLevelBoolsLayout},
    {"ProzGesamt", offsetof(t_Lv_DB_VERSION_3100, ProzGesamt), 8, data::FieldType::kDouble},
    {"KontrollID", offsetof(t_Lv_DB_VERSION_3100, KontrollID), 4, data::FieldType::kInt32},
    {"MittelwerteGebildet", offsetof(t_Lv_DB_VERSION_3100, MittelwerteGebildet), 1,
     data::FieldType::kBool},
    {"AngebotsmengenGleichLvMengen", offsetof(t_Lv_DB_VERSION_3100, AngebotsmengenGleichLvMengen),
     1, data::FieldType::kBool},
    {"eLose", offsetof(t_Lv_DB_VERSION_3100, eLose), 1, data::FieldType::kBool},
    {"mLose", offsetof(t_Lv_DB_VERSION_3100, mLose), 1, data::FieldType::kBool},
    {"aLose", offsetof(t_Lv_DB_VERSION_3100, aLose), 1, data::FieldType::kBool},
    {"AbnahmeDatum", offsetof(t_Lv_DB_VERSION_3100, AbnahmeDatum), 4, data::FieldType::kIntDate},
    {"GwlDauer", offsetof(t_Lv_DB_VERSION_3100, GwlDauer), 4, data::FieldType::kInt32},
    {"GwlEinheit", offsetof(t_Lv_DB_VERSION_3100, GwlEinheit), 7, data::FieldType::kShortString},
    {"GwlEnde", offsetof(t_Lv_DB_VERSION_3100, GwlEnde), 4, data::FieldType::kIntDate},
    {"NachtrNr", offsetof(t_Lv_DB_VERSION_3100, NachtrNr), 2, data::FieldType::kInt16},
    {"NachtrPhase", offsetof(t_Lv_DB_VERSION_3100, NachtrPhase), 1, data::FieldType::kChar},
    {"LBArt", offsetof(t_Lv_DB_VERSION_3100, LBArt), 1, data::FieldType::kChar},
    {"EinzelkostenSum", offsetof(t_Lv_DB_VERSION_3100, EinzelkostenSum), 10,
     data::FieldType::kWaeBetrag},
    {"Reserve6", offsetof(t_Lv_DB_VERSION_3100, Reserve6), 10, data::FieldType::kBytes},
    {"ZeitAufwand", offsetof(t_Lv_DB_VERSION_3100, ZeitAufwand), 8, data::FieldType::kDouble},
    {"VergabeSumBrutto", offsetof(t_Lv_DB_VERSION_3100, VergabeSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"NachtragsSumBrutto", offsetof(t_Lv_DB_VERSION_3100, NachtragsSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"ZahlungsSumBrutto", offsetof(t_Lv_DB_VERSION_3100, ZahlungsSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"AbgerechnetBrutto", offsetof(t_Lv_DB_VERSION_3100, AbgerechnetBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"AktuellBrutto", offsetof(t_Lv_DB_VERSION_3100, AktuellBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseBrutto", offsetof(t_Lv_DB_VERSION_3100, PrognoseBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"UstAbrechnung", offsetof(t_Lv_DB_VERSION_3100, UstAbrechnung), 8, data::FieldType::kDouble},
    {"GPPrognoseAusAufmass", offsetof(t_Lv_DB_VERSION_3100, GPPrognoseAusAufmass), 10,
     data::FieldType::kWaeBetrag},
    {"Name", offsetof(t_Lv_DB_VERSION_3100, Name), 21, data::FieldType::kShortString},
    {"SpecialType", offsetof(t_Lv_DB_VERSION_3100, SpecialType), 1, data::FieldType::kEnum8,
     nullptr, kAwardInfoSpecialTypeNames},
    {"CONo", offsetof(t_Lv_DB_VERSION_3100, CONo), 4, data::FieldType::kInt32},
    {"COStatus", offsetof(t_Lv_DB_VERSION_3100, COStatus), 1, data::FieldType::kEnum8, nullptr,
     kCoStatusNames},
    {"BudgetBrutto", offsetof(t_Lv_DB_VERSION_3100, BudgetBrutto), 10, data::FieldType::kWaeBetrag},
    {"SchaetzSumBrutto", offsetof(t_Lv_DB_VERSION_3100, SchaetzSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"GepruefteSumBrutto", offsetof(t_Lv_DB_VERSION_3100, GepruefteSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"AngebotsSumBrutto", offsetof(t_Lv_DB_VERSION_3100, AngebotsSumBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"VergabeSumInclNachlass", offsetof(t_Lv_DB_VERSION_3100, VergabeSumInclNachlass), 10,
     data::FieldType::kWaeBetrag},
    {"VergabeSumInclNachlassBrutto", offsetof(t_Lv_DB_VERSION_3100, VergabeSumInclNachlassBrutto),
     10, data::FieldType::kWaeBetrag},
    {"BudgetExclVergabeSumInclNachlass",
     offsetof(t_Lv_DB_VERSION_3100, BudgetExclVergabeSumInclNachlass), 10,
     data::FieldType::kWaeBetrag},
    {"BudgetExclVergabeSumInclNachlassBrutto",
     offsetof(t_Lv_DB_VERSION_3100, BudgetExclVergabeSumInclNachlassBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseExclVergabeSumInclNachlass",
     offsetof(t_Lv_DB_VERSION_3100, PrognoseExclVergabeSumInclNachlass), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseExclVergabeSumInclNachlassBrutto",
     offsetof(t_Lv_DB_VERSION_3100, PrognoseExclVergabeSumInclNachlassBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"ProzVergabeSumInclNachlassToBudget",
     offsetof(t_Lv_DB_VERSION_3100, ProzVergabeSumInclNachlassToBudget), 8,
     data::FieldType::kDouble},
    {"ProzAbgerechnetToVergabeSumInclNachlass",
     offsetof(t_Lv_DB_VERSION_3100, ProzAbgerechnetToVergabeSumInclNachlass), 8,
     data::FieldType::kDouble},
    {"BudgetExclAbgerechnet", offsetof(t_Lv_DB_VERSION_3100, BudgetExclAbgerechnet), 10,
     data::FieldType::kWaeBetrag},
    {"ProzBudgetExclAbgerechnetToBudget",
     offsetof(t_Lv_DB_VERSION_3100, ProzBudgetExclAbgerechnetToBudget), 8,
     data::FieldType::kDouble},
    {"ProzPrognoseToBudget", offsetof(t_Lv_DB_VERSION_3100, ProzPrognoseToBudget), 8,
     data::FieldType::kDouble},
    {"AktuellExclNachlassExclSkonto", offsetof(t_Lv_DB_VERSION_3100, AktuellExclNachlassExclSkonto),
     10, data::FieldType::kWaeBetrag},
    {"AktuellExclNachlassExclSkontoBrutto",
     offsetof(t_Lv_DB_VERSION_3100, AktuellExclNachlassExclSkontoBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"SkontoValue", offsetof(t_Lv_DB_VERSION_3100, SkontoValue), 10, data::FieldType::kWaeBetrag},
    {"SkontoValueBrutto", offsetof(t_Lv_DB_VERSION_3100, SkontoValueBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseAuftrag", offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftrag), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseAuftragBrutto", offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseAuftragInclNachlass", offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragInclNachlass), 10,
     data::FieldType::kWaeBetrag},
    {"PrognoseAuftragInclNachlassBrutto",
     offsetof(t_Lv_DB_VERSION_3100, PrognoseAuftragInclNachlassBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"NotContractedNachtrag", offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtrag), 10,
     data::FieldType::kWaeBetrag},
    {"NotContractedNachtragBrutto", offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"NotContractedNachtragInclNachlass",
     offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragInclNachlass), 10,
     data::FieldType::kWaeBetrag},
    {"NotContractedNachtragInclNachlassBrutto",
     offsetof(t_Lv_DB_VERSION_3100, NotContractedNachtragInclNachlassBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"markiert", offsetof(t_Lv_DB_VERSION_3100, markiert), 1, data::FieldType::kBool},
    {"CtlgAssignCode1", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode1), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode2", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode2), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode3", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode3), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode4", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode4), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode5", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode5), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode6", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode6), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode7", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode7), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode8", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode8), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode9", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode9), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode10", offsetof(t_Lv_DB_VERSION_3100, CtlgAssignCode10), 51,
     data::FieldType::kShortString},
    {"GUID", offsetof(t_Lv_DB_VERSION_3100, GUID), 16, data::FieldType::kBytes},
    {"Abzuege1Netto", offsetof(t_Lv_DB_VERSION_3100, Abzuege1Netto), 10,
     data::FieldType::kWaeBetrag},
    {"Abzuege2Netto", offsetof(t_Lv_DB_VERSION_3100, Abzuege2Netto), 10,
     data::FieldType::kWaeBetrag},
    {"Abzuege1Brutto", offsetof(t_Lv_DB_VERSION_3100, Abzuege1Brutto), 10,
     data::FieldType::kWaeBetrag},
    {"Abzuege2Brutto", offsetof(t_Lv_DB_VERSION_3100, Abzuege2Brutto), 10,
     data::FieldType::kWaeBetrag},
    {"CashDiscount", offsetof(t_Lv_DB_VERSION_3100, CashDiscount), 51, data::FieldType::kNested,
     &kCashDiscountArrayLayout},
    {"LktCode", offsetof(t_Lv_DB_VERSION_3100, LktCode), 31, data::FieldType::kShortString},
    {"kumFreigabeExclSkonto", offsetof(t_Lv_DB_VERSION_3100, kumFreigabeExclSkonto), 10,
     data::FieldType::kWaeBetrag},
    {"kumFreigabeExclSkontoBrutto", offsetof(t_Lv_DB_VERSION_3100, kumFreigabeExclSkontoBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"GewaehrFreigabe", offsetof(t_Lv_DB_VERSION_3100, GewaehrFreigabe), 10,
     data::FieldType::kWaeBetrag},
    {"GewaehrFreigabeBrutto", offsetof(t_Lv_DB_VERSION_3100, GewaehrFreigabeBrutto), 10,
     data::FieldType::kWaeBetrag},
    {"DvNr", offsetof(t_Lv_DB_VERSION_3100, DvNr), 61, data::FieldType::kShortString},
    {"VergabeNr", offsetof(t_Lv_DB_VERSION_3100, VergabeNr), 61, data::FieldType::kShortString},
    {"Padding", offsetof(t_Lv_DB_VERSION_3100, Padding), 6, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kLvLayout{"t_Lv_DB_VERSION_3100", sizeof(t_Lv_DB_VERSION_3100),
                                              kLvFields};
static_assert(data::DescribesLayoutExactly(kLvLayout));

}  // namespace korvan::boq
