#include "app/commands/calc/calc_item_view.h"

#include <ostream>
#include <string>

#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "calc/price/price_columns.h"

namespace korvan::app {
namespace {

using calc::TPriceColumn;

constexpr TPriceColumn kColumns[] = {TPriceColumn::kSchaetz, TPriceColumn::kEinzelkosten,
                                     TPriceColumn::kAngebot, TPriceColumn::kVergabe,
                                     TPriceColumn::kAbrechnung};

const char* ColumnTitle(TPriceColumn column) {
  switch (column) {
    case TPriceColumn::kSchaetz:
      return "Schätzung";
    case TPriceColumn::kEinzelkosten:
      return "Einzelkosten";
    case TPriceColumn::kAngebot:
      return "Angebot (kalkuliert)";
    case TPriceColumn::kVergabe:
      return "Vergabe";
    case TPriceColumn::kAbrechnung:
      break;
  }
  return "Abrechnung";
}

std::string Price(double value) {
  return GermanFigure(value, "%.3f");
}

void PrintJson(std::ostream& out, int32_t lv, boq::TLvPos& item, const calc::TItemCosts& costs) {
  out << "{\"lv\": " << lv << ", \"oz\": " << JsonString(item.LvBgBeschr.OZ.Get())
      << ", \"qty\": " << JsonNumber(item.LvBeschr.FMenge)
      << ", \"billed_qty\": " << JsonNumber(item.LvBeschr.ReMenge) << ", \"cost_elements\": [";
  bool first = true;
  for (int i = 0; i < calc::kResultCostTypes; ++i) {
    if (costs.direct[i] == 0.0) continue;
    const auto type = static_cast<calc::TResultIndex>(i);
    out << (first ? "" : ", ")
        << "{\"type\": " << JsonString(std::string(1, calc::LineKindOf(type)))
        << ", \"name\": " << JsonString(std::string(calc::CostTypeName(type)))
        << ", \"direct\": " << JsonNumber(costs.direct[i])
        << ", \"surcharge_percent\": " << JsonNumber(costs.surcharge[i])
        << ", \"price\": " << JsonNumber(costs.price[i]) << "}";
    first = false;
  }
  out << "], \"direct_total\": " << JsonNumber(costs.direct_total)
      << ", \"price_total\": " << JsonNumber(costs.price_total)
      << ", \"wage_hours\": " << JsonNumber(costs.wage_hours) << ", \"unit_prices\": {";
  first = true;
  for (TPriceColumn column : kColumns) {
    out << (first ? "" : ", ") << JsonString(std::string(calc::PriceColumnName(column))) << ": "
        << JsonNumber(calc::UnitPrice(item, column).Betrag);
    first = false;
  }
  out << "}, \"totals\": {";
  first = true;
  for (TPriceColumn column : kColumns) {
    out << (first ? "" : ", ") << JsonString(std::string(calc::PriceColumnName(column))) << ": "
        << JsonNumber(calc::Total(item, column).Betrag);
    first = false;
  }
  out << "}}\n";
}

}  // namespace

void PrintItemCalculation(std::ostream& out, int32_t lv, boq::TLvPos& item,
                          const calc::TItemCosts& costs, bool json) {
  if (json) {
    PrintJson(out, lv, item, costs);
    return;
  }
  out << "Position " << item.LvBgBeschr.OZ.Get() << ": Menge "
      << GermanFigure(item.LvBeschr.FMenge, "%.3f") << ' ' << item.Unit << '\n';
  if (costs.HasElements()) {
    out << "Kostenelemente je Einheit (Kostenart, Einzelkosten, Zuschlag, Preis):\n";
    for (int i = 0; i < calc::kResultCostTypes; ++i) {
      if (costs.direct[i] == 0.0) continue;
      const auto type = static_cast<calc::TResultIndex>(i);
      out << "  " << calc::LineKindOf(type) << "  " << calc::CostTypeName(type) << "  "
          << Price(costs.direct[i]) << "  " << GermanFigure(costs.surcharge[i], "%.2f") << " %  "
          << Price(costs.price[i]) << '\n';
    }
    out << "  Summe  " << Price(costs.direct_total) << "  " << Price(costs.price_total) << '\n';
    if (costs.wage_hours != 0.0) {
      out << "  Lohnstunden je Einheit  " << GermanFigure(costs.wage_hours, "%.3f") << '\n';
    }
  } else {
    out << "keine Kostenelemente\n";
  }
  out << "Preise (EP, GP):\n";
  for (TPriceColumn column : kColumns) {
    out << "  " << ColumnTitle(column) << "  " << Price(calc::UnitPrice(item, column).Betrag)
        << "  " << GermanMoney(calc::Total(item, column).Betrag) << '\n';
  }
}

}  // namespace korvan::app
