#include "app/commands/gaeb/gaeb_import_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/cli/progress_line.h"
#include "app/commands/gaeb/finding_kind_json.h"
#include "app/commands/gaeb/gaeb_lv_import.h"
#include "app/commands/gaeb/gaeb_price_option.h"
#include "app/program/data_dir.h"
#include "exchange/gaeb_import/gaeb_import.h"

namespace korvan::app {
namespace {

using exchange::gaeb_xml::TGaebFinding;

// Progress is worth showing only for files that take a moment.
constexpr int kProgressFromEntries = 2000;

void PrintJson(std::ostream& out, const exchange::TGaebImport& import, int32_t id,
               const std::string& project, const std::string& protocol) {
  out << "{\"file\": " << JsonString(import.data.FImportPath) << ", \"lv\": " << id
      << ", \"name\": " << JsonString(import.lv.FLv().Name.Get())
      << ", \"project\": " << JsonString(project)
      << ", \"version\": " << JsonString(exchange::FormatInfo(import.format).xml_version)
      << ", \"phase\": " << import.phase
      << ", \"mask\": " << JsonString(import.lv.FOzMask().FMask())
      << ", \"groups\": " << import.groups << ", \"items\": " << import.items
      << ", \"texts\": " << import.texts << ", \"protocol\": " << JsonString(protocol)
      << ", \"findings\": [";
  for (size_t i = 0; i < import.findings.size(); ++i) {
    const TGaebFinding& finding = import.findings[i];
    out << (i == 0 ? "" : ", ") << "{\"kind\": " << JsonString(FindingKindJson(finding.kind))
        << ", \"line\": " << finding.line << ", \"message\": " << JsonString(finding.message)
        << "}";
  }
  out << "]}\n";
}

}  // namespace

void GaebImportCommand::Define(CLI::App& app) {
  app.add_option("datei", file_, "GAEB-DA-XML-Datei (X81 ... X86, XML)")->required();
  app.add_option("--name", name_, "Name des neuen LV (Vorgabe: BoQInfo/Name der Datei)");
  app.add_option("--prices", prices_,
                 "die Einheitspreise der Datei als: estimate (Schätzpreise), award "
                 "(Vergabepreise), bid (Angebotspreise), billing (Abrechnungspreise); Vorgabe "
                 "je Phase");
  app.add_flag("--no-prices", no_prices_, "keine Preise übernehmen");
  app.add_flag("--ignore-project-info", ignore_project_info_,
               "Projekt- und Vergabeangaben, Auftraggeber und Auftragnehmer ignorieren");
  app.add_flag("--ignore-currency", ignore_currency_, "Währung der Datei ignorieren");
  app.add_option("--project", project_,
                 "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
  app.add_flag("--json", json_, "Ausgabe als JSON für Skripte");
  AddDataDirOption(app, data_dir_);
}

exchange::TGaebImportOptions GaebImportCommand::Options() const {
  exchange::TGaebImportOptions options;
  options.prices = !no_prices_;
  if (!prices_.empty()) {
    const exchange::TUPKind kind = PriceKindOption(prices_);
    if (no_prices_) throw UsageError("--prices und --no-prices schließen sich aus");
    options.price_kind = kind;
  }
  options.ignore_project_info = ignore_project_info_;
  options.ignore_currency = ignore_currency_;
  options.lv_name = name_;
  return options;
}

void GaebImportCommand::PrintText(std::ostream& out, std::ostream& err,
                                  const GaebLvImported& imported) const {
  for (const TGaebFinding& finding : imported.import.findings) {
    err << file_ << ':' << finding.line << ": " << exchange::gaeb_xml::FindingKindText(finding.kind)
        << ": " << finding.message << '\n';
  }
  out << ImportedLvText(imported, file_) << '\n';
}

int GaebImportCommand::Run(Streams& streams) {
  const exchange::TGaebImportOptions options = Options();
  GaebLvImported imported;
  {
    ProgressLine progress(streams.err);
    imported =
        ImportGaebLv(data_dir_, project_, file_, options, streams.err, [&](int done, int total) {
          if (total >= kProgressFromEntries) {
            progress.Show("GAEB-Einlesen", done, total);
          }
        });
  }
  if (json_) {
    PrintJson(streams.out, imported.import, imported.id, imported.project, imported.protocol);
  } else {
    PrintText(streams.out, streams.err, imported);
  }
  return kExitOk;
}

}  // namespace korvan::app
