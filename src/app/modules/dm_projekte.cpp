#include "app/modules/dm_projekte.h"

#include <algorithm>
#include <filesystem>

#include "app/cli/german_number.h"
#include "app/commands/lv/lv_project.h"
#include "app/program/current_project.h"
#include "app/program/installation.h"
#include "boq/lv/lv_codes.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/project_lvs.h"
#include "data/db/db_groups.h"
#include "data/db/path_types.h"

namespace korvan::app {
namespace {

using data::TCData;
using data::TCDataRow;
using data::TStringList;

const std::vector<std::string>& Definitions() {
  static const std::vector<std::string> definitions = {
      "Name,N,0,220,40,N,0,1,0,1,0,,0,1,48101,,,,,,",
      "Status,N,1,90,20,N,0,1,0,1,0,,0,1,48102,,,,,,",
      "Summe,W,2,110,16,N,2,1,0,1,0,,0,1,48103,,,,,,",
  };
  return definitions;
}

// The folders below the project root that hold an LV database, by name.
std::vector<std::string> ProjectNames(const data::TMachineConfig& machine) {
  std::vector<std::string> names;
  const data::DbGroupDefinition* group = data::FindDbGroup(boq::kLvDbGroup);
  std::error_code error;
  for (const auto& folder :
       std::filesystem::directory_iterator(machine.ObjektstammDirectory(), error)) {
    const std::string name = folder.path().filename().string();
    if (!folder.is_directory(error) || !IsValidProjectName(name)) continue;
    if (data::DatabaseFile(*group, data::kPathObjekt, ProjectDirectory(machine, name)).Exists()) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

TdmProjekte::TdmProjekte(std::string data_dir)
    : TSTDdataModule(kCDataId, "Projekte"), data_dir_(std::move(data_dir)) {
  CData1.SetStruktur(Definitions());
}

void TdmProjekte::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions();
}

std::vector<TdmProjekte::Line> TdmProjekte::Read() const {
  const Installation installation = LoadInstallation(RequireInstallation(data_dir_));
  std::vector<Line> lines;
  for (const std::string& project : ProjectNames(installation.machine)) {
    lines.push_back({project, 0, {project, "", ""}});
    LvProject target(data_dir_, project);
    const std::string currency = target.CurrencySymbol(target.Currency());
    for (const boq::LvSummary& lv : boq::ListLvs(target.Db(false))) {
      lines.push_back({project,
                       lv.id,
                       {lv.name, std::string(boq::LvStatusMeaning(lv.status)),
                        GermanFigure(lv.total, "%.2f") + " " + currency}});
    }
  }
  return lines;
}

void TdmProjekte::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  try {
    lines_ = Read();
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    rmax = -1;
    return;
  }
  for (const Line& line : lines_) {
    rows.push_back(
        TCDataRow{.Key = line.project + (line.lv == 0 ? "" : "/" + std::to_string(line.lv)),
                  .ZArt = line.lv == 0 ? 'P' : 'L',
                  .Level = line.lv == 0 ? 1 : 2});
  }
  rmax = static_cast<int>(rows.size());
}

void TdmProjekte::CData1C_OnGetDaten(TCData&, int z, TStringList& t, bool&, char&, char& zart) {
  if (z < 1 || z > static_cast<int>(lines_.size())) return;
  const Line& line = lines_[static_cast<size_t>(z - 1)];
  t = line.cells;
  zart = line.lv == 0 ? 'P' : 'L';
}

std::string TdmProjekte::ProjectOf(int z) const {
  if (z < 1 || z > static_cast<int>(lines_.size())) return {};
  return lines_[static_cast<size_t>(z - 1)].project;
}

int32_t TdmProjekte::LvOf(int z) const {
  if (z < 1 || z > static_cast<int>(lines_.size())) return 0;
  return lines_[static_cast<size_t>(z - 1)].lv;
}

int TdmProjekte::RowOf(const std::string& project, int32_t lv) const {
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].project == project && lines_[i].lv == lv) return static_cast<int>(i) + 1;
  }
  return 0;
}

}  // namespace korvan::app
