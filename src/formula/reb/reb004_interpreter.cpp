// The REB 23.004 variant: formula numbers are compared as text, values may be computed
// by side calculations in the lines that follow, and lines refer to other lines.
#include <array>
#include <cmath>
#include <optional>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_obj.h"
#include "formula/reb/reb_interpreter.h"
#include "formula/reb/reb_runs.h"

namespace korvan::formula {
namespace {

bool EndsWith(const std::string& text, std::string_view tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// Numbers whose lines take their result from elsewhere.
bool BuildsNothing(const std::string& nr) {
  static constexpr std::array<std::string_view, 14> kNumbers = {"070", "071", "072", "073", "102",
                                                                "202", "203", "303", "400", "700",
                                                                "701", "800", "802", "803"};
  for (std::string_view number : kNumbers) {
    if (nr == number) return true;
  }
  return !nr.empty() && nr[0] == '5';
}

bool IsDigitMark(char mark) {
  return mark >= '1' && mark <= '5';
}

// The values and signs of a line written one after another: "3*2+" from 3, "*", 2, "+".
std::string ArithmeticText(const TRebLine& line) {
  if (line.Formel.find('|') == std::string::npos) return line.Formel;
  std::string text;
  for (int n = 1; n <= 5; ++n) {
    const tValue value = tValue::Of(line, n);
    if (value.IsEmpty()) continue;
    const bool operator_before =
        !text.empty() && std::string_view("+-*/^(").find(text.back()) != std::string_view::npos;
    if (!text.empty() && !operator_before) text += '+';
    text += value.Text;
    const char sign = tValue::SignOf(line, n);
    if (sign != ' ') text += sign;
  }
  return text;
}

std::string IdText(const TRebLine& line, int n) {
  std::string text = tValue::Of(line, n).Text;
  if (!text.empty() && text[0] == '#') text.erase(0, 1);
  return text;
}

std::optional<size_t> LastLineWithId(const std::vector<TRebLine>& lines, const std::string& id) {
  std::optional<size_t> found;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (std::to_string(lines[i].Id) == id) found = i;
  }
  return found;
}

}  // namespace

TRebExpression TREB004FormelInterpreter::Build(const std::vector<TRebLine>& lines, size_t index) {
  const TRebLine& line = lines[index];
  TRebExpression out = LineBasics(line);
  const std::string& nr = line.FormelNr;
  if (nr.empty()) {
    if (!line.Completes()) return out;
    const bool digit = IsDigitMark(line.KZ);
    const auto run = [&](const TRebLine& other) {
      return other.FormelNr.empty() && !other.Completes() && !other.IsComment() &&
             (!digit || other.KZ == line.KZ);
    };
    const size_t start = RunStart(lines, index, run);
    out.expression = JoinedTexts(lines, start, index, false);
    for (size_t i = start; i < index; ++i) {
      if (lines[i].Faktor != 0) out.factor = (out.factor == 0 ? 1 : out.factor) * lines[i].Faktor;
      if (lines[i].Vorzeichen == '-') out.negative = true;
    }
    return out;
  }
  const auto same_open = [&](const TRebLine& other) {
    return other.FormelNr == nr && !other.Completes() && !other.IsComment();
  };
  if (EndsWith(nr, "91")) {
    if (!line.Completes()) return out;
    const auto run = [&](const TRebLine& other) {
      return other.IsComment() || (other.FormelNr == nr && !other.Completes());
    };
    out.expression = JoinedTexts(lines, RunStart(lines, index, run), index, true);
    return out;
  }
  if (EndsWith(nr, "99") || nr == "030") {
    if (!line.Completes()) return out;
    std::string text;
    for (size_t i = RunStart(lines, index, same_open); i <= index; ++i)
      text += ArithmeticText(lines[i]);
    out.expression = nr == "030" ? "sqrt(" + text + ")" : text;
    return out;
  }
  if (nr == "031" || nr == "032") {
    if (!line.Completes()) return out;
    return MeanExpression(lines, RunStart(lines, index, same_open), index, nr == "032",
                          [](const TRebLine& l, int n) { return ValueOrUnknown(l, n); });
  }
  if (nr == "060") {
    const std::optional<size_t> first = LastLineWithId(lines, IdText(line, 1));
    const std::optional<size_t> last = LastLineWithId(lines, IdText(line, 2));
    double sum = 0;
    if (first && last && *first < *last) {
      const char mark = lines[*first].KZ;
      for (size_t i = *first; i <= *last; ++i) {
        if (lines[i].KZ == mark) sum += lines[i].Ergebnis;
      }
      if (mark == kMarkAuxiliary) out.mark = kMarkAuxiliary;
    }
    out.result = sum;
    return out;
  }
  if (nr == "061") {
    double sum = 0;
    for (size_t i = 0; i < index; ++i) {
      if (lines[i].KZ == kMarkNone) sum += lines[i].Ergebnis;
    }
    out.result = sum;
    return out;
  }
  if (BuildsNothing(nr)) {
    out.keep_result = true;
    return out;
  }
  const std::optional<std::string> expression = CatalogueExpression(line, nr, [&](int n) {
    std::string value = ValueOrUnknown(line, n);
    // Side calculations: the lines that follow, marked with the digit n, compute value n.
    for (size_t i = index + 1; i < lines.size() && IsDigitMark(lines[i].KZ); ++i) {
      if (lines[i].KZ != '0' + n || !lines[i].Completes()) continue;
      TFormelObj formula = settings_.altgrad ? TFormelObj() : TFormelObj::CreateNeugrad();
      formula.SetFormel(lines[i].Formel);
      int error = 0;
      const double result = formula.GetResult(error);
      if (error == 0) value = FormatFormelNumber(std::round(result * 1000) / 1000);
    }
    return value;
  });
  if (expression) {
    out.expression = *expression;
  } else {
    out.error = kFormelNotInCatalogue;
    out.result = 0;
  }
  return out;
}

}  // namespace korvan::formula
