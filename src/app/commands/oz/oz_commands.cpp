#include "app/commands/oz/oz_commands.h"

#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "boq/oz/lv_oz_mask.h"
#include "boq/oz/oz_format.h"
#include "boq/oz/oz_hierarchy.h"

namespace korvan::app {
namespace {

// An LV header holds masks of up to 20 characters; a longer one could never be stored.
void RequireStorableMask(const std::string& mask) {
  if (mask.empty()) throw UsageError("Die OZ-Maske ist leer.");
  if (mask.size() > boq::kMaxOzMaskLength) {
    throw UsageError("Die OZ-Maske \"" + mask + "\" ist länger als " +
                     std::to_string(boq::kMaxOzMaskLength) + " Zeichen.");
  }
}

void PrintMaskJson(std::ostream& out, const boq::TLvOzMask& mask) {
  out << "{\"mask\": " << JsonString(mask.FMask()) << ", \"max_len\": " << mask.FMaxLen()
      << ", \"indexed\": " << (mask.FIsIndexed() ? "true" : "false")
      << ", \"max_level\": " << mask.FMaxLevel()
      << ", \"begin_pos_index\": " << mask.FBeginPosIndex()
      << ", \"end_pos_index\": " << mask.FEndPosIndex() << ", \"levels\": [";
  const std::vector<boq::THierarchyLevel> levels = boq::HierarchyFromMask(mask.FMask());
  for (std::size_t i = 0; i < levels.size(); ++i) {
    out << (i == 0 ? "" : ", ") << "{\"level\": " << levels[i].SzLv
        << ", \"length\": " << static_cast<int>(levels[i].Laenge)
        << ", \"label\": " << JsonString(levels[i].Bez)
        << ", \"type\": " << JsonString(levels[i].Typ) << "}";
  }
  out << "]}\n";
}

void PrintMaskText(std::ostream& out, const boq::TLvOzMask& mask) {
  out << "Maske:            " << mask.FMask() << '\n'
      << "Länge:            " << mask.FMaxLen() << '\n'
      << "Index:            " << (mask.FIsIndexed() ? "ja" : "nein") << '\n'
      << "Stufen:           " << mask.FMaxLevel() << '\n'
      << "Positionsteil:    Zeichen " << mask.FBeginPosIndex() << " bis " << mask.FEndPosIndex()
      << '\n';
  for (const boq::THierarchyLevel& level : boq::HierarchyFromMask(mask.FMask())) {
    out << "  " << level.SzLv << "  " << level.Bez << " (" << level.Typ << "), Länge "
        << static_cast<int>(level.Laenge) << '\n';
  }
}

class OzCommand : public Command {
 public:
  std::string Name() const override { return "oz"; }
  std::string Summary() const override {
    return "Ordnungszahlen: nach einer Maske formatieren, Masken erklären";
  }

  void Define(CLI::App& app) override {
    app.require_subcommand(1);
    format_ =
        app.add_subcommand("format", "Eine OZ nach einer Maske formatieren (1.2.30 -> 01.02.0030)");
    format_->add_option("mask", mask_, "OZ-Maske, z. B. 11.22.PPPP")->required();
    format_->add_option("oz", oz_, "die OZ, wie sie eingegeben wurde")->required();
    mask_command_ = app.add_subcommand("mask", "Die Felder einer OZ-Maske und ihre Stufen zeigen");
    mask_command_->add_option("mask", mask_, "OZ-Maske, z. B. 11.22.PPPP.I")->required();
    mask_command_->add_flag("--json", json_, "Ausgabe als JSON für Skripte");
  }

  int Run(Streams& streams) override {
    RequireStorableMask(mask_);
    if (format_->parsed()) {
      streams.out << boq::FormLvOZ(oz_, mask_) << '\n';
      return kExitOk;
    }
    const boq::TLvOzMask mask(mask_);
    if (json_) {
      PrintMaskJson(streams.out, mask);
    } else {
      PrintMaskText(streams.out, mask);
    }
    return kExitOk;
  }

 private:
  CLI::App* format_ = nullptr;
  CLI::App* mask_command_ = nullptr;
  std::string mask_;
  std::string oz_;
  bool json_ = false;
};

}  // namespace

void AddOzCommands(CommandList& commands) {
  commands.push_back(std::make_unique<OzCommand>());
}

}  // namespace korvan::app
