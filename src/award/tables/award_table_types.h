#pragma once

// The tables of bids in the project's LV database (group "DB_Lv", type "A"): their letters
// differ from every other table letter of that database.
namespace korvan::award {

inline constexpr char kBieterTableType = 'R';   // bidders of an LV
inline constexpr char kAngebotTableType = 'Q';  // bid lines of a bidder

// The text kind of a bidder's own long text (its address), owned by the bidder id.
inline constexpr char kBidderTextKind = 'B';

}  // namespace korvan::award
