// `korvan lv show`: an LV's entries as people and scripts read them.
#include "app/commands/lv/lv_show_command.h"

#include <map>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_project.h"
#include "app/commands/lv/lv_totals_view.h"
#include "app/commands/lv/partial_qty_json.h"
#include "boq/model/lv_entry_totals.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/qty/item_partial_quantities.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/units/unit_list.h"
#include "boq/units/value_converter.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

std::string OptionalNumber(const std::optional<double>& value) {
  return value ? JsonNumber(*value) : "null";
}

std::string PlainLongText(const std::string& rich_text) {
  return rich_text.empty() ? std::string() : boq::PlainView(boq::ReadRtf(rich_text).text);
}

std::string StatusText(char status) {
  return status == '\0' ? "" : std::string(1, status);
}

void PrintJson(std::ostream& out, const boq::TLVPosList& list,
               const std::vector<boq::TLvEntryFigures>& figures, double total, bool long_texts,
               const std::map<int32_t, std::vector<boq::t_LvTeilmenge_2700>>& partial_qty) {
  const boq::t_Lv_DB_VERSION_3100& lv = list.FLv();
  out << "{\"lv\": {\"id\": " << lv.FId << ", \"name\": " << JsonString(lv.Name.Get())
      << ", \"status\": " << JsonString(StatusText(lv.Status))
      << ", \"mask\": " << JsonString(list.FOzMask().FMask()) << ", \"currency\": "
      << (lv.IdWae == data::kOwnerCurrencyId ? std::string("null") : std::to_string(lv.IdWae))
      << ", \"total\": " << JsonNumber(total) << ", \"totals\": " << TotalsJson(LvTotals(lv))
      << "}, \"entries\": [";
  for (int i = 0; i < list.Count(); ++i) {
    const boq::TLvPos& entry = list[i];
    const boq::TLvEntryFigures& figure = figures[static_cast<std::size_t>(i)];
    out << (i == 0 ? "" : ", ") << "{\"oz\": " << JsonString(entry.LvBgBeschr.OZ.Get())
        << ", \"kind\": " << JsonString(std::string(1, entry.Kind()))
        << ", \"level\": " << figure.depth << ", \"short_text\": " << JsonString(entry.ShortText);
    if (long_texts) out << ", \"long_text\": " << JsonString(PlainLongText(entry.LongText));
    out << ", \"qty\": " << OptionalNumber(figure.quantity)
        << ", \"unit\": " << (entry.Unit.empty() ? "null" : JsonString(entry.Unit))
        << ", \"unit_price\": " << OptionalNumber(figure.unit_price)
        << ", \"total\": " << OptionalNumber(figure.total);
    if (entry.IsGroup()) out << ", \"totals\": " << TotalsJson(GroupTotals(entry));
    const int32_t id = entry.LvBgBeschr.ID;  // out of the packed record
    const auto own = entry.IsGroup() ? partial_qty.end() : partial_qty.find(id);
    out << ", \"partial_qty\": " << (own == partial_qty.end() ? "[]" : PartialQtyJson(own->second))
        << "}";
  }
  out << "]}\n";
}

std::string Figure(const std::optional<double>& value, const char* format) {
  return value ? GermanFigure(*value, format) : std::string();
}

void PrintTree(std::ostream& out, const boq::TLVPosList& list,
               const std::vector<boq::TLvEntryFigures>& figures, double total, bool long_texts,
               const boq::TUnitList& units, const std::string& currency) {
  const boq::TAvaUiValueConverter converter({}, {});
  const boq::t_Lv_DB_VERSION_3100& lv = list.FLv();
  out << "LV " << lv.FId << " \"" << lv.Name.Get() << "\", Maske " << list.FOzMask().FMask()
      << ", Status " << StatusText(lv.Status) << ", Währung " << currency << ", " << list.Count()
      << (list.Count() == 1 ? " Eintrag" : " Einträge") << '\n';
  for (int i = 0; i < list.Count(); ++i) {
    const boq::TLvPos& entry = list[i];
    const boq::TLvEntryFigures& figure = figures[static_cast<std::size_t>(i)];
    const std::string indent(static_cast<std::size_t>(2 * (figure.depth - 1)), ' ');
    out << indent << entry.LvBgBeschr.OZ.Get() << "  " << entry.Kind() << "  " << entry.ShortText;
    if (figure.quantity)
      out << "  Menge " << QuantityText(entry, *figure.quantity, units, converter);
    if (!entry.Unit.empty()) out << ' ' << entry.Unit;
    if (figure.unit_price) out << "  EP " << Figure(figure.unit_price, "%.2f");
    if (figure.total) out << "  GP " << Figure(figure.total, "%.2f");
    if (entry.IsGroup()) out << TotalsText(GroupTotals(entry));
    out << '\n';
    if (long_texts && !entry.LongText.empty()) {
      std::string plain = PlainLongText(entry.LongText);
      std::size_t start = 0;
      while (start <= plain.size()) {
        const std::size_t end = std::min(plain.find('\n', start), plain.size());
        out << indent << "    " << plain.substr(start, end - start) << '\n';
        start = end + 1;
      }
    }
  }
  out << "Summe " << Figure(total, "%.2f") << TotalsText(LvTotals(lv)) << '\n';
}

}  // namespace

void LvShowCommand::Define(CLI::App& app) {
  AddLvArgument(app, lv_);
  app.add_flag("--long", long_texts_, "mit den Langtexten (als reiner Text)");
}

int LvShowCommand::Run(Streams& streams) {
  LvProject target(data_dir, project);
  data::TStdDb& db = target.Db(false);
  const int32_t id = target.ResolveLv(lv_);
  const boq::TLVPosList list = boq::LoadLvPosList(db, target.TextDb(), id, long_texts_);
  double total = 0.0;
  const std::vector<boq::TLvEntryFigures> figures = boq::EstimatedFigures(list, &total);
  if (json) {
    PrintJson(streams.out, list, figures, total, long_texts_, boq::AllPartialQuantities(db));
  } else {
    // An LV that records no currency of its own is in the project's.
    const int16_t currency = list.FLv().IdWae;
    PrintTree(
        streams.out, list, figures, total, long_texts_, target.Units(),
        target.CurrencySymbol(currency != data::kOwnerCurrencyId ? currency : target.Currency()));
  }
  return kExitOk;
}

}  // namespace korvan::app
