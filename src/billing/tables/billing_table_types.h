#pragma once

// The tables of billing in the installation's billing database (group "DB_Rv", type "N",
// kept with the master data): contracts of every project.
namespace korvan::billing {

inline constexpr char kRvDbType = 'N';
inline constexpr const char* kRvDbGroup = "DB_Rv";

inline constexpr char kVertragTableType = 'A';  // contracts (Aufträge)

// Contract kinds (Auftragsart): "H=Hauptauftrag,N=Nachauftrag".
inline constexpr char kMainContract = 'H';
inline constexpr char kSupplementContract = 'N';

// The base of a contract's gross sum (BasisForBrutto): "V=Vergabe,N=Nachlass, P=Pauschal".
inline constexpr char kGrossFromAward = 'V';
inline constexpr char kGrossFromDiscounted = 'N';
inline constexpr char kGrossFromLumpSum = 'P';

}  // namespace korvan::billing
