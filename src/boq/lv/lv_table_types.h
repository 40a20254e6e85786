#pragma once

// The LV database of a project (group "DB_Lv", database type "A") and the type letters
// of the LV's tables in it. "V" and "Z" are the framework's (version record, id
// counters) in every database; dumps know a table by its letter alone, so the letters
// also differ from those of the other bill-of-quantities tables (texts: G, H, L, T;
// units and currencies: E, F, W).
namespace korvan::boq {

inline constexpr char kLvDbType = 'A';
inline constexpr const char* kLvDbGroup = "DB_Lv";

inline constexpr char kLvTableType = 'K';            // LV headers (Kopf)
inline constexpr char kHierarchieTableType = 'O';    // OZ structure levels
inline constexpr char kStrukturTableType = 'S';      // tree and order of the entries
inline constexpr char kLvBgTableType = 'B';          // groups (Bereiche)
inline constexpr char kLvBeschrTableType = 'P';      // items and text entries
inline constexpr char kBeschrTableType = 'D';        // descriptions
inline constexpr char kVariableTableType = 'I';      // variables of items and partial quantities
inline constexpr char kLvTeilmengeTableType = 'M';   // partial quantities of items
inline constexpr char kTeilmengeTableType = 'N';     // partial quantities of the cost planning
inline constexpr char kMarkupSubQtyTableType = 'U';  // markup partial quantities

}  // namespace korvan::boq
