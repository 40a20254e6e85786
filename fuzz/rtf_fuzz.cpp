// Reads arbitrary bytes as pasted rich text. The reader must never crash, hang or trip a
// sanitizer, and what it read must survive being written and read again: the same plain
// view, no problem in the reader's own output, and from then on the very same text.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/rtf_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace korvan::boq;
  const TRtfReadResult read = ReadRtf(std::string_view(reinterpret_cast<const char*>(data), size));
  const TRtfReadResult again = ReadRtf(WriteRtf(read.text));
  if (PlainView(again.text) != PlainView(read.text)) __builtin_trap();
  if (again.problem_count != 0 || !again.is_rtf) __builtin_trap();
  if (ReadRtf(WriteRtf(again.text)).text != again.text) __builtin_trap();
  return 0;
}
