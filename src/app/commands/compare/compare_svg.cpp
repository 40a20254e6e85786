// `korvan compare --svg`: the comparison as a chart a browser shows.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "app/commands/compare/compare_columns.h"
#include "app/commands/compare/compare_views.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

constexpr double kWidth = 960.0;
constexpr double kLabelWidth = 260.0;
constexpr double kBarArea = 520.0;
constexpr double kRowHeight = 26.0;
constexpr double kTop = 70.0;

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Px(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string Text(double x, double y, const std::string& text, const char* anchor = "start",
                 const char* extra = "") {
  return "<text x=\"" + Px(x) + "\" y=\"" + Px(y) + "\" text-anchor=\"" + anchor + "\"" + extra +
         ">" + Escaped(text) + "</text>\n";
}

// At most 40 bytes, cut before a character rather than inside one.
std::string Shortened(const std::string& label) {
  constexpr std::size_t kMost = 40;
  if (label.size() <= kMost) return label;
  std::size_t end = kMost;
  while (end > 0 && (static_cast<unsigned char>(label[end]) & 0xC0) == 0x80) --end;
  return label.substr(0, end) + "…";
}

struct Bar {
  std::string label;
  double total = 0.0;
};

class SvgChart {
 public:
  SvgChart(const award::TPriceComparison& comparison, const boq::TAvaUiValueConverter& converter)
      : comparison_(comparison), converter_(converter) {}

  std::string Draw() {
    y_ = kTop;
    body_ += Text(20, 32, "Preisspiegel LV \"" + comparison_.Lv().FLv().Name.Get() + "\"", "start",
                  " font-size=\"20\" font-weight=\"bold\"");
    Totals();
    Spreads();
    const double height = y_ + 30.0;
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
           Px(kWidth) + "\" height=\"" + Px(height) + "\" viewBox=\"0 0 " + Px(kWidth) + " " +
           Px(height) +
           "\" font-family=\"sans-serif\" font-size=\"13\">\n"
           "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n" +
           body_ + "</svg>\n";
  }

 private:
  std::string Money(double value) const { return converter_.CurrencyValueToString(value, 2); }

  void Heading(const std::string& text) {
    body_ += Text(20, y_, text, "start", " font-size=\"15\" font-weight=\"bold\"");
    y_ += 16.0;
  }

  void Totals() {
    const std::vector<award::TComparedBidder>& bidders = comparison_.Bidders();
    std::vector<Bar> bars;
    for (const award::TComparedBidder& bidder : bidders) {
      bars.push_back({bidder.bidder.Bietername.Get(), bidder.totals.checked * bidder.factor});
    }
    std::stable_sort(bars.begin(), bars.end(),
                     [](const Bar& a, const Bar& b) { return a.total < b.total; });
    Heading("Geprüfte Angebotssummen (netto, vor Nachlass)");
    if (bars.empty()) {
      body_ += Text(20, y_ + 16, "Keine Bieter.");
      y_ += 40.0;
      return;
    }
    const double reference = comparison_.ReferenceTotals().checked;
    double scale_max = std::max(reference, 0.0);
    for (const Bar& bar : bars) scale_max = std::max(scale_max, bar.total);
    if (scale_max <= 0.0) scale_max = 1.0;
    const double top = y_;
    for (std::size_t i = 0; i < bars.size(); ++i) {
      const double length = std::max(0.0, bars[i].total) / scale_max * kBarArea;
      body_ += Text(kLabelWidth - 8, y_ + 17, std::to_string(i + 1) + ". " + bars[i].label, "end");
      body_ += "<rect x=\"" + Px(kLabelWidth) + "\" y=\"" + Px(y_ + 4) + "\" width=\"" +
               Px(length) + "\" height=\"" + Px(kRowHeight - 8) + "\" fill=\"" +
               (i == 0 ? "#2e7d32" : "#4f81bd") + "\"/>\n";
      body_ += Text(kLabelWidth + length + 6, y_ + 17, Money(bars[i].total));
      y_ += kRowHeight;
    }
    if (reference > 0.0) {
      const double x = kLabelWidth + reference / scale_max * kBarArea;
      body_ += "<line x1=\"" + Px(x) + "\" y1=\"" + Px(top) + "\" x2=\"" + Px(x) + "\" y2=\"" +
               Px(y_ + 4) + "\" stroke=\"#c62828\" stroke-width=\"2\" stroke-dasharray=\"6 4\"/>\n";
      body_ +=
          Text(x, y_ + 18, "100 % Bezug: " + ReferenceCaption(comparison_) + " " + Money(reference),
               "middle", " fill=\"#c62828\"");
      y_ += 24.0;
    }
    y_ += 30.0;
  }

  void Spreads() {
    const boq::TLVPosList& lv = comparison_.Lv();
    struct Spread {
      std::string label;
      double low, high, mean;
      std::vector<double> bids;
    };
    std::vector<Spread> spreads;
    double scale_max = 0.0;
    for (int i = 0; i < lv.Count(); ++i) {
      if (!lv[i].IsGroup() || lv[i].Struktur.ZuBg != data::kRootParentId) continue;
      Spread spread{lv[i].LvBgBeschr.OZ.Get() + " " + lv[i].ShortText,
                    0.0,
                    0.0,
                    comparison_.Mean().lines[static_cast<std::size_t>(i)].Angebot.GP.Betrag,
                    {}};
      for (std::size_t b = 0; b < comparison_.Bidders().size(); ++b) {
        spread.bids.push_back(comparison_.Cell(i, static_cast<int>(b)).total);
      }
      if (spread.bids.empty()) continue;
      spread.low = *std::min_element(spread.bids.begin(), spread.bids.end());
      spread.high = *std::max_element(spread.bids.begin(), spread.bids.end());
      scale_max = std::max(scale_max, spread.high);
      spreads.push_back(spread);
    }
    if (spreads.empty()) return;
    Heading("Spanne je Bereichsgruppe: niedrigstes bis höchstes Angebot, Punkt = Mittelwert");
    if (scale_max <= 0.0) scale_max = 1.0;
    auto x_of = [&](double value) {
      return kLabelWidth + std::max(0.0, value) / scale_max * kBarArea;
    };
    for (const Spread& spread : spreads) {
      const double mid = y_ + kRowHeight / 2;
      body_ += Text(kLabelWidth - 8, mid + 5, Shortened(spread.label), "end");
      body_ += "<line x1=\"" + Px(x_of(spread.low)) + "\" y1=\"" + Px(mid) + "\" x2=\"" +
               Px(x_of(spread.high)) + "\" y2=\"" + Px(mid) +
               "\" stroke=\"#555\" stroke-width=\"3\"/>\n";
      for (double bid : spread.bids) {
        body_ += "<line x1=\"" + Px(x_of(bid)) + "\" y1=\"" + Px(mid - 6) + "\" x2=\"" +
                 Px(x_of(bid)) + "\" y2=\"" + Px(mid + 6) + "\" stroke=\"#555\"/>\n";
      }
      body_ += "<circle cx=\"" + Px(x_of(spread.mean)) + "\" cy=\"" + Px(mid) +
               "\" r=\"5\" fill=\"#f9a825\"><title>Mittelwert " + Escaped(Money(spread.mean)) +
               "</title></circle>\n";
      body_ += Text(x_of(spread.high) + 8, mid + 5, Money(spread.low) + " – " + Money(spread.high));
      y_ += kRowHeight;
    }
  }

  const award::TPriceComparison& comparison_;
  const boq::TAvaUiValueConverter& converter_;
  std::string body_;
  double y_ = 0.0;
};

}  // namespace

std::string CompareSvg(const award::TPriceComparison& comparison,
                       const boq::TAvaUiValueConverter& converter) {
  return SvgChart(comparison, converter).Draw();
}

}  // namespace korvan::app
