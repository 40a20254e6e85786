// Any text as a formula, in degrees and in gon: the evaluator must answer a value or an
// error code, never crash, and never take more than linear time.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "formula/language/formel_obj.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (bool gon : {false, true}) {
    korvan::formula::TFormelObj formula =
        gon ? korvan::formula::TFormelObj::CreateNeugrad() : korvan::formula::TFormelObj();
    formula.SetFormel(text);
    for (const std::string& name : formula.Unknowns()) formula.SetVariable(name, 1.5);
    int error = 0;
    formula.GetResult(error);
  }
  return 0;
}
