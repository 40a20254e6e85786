#include "app/commands/gaeb/gaeb_lv_import.h"

#include <ostream>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/commands/gaeb/import_protocol.h"
#include "app/commands/lv/lv_project.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos_list_io.h"
#include "exchange/gaeb_import/gaeb_import_store.h"

namespace korvan::app {
namespace {

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
                               const exchange::TGaebImportProgress& progress) {
  try {
    return exchange::ImportGaebFile(file, options, progress);
  } catch (const exchange::EGaebImportError& error) {
    throw CommandError(std::string(error.what()) + "; es wurde nichts gespeichert");
  }
}

}  // namespace

GaebLvImported ImportGaebLv(const std::string& data_dir, const std::string& project,
                            const std::string& file, const exchange::TGaebImportOptions& options,
                            std::ostream& warnings, const exchange::TGaebImportProgress& progress) {
  LvProject target(data_dir, project);
  GaebLvImported result;
  result.import = ReadFile(file, options, progress);
  exchange::TGaebImport& import = result.import;
  data::TStdDb& db = target.Db(true);
  CheckName(target, import);
  RunAsOneStep<std::exception>(
      target.Journal(), data::TOperationKind::okInsert,
      "LV \"" + import.lv.FLv().Name.Get() + "\" aus GAEB einlesen",
      {"es wurde nichts gespeichert",
       "die bis dahin gespeicherten Datensätze konnten nicht zurückgenommen werden",
       "das Einlesen"},
      warnings, [&] {
        result.id = exchange::StoreImportedLv(db, target.TextDb(), import);
        boq::TLVPosList stored = boq::LoadLvPosList(db, target.TextDb(), result.id);
        target.SaveWithSums(stored, warnings);
      });
  result.project = target.Name();
  result.protocol =
      WriteImportProtocol(target.Directory(), exchange::ImportProtocolText(import), warnings);
  return result;
}

std::string ImportedLvText(const GaebLvImported& imported, const std::string& file) {
  const exchange::TGaebImport& import = imported.import;
  std::ostringstream out;
  out << "LV " << imported.id << " \"" << import.lv.FLv().Name.Get() << "\" aus " << file
      << " eingelesen (GAEB DA XML " << exchange::FormatInfo(import.format).xml_version
      << ", Phase " << exchange::PhaseCaption(import.phase) << "): " << import.groups
      << (import.groups == 1 ? " Gruppe, " : " Gruppen, ") << import.items
      << (import.items == 1 ? " Position, " : " Positionen, ") << import.texts
      << (import.texts == 1 ? " Text, " : " Texte, ") << import.findings.size()
      << (import.findings.size() == 1 ? " Befund" : " Befunde");
  return out.str();
}

}  // namespace korvan::app
