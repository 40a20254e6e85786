#pragma once

#include <string>
#include <string_view>

// Formatting a typed OZ to a mask: "1.2.30" under "11.22.PPPP" is "01.02.0030". Formatting
// never fails: characters that do not fit become "?", missing digits are padded, surplus
// characters are cut at the mask's length.
namespace korvan::boq {

// Formats `oz` to `mask`. Parts are separated where the input has the mask's next
// separator; another separator in the input becomes "?". Each part is padded on the left
// to its width in the mask, with "0", or with "?" when it begins with "?". An input with
// fewer parts ends after its last part; an input without any separator is laid over the
// mask's positions.
std::string FormatOzToMask(std::string_view oz, std::string_view mask);

// Formats `oz` to the LV's mask `lv_mask`. An OZ holding ".?" (an item number with an
// unknown index) is formatted as if the mask ended in ".I". Unless `keep_tail`, what the
// input holds beyond the mask's length is appended, up to the longest OZ in all.
std::string FormLvOZ(std::string_view oz, std::string_view lv_mask, bool keep_tail = false);

}  // namespace korvan::boq
