#include "app/cli/progress_line.h"

#include <unistd.h>

#include <ostream>

namespace korvan::app {

ProgressLine::ProgressLine(std::ostream& err) : err_(err), shown_(::isatty(STDERR_FILENO) == 1) {}

void ProgressLine::Show(const std::string& label, int64_t done, int64_t total) {
  if (!shown_ || (calls_++ % 256 != 0 && done != total)) return;
  err_ << "\r" << label << ": " << done << "/" << total << "      " << std::flush;
  used_ = true;
}

void ProgressLine::End() {
  if (used_) err_ << "\r" << std::string(79, ' ') << "\r" << std::flush;
  used_ = false;
}

}  // namespace korvan::app
