// `korvan compare` at a terminal: the comparison in blocks of columns that fit the width,
// as the printed report repeats its pages for further bidders, then the rank list.
#include <algorithm>
#include <ostream>
#include <string>

#include "app/commands/compare/compare_columns.h"
#include "app/commands/compare/compare_views.h"

namespace korvan::app {
namespace {

constexpr int kTextWidth = 24;
constexpr int kQuantityWidth = 12;
constexpr int kUpWidth = 11;
constexpr int kTotalWidth = 14;
constexpr int kPercentWidth = 12;
constexpr int kColumnWidth = kUpWidth + kTotalWidth + kPercentWidth + 1;
constexpr char kBoldRed[] = "\x1b[1;31m";
constexpr char kReset[] = "\x1b[0m";

// Characters, not bytes: a UTF-8 continuation byte starts no character.
int TextWidth(const std::string& text) {
  return static_cast<int>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Cut(const std::string& text, int width) {
  if (TextWidth(text) <= width) return text;
  std::string cut;
  int shown = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xC0) != 0x80 && ++shown > width - 1) break;
    cut += text[i];
  }
  return cut + "…";
}

std::string Left(const std::string& text, int width) {
  const std::string cut = Cut(text, width);
  return cut + std::string(static_cast<std::size_t>(std::max(0, width - TextWidth(cut))), ' ');
}

std::string Right(const std::string& text, int width) {
  const std::string cut = Cut(text, width);
  return std::string(static_cast<std::size_t>(std::max(0, width - TextWidth(cut))), ' ') + cut;
}

class TextWriter {
 public:
  TextWriter(std::ostream& out, const award::TPriceComparison& comparison,
             const boq::TAvaUiValueConverter& converter, bool colour)
      : out_(out), comparison_(comparison), converter_(converter), colour_(colour) {
    const boq::TLVPosList& lv = comparison.Lv();
    for (int i = 0; i < lv.Count(); ++i) {
      if (IsComparedLine(comparison, i))
        oz_width_ = std::max(oz_width_, TextWidth(lv[i].LvBgBeschr.OZ.Get()));
    }
  }

  int LeftWidth() const { return oz_width_ + 1 + kTextWidth + 1 + kQuantityWidth; }

  void Block(const std::vector<CompareColumn>& columns) {
    out_ << Left("OZ", oz_width_) << ' ' << Left("Kurztext", kTextWidth) << ' '
         << Right("Menge", kQuantityWidth);
    for (const CompareColumn& column : columns) out_ << ' ' << Right(column.name, kColumnWidth - 1);
    out_ << '\n' << std::string(static_cast<std::size_t>(LeftWidth()), ' ');
    for (std::size_t c = 0; c < columns.size(); ++c) {
      out_ << ' ' << Right("EP", kUpWidth) << Right("GP", kTotalWidth) << Right("%", kPercentWidth);
    }
    out_ << '\n';
    const boq::TLVPosList& lv = comparison_.Lv();
    for (int i = 0; i < lv.Count(); ++i) {
      const boq::TLvPos& entry = lv[i];
      if (!IsComparedLine(comparison_, i)) continue;
      const std::string quantity =
          entry.IsGroup() ? std::string()
                          : converter_.QtyToString(entry.LvBeschr.FMenge, 3) + " " + entry.Unit;
      out_ << Left(entry.LvBgBeschr.OZ.Get(), oz_width_) << ' ' << Left(entry.ShortText, kTextWidth)
           << ' ' << Right(quantity, kQuantityWidth);
      for (const CompareColumn& column : columns) {
        Cell(LineValue(comparison_, column, i), !entry.IsGroup());
      }
      out_ << '\n';
    }
    out_ << Left("Summe", LeftWidth());
    for (const CompareColumn& column : columns) Cell(TotalValue(comparison_, column), false);
    out_ << "\n\n";
  }

  void RankList() {
    out_ << "Rangliste, 100 % Bezug: " << ReferenceCaption(comparison_) << '\n'
         << Right("Rang", 4) << "  " << Left("Bieter", 30) << Right("Geprüft", 16)
         << Right("Nachlass", 14) << Right("Summe ./. NL", 16) << Right("Brutto", 16)
         << Right("ohne Preis", 11) << Right("% Bezug", 10) << '\n';
    const std::vector<award::TComparedBidder>& bidders = comparison_.Bidders();
    for (const award::TRankRow& row : comparison_.RankList()) {
      const award::TComparedBidder& compared = bidders[static_cast<std::size_t>(row.bidder)];
      const award::TBidderTotals& totals = compared.totals;
      const double f = compared.factor;
      const std::optional<double> percent = comparison_.TotalPercentOfReference(row.bidder);
      out_ << Right(row.rank == 0 ? "-" : std::to_string(row.rank), 4) << "  "
           << Left(compared.bidder.Bietername.Get(), 30) << Right(Money(totals.checked * f), 16)
           << Right(Money((totals.checked - totals.after_discount) * f), 14)
           << Right(Money(totals.after_discount * f), 16) << Right(Money(totals.gross * f), 16)
           << Right(std::to_string(compared.unpriced), 11)
           << Right(percent ? Money(*percent) + " %" : "", 10) << '\n';
    }
  }

 private:
  std::string Money(double value) const { return converter_.CurrencyValueToString(value, 2); }

  void Cell(const CompareValue& value, bool with_up) {
    std::string percent = value.percent ? Money(*value.percent) + " %" : "";
    if (value.deviates) percent = "???" + percent;
    out_ << ' ' << Right(with_up ? Money(value.up) : "", kUpWidth);
    if (value.deviates && colour_) out_ << kBoldRed;
    out_ << Right(Money(value.total), kTotalWidth) << Right(percent, kPercentWidth);
    if (value.deviates && colour_) out_ << kReset;
  }

  std::ostream& out_;
  const award::TPriceComparison& comparison_;
  const boq::TAvaUiValueConverter& converter_;
  bool colour_;
  int oz_width_ = 2;
};

}  // namespace

void WriteCompareText(std::ostream& out, const award::TPriceComparison& comparison,
                      const boq::TAvaUiValueConverter& converter, int width, bool colour) {
  const boq::TLVPosList& lv = comparison.Lv();
  const double limit = comparison.Options().max_deviation;
  out << "Preisspiegel LV \"" << lv.FLv().Name.Get() << "\", " << comparison.Bidders().size()
      << " Bieter, 100 % Bezug: " << ReferenceCaption(comparison);
  if (limit > 0.0) {
    out << ", ??? = mehr als " << converter.CurrencyValueToString(limit, 2)
        << " % vom Mittelwert abweichend";
  }
  const award::TCompareOptions& options = comparison.Options();
  if (options.min_share > 0.0) {
    out << ", nur Positionen ab " << converter.CurrencyValueToString(options.min_share, 2)
        << " % der Angebotssumme";
  }
  if (options.with_contingency) out << ", mit Eventualpositionen";
  out << "\n\n";
  if (comparison.Bidders().empty()) {
    out << "Keine Bieter: es gibt nichts zu vergleichen (\"korvan bidder add\" legt Bieter an).\n";
    return;
  }
  TextWriter writer(out, comparison, converter, colour);
  const std::vector<CompareColumn> columns = CompareColumns(comparison, false);
  std::size_t per_block = columns.size();
  if (width > 0) {
    per_block = static_cast<std::size_t>(std::max(1, (width - writer.LeftWidth()) / kColumnWidth));
  }
  for (std::size_t start = 0; start < columns.size(); start += per_block) {
    const std::size_t end = std::min(columns.size(), start + per_block);
    writer.Block({columns.begin() + static_cast<std::ptrdiff_t>(start),
                  columns.begin() + static_cast<std::ptrdiff_t>(end)});
  }
  writer.RankList();
}

}  // namespace korvan::app
