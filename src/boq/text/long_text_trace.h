#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "data/config/sys_config.h"

namespace korvan::boq {

// The application trace category of long texts: read, inserted, updated and loaded
// texts are written to the trace folder.
inline constexpr data::TTraceCategories kTraceLongTexts = 0x00000008;

// Text tracing is switched on: the application trace runs with the long-text category.
inline bool TracesLongTexts(const data::TSysConfig& system) {
  return system.TraceApplication() && (system.TraceCategories() & kTraceLongTexts) != 0;
}

// Where long-text stores of this process write their trace files. The program sets the
// folder once at start when text tracing is switched on in the system settings; until
// then (and by default) nothing is traced.
class TLongTextTrace {
 public:
  static TLongTextTrace& Instance();

  // A folder ending in a separator; empty switches tracing off.
  void SetFolder(std::string folder) { folder_ = std::move(folder); }
  const std::string& Folder() const { return folder_; }

  // Remembers the first trace file that could not be written.
  void NoteProblem(std::string_view problem);
  // That problem, handed out once so that the user is warned once per run.
  std::optional<std::string> TakeProblem();

 private:
  std::string folder_;
  std::optional<std::string> problem_;
  bool reported_ = false;
};

}  // namespace korvan::boq
