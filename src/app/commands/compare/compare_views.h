#pragma once

#include <iosfwd>
#include <string>

#include "award/compare/price_comparison.h"
#include "boq/units/value_converter.h"

// The outputs of `korvan compare`: one function per format, all on the same columns.
namespace korvan::app {

// For scripts: the lines with every column, the bidders with their sums and ranks.
void WriteCompareJson(std::ostream& out, const award::TPriceComparison& comparison);

// For spreadsheets: UTF-8 with a byte order mark, semicolons, decimal commas, no thousands
// points; the comparison, then the rank list.
void WriteCompareCsv(std::ostream& out, const award::TPriceComparison& comparison);

// For people at a terminal: blocks of as many columns as `width` holds (0: all in one),
// deviations marked with "???" and, with `colour`, in bold red.
void WriteCompareText(std::ostream& out, const award::TPriceComparison& comparison,
                      const boq::TAvaUiValueConverter& converter, int width, bool colour);

// A chart: the bidders' checked totals as bars, cheapest first, with the reference line;
// per top-level group the spread from the lowest to the highest bid with the mean.
std::string CompareSvg(const award::TPriceComparison& comparison,
                       const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::app
