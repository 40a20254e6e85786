// `korvan list <module>`: prints a data module's rows under their German captions.
#include "app/commands/lists/list_command.h"

#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/commands/lists/data_module_registry.h"
#include "app/commands/lists/master_data_session.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "data/component/column_view.h"

namespace korvan::app {
namespace {

size_t Width(const std::string& utf8) {
  return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

// Text columns are left-aligned, numbers right-aligned, each padded to its widest cell.
void PrintTable(const std::vector<std::vector<std::string>>& cells, const std::vector<bool>& right,
                std::ostream& out) {
  std::vector<size_t> widths(right.size(), 0);
  for (const auto& line : cells) {
    for (size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], Width(line[i]));
  }
  for (const auto& line : cells) {
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
      const std::string padding(widths[i] - Width(line[i]), ' ');
      if (i > 0) text += "  ";
      text += right[i] ? padding + line[i] : line[i] + (i + 1 < line.size() ? padding : "");
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << '\n';
  }
}

}  // namespace

void ListCommand::Define(CLI::App& app) {
  app.add_option("modul", module_, "Datenmodul: " + DataModuleNames(ProgramTables()))->required();
  AddDataDirOption(app, data_dir_);
}

int ListCommand::Run(Streams& streams) {
  if (!IsDataModule(ProgramTables(), module_)) {
    streams.err << "Unbekanntes Datenmodul \"" << module_
                << "\" (bekannt: " << DataModuleNames(ProgramTables()) << ")\n";
    return kExitUsage;
  }
  MasterDataSession session(ProgramTables(), data_dir_, false);
  const std::unique_ptr<data::TTableListModule> module =
      MakeDataModule(ProgramTables(), module_, session.Db());
  data::TCData& cdata = module->CData1;
  const data::TColumnStructure& columns = cdata.Struktur();

  std::vector<std::vector<std::string>> cells(1, {"Zeile"});
  std::vector<bool> right{true};
  for (const data::TColumnDef& column : columns.Columns()) {
    cells[0].push_back(data::ColumnCaption(column));
    right.push_back(data::ColumnIsNumber(column));
  }
  for (int z = 1; z <= cdata.GetRmax(); ++z) {
    const data::TStringList values = cdata.Data2Screen(z);
    std::vector<std::string> line{std::to_string(z)};
    for (const data::TColumnDef& column : columns.Columns()) {
      const auto at = static_cast<size_t>(column.Spalte);
      line.push_back(at < values.size() ? values[at] : std::string());
    }
    cells.push_back(std::move(line));
  }
  PrintTable(cells, right, streams.out);
  return kExitOk;
}

}  // namespace korvan::app
