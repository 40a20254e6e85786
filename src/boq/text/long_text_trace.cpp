#include "boq/text/long_text_trace.h"

#include <utility>

namespace korvan::boq {

TLongTextTrace& TLongTextTrace::Instance() {
  static TLongTextTrace trace;
  return trace;
}

void TLongTextTrace::NoteProblem(std::string_view problem) {
  if (!problem_ && !reported_) problem_ = std::string(problem);
}

std::optional<std::string> TLongTextTrace::TakeProblem() {
  if (problem_) reported_ = true;
  return std::exchange(problem_, std::nullopt);
}

}  // namespace korvan::boq
