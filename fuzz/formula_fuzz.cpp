// Any text as a formula, in degrees and in gon, and as the lines of a measurement sheet
// under both REB variants: every formula must be answered with a value or an error code,
// never a crash, and in time linear in its length. A formula simplified, or with its
// variables exchanged for their values, must give the same value and code to the bit.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/language/formel_obj.h"
#include "formula/reb/reb_sheet.h"

namespace {

using korvan::formula::TFormelObj;

struct Answer {
  double value;
  int error;
  bool operator==(const Answer& other) const {
    return error == other.error &&
           (value == other.value || (std::isnan(value) && std::isnan(other.value)));
  }
};

Answer AnswerOf(TFormelObj formula) {
  int error = 0;
  const double value = formula.GetResult(error);
  return {value, error};
}

void EvaluateFormula(std::string_view text) {
  for (bool gon : {false, true}) {
    TFormelObj formula = gon ? TFormelObj::CreateNeugrad() : TFormelObj();
    formula.SetFormel(text);
    for (const std::string& name : formula.Unknowns()) formula.SetVariable(name, 1.5);
    const Answer answer = AnswerOf(formula);
    TFormelObj simplified = formula;
    simplified.Simplify();
    if (!(AnswerOf(simplified) == answer)) __builtin_trap();
    TFormelObj exchanged = formula;
    exchanged.ExchangeVar();
    if (!(AnswerOf(exchanged) == answer)) __builtin_trap();
  }
}

// Each input line is a measurement line: its first byte picks the formula number and
// the mark, the rest is its text.
std::vector<korvan::formula::TRebLine> SheetOf(std::string_view text) {
  static constexpr std::array<std::string_view, 16> kNumbers = {
      "",   "0",  "4",  "05", "21", "22",  "23",  "25",
      "30", "31", "32", "91", "98", "060", "099", "712"};
  static constexpr std::string_view kMarks = " EHPZ*1V";
  std::vector<korvan::formula::TRebLine> lines;
  while (!text.empty() && lines.size() < 64) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line_text = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line_text.empty()) continue;
    const auto pick = static_cast<unsigned char>(line_text[0]);
    korvan::formula::TRebLine line;
    line.Id = static_cast<int32_t>(lines.size()) + 1;
    line.Adresse = std::to_string(line.Id);
    line.FormelNr = std::string(kNumbers[pick % kNumbers.size()]);
    line.KZ = kMarks[(pick / kNumbers.size()) % kMarks.size()];
    line.Faktor = (pick & 0x80) != 0 ? 2 : 0;
    line.Formel = std::string(line_text.substr(1));
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  EvaluateFormula(text);
  korvan::formula::TBuiltInRebFormelSource catalogue;
  for (auto create : {korvan::formula::CoREB003FormelInterpreter::Create,
                      korvan::formula::CoREB004FormelInterpreter::Create}) {
    const auto interpreter = create(catalogue, {});
    std::vector<korvan::formula::TRebLine> lines = SheetOf(text);
    korvan::formula::EvaluateRebLines(*interpreter, lines);
  }
  return 0;
}
