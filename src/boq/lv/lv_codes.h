#pragma once

#include <string_view>

// The code letters of LV records that the integrity check accepts, with the explanation
// texts it stores beside a rejected value. An empty code (byte 0) is accepted wherever
// the record's default leaves the field empty.
namespace korvan::boq {

// The status of an LV, and of its groups and items.
inline constexpr std::string_view kLvStatusCodes = "NSABVF";
inline constexpr std::string_view kLvStatusText =
    "N=neu, S=geschätzt,A=ausgeschrieben,B=angeboten,V=vergeben,F=abgerechnet";

// Awarded or billed: the LV's award prices hold and contracts are bound to it.
inline constexpr bool IsAwardedStatus(char status) {
  return status == 'V' || status == 'F';
}

inline constexpr std::string_view kLvArtCodes = "NAE ";  // blank: normal
inline constexpr std::string_view kLvArtText = "N=Normal, A=Alternativ, E=Eventual";

inline constexpr std::string_view kAngVerfahrenCodes = "AP";
inline constexpr std::string_view kAngVerfahrenText =
    "A=Ab- und Aufgebote gegenüber Anschlagspreisen, P=Preisangebotsverfahren";

inline constexpr std::string_view kKalkVerfahrenCodes = "ZE";
inline constexpr std::string_view kKalkVerfahrenText = "Z=Zuschlagskalk, E=Endummenkalk.";

inline constexpr std::string_view kZeilenartCodes = "012345679";
inline constexpr std::string_view kZeilenartText =
    "0=Leer,1=Einfach,2=Doppelt,3=PA,4=Kommentar,5=ZSumme,6=HSumme,7=GSumme,9=Normal";

inline constexpr std::string_view kLBArtCodes = "LP";
inline constexpr std::string_view kLBArtText = "L=Leistungsverzeichnis, P=Leistungsprogramm";

inline constexpr std::string_view kBeauftragtCodes = "BZ";
inline constexpr std::string_view kBeauftragtText =
    "B=beauftragt bei GAEB nur für Alternativpos., Z=zurückgestellt bei Grundpos.";

inline constexpr std::string_view kNachtrStatusCodes = "12345678Z";
inline constexpr std::string_view kNachtrStatusText =
    "1=1,2=2,3=3,4=4,5=5,6=6,7=7,8=8,Z=Zusatzposition";

inline constexpr std::string_view kBedarfCodes = "EM";
inline constexpr std::string_view kBedarfText =
    "E=Bedarfsposition ohne Gesamtpreis,M=Bedarfsposition mit Gesamtpreis";

inline constexpr std::string_view kTitelartCodes = "AENM";
inline constexpr std::string_view kTitelartText = "A=A,E=E,N=N,M=M";

inline constexpr std::string_view kZuschArtCodes = "ZASB";
inline constexpr std::string_view kZuschArtText = "Z=Zuschlagsposition, A=A, S=S, B=Bezuschlagung";

// The entry kinds of the structure rows.
inline constexpr char kKindGroup = 'B';
inline constexpr char kKindItem = 'P';
inline constexpr std::string_view kKzBgBeschrCodes = "BHPLUAEKT";
inline constexpr std::string_view kKzBgBeschrText =
    "B=Bereichsgruppe,H=Hinweistext,P=Normalposition,L=Leitbeschreibung,U=Unterbeschreibung,"
    "A=Ausführungsbeschreibung,E=Element einer Ausführungsbeschreibung,K=Bauteilbeschreibung,"
    "T=Vor-/Nachtext";

// What a structure row whose parent is the LV root carries in ZuBg, explained in the
// check's log of such a row.
inline constexpr std::string_view kRootParentHint =
    "Hinweis: ZuBg = DK_L_NULL-1 -> IdBgBeschr ist Root -> kein Fehler!";

// The meaning of an LV status letter for people ("vergeben"); empty for an unknown one.
std::string_view LvStatusMeaning(char status);

}  // namespace korvan::boq
