#include "app/commands/gaeb/gaeb_command.h"

#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/commands/gaeb/finding_kind_json.h"
#include "exchange/gaeb_xml/gaeb_file_check.h"

namespace korvan::app {
namespace {

using exchange::gaeb_xml::TGaebFileCheck;
using exchange::gaeb_xml::TGaebFinding;
using exchange::gaeb_xml::TGaebFindingKind;

int Count(const TGaebFileCheck& check, TGaebFindingKind kind) {
  int count = 0;
  for (const TGaebFinding& finding : check.findings) count += finding.kind == kind ? 1 : 0;
  return count;
}

void PrintText(const std::string& file, const TGaebFileCheck& check, std::ostream& out) {
  out << file;
  if (check.document) {
    out << ": " << exchange::FormatInfo(check.document->format).name << ", Phase "
        << check.document->phase;
  }
  out << '\n';
  for (const TGaebFinding& finding : check.findings) {
    out << file << ':' << finding.line << ": " << exchange::gaeb_xml::FindingKindText(finding.kind)
        << ": " << finding.message << '\n';
  }
  out << "Fehler: " << Count(check, TGaebFindingKind::kError)
      << ", Warnungen: " << Count(check, TGaebFindingKind::kWarning)
      << ", Hinweise: " << Count(check, TGaebFindingKind::kHint)
      << ", Struktur: " << Count(check, TGaebFindingKind::kStructure);
  out << (check.schema_checked ? ", Schema geprüft" : ", Schema nicht geprüft") << '\n';
}

void PrintJson(const std::string& file, const TGaebFileCheck& check, std::ostream& out) {
  out << "{\"file\":" << JsonString(file);
  if (check.document) {
    out << ",\"version\":" << JsonString(exchange::FormatInfo(check.document->format).xml_version)
        << ",\"phase\":" << check.document->phase;
  } else {
    out << ",\"version\":null,\"phase\":null";
  }
  out << ",\"schema\":" << (check.schema_checked ? JsonString(check.schema_file) : "null");
  out << ",\"counts\":{\"error\":" << Count(check, TGaebFindingKind::kError)
      << ",\"warning\":" << Count(check, TGaebFindingKind::kWarning)
      << ",\"hint\":" << Count(check, TGaebFindingKind::kHint)
      << ",\"structure\":" << Count(check, TGaebFindingKind::kStructure) << "}";
  out << ",\"findings\":[";
  for (size_t i = 0; i < check.findings.size(); ++i) {
    const TGaebFinding& finding = check.findings[i];
    out << (i > 0 ? "," : "") << "{\"kind\":" << JsonString(FindingKindJson(finding.kind))
        << ",\"line\":" << finding.line << ",\"message\":" << JsonString(finding.message) << "}";
  }
  out << "]}\n";
}

}  // namespace

void GaebCommand::Define(CLI::App& app) {
  app.require_subcommand(1);
  check_ = app.add_subcommand("check", "prüft eine GAEB-DA-XML-Datei und listet die Befunde");
  check_->add_option("datei", file_, "GAEB-DA-XML-Datei (X81 ... X89, XML)")->required();
  check_->add_option("--schemas", schemas_,
                     "Ordner mit den offiziellen Schemas GAEB DA XML 3.3 (*.xsd)");
  check_->add_flag("--json", json_, "Ausgabe als JSON");
  export_ = app.add_subcommand("export", "gibt ein LV als GAEB-DA-XML-Datei einer Phase aus");
  export_command_.Define(*export_);
  import_ = app.add_subcommand("import", "liest ein LV aus einer GAEB-DA-XML-Datei ein");
  import_command_.Define(*import_);
}

int GaebCommand::Run(Streams& streams) {
  if (export_->parsed()) return export_command_.Run(streams);
  if (import_->parsed()) return import_command_.Run(streams);
  if (!check_->parsed()) throw UsageError("ein Unterbefehl fehlt (export, import oder check)");
  std::optional<std::string> schemas;
  if (!schemas_.empty()) {
    if (!std::filesystem::is_directory(schemas_)) {
      throw UsageError("--schemas " + schemas_ + ": kein Ordner");
    }
    schemas = schemas_;
  }
  const TGaebFileCheck check = exchange::gaeb_xml::CheckGaebFile(file_, schemas);
  if (json_) {
    PrintJson(file_, check, streams.out);
  } else {
    PrintText(file_, check, streams.out);
  }
  return exchange::gaeb_xml::HasErrors(check.findings) ? kExitFailure : kExitOk;
}

}  // namespace korvan::app
