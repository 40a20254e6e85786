#pragma once

// The calculation databases and the type letters of their tables. The project's tables
// live in DB_KP (type "K", one per project), the master tables in DB_KR (type "R", of
// the installation). A master table and its project copy share their letter.
namespace korvan::calc {

inline constexpr char kKpDbType = 'K';
inline constexpr char kKrDbType = 'R';
inline constexpr const char* kKpDbGroup = "DB_KP";
inline constexpr const char* kKrDbGroup = "DB_KR";

inline constexpr char kAUPosTableType = 'A';   // cost approach lines
inline constexpr char kZuTableType = 'C';      // surcharge percentages
inline constexpr char kEndsTableType = 'J';    // end-sum settings of an LV
inline constexpr char kMLohnTableType = 'Q';   // average-wage percentages
inline constexpr char kBasTableType = 'R';     // work keys
inline constexpr char kKaGrTableType = 'Y';    // cost-type group values
inline constexpr char kUPosTableType = 'U';    // sub-items of items
inline constexpr char kMatTableType = 'M';     // materials of approach lines
inline constexpr char kSIdentTableType = 'I';  // standard-text identifiers of sub-items
inline constexpr char kLTextTableType = 'L';   // long-text lines of sub-items

// The sub-item catalogue (DB_UP, type "S", of the installation).
inline constexpr char kUpDbType = 'S';
inline constexpr char kUpStrukturTableType = 'S';  // tree of groups and sub-items
inline constexpr char kUpBgTableType = 'B';        // groups and sub-items

}  // namespace korvan::calc
