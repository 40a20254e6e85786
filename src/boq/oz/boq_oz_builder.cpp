#include "boq/oz/boq_oz_builder.h"

#include <algorithm>
#include <charconv>

#include "boq/oz/oz_format.h"

namespace korvan::boq {
namespace {

// The kinds that carry a number of their own; all others take it from a neighbour.
bool IsNumbered(char kind) {
  return kind == 'B' || kind == 'P' || kind == 'L';
}

bool IsTextKind(char kind) {
  return std::string_view("AEHTU").find(kind) != std::string_view::npos;
}

// The numeric value of an OZ part; 0 for a part that is empty or not a number ("__").
int NumericValue(std::string_view part) {
  int value = 0;
  const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
  return error == std::errc() && end == part.data() + part.size() ? value : 0;
}

}  // namespace

std::string TBoqOzBuilder::FormLvOZ(std::string_view oz, bool keep_tail) const {
  return boq::FormLvOZ(oz, list_.FOzMask().FMask(), keep_tail);
}

void TBoqOzBuilder::Reset() {
  counter_.fill(0);
  part_.fill(std::string());
  omitted_.fill(false);
}

bool TBoqOzBuilder::KeepsOwnNumbers() const {
  // Awarded and billed LVs are bound to contracts and invoices by their numbers.
  const char status = list_.FLv().Status;
  return status == 'V' || status == 'v' || status == 'F' || status == 'f';
}

void TBoqOzBuilder::BuildOzForItems(int from_index) {
  if (list_.FReadOnly() || from_index >= list_.Count()) return;
  from_index = std::max(from_index, 0);
  Reset();
  for (int i = 0; i < list_.Count(); ++i) {
    if (!IsNumbered(list_[i].Kind())) continue;
    const bool has_own_number = !list_[i].Oz().empty();
    if (!has_own_number) CheckOZPerZeilenart(i);
    const std::string oz(list_[i].Oz());
    const EntryState state = StateOf(i, oz);
    Advance(state, oz);
    if (i < from_index) continue;
    const std::string numbered = Compose(state, oz, KeepsOwnNumbers() && has_own_number);
    list_[i].SetOz(numbered.substr(0, kMaxOzLength));
  }
}

TBoqOzBuilder::EntryState TBoqOzBuilder::StateOf(int index, const std::string& oz) const {
  const TLvOzMask& mask = list_.FOzMask();
  EntryState state;
  state.level = std::clamp(mask.GetOzLevel(oz), 1, kLevels);
  if (mask.IsIndexedOz(oz)) {
    state.index_level = state.level + 1;
    const std::size_t index_at = static_cast<std::size_t>(mask.FEndPosIndex()) + 1;
    if (index_at < oz.size()) state.index_part = oz.substr(index_at);
  }
  for (int j = index - 1; j >= 0; --j) {
    const char kind = list_[j].Kind();
    if (kind == 'H' || kind == 'T') continue;
    state.previous_level = std::clamp(mask.GetOzLevel(list_[j].Oz()), 1, kLevels);
    break;
  }
  if (state.previous_level + 1 < state.level) state.first_omitted = state.previous_level + 1;
  return state;
}

void TBoqOzBuilder::Advance(const EntryState& state, const std::string& oz) {
  const int level = state.level;
  if (level < state.previous_level) {
    // A higher level starts again: the counters below it restart unless they run on.
    for (int deeper = level + 1; deeper <= kLevels; ++deeper) {
      if (list_.ContinuousCounter(deeper)) continue;
      counter_[deeper] = 0;
      part_[deeper] = "1";
      omitted_[deeper] = false;
    }
    if (state.first_omitted == 0) omitted_[level] = false;
  }
  part_[level] = OzPart(oz, level);
  if (state.first_omitted > 0) {
    for (int skipped = state.first_omitted; skipped < level; ++skipped) {
      omitted_[skipped] = true;
      const std::size_t width =
          std::max<std::size_t>(OzPart(list_.FOzMask().FMask(), skipped).size(), 1);
      part_[skipped] = std::string(width, '_');
    }
  }
  if (!list_.AutoCounter(level)) return;
  // An index entry shares the number of the item it indexes.
  if (state.index_level == 0) counter_[level] += list_.StepWidth(level);
  for (int upper = 1; upper <= level; ++upper) {
    if (counter_[upper] == 0) counter_[upper] = list_.StepWidth(upper);
    if (part_[upper].empty()) part_[upper] = "1";
  }
}

std::string TBoqOzBuilder::Compose(const EntryState& state, const std::string& oz,
                                   bool keep) const {
  const int max_level = list_.FOzMask().FMaxLevel();
  std::string result = list_.AutoCounter(1) && !keep ? std::to_string(counter_[1]) : OzPart(oz, 1);
  for (int level = 2; level <= state.level; ++level) {
    result += '.';
    if (!list_.AutoCounter(level) || level > max_level) {
      result += part_[level];
    } else if (level == state.level || (!keep && !omitted_[level])) {
      result += std::to_string(counter_[level]);
    } else {
      result += part_[level];
    }
  }
  if (state.index_level > state.level) result += "." + state.index_part;
  return FormLvOZ(result);
}

std::string TBoqOzBuilder::PreviousOz(int index) const {
  return index > 0 ? std::string(list_[index - 1].Oz()) : std::string();
}

void TBoqOzBuilder::CheckOZPerZeilenart(int index) {
  TLvPos* entry = list_.GetLvPosItems(index);
  if (entry == nullptr) return;
  switch (entry->Kind()) {
    case 'L':
    case 'P':
      BuildItemOzFromPrevious(index);
      break;
    case 'U':
      if (index > 0) entry->SetOz(PreviousOz(index));
      break;
    case 'H':
    case 'A':
    case 'E':
      BuildNoteOz(index);
      break;
    case 'B':
      if (index == 0) {
        if (entry->Oz().empty()) entry->SetOz(FormLvOZ("1"));
      } else if (list_.FOzMask().FBeginPosIndex() > 0) {
        // A group's number ends before the item part and the separator in front of it.
        const int keep = std::max(list_.FOzMask().FBeginPosIndex() - 2, 0);
        entry->SetOz(entry->Oz().substr(0, static_cast<std::size_t>(keep)));
      }
      break;
    case 'T':
      entry->SetOz("");
      if (InsideBody(index)) entry->SetKind('H');
      break;
    default:
      break;
  }
}

void TBoqOzBuilder::BuildItemOzFromPrevious(int index) {
  const TLvOzMask& mask = list_.FOzMask();
  std::string oz(list_[index].Oz());
  if (mask.FBeginPosIndex() == 0 || static_cast<int>(oz.size()) >= mask.FBeginPosIndex()) return;
  const std::string previous = PreviousOz(index);
  std::vector<int> values(static_cast<std::size_t>(mask.FMaxLevel()) + 1, 0);
  for (int level = 1; level <= mask.FMaxLevel(); ++level) {
    const int value = NumericValue(OzPart(previous, level));
    // Missing parts take the step width of level 1 whatever the level: so the system
    // always numbered, and numbers typed against it stay as they were.
    values[static_cast<std::size_t>(level)] = value != 0 ? value : list_.StepWidth(1);
  }
  int own_parts = PlainOzLevel(oz);
  if (own_parts == 0) {
    oz = std::to_string(values[1]);
    own_parts = 1;
  }
  for (int level = own_parts + 1; level <= mask.FMaxLevel(); ++level) {
    oz += "." + std::to_string(values[static_cast<std::size_t>(level)]);
  }
  list_[index].SetOz(FormLvOZ(oz).substr(0, kMaxOzLength));
}

void TBoqOzBuilder::BuildNoteOz(int index) {
  // A note carries the number of the entry it introduces.
  int next = index + 1;
  while (next < list_.Count() && IsTextKind(list_[next].Kind())) ++next;
  if (next < list_.Count()) {
    list_[index].SetOz(std::string(list_[next].Oz()));
  } else if (index == 0) {
    list_[index].SetOz(FormLvOZ("1"));
  } else if (list_[index - 1].IsGroup()) {
    list_[index].SetOz(FormLvOZ(PreviousOz(index) + ".1").substr(0, kMaxOzLength));
  } else {
    list_[index].SetOz(PreviousOz(index));
  }
}

bool TBoqOzBuilder::InsideBody(int index) const {
  auto numbered = [this](int i) { return IsNumbered(list_[i].Kind()); };
  bool before = false;
  for (int i = 0; i < index && !before; ++i) before = numbered(i);
  bool after = false;
  for (int i = index + 1; i < list_.Count() && !after; ++i) after = numbered(i);
  return before && after;
}

void TBoqOzBuilder::BuildSupplementOz(int index) {
  const int item_end = list_.FOzMask().FEndPosIndex();
  if (static_cast<int>(list_[index].Oz().size()) >= item_end + 2) return;
  const TLvPos* neighbour = list_.GetLvPosItems(index - 1);
  if (neighbour == nullptr || neighbour->Oz().empty()) neighbour = list_.GetLvPosItems(index + 1);
  if (neighbour == nullptr || neighbour->Oz().empty()) return;
  std::string oz(neighbour->Oz().substr(0, static_cast<std::size_t>(item_end)));
  list_[index].SetOz(oz + ".?");
}

void TBoqOzBuilder::BuildOzForItem(int index, bool force) {
  TLvPos* entry = list_.GetLvPosItems(index);
  if (entry == nullptr || list_.FReadOnly()) return;
  if (entry->IsSupplement()) {
    BuildSupplementOz(index);
    return;
  }
  if (!entry->Oz().empty() && !list_.FAutoNum() && !force) {
    BuildOzForItems(index + 1);
    return;
  }
  if (IsNumbered(entry->Kind())) {
    if (force && !list_.FAutoNum()) entry->SetOz("");
    if (entry->Oz().empty()) CheckOZPerZeilenart(index);
    BuildOzForItems(index);
  } else {
    CheckOZPerZeilenart(index);
    BuildOzForItems(index + 1);
  }
}

void TBoqOzBuilder::BuildOzForBoQCtgy(int index, bool is_item) {
  TLvPos* entry = list_.GetLvPosItems(index);
  if (entry == nullptr || list_.FReadOnly()) return;
  if (is_item) {
    BuildItemOzFromPrevious(index);
  } else if (entry->Oz().empty()) {
    CheckOZPerZeilenart(index);
  }
  BuildOzForItems(index);
}

void TBoqOzBuilder::CheckZeilenartPerOZ(int index) {
  TLvPos* entry = list_.GetLvPosItems(index);
  const int item_begin = list_.FOzMask().FBeginPosIndex();
  // Without an item part in the mask the length says nothing about the kind.
  if (entry == nullptr || item_begin == 0) return;
  const bool has_item_part = static_cast<int>(entry->Oz().size()) >= item_begin;
  const char kind = entry->Kind();
  if (!has_item_part && std::string_view("PLUAE").find(kind) != std::string_view::npos) {
    entry->SetKind('B');
  } else if (has_item_part && kind == 'B') {
    entry->SetKind('P');
  }
}

}  // namespace korvan::boq
