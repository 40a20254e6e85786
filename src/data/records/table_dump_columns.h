#pragma once

#include "data/records/record_dump.h"

namespace korvan::data {

// The columns of the table dumps. Each table's owner binds its list to its layout and
// checks it with static_assert(ColumnsResolve(layout, list)); the field paths are the
// layouts' field names. An empty format prints the field's own text.

inline constexpr DumpColumn kBudgetDumpColumns[] = {
    {"FID", "FID", "%.11d"},
    {"Name", "Name", "%s"},
    {"Budget.Betrag (netto)", "Budget.Betrag", "%7.3f"},
    {"BudgetBrutto.Betrag", "BudgetBrutto.Betrag", "%7.3f"},
    {"Zeilenart", "Zeilenart", "%s"},
    {"VergabeArt", "VergabeArt", "%s"},
    {"Summe", "Summe", "%7.3f"},
    {"USt", "USt", "%3.1f"},
    {"Status", "Status", "%s"},
    {"NachlassProz", "NachlassProz", "%7.3f"},
    {"NachlassAbs", "NachlassAbs", "%7.3f"},
    {"SummePsch", "SummePsch", "%7.3f"},
    {"Abgerechnet", "Abgerechnet", "%7.3f"},
    {"AbgerechnetBrutto", "AbgerechnetBrutto", "%7.3f"},
};

inline constexpr DumpColumn kDokumentDumpColumns[] = {
    {"ID", "ID", "%11d"},
    {"IdBezug", "IdBezug", "%11d"},
    {"KzBezug", "KzBezug", "%11s"},
    {"SzBezug", "SzBezug", "%11d"},
    {"IdKatProjekt", "IdKatProjekt", "%11d"},
    {"IdKatDokument", "IdKatDokument", "%11d"},
    {"Typ", "Typ", "%4s"},
    {"KatalogDokument", "KatalogDokument", "%1d"},
    {"KzReadOnly", "KzReadOnly", "%1d"},
    {"markiert", "markiert", "%1d"},
    {"Sort", "Sort", "%11d"},
};

inline constexpr DumpColumn kStrukturDumpColumns[] = {
    {"IdLv", "IdLv", "%.11d"},
    {"SzLv", "SzLv", "%.5d"},
    {"ZuBg", "ZuBg", "%.11d"},
    {"SzBg", "SzBg", "%.5d"},
    {"ZuPos", "ZuPos", "%.11d"},
    {"SzPos", "SzPos", "%.5d"},
    {"IdBgBeschr", "IdBgBeschr", "%.11d"},
    {"KzBgBeschr", "KzBgBeschr", "%s"},
};

inline constexpr DumpColumn kVertragDumpColumns[] = {
    {"ID", "ID", "%d"},
    {"Sz", "Sz", "%d"},
    {"IdProjekt", "IdProjekt", "%d"},
    {"SzProjekt", "SzProjekt", "%d"},
    {"IdLv", "IdLv", "%d"},
    {"SzLv", "SzLv", "%d"},
    {"IdFormularsatz", "IdFormularsatz", "%d"},
    {"IdHauptauftrag", "IdHauptauftrag", "%d"},
    {"IdAdresse", "IdAdresse", "%d"},
    {"IdBieter", "IdBieter", "%d"},
    {"IdWaehrung", "IdWaehrung", "%d"},
    {"AuftragsNr", "AuftragsNr", "%s"},
    {"Auftragsart", "Auftragsart", "%s"},
    {"Auftragssumme", "Auftragssumme", "%d"},
    {"Rechnungssumme", "Rechnungssumme", "%d"},
    {"Auftragsdatum", "Auftragsdatum", "%d"},
    {"Baubeginndatum", "Baubeginndatum", "%d"},
};

inline constexpr DumpColumn kRechnungDumpColumns[] = {
    {"ID ", "ID", "%11d"},
    {"IdLv", "IdLv", "%11d"},
    {"SzLv", "SzLv", "%5d"},
    {"IdVertrag", "IdVertrag", "%11d"},
    {"Rechnungstyp", "Rechnungstyp", "%s"},
    {"Zahlungstyp", "Zahlungstyp", "%s"},
    {"BereitsAngewiesenNetto", "BereitsAngewiesenNetto", "%7.3f"},
    {"MwSt", "MwSt", "%3.1f"},
    {"AufmassBetrag", "AufmassBetrag", "%7.3f"},
    {"Abzuege1Netto", "Abzuege1Netto", "%7.3f"},
    {"Abzuege1Brutto", "Abzuege1Brutto", "%7.3f"},
    {"Abzuege2Netto", "Abzuege2Netto", "%7.3f"},
    {"Abzuege2Brutto", "Abzuege2Brutto", "%7.3f"},
};

// Status is a set; its members print as "<Incomplete, Blanko>".
inline constexpr DumpColumn kBieterDumpColumns[] = {
    {"ID", "ID", "%.11d"},
    {"IDLv", "IDLv", "%.11d"},
    {"Bietername", "Bietername", "%s"},
    {"USt", "USt", "%7.3f"},
    {"SummeBrutto", "SummeBrutto", "%7.3f"},
    {"Status", "Status", "%s"},
    {"SummeUngeprueft", "SummeUngeprueft", "%7.3f"},
    {"Summe", "Summe", "%7.3f"},
    {"NachlassProz", "NachlassProz", "%7.3f"},
    {"NachlassAbs", "NachlassAbs", "%7.3f"},
    {"SummeNachNL", "SummeNachNL", "%7.3f"},
    {"SummePsch", "SummePsch", "%7.3f"},
};

inline constexpr DumpColumn kAufmassDumpColumns[] = {
    {"ID", "ID", "%.10d"},
    {"IDLvBeschr", "IDLvBeschr", "%.10d"},
    {"IdVertrag", "IdVertrag", "%.10d"},
    {"IdRechnung", "IdRechnung", "%.10d"},
    {"IstMenge", "IstMenge", "%7.5f"},
    {"AbrechnungsEP", "AbrechnungsEP", "%7.5f"},
    {"IdAufmassHeader", "IdAufmassHeader", "%10d"},
    {"IstProzent", "IstProzent", "%7.3f"},
    {"aktiv", "aktiv", "%s"},
    {"AufmassNr", "AufmassNr", "%s"},
};

// The same bytes hold either invoice deduction fields or measurement-rule limits; the
// captions name both.
inline constexpr DumpColumn kAbzugDumpColumns[] = {
    {"ID", "ID"},
    {"IDBezug", "IDBezug"},
    {"KzBezug", "KzBezug"},
    {"Rechnungstyp_oder_Öffnungslimit", "Rechnungstyp"},
    {"AbzugBetrag_oder_Nischenlimit", "AbzugBetrag"},
    {"KzBruttoNetto", "KzBruttoNetto"},
    {"Typ", "Typ"},
    {"SubTyp", "SubTyp"},
};

inline constexpr DumpColumn kAdrBezDumpColumns[] = {
    {"Adr_ID", "Adr_ID", "%.11d"},        {"Adr_Kz", "Adr_Kz", "%1s"},
    {"Bezug_ID", "Bezug_ID", "%.11d"},    {"Bezug_Kz", "Bezug_Kz", "%1s"},
    {"Bezug_PrjNr", "Bezug_PrjNr", "%s"}, {"BezugTyp", "BezugTyp", "%1s"},
    {"Adr_GUID", "Adr_GUID", "%s"},
};

inline constexpr DumpColumn kBookmarkDumpColumns[] = {
    {"ID", "ID", "%11d"},
    {"UIData.IDModul", "UIData.IDModul", "%11d"},
    {"UIData.DbTb", "UIData.DbTb", "%2s"},
    {"UIData.Key", "UIData.Key", "%60s"},
    {"Typ", "Typ", "%11d"},
    {"IDField", "IDField", "%11d"},
};

}  // namespace korvan::data
