#include "boq/vars/variable_codes.h"

#include <algorithm>
#include <cctype>

namespace korvan::boq {
namespace {

bool IsPercentWord(std::string_view unit) {
  constexpr std::string_view kWord = "PROZENT";
  return unit.size() == kWord.size() &&
         std::equal(unit.begin(), unit.end(), kWord.begin(), [](char a, char b) {
           return std::toupper(static_cast<unsigned char>(a)) == b;
         });
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

std::string NormalizedVariableUnit(std::string_view unit) {
  if (IsPercentWord(Trimmed(unit))) return std::string(kPercentUnit);
  return std::string(unit);
}

bool IsPercentUnit(std::string_view unit) {
  const std::string_view trimmed = Trimmed(unit);
  return trimmed == kPercentUnit || IsPercentWord(trimmed);
}

}  // namespace korvan::boq
