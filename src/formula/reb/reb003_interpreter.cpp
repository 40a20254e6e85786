// The REB 23.003 variant: formula numbers are whole numbers.
#include <algorithm>
#include <cctype>
#include <optional>

#include "formula/language/formel_errors.h"
#include "formula/reb/reb_interpreter.h"
#include "formula/reb/reb_runs.h"

namespace korvan::formula {
namespace {

std::optional<int> WholeNumber(const std::string& nr) {
  if (nr.empty() || nr.size() > 3 || !std::all_of(nr.begin(), nr.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
      })) {
    return std::nullopt;
  }
  return std::stoi(nr);
}

// Optional factors of the catalogue formulas: an empty value 3 or 4 stands for 1.
bool IsOptionalFactor(const std::string& nr, int number, int n) {
  if (nr == "05") return n == 3 || n == 4;
  if (n == 3)
    return number == 1 || number == 4 || number == 6 || number == 7 || number == 9 || number == 10;
  if (n == 4) return number == 2 || number == 3 || number == 5 || number == 8;
  return false;
}

// Values go into formulas in parentheses, so that "-2" stays one operand.
std::string Wrapped(const TRebLine& line, int n) {
  return "(" + ValueOrUnknown(line, n) + ")";
}

std::string WrappedOrZero(const TRebLine& line, int n) {
  const tValue value = tValue::Of(line, n);
  return "(" + (value.IsEmpty() ? std::string("0") : value.Text) + ")";
}

}  // namespace

TRebExpression TREB003FormelInterpreter::Build(const std::vector<TRebLine>& lines, size_t index) {
  const TRebLine& line = lines[index];
  TRebExpression out = LineBasics(line);
  const std::optional<int> number = WholeNumber(line.FormelNr);
  if (!number) return out;
  const auto same_open = [&](const TRebLine& other) {
    return WholeNumber(other.FormelNr) == number && !other.Completes() && !other.IsComment();
  };
  const bool multi_line = *number == 0 || *number == 21 || *number == 22 || *number == 23 ||
                          *number == 25 || *number == 98 || *number == 30 || *number == 31 ||
                          *number == 32 || *number == 91;
  // Lines of a multi-line formula wait for the line that completes them.
  if (multi_line && !line.Completes()) return out;
  switch (*number) {
    case 0:
    case 30: {
      out.expression = JoinedTexts(lines, RunStart(lines, index, same_open), index, false);
      if (line.FormelNr == "30") {
        std::string body = out.expression;
        if (!body.empty() && body.back() == '=') body.pop_back();
        out.expression = "sqrt(" + body + ")";
      }
      return out;
    }
    case 21:
      out.expression =
          PolylineExpression(lines, RunStart(lines, index, same_open), index, WrappedOrZero);
      out.factor = 0;
      return out;
    case 22:
      out.expression =
          PolygonExpression(lines, RunStart(lines, index, same_open), index, WrappedOrZero);
      return out;
    case 23:
    case 25:
    case 98:
      return StationSeries(lines, RunStart(lines, index, same_open), index, *number);
    case 31:
    case 32:
      return MeanExpression(lines, RunStart(lines, index, same_open), index, *number == 32,
                            Wrapped);
    case 91: {
      const auto run = [&](const TRebLine& other) {
        return other.IsComment() || (WholeNumber(other.FormelNr) == 91 && !other.Completes());
      };
      out.expression = JoinedTexts(lines, RunStart(lines, index, run), index, true);
      return out;
    }
    default: {
      const std::string& nr = line.FormelNr;
      const std::optional<std::string> expression =
          CatalogueExpression(line, std::to_string(*number), [&](int n) {
            if (tValue::Of(line, n).IsEmpty() && IsOptionalFactor(nr, *number, n))
              return std::string("(1)");
            return Wrapped(line, n);
          });
      if (expression) {
        out.expression = *expression;
      } else {
        out.error = kFormelNotInCatalogue;
        out.result = 0;
      }
      return out;
    }
  }
}

}  // namespace korvan::formula
