#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "boq/lv/lv_record.h"
#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

namespace korvan::billing {

// Change-order phase of a supplementary contract.
enum class TCOPhase : uint8_t { copNONE, copCallChangOrder, copSupplBid, copSupplAgree };
// Who initiated a change order.
enum class TCOInit : uint8_t { coiNONE, coiOwner, coiContractor };

inline constexpr std::string_view kCoPhaseNames[] = {"copNONE", "copCallChangOrder", "copSupplBid",
                                                     "copSupplAgree"};
inline constexpr std::string_view kCoInitNames[] = {"coiNONE", "coiOwner", "coiContractor"};

#pragma pack(push, 1)

// A contract of an awarded LV with a contractor: its sums and the terms the invoices apply.
struct t_Vertrag_DB_VERSION_201501 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t Sz;  // version counter
  int32_t IdProjekt;
  uint16_t SzProjekt;
  int32_t IdLv;
  uint16_t SzLv;
  int32_t IdFormularsatz;  // the form set for printing
  int32_t IdHauptauftrag;  // the main contract of a supplementary contract
  int32_t IdAdresse;       // the contractor's address
  int32_t IdBieter;        // the awarded bidder
  int32_t IdWaehrung;
  data::ShortString<20> AuftragsNr;
  char Auftragsart;  // kMainContract or kSupplementContract
  data::t_WaeBetrag Auftragssumme;
  data::t_WaeBetrag Rechnungssumme;  // invoiced so far
  int32_t Auftragsdatum;
  int32_t Baubeginndatum;
  int32_t BauEndedatum;
  int32_t Abnahmedatum;
  int32_t SchlussDatum;
  double BauwesenversicherungProz;
  double SicherheitseinbehaltProz;     // per payment ...
  double MaxSicherheitseinbehaltProz;  // ... up to this share of the contract sum
  uint8_t SicherheitsBuergschaft;      // a security bond replaces the retention
  int32_t SicherheitsbuergschaftsDatum;
  data::t_WaeBetrag SicherheitsbuergschaftsBetrag;
  double GewaehrleistungseinbehaltProz;
  uint16_t Gewaehrdauer;  // in GwlEinheit
  int32_t GewaehrEnde;
  uint8_t Gewaehrbuergschaft;
  int32_t GewaehrbuergschaftsDatum;
  data::t_WaeBetrag GewaehrbuergschaftsBetrag;
  double xSkonto;         // simple cash discount, percent
  uint16_t xSkontofrist;  // days
  data::ShortString<30> Ort;
  char RechLegung;  // "R=Rechnung, T=Teilrechnung, S=Schlußrechnung"
  uint8_t Kumulativ;
  uint16_t AbschlagAnzahl;
  data::ShortString<60> AbnahmeArt;
  data::ShortString<6> GwlEinheit;
  data::ShortString<40> Auftraggeber;
  data::ShortString<40> Auftragnehmer;
  double NachlassProz;
  data::t_WaeBetrag NachlassAbs;
  uint8_t BauabzugsSteuer;
  uint8_t SRKumulativ;
  uint8_t ERKumulativ;
  int32_t AngebotsDatum;
  int32_t GewaehrBeginn;
  uint8_t Par13b;  // reverse charge of VAT
  uint8_t NettoAbzuege;
  double Mwst;
  data::t_WaeBetrag SummeAusLV;     // the LV's award total of this contract's items
  data::t_WaeBetrag SummeAusLVKum;  // with the supplementary contracts
  data::t_WaeBetrag SummePsch;      // lump sum; 0 none
  char BasisForBrutto;              // kGrossFrom...
  uint8_t SummeBruttoManuell;
  data::t_WaeBetrag SummeNachNL;
  data::t_WaeBetrag SummeBrutto;
  data::t_WaeBetrag AuftragssummeKum;
  uint8_t COPhase;  // TCOPhase
  uint8_t COInit;   // TCOInit
  int32_t CODate;
  uint8_t gesperrt;
  boq::TCashDiscountArray CashDiscount;
  std::array<uint8_t, 44> SizePadding;
};

#pragma pack(pop)

using TVertrag = t_Vertrag_DB_VERSION_201501;

static_assert(sizeof(TVertrag) == 616);
static_assert(offsetof(TVertrag, ID) == 48);
static_assert(offsetof(TVertrag, Sz) == 52);
static_assert(offsetof(TVertrag, IdProjekt) == 56);
static_assert(offsetof(TVertrag, SzProjekt) == 60);
static_assert(offsetof(TVertrag, IdLv) == 62);
static_assert(offsetof(TVertrag, SzLv) == 66);
static_assert(offsetof(TVertrag, IdFormularsatz) == 68);
static_assert(offsetof(TVertrag, IdHauptauftrag) == 72);
static_assert(offsetof(TVertrag, IdAdresse) == 76);
static_assert(offsetof(TVertrag, IdBieter) == 80);
static_assert(offsetof(TVertrag, IdWaehrung) == 84);
static_assert(offsetof(TVertrag, AuftragsNr) == 88);
static_assert(offsetof(TVertrag, Auftragsart) == 109);
static_assert(offsetof(TVertrag, Auftragssumme) == 110);
static_assert(offsetof(TVertrag, Rechnungssumme) == 120);
static_assert(offsetof(TVertrag, Auftragsdatum) == 130);
static_assert(offsetof(TVertrag, Baubeginndatum) == 134);
static_assert(offsetof(TVertrag, BauEndedatum) == 138);
static_assert(offsetof(TVertrag, Abnahmedatum) == 142);
static_assert(offsetof(TVertrag, SchlussDatum) == 146);
static_assert(offsetof(TVertrag, BauwesenversicherungProz) == 150);
static_assert(offsetof(TVertrag, SicherheitseinbehaltProz) == 158);
static_assert(offsetof(TVertrag, MaxSicherheitseinbehaltProz) == 166);
static_assert(offsetof(TVertrag, SicherheitsBuergschaft) == 174);
static_assert(offsetof(TVertrag, SicherheitsbuergschaftsDatum) == 175);
static_assert(offsetof(TVertrag, SicherheitsbuergschaftsBetrag) == 179);
static_assert(offsetof(TVertrag, GewaehrleistungseinbehaltProz) == 189);
static_assert(offsetof(TVertrag, Gewaehrdauer) == 197);
static_assert(offsetof(TVertrag, GewaehrEnde) == 199);
static_assert(offsetof(TVertrag, Gewaehrbuergschaft) == 203);
static_assert(offsetof(TVertrag, GewaehrbuergschaftsDatum) == 204);
static_assert(offsetof(TVertrag, GewaehrbuergschaftsBetrag) == 208);
static_assert(offsetof(TVertrag, xSkonto) == 218);
static_assert(offsetof(TVertrag, xSkontofrist) == 226);
static_assert(offsetof(TVertrag, Ort) == 228);
static_assert(offsetof(TVertrag, RechLegung) == 259);
static_assert(offsetof(TVertrag, Kumulativ) == 260);
static_assert(offsetof(TVertrag, AbschlagAnzahl) == 261);
static_assert(offsetof(TVertrag, AbnahmeArt) == 263);
static_assert(offsetof(TVertrag, GwlEinheit) == 324);
static_assert(offsetof(TVertrag, Auftraggeber) == 331);
static_assert(offsetof(TVertrag, Auftragnehmer) == 372);
static_assert(offsetof(TVertrag, NachlassProz) == 413);
static_assert(offsetof(TVertrag, NachlassAbs) == 421);
static_assert(offsetof(TVertrag, BauabzugsSteuer) == 431);
static_assert(offsetof(TVertrag, SRKumulativ) == 432);
static_assert(offsetof(TVertrag, ERKumulativ) == 433);
static_assert(offsetof(TVertrag, AngebotsDatum) == 434);
static_assert(offsetof(TVertrag, GewaehrBeginn) == 438);
static_assert(offsetof(TVertrag, Par13b) == 442);
static_assert(offsetof(TVertrag, NettoAbzuege) == 443);
static_assert(offsetof(TVertrag, Mwst) == 444);
static_assert(offsetof(TVertrag, SummeAusLV) == 452);
static_assert(offsetof(TVertrag, SummeAusLVKum) == 462);
static_assert(offsetof(TVertrag, SummePsch) == 472);
static_assert(offsetof(TVertrag, BasisForBrutto) == 482);
static_assert(offsetof(TVertrag, SummeBruttoManuell) == 483);
static_assert(offsetof(TVertrag, SummeNachNL) == 484);
static_assert(offsetof(TVertrag, SummeBrutto) == 494);
static_assert(offsetof(TVertrag, AuftragssummeKum) == 504);
static_assert(offsetof(TVertrag, COPhase) == 514);
static_assert(offsetof(TVertrag, COInit) == 515);
static_assert(offsetof(TVertrag, CODate) == 516);
static_assert(offsetof(TVertrag, gesperrt) == 520);
static_assert(offsetof(TVertrag, CashDiscount) == 521);
static_assert(offsetof(TVertrag, SizePadding) == 572);

#define KORVAN_VERTRAG_FIELD(name, type) \
  { #name, offsetof(TVertrag, name), sizeof(TVertrag::name), type }

inline constexpr data::FieldDescriptor kVertragFields[] = {
    data::HeaderField(),
    KORVAN_VERTRAG_FIELD(ID, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(Sz, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(IdProjekt, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(SzProjekt, data::FieldType::kUInt16),
    KORVAN_VERTRAG_FIELD(IdLv, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(SzLv, data::FieldType::kUInt16),
    KORVAN_VERTRAG_FIELD(IdFormularsatz, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(IdHauptauftrag, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(IdAdresse, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(IdBieter, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(IdWaehrung, data::FieldType::kInt32),
    KORVAN_VERTRAG_FIELD(AuftragsNr, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(Auftragsart, data::FieldType::kChar),
    KORVAN_VERTRAG_FIELD(Auftragssumme, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(Rechnungssumme, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(Auftragsdatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(Baubeginndatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(BauEndedatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(Abnahmedatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(SchlussDatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(BauwesenversicherungProz, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(SicherheitseinbehaltProz, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(MaxSicherheitseinbehaltProz, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(SicherheitsBuergschaft, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(SicherheitsbuergschaftsDatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(SicherheitsbuergschaftsBetrag, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(GewaehrleistungseinbehaltProz, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(Gewaehrdauer, data::FieldType::kUInt16),
    KORVAN_VERTRAG_FIELD(GewaehrEnde, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(Gewaehrbuergschaft, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(GewaehrbuergschaftsDatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(GewaehrbuergschaftsBetrag, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(xSkonto, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(xSkontofrist, data::FieldType::kUInt16),
    KORVAN_VERTRAG_FIELD(Ort, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(RechLegung, data::FieldType::kChar),
    KORVAN_VERTRAG_FIELD(Kumulativ, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(AbschlagAnzahl, data::FieldType::kUInt16),
    KORVAN_VERTRAG_FIELD(AbnahmeArt, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(GwlEinheit, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(Auftraggeber, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(Auftragnehmer, data::FieldType::kShortString),
    KORVAN_VERTRAG_FIELD(NachlassProz, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(NachlassAbs, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(BauabzugsSteuer, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(SRKumulativ, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(ERKumulativ, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(AngebotsDatum, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(GewaehrBeginn, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(Par13b, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(NettoAbzuege, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(Mwst, data::FieldType::kDouble),
    KORVAN_VERTRAG_FIELD(SummeAusLV, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(SummeAusLVKum, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(SummePsch, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(BasisForBrutto, data::FieldType::kChar),
    KORVAN_VERTRAG_FIELD(SummeBruttoManuell, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(SummeNachNL, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(SummeBrutto, data::FieldType::kWaeBetrag),
    KORVAN_VERTRAG_FIELD(AuftragssummeKum, data::FieldType::kWaeBetrag),
    {"COPhase", offsetof(TVertrag, COPhase), 1, data::FieldType::kEnum8, nullptr, kCoPhaseNames},
    {"COInit", offsetof(TVertrag, COInit), 1, data::FieldType::kEnum8, nullptr, kCoInitNames},
    KORVAN_VERTRAG_FIELD(CODate, data::FieldType::kIntDate),
    KORVAN_VERTRAG_FIELD(gesperrt, data::FieldType::kBool),
    KORVAN_VERTRAG_FIELD(CashDiscount, data::FieldType::kBytes),
    KORVAN_VERTRAG_FIELD(SizePadding, data::FieldType::kBytes),
};

#undef KORVAN_VERTRAG_FIELD

inline constexpr data::RecordLayout kVertragLayout{"t_Vertrag_DB_VERSION_201501", sizeof(TVertrag),
                                                   kVertragFields};
static_assert(data::DescribesLayoutExactly(kVertragLayout));

}  // namespace korvan::billing
