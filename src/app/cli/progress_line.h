#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace korvan::app {

// A progress line "\r<label>: n/total" on standard error when it is a terminal; nothing
// otherwise, so that scripts and logs get only the results. Shown at the first of every
// 256 calls and when done reaches total.
class ProgressLine {
 public:
  explicit ProgressLine(std::ostream& err);
  ~ProgressLine() { End(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void Show(const std::string& label, int64_t done, int64_t total);
  // Clears the line again.
  void End();

 private:
  std::ostream& err_;
  bool shown_;
  bool used_ = false;
  int64_t calls_ = 0;
};

}  // namespace korvan::app
