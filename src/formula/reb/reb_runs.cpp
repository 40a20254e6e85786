#include "formula/reb/reb_runs.h"

#include <cmath>
#include <optional>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_number.h"

namespace korvan::formula {
namespace {

std::string Trim(std::string text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string FactorText(const TRebLine& line) {
  return line.Faktor == 0 ? "1" : FormatFormelNumber(line.Faktor);
}

// A value read as a number; empty counts 0.
std::optional<double> NumberOf(const TRebLine& line, int n) {
  const tValue value = tValue::Of(line, n);
  if (value.IsEmpty()) return 0.0;
  const bool negative = value.Text.front() == '-';
  const std::optional<double> number =
      ParseFormelNumber(negative || value.Text.front() == '+' ? value.Text.substr(1) : value.Text);
  if (!number) return std::nullopt;
  return negative ? -*number : *number;
}

// The mean of those of values 3 to 5 that are not 0.
double MeanOfSetValues(double v3, double v4, double v5) {
  double sum = 0;
  int count = 0;
  for (double v : {v3, v4, v5}) {
    if (std::fabs(v) > 0.0001) {
      sum += v;
      ++count;
    }
  }
  return count == 0 ? 0 : sum / count;
}

double CrossSection(int formula, const double (&v)[6]) {
  switch (formula) {
    case 23:
      return v[2] + v[3] + v[4] + v[5];
    case 25:
      return v[2] * (v[3] + v[4]) / 2;
    default:  // 98
      return v[2] * MeanOfSetValues(v[3], v[4], v[5]);
  }
}

}  // namespace

size_t RunStart(const std::vector<TRebLine>& lines, size_t index,
                const std::function<bool(const TRebLine&)>& belongs) {
  size_t start = index;
  while (start > 0 && belongs(lines[start - 1])) --start;
  return start;
}

TRebExpression LineBasics(const TRebLine& line) {
  TRebExpression out;
  out.factor = line.Faktor;
  out.negative = line.Vorzeichen == '-';
  return out;
}

std::string JoinedTexts(const std::vector<TRebLine>& lines, size_t from, size_t to, bool comments) {
  std::string text;
  for (size_t i = from; i <= to; ++i) {
    if (!lines[i].IsComment()) {
      text += lines[i].Formel;
    } else if (comments) {
      text += "{" + (lines[i].Formel.empty() ? lines[i].Erlaeuterung : lines[i].Formel) + "}";
    }
  }
  return Trim(text);
}

std::string PolylineExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                               const std::function<std::string(const TRebLine&, int)>& value) {
  std::string text;
  for (size_t i = from; i < to; ++i) {
    const TRebLine& a = lines[i];
    const TRebLine& b = lines[i + 1];
    if (!text.empty()) text += "+";
    text += "sqrt(sqr(" + value(b, 1) + "-" + value(a, 1) + ")+sqr(" + value(b, 2) + "-" +
            value(a, 2) + "))*" + FactorText(b);
  }
  return text.empty() ? "0" : text;
}

std::string PolygonExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                              const std::function<std::string(const TRebLine&, int)>& value) {
  std::string sum;
  for (size_t i = from; i <= to; ++i) {
    const TRebLine& a = lines[i];
    const TRebLine& b = lines[i == to ? from : i + 1];
    if (!sum.empty()) sum += "+";
    sum += "(" + value(a, 1) + "+" + value(b, 1) + ")*(" + value(a, 2) + "-" + value(b, 2) + ")";
  }
  return "ABS(" + sum + ")*0,5";
}

TRebExpression MeanExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                              bool quadratic,
                              const std::function<std::string(const TRebLine&, int)>& value) {
  TRebExpression out = LineBasics(lines[to]);
  out.factor = 1;
  std::string sum;
  int count = 0;
  for (size_t i = from; i <= to; ++i) {
    if (lines[i].Faktor != 0) out.factor = lines[i].Faktor;
    for (int n = 1; n <= 5; ++n) {
      if (tValue::Of(lines[i], n).IsEmpty()) continue;
      if (count++ > 0) sum += "+";
      sum += quadratic ? "sqr(" + value(lines[i], n) + ")" : value(lines[i], n);
    }
  }
  if (count == 0) return out;
  const std::string mean = "(" + sum + ")/" + std::to_string(count);
  out.expression = quadratic ? "sqrt(" + mean + ")" : mean;
  return out;
}

TRebExpression StationSeries(const std::vector<TRebLine>& lines, size_t from, size_t to,
                             int formula) {
  TRebExpression out = LineBasics(lines[to]);
  for (size_t i = from; i <= to; ++i) {
    if (lines[i].Faktor != 0) {
      out.factor = lines[i].Faktor;
      break;
    }
  }
  double total = 0;
  double previous_station = 0;
  double previous_area = 0;
  for (size_t i = from; i <= to; ++i) {
    double v[6] = {};
    for (int n = 1; n <= 5; ++n) {
      const std::optional<double> number = NumberOf(lines[i], n);
      if (!number) {
        out.error = kFormelBadNumber;
        out.result = 0;
        return out;
      }
      v[n] = *number;
    }
    const double area = CrossSection(formula, v);
    if (i > from) total += (v[1] - previous_station) * (area + previous_area) / 2;
    previous_station = v[1];
    previous_area = area;
  }
  out.result = total;
  return out;
}

std::string ValueOrUnknown(const TRebLine& line, int n) {
  const tValue value = tValue::Of(line, n);
  return value.IsEmpty() ? "X" : value.Text;
}

}  // namespace korvan::formula
