#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The OZ mask of an LV: which characters of an OZ (Ordnungszahl, the hierarchical entry
// number such as 01.02.0030) belong to which level. A mask such as "11.22.PPPP.I" has one
// digit position per character: "1" … "5" for the group levels, "P" for the item part, a
// final "I" (after a separator) for a one-character index; every other character
// separates levels.
namespace korvan::boq {

// The longest mask an LV header can hold.
inline constexpr std::size_t kMaxOzMaskLength = 20;
// The longest OZ an entry record can hold.
inline constexpr std::size_t kMaxOzLength = 30;

// The characters that may stand in an OZ part: "#", "-", the digits, "?" and everything
// from "A" to "z" in code order, which includes "[", "\", "]", "^", "_" and the backquote
// (one contiguous range, so the test is cheap). Any other character separates parts.
constexpr bool IsOzChar(char c) {
  return c == '#' || c == '-' || (c >= '0' && c <= '9') || c == '?' || (c >= 'A' && c <= 'z');
}

// The level of an OZ without looking at a mask: 0 for an empty text, otherwise one more
// than the number of "." among its first 80 characters.
int PlainOzLevel(std::string_view oz);

class TLvOzMask {
 public:
  TLvOzMask() = default;
  // `correct_omitted_hierarchies`: a "." that follows "_" does not start a new level.
  // Only the exchange-file browsers count so; everything else counts every ".".
  explicit TLvOzMask(std::string_view mask, bool correct_omitted_hierarchies = false);

  const std::string& FMask() const { return mask_; }
  int FMaxLen() const { return max_len_; }
  bool FIsIndexed() const { return is_indexed_; }
  // Levels including the item level, without the index.
  int FMaxLevel() const { return max_level_; }
  // 1-based positions of the first and the last "P"; 0 when the mask has none.
  int FBeginPosIndex() const { return begin_pos_index_; }
  int FEndPosIndex() const { return end_pos_index_; }
  bool FCorrectOmittedHierarchies() const { return correct_omitted_hierarchies_; }

  // The level of `oz` under this mask: 1 for an empty OZ, else one more than the "." from
  // the second character up to the end of the item part.
  int GetOzLevel(std::string_view oz) const;

  // Splits `oz` at its `split_level`-th ".": the text before it and the text after it.
  // Below level 1 everything is tail; without that many "." everything is head.
  static void SplitOz(std::string_view oz, int split_level, std::string& head, std::string& tail);

  // The OZ carries an index: the mask is indexed and the OZ fills it exactly.
  bool IsIndexedOz(std::string_view oz) const;

  friend bool operator==(const TLvOzMask&, const TLvOzMask&) = default;

 private:
  std::string mask_;
  int max_len_ = 0;
  bool is_indexed_ = false;
  int max_level_ = 0;
  int begin_pos_index_ = 0;
  int end_pos_index_ = 0;
  bool correct_omitted_hierarchies_ = false;
};

// The part of level `level` (1-based) of an OZ: the text between its (level-1)-th and its
// level-th "."; empty when the OZ has fewer parts.
std::string OzPart(std::string_view oz, int level);

}  // namespace korvan::boq
