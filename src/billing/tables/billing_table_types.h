#pragma once

// The tables of billing in the installation's billing database (group "DB_Rv", type "N",
// kept with the master data): contracts of every project.
namespace korvan::billing {

inline constexpr char kRvDbType = 'N';
inline constexpr const char* kRvDbGroup = "DB_Rv";

inline constexpr char kVertragTableType = 'A';  // contracts (Aufträge)
inline constexpr char kAbzugTableType = 'B';    // deductions of contracts and invoices
// The names and formulas of deductions, as short texts of kind kDeductionTextKind.
inline constexpr char kRvTexteTableType = 'T';
inline constexpr char kDeductionTextKind = 'A';  // "A=Abzugsbezeichnung"

// Contract kinds (Auftragsart): "H=Hauptauftrag,N=Nachauftrag".
inline constexpr char kMainContract = 'H';
inline constexpr char kSupplementContract = 'N';

// The base of a contract's gross sum (BasisForBrutto): "V=Vergabe,N=Nachlass, P=Pauschal".
inline constexpr char kGrossFromAward = 'V';
inline constexpr char kGrossFromDiscounted = 'N';
inline constexpr char kGrossFromLumpSum = 'P';

// Owners of a deduction (KzBezug): "V=Vertrag, R=Rechnung".
inline constexpr char kDeductionOfContract = 'V';
inline constexpr char kDeductionOfInvoice = 'R';
// How its amount is entered (KzBruttoNetto): "B=brutto, N=netto".
inline constexpr char kGrossDeduction = 'B';
inline constexpr char kNetDeduction = 'N';
// Its kind (Typ); allocations (Umlagen) are the contract's site services and penalty.
inline constexpr char kAllocationDeduction = 'U';
inline constexpr const char* kDeductionTypes = "UREWSFGBV";
// Its summary line (SubTyp): "L=leistungsmindernde Abzüge, S=sonstige Abzüge".
inline constexpr char kReducesWork = 'L';
inline constexpr char kOtherDeduction = 'S';
// The invoice kinds: "R=RECHNUNG,T=TEILRECHNUNG,U=TEILSCHLUSSRECHNUNG,A=AKONTOFORDERUNG,
// S=SCHLUSSRECHNUNG,Z=ZAHLUNGSAUFFORDERUNG,E=ABSCHLUSSZAHLUNG,G=GEWAEHRFREIGABE".
inline constexpr const char* kInvoiceKinds = "RTUASZEG";

}  // namespace korvan::billing
