#pragma once

#include <functional>
#include <string>
#include <vector>

#include "formula/reb/reb_interpreter.h"
#include "formula/reb/reb_line.h"

// Pieces the REB variants share: runs of lines that belong together, and the
// expressions and results built over them.
namespace korvan::formula {

// The first line of the run that ends at `index`: walking back while `belongs` holds.
size_t RunStart(const std::vector<TRebLine>& lines, size_t index,
                const std::function<bool(const TRebLine&)>& belongs);

// The factor and sign of a line as the interpreter hands them back.
TRebExpression LineBasics(const TRebLine& line);

// The formula texts of lines [from, to] joined, trimmed; comment lines become
// "{text}" when `comments` (else they are left out).
std::string JoinedTexts(const std::vector<TRebLine>& lines, size_t from, size_t to, bool comments);

// Length of the polyline through the points (value 1, value 2) of lines [from, to]; each
// segment times the factor of its second line.
std::string PolylineExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                               const std::function<std::string(const TRebLine&, int)>& value);

// Area of the polygon through the points of lines [from, to] (Gauss), closed back to the
// first point.
std::string PolygonExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                              const std::function<std::string(const TRebLine&, int)>& value);

// The arithmetic (or quadratic) mean of every value of lines [from, to]; the factor is
// the last line factor that is not 0.
TRebExpression MeanExpression(const std::vector<TRebLine>& lines, size_t from, size_t to,
                              bool quadratic,
                              const std::function<std::string(const TRebLine&, int)>& value);

// Quantities between cross-sections (formulas 23, 25, 98) over lines [from, to]: the
// trapezoid rule over the stations (value 1) and the cross-sections of each line.
TRebExpression StationSeries(const std::vector<TRebLine>& lines, size_t from, size_t to,
                             int formula);

// A value as a line puts it into a formula: the text, "X" (a name without value, so the
// evaluation stops with 9120) when empty.
std::string ValueOrUnknown(const TRebLine& line, int n);

}  // namespace korvan::formula
