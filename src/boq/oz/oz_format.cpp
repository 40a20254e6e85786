#include "boq/oz/oz_format.h"

#include <algorithm>
#include <vector>

#include "boq/oz/lv_oz_mask.h"

namespace korvan::boq {
namespace {

// A typed OZ is upper-cased (index letters are capitals) and freed of the blanks around
// it, so that " 1.2a" and "1.2A" are the same number.
std::string NormalizeTypedOz(std::string_view oz) {
  const std::size_t first = oz.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const std::size_t last = oz.find_last_not_of(" \t");
  std::string result(oz.substr(first, last - first + 1));
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return result;
}

// The mask's parts: where each separator stands and how wide each part is.
struct MaskParts {
  std::vector<std::size_t> separators;  // positions of the separators in the mask
  std::vector<std::size_t> widths;      // width of each part, one more than separators
};

MaskParts PartsOf(std::string_view mask) {
  MaskParts parts;
  std::size_t part_start = 0;
  for (std::size_t i = 0; i < mask.size(); ++i) {
    if (IsOzChar(mask[i])) continue;
    parts.separators.push_back(i);
    parts.widths.push_back(i - part_start);
    part_start = i + 1;
  }
  parts.widths.push_back(mask.size() - part_start);
  return parts;
}

void PadLeft(std::string& part, std::size_t width) {
  if (part.size() >= width) return;
  const char fill = !part.empty() && part.front() == '?' ? '?' : '0';
  part.insert(0, width - part.size(), fill);
}

std::string FormatSeparated(const std::string& input, std::string_view mask,
                            const MaskParts& parts) {
  std::vector<std::string> segments(1);
  for (char c : input) {
    const std::size_t next = segments.size() - 1;
    if (IsOzChar(c)) {
      segments.back() += c;
    } else if (next < parts.separators.size() && c == mask[parts.separators[next]]) {
      segments.emplace_back();
    } else {
      segments.back() += '?';
    }
  }
  std::string result;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (i > 0) result += mask[parts.separators[i - 1]];
    PadLeft(segments[i], parts.widths[i]);
    result += segments[i];
  }
  return result;
}

// A bare run of characters ("01020030") is laid over the mask's positions, the mask's
// separators put in between.
std::string FormatBare(const std::string& input, std::string_view mask, const MaskParts& parts) {
  std::string result;
  std::size_t position = 0;
  for (char c : input) {
    while (position < mask.size() && !IsOzChar(mask[position])) {
      result += mask[position++];
    }
    result += c;
    ++position;
  }
  const std::size_t first_end =
      parts.separators.empty() ? result.size() : std::min(parts.separators[0], result.size());
  std::string first = result.substr(0, first_end);
  PadLeft(first, parts.widths[0]);
  return first + result.substr(first_end);
}

}  // namespace

std::string FormatOzToMask(std::string_view oz, std::string_view mask) {
  if (oz.empty()) return {};
  std::string input = NormalizeTypedOz(oz);
  if (input.empty()) return {};
  if (input.size() > mask.size()) input.resize(mask.size());
  const MaskParts parts = PartsOf(mask);
  const bool separated =
      std::any_of(input.begin(), input.end(), [](char c) { return !IsOzChar(c); });
  std::string result =
      separated ? FormatSeparated(input, mask, parts) : FormatBare(input, mask, parts);
  if (result.size() > mask.size()) result.resize(mask.size());
  return result;
}

std::string FormLvOZ(std::string_view oz, std::string_view lv_mask, bool keep_tail) {
  std::string mask(lv_mask);
  if (oz.find(".?") != std::string_view::npos && mask.find(".I") == std::string::npos) {
    mask += ".I";
  }
  std::string result = FormatOzToMask(oz, mask);
  if (!keep_tail && oz.size() > mask.size()) result += oz.substr(mask.size());
  if (result.size() > kMaxOzLength) result.resize(kMaxOzLength);
  return result;
}

}  // namespace korvan::boq
