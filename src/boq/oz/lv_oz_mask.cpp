#include "boq/oz/lv_oz_mask.h"

#include <algorithm>

namespace korvan::boq {

int PlainOzLevel(std::string_view oz) {
  if (oz.empty()) return 0;
  const std::string_view looked_at = oz.substr(0, 80);
  return 1 + static_cast<int>(std::count(looked_at.begin(), looked_at.end(), '.'));
}

TLvOzMask::TLvOzMask(std::string_view mask, bool correct_omitted_hierarchies)
    : mask_(mask),
      max_len_(static_cast<int>(mask.size())),
      correct_omitted_hierarchies_(correct_omitted_hierarchies) {
  if (mask.empty()) return;
  is_indexed_ = mask.back() == 'I';
  max_level_ = static_cast<int>(std::count(mask.begin(), mask.end(), '.')) + (is_indexed_ ? 0 : 1);
  const std::size_t first_p = mask.find('P');
  if (first_p != std::string_view::npos) {
    begin_pos_index_ = static_cast<int>(first_p) + 1;
    end_pos_index_ = static_cast<int>(mask.rfind('P')) + 1;
  }
}

int TLvOzMask::GetOzLevel(std::string_view oz) const {
  if (oz.empty()) return 1;
  const std::size_t looked_at = std::min<std::size_t>(oz.size(), std::max(end_pos_index_, 0));
  int level = 1;
  // A "." in the first position never starts a level: there is no part before it.
  for (std::size_t i = 1; i < looked_at; ++i) {
    if (oz[i] != '.') continue;
    if (correct_omitted_hierarchies_ && oz[i - 1] == '_') continue;
    ++level;
  }
  return level;
}

void TLvOzMask::SplitOz(std::string_view oz, int split_level, std::string& head,
                        std::string& tail) {
  head.clear();
  tail.clear();
  if (oz.empty()) return;
  if (split_level < 1) {
    tail = oz;
    return;
  }
  std::size_t dot = std::string_view::npos;
  for (int found = 0; found < split_level; ++found) {
    dot = oz.find('.', dot == std::string_view::npos ? 0 : dot + 1);
    if (dot == std::string_view::npos) {
      head = oz;
      return;
    }
  }
  head = oz.substr(0, dot);
  tail = oz.substr(dot + 1);
}

bool TLvOzMask::IsIndexedOz(std::string_view oz) const {
  return is_indexed_ && static_cast<int>(oz.size()) == max_len_;
}

std::string OzPart(std::string_view oz, int level) {
  std::string head, tail;
  TLvOzMask::SplitOz(oz, level - 1, head, tail);
  if (level > 1 && tail.empty()) return {};
  std::string part, rest;
  TLvOzMask::SplitOz(tail, 1, part, rest);
  return part;
}

}  // namespace korvan::boq
