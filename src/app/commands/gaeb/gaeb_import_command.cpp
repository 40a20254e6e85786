#include "app/commands/gaeb/gaeb_import_command.h"

#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/cli/progress_line.h"
#include "app/commands/gaeb/gaeb_price_option.h"
#include "app/commands/lv/lv_project.h"
#include "app/program/data_dir.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos_list_io.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_import/gaeb_import_store.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {
namespace {

using exchange::gaeb_xml::TGaebFinding;

constexpr const char* kProtocolFile = "Importprotokoll.txt";
// Progress is worth showing only for files that take a moment.
constexpr int kProgressFromEntries = 2000;

std::string_view JsonKind(exchange::gaeb_xml::TGaebFindingKind kind) {
  switch (kind) {
    case exchange::gaeb_xml::TGaebFindingKind::kWarning:
      return "warning";
    case exchange::gaeb_xml::TGaebFindingKind::kHint:
      return "hint";
    case exchange::gaeb_xml::TGaebFindingKind::kStructure:
      return "structure";
    default:
      return "error";
  }
}

// The LV's name must be new in the project and fit an LV.
void CheckName(LvProject& target, const exchange::TGaebImport& import) {
  const boq::NewLv lv{import.lv.FLv().Name.Get(), import.lv.FOzMask().FMask()};
  if (lv.name.empty()) {
    throw CommandError(import.data.FImportPath +
                       ": die Datei nennt keinen Namen des LV (BoQInfo/Name); --name gibt ihn");
  }
  if (const std::string problem = boq::CheckNewLv(lv); !problem.empty()) {
    throw CommandError(problem + " (--name gibt einen anderen Namen)");
  }
  target.RequireFreeLvName(lv.name, "; --name gibt dem eingelesenen LV einen anderen Namen");
}

// The whole file is read before anything is stored: a refused file stores nothing.
exchange::TGaebImport ReadFile(const std::string& file, const exchange::TGaebImportOptions& options,
                               Streams& streams) {
  try {
    ProgressLine progress(streams.err);
    return exchange::ImportGaebFile(file, options, [&](int done, int total) {
      if (total >= kProgressFromEntries) progress.Show("GAEB-Einlesen", done, total);
    });
  } catch (const exchange::EGaebImportError& error) {
    throw CommandError(std::string(error.what()) + "; es wurde nichts gespeichert");
  }
}

// The protocol is a help, not the result: a protocol that cannot be written is a warning.
std::string WriteProtocol(const LvProject& target, const exchange::TGaebImport& import,
                          Streams& streams) {
  const std::string protocol = (std::filesystem::path(target.Directory()) / kProtocolFile).string();
  try {
    storage::WriteFileAtomically(protocol, exchange::ImportProtocolText(import),
                                 storage::Durability::kAtomic);
  } catch (const std::exception& error) {
    streams.err << "Warnung: " << kProtocolFile << " nicht geschrieben: " << error.what() << '\n';
  }
  return protocol;
}

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
    out << (i == 0 ? "" : ", ") << "{\"kind\": " << JsonString(JsonKind(finding.kind))
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
                                  const exchange::TGaebImport& import, int32_t id) const {
  for (const TGaebFinding& finding : import.findings) {
    err << file_ << ':' << finding.line << ": " << exchange::gaeb_xml::FindingKindText(finding.kind)
        << ": " << finding.message << '\n';
  }
  out << "LV " << id << " \"" << import.lv.FLv().Name.Get() << "\" aus " << file_
      << " eingelesen (GAEB DA XML " << exchange::FormatInfo(import.format).xml_version
      << ", Phase " << exchange::PhaseCaption(import.phase) << "): " << import.groups
      << (import.groups == 1 ? " Gruppe, " : " Gruppen, ") << import.items
      << (import.items == 1 ? " Position, " : " Positionen, ") << import.texts
      << (import.texts == 1 ? " Text, " : " Texte, ") << import.findings.size()
      << (import.findings.size() == 1 ? " Befund" : " Befunde") << '\n';
}

int GaebImportCommand::Run(Streams& streams) {
  const exchange::TGaebImportOptions options = Options();
  LvProject target(data_dir_, project_);
  exchange::TGaebImport import = ReadFile(file_, options, streams);
  data::TStdDb& db = target.Db(true);
  CheckName(target, import);
  int32_t id = 0;
  RunAsOneStep<std::exception>(
      target.Journal(), data::TOperationKind::okInsert,
      "LV \"" + import.lv.FLv().Name.Get() + "\" aus GAEB einlesen",
      {"es wurde nichts gespeichert",
       "die bis dahin gespeicherten Datensätze konnten nicht zurückgenommen werden",
       "das Einlesen"},
      streams.err, [&] {
        id = exchange::StoreImportedLv(db, target.TextDb(), import);
        boq::TLVPosList stored = boq::LoadLvPosList(db, target.TextDb(), id);
        target.SaveWithSums(stored, streams.err);
      });
  const std::string protocol = WriteProtocol(target, import, streams);
  if (json_) {
    PrintJson(streams.out, import, id, target.Name(), protocol);
  } else {
    PrintText(streams.out, streams.err, import, id);
  }
  return kExitOk;
}

}  // namespace korvan::app
