#include "app/commands/gaeb/gaeb_export_command.h"

#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/cli/progress_line.h"
#include "app/commands/gaeb/gaeb_lv_export.h"
#include "app/commands/gaeb/gaeb_price_option.h"
#include "app/commands/lv/lv_operation.h"
#include "app/program/data_dir.h"

namespace korvan::app {
namespace {

// Progress is worth showing only for LVs that take a moment.
constexpr int kProgressFromEntries = 2000;

}  // namespace

void GaebExportCommand::Define(CLI::App& app) {
  AddLvArgument(app, lv_);
  app.add_option("--phase", phase_, "Datenaustauschphase 81 ... 86")->required();
  app.add_option("--version", version_, "GAEB-DA-XML-Version 3.1, 3.2 oder 3.3 (Vorgabe 3.3)");
  app.add_option("--prices", prices_,
                 "Preise: estimate (Schätzpreise), award (Vergabepreise), bid (Angebotspreise), "
                 "billing (Abrechnungspreise); Vorgabe je Phase");
  app.add_option("--bidder", bidder_,
                 "das Angebot dieses Bieters (Bieter-Nr., Nummer oder Name) ausgeben; nur "
                 "Phase 84");
  app.add_option("--contract", contract_,
                 "der Vertrag (Auftrags-Nummer oder ID), dessen Positionen die Datei enthält, "
                 "z. B. ein Nachauftrag; nur Phase 86 (Vorgabe: der Hauptauftrag, ganzes LV)");
  app.add_option("-o,--output", file_,
                 "Zieldatei (Vorgabe: <Projekt>_<LV>.X8x im aktuellen Ordner)");
  app.add_flag("--short-texts-only", short_texts_only_, "ohne Langtexte (nur Kurztexte)");
  app.add_flag("--multiline-short-text", multiline_short_text_,
               "mehrzeiligen Kurztext ausgeben (sonst nur die erste Zeile)");
  app.add_flag("--fill-empty-complements", fill_empty_complements_, "leere Textergänzungen füllen");
  app.add_flag("--billing-quantity", billing_quantity_,
               "Abrechnungsmenge ausgeben (sonst die Vergabemenge)");
  app.add_flag("--vat", vat_on_sections_, "MwSt. an Bereichsgruppen ausgeben");
  app.add_option("--project", project_,
                 "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
  app.add_flag("--json", json_, "Ausgabe als JSON für Skripte");
  AddDataDirOption(app, data_dir_);
}

exchange::TGaebExportOptions GaebExportCommand::Options() const {
  exchange::TGaebExportOptions options;
  if (!exchange::ExportPhase(phase_)) {
    throw UsageError("--phase " + std::to_string(phase_) + ": erwartet 81 bis 86");
  }
  options.phase = phase_;
  const std::optional<exchange::TGAEBFormat> format = exchange::XmlFormatOfVersion(version_);
  if (!format) throw UsageError("--version " + version_ + ": erwartet 3.1, 3.2 oder 3.3");
  options.format = *format;
  if (!prices_.empty()) {
    const exchange::TUPKind kind = PriceKindOption(prices_);
    if (!exchange::PhaseCarriesPrices(phase_)) {
      throw UsageError("--prices: die Phase " + exchange::PhaseCaption(phase_) +
                       " enthält keine Preise");
    }
    options.price_kind = kind;
  }
  if (!bidder_.empty()) {
    if (phase_ != exchange::kPhaseBid) {
      throw UsageError("--bidder: das Angebot eines Bieters wird als Phase 84 ausgegeben");
    }
    if (options.price_kind != exchange::TUPKind::upkNONE &&
        options.price_kind != exchange::TUPKind::upkAngebot) {
      throw UsageError("--bidder: ausgegeben werden die Angebotspreise des Bieters");
    }
  }
  if (!contract_.empty() && phase_ != exchange::kPhaseAward) {
    throw UsageError("--contract: den Vertrag nennt die Phase 86 (Auftragserteilung)");
  }
  options.long_text = !short_texts_only_;
  options.multiline_short_text = multiline_short_text_;
  options.fill_empty_complements = fill_empty_complements_;
  options.quantity = billing_quantity_ ? exchange::TGaebQtyKind::kAbrechnungsMenge
                                       : exchange::TGaebQtyKind::kVergabeMenge;
  options.vat_on_sections = vat_on_sections_;
  return options;
}

void GaebExportCommand::PrintJson(std::ostream& out, const std::string& path, int32_t id,
                                  const std::string& version,
                                  const exchange::TGaebExportResult& result) const {
  out << "{\"file\": " << JsonString(path) << ", \"lv\": " << id << ", \"phase\": " << phase_
      << ", \"version\": " << JsonString(version) << ", \"entries\": " << result.entries
      << ", \"warnings\": [";
  for (size_t i = 0; i < result.warnings.size(); ++i) {
    out << (i == 0 ? "" : ", ") << JsonString(result.warnings[i]);
  }
  out << "]}\n";
}

int GaebExportCommand::Run(Streams& streams) {
  const GaebLvExport request{
      .lv = lv_, .options = Options(), .bidder = bidder_, .contract = contract_, .file = file_};
  GaebLvExported exported;
  {
    ProgressLine progress(streams.err);
    exported = ExportGaebLv(data_dir_, project_, request, [&](int done, int total) {
      if (total >= kProgressFromEntries) progress.Show("GAEB-Ausgabe", done, total);
    });
  }
  const exchange::TGaebExportResult& result = exported.result;
  for (const std::string& warning : result.warnings) streams.err << "Warnung: " << warning << '\n';
  const std::string version(exchange::FormatInfo(request.options.format).xml_version);
  if (json_) {
    PrintJson(streams.out, exported.path, exported.id, version, result);
    return kExitOk;
  }
  streams.out << ExportedLvText(exported, request.options) << '\n';
  return kExitOk;
}

}  // namespace korvan::app
