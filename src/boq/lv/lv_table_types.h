#pragma once

// The LV database of a project (group "DB_Lv", database type "A") and the type letters
// of the LV's tables in it. "V" and "Z" are the framework's (version record, id
// counters) in every database.
namespace korvan::boq {

inline constexpr char kLvDbType = 'A';
inline constexpr const char* kLvDbGroup = "DB_Lv";

inline constexpr char kLvTableType = 'L';          // LV headers
inline constexpr char kHierarchieTableType = 'H';  // OZ structure levels
inline constexpr char kStrukturTableType = 'S';    // tree and order of the entries
inline constexpr char kLvBgTableType = 'G';        // groups
inline constexpr char kLvBeschrTableType = 'P';    // items and text entries
inline constexpr char kBeschrTableType = 'B';      // descriptions

}  // namespace korvan::boq
