// `korvan compare --csv`: the price comparison as German spreadsheets open it.
#include <ostream>
#include <string>

#include "app/cli/german_number.h"
#include "app/commands/compare/compare_columns.h"
#include "app/commands/compare/compare_views.h"

namespace korvan::app {
namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// A field in quotes when it holds a separator, a quote or a line break.
std::string Field(const std::string& text) {
  if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

// An OZ as a text formula: spreadsheets would read "01" as the number 1 and "01.02" as a
// date. Excel and LibreOffice both show the formula's text.
std::string OzField(const std::string& oz) {
  if (oz.find_first_of(";\r\n") != std::string::npos) return Field(oz);
  std::string formula = "=\"";
  for (char c : oz) {
    if (c == '"') formula += '"';
    formula += c;
  }
  return formula + "\"";
}

std::string Number(double value, const char* format = "%.2f") {
  return GermanFigure(value, format);
}

std::string Percent(const std::optional<double>& percent) {
  return percent ? Number(*percent) : std::string();
}

void WriteHeader(std::ostream& out, const std::vector<CompareColumn>& columns) {
  out << "OZ;Art;Kurztext;Menge;Einheit";
  for (const CompareColumn& column : columns) {
    const std::string name = Field(column.name + " EP") + ";" + Field(column.name + " GP") + ";" +
                             Field(column.name + " %");
    out << ';' << name;
    if (column.kind == CompareColumnKind::kBidder) out << ';' << Field(column.name + " Abw.");
  }
  out << "\r\n";
}

void WriteValue(std::ostream& out, const CompareColumn& column, const CompareValue& value,
                bool with_up) {
  out << ';' << (with_up ? Number(value.up) : std::string()) << ';' << Number(value.total) << ';'
      << Percent(value.percent);
  if (column.kind == CompareColumnKind::kBidder) out << ';' << (value.deviates ? "???" : "");
}

void WriteLines(std::ostream& out, const award::TPriceComparison& comparison,
                const std::vector<CompareColumn>& columns) {
  const boq::TLVPosList& lv = comparison.Lv();
  for (int i = 0; i < lv.Count(); ++i) {
    const boq::TLvPos& entry = lv[i];
    if (!IsComparedLine(comparison, i)) continue;
    out << OzField(entry.LvBgBeschr.OZ.Get()) << ';' << entry.Kind() << ';'
        << Field(entry.ShortText) << ';'
        << (entry.IsGroup() ? std::string() : Number(entry.LvBeschr.FMenge, "%.3f")) << ';'
        << Field(entry.Unit);
    for (const CompareColumn& column : columns) {
      WriteValue(out, column, LineValue(comparison, column, i), !entry.IsGroup());
    }
    out << "\r\n";
  }
  out << "Summe;;;;";
  for (const CompareColumn& column : columns) {
    WriteValue(out, column, TotalValue(comparison, column), false);
  }
  out << "\r\n";
}

void WriteRankList(std::ostream& out, const award::TPriceComparison& comparison) {
  out << "\r\nRangliste;100 % Bezug: " << Field(ReferenceCaption(comparison)) << "\r\n"
      << "Rang;Bieter-Nr.;Bieter;Geprüft;Nachlass;Summe ./. NL;Netto;Brutto;"
         "Positionen ohne Preis;% Bezug\r\n";
  const std::vector<award::TComparedBidder>& bidders = comparison.Bidders();
  for (const award::TRankRow& row : comparison.RankList()) {
    const award::TComparedBidder& compared = bidders[static_cast<std::size_t>(row.bidder)];
    const award::TBidderTotals& totals = compared.totals;
    const double f = compared.factor;
    out << (row.rank == 0 ? std::string() : std::to_string(row.rank)) << ';'
        << static_cast<int>(compared.bidder.BieterNrIntern) << ';'
        << Field(compared.bidder.Bietername.Get()) << ';' << Number(totals.checked * f) << ';'
        << Number((totals.checked - totals.after_discount) * f) << ';'
        << Number(totals.after_discount * f) << ';' << Number(totals.net * f) << ';'
        << Number(totals.gross * f) << ';' << compared.unpriced << ';'
        << Percent(comparison.TotalPercentOfReference(row.bidder)) << "\r\n";
  }
}

}  // namespace

void WriteCompareCsv(std::ostream& out, const award::TPriceComparison& comparison) {
  const std::vector<CompareColumn> columns = CompareColumns(comparison, true);
  out << kByteOrderMark;
  WriteHeader(out, columns);
  if (!comparison.Bidders().empty()) WriteLines(out, comparison, columns);
  WriteRankList(out, comparison);
}

}  // namespace korvan::app
