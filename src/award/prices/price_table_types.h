#pragma once

// The price database (group "DB_QPR", type "T", in the master data) and its table letters.
namespace korvan::award {

inline constexpr char kPriceDbType = 'T';
inline constexpr const char* kPriceDbGroup = "DB_QPR";

inline constexpr char kPrNiveauTableType = 'N';  // price levels
inline constexpr char kPrEntryTableType = 'E';   // price entries

}  // namespace korvan::award
