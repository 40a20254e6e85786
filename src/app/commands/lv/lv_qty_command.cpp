// `korvan lv qty`: the partial quantities of an item and the quantity they give it.
#include "app/commands/lv/lv_qty_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/lv/lv_item_target.h"
#include "app/commands/lv/partial_qty_json.h"
#include "boq/lv/project_lvs.h"
#include "boq/qty/item_partial_quantities.h"
#include "data/common/cp1252.h"

namespace korvan::app {
namespace {

std::string Figure(double value) {
  return GermanFigure(value, "%.3f");
}

void PrintList(std::ostream& out, const boq::TLvPos& item,
               const std::vector<boq::t_LvTeilmenge_2700>& rows, bool json) {
  const double quantity = item.LvBeschr.FMenge;
  if (json) {
    out << "{\"oz\": " << JsonString(item.LvBgBeschr.OZ.Get())
        << ", \"qty\": " << JsonNumber(quantity) << ", \"partial_qty\": " << PartialQtyJson(rows)
        << "}\n";
    return;
  }
  out << "Position " << item.LvBgBeschr.OZ.Get() << ": Menge " << Figure(quantity) << ' '
      << item.Unit << ", " << rows.size() << (rows.size() == 1 ? " Teilmenge" : " Teilmengen")
      << '\n';
  for (const boq::t_LvTeilmenge_2700& row : rows) {
    out << "  " << row.SzLVBeschr << "  " << Figure(row.VMenge);
    if (row.BimLvContainerCode.Length() > 0) out << "  " << row.BimLvContainerCode.Get();
    out << '\n';
  }
}

}  // namespace

void LvQtyCommand::Define(CLI::App& app) {
  AddLvArgument(app, lv_);
  app.add_option("oz", oz_, "die Position (OZ)")->required();
  app.add_option("action", action_, "add, set, remove oder list")
      ->required()
      ->check(CLI::IsMember({"add", "set", "remove", "list"}));
  app.add_option("number", number_, "die Nummer der Teilmenge (wie list sie zeigt)");
  app.add_option("--qty", qty_, "die Menge der Teilmenge, z. B. 2,5");
  app.add_option("--source", source_, "woher die Menge stammt (höchstens 50 Zeichen)");
}

int LvQtyCommand::Run(Streams& streams) {
  const bool changes = action_ != "list";
  if (changes && action_ != "remove" && !qty_) {
    throw UsageError("\"lv qty " + action_ + "\" braucht --qty.");
  }
  if ((action_ == "set" || action_ == "remove") && !number_) {
    throw UsageError("\"lv qty " + action_ + "\" braucht die Nummer der Teilmenge.");
  }
  if (action_ == "add" && number_) {
    throw UsageError("\"lv qty add\" vergibt die Nummer selbst.");
  }
  if (number_ && (*number_ < 1 || *number_ > 65535)) {
    throw UsageError("Die Nummer einer Teilmenge liegt zwischen 1 und 65535.");
  }
  const double qty = qty_ ? RequireGermanNumber(*qty_, "--qty") : 0.0;
  if (data::Utf8ToCp1252(source_).size() > boq::kSourceCapacity) {
    throw UsageError("Die Herkunft \"" + source_ + "\" ist zu lang (höchstens 50 Zeichen).");
  }
  LvItemTarget target(data_dir, project, lv_, oz_, changes);
  target.RequireQuantityItem("Teilmengen");
  boq::TLvPos& item = target.Item();
  const uint16_t number = static_cast<uint16_t>(number_.value_or(0));
  std::string done;
  if (action_ == "add") {
    target.Change("Teilmenge anfügen an " + oz_, streams.err, [&] {
      done = "Teilmenge " +
             std::to_string(boq::AddPartialQuantity(target.Db(), item, qty, source_)) + " angefügt";
    });
  } else if (action_ == "set") {
    target.Change("Teilmenge " + std::to_string(number) + " von " + oz_ + " ändern", streams.err,
                  [&] {
                    if (!boq::SetPartialQuantity(target.Db(), item, number, qty)) {
                      throw boq::EStoredLvError("Die Position " + oz_ + " hat keine Teilmenge " +
                                                std::to_string(number));
                    }
                    done = "Teilmenge " + std::to_string(number) + " geändert";
                  });
  } else if (action_ == "remove") {
    target.Change("Teilmenge " + std::to_string(number) + " von " + oz_ + " löschen", streams.err,
                  [&] {
                    if (!boq::RemovePartialQuantity(target.Db(), item, number)) {
                      throw boq::EStoredLvError("Die Position " + oz_ + " hat keine Teilmenge " +
                                                std::to_string(number));
                    }
                    done = "Teilmenge " + std::to_string(number) + " gelöscht";
                  });
  }
  const std::vector<boq::t_LvTeilmenge_2700> rows =
      boq::PartialQuantitiesOf(target.Db(), item.LvBgBeschr.ID);
  if (!done.empty() && !json) {
    streams.out << done << "; Menge der Position jetzt " << Figure(item.LvBeschr.FMenge) << '\n';
    return kExitOk;
  }
  PrintList(streams.out, item, rows, json);
  return kExitOk;
}

}  // namespace korvan::app
