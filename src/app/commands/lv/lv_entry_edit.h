#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "app/commands/lv/lv_project.h"
#include "boq/model/lv_pos_list.h"

// The one way an LV's entries are edited, by a command or by a window: the LV is loaded,
// changed in memory and saved with its sums as one step of the journal.
namespace korvan::app {

// The values an entry's fields can be given.
struct EntryValues {
  std::optional<std::string> short_text;
  std::optional<std::string> long_file;  // a file holding the long text (RTF or plain)
  std::optional<double> qty;
  std::optional<double> unit_price;
  std::optional<std::string> unit;
};

// Takes `values` into `entry`. UsageError when the entry's kind has no such field or the
// unit cannot be one, CommandError when the project cannot keep texts or the long-text
// file cannot be read; then the entry is unchanged.
void ApplyEntryValues(const EntryValues& values, boq::TLvPos& entry, LvProject& target);

// Loads LV `lv_id` of `target` (with long texts when asked), runs `edit` on it in memory,
// which refuses by throwing before anything is written, and saves it with its sums as one
// journal step "<caption> in LV "<name>""; a failed save takes back what it wrote.
// `save_levels`: the LV's mask changed, so its OZ levels are written anew. CommandError
// when the LV is read-only.
void EditLvInOneStep(LvProject& target, int32_t lv_id, const std::string& caption, bool long_texts,
                     bool save_levels, const std::function<void(boq::TLVPosList&)>& edit,
                     std::ostream& warnings);

}  // namespace korvan::app
