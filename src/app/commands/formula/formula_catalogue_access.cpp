#include "app/commands/formula/formula_catalogue_access.h"

#include <filesystem>
#include <ostream>

#include "app/commands/lists/master_data_session.h"
#include "app/program/program_tables.h"

namespace korvan::app {

FormulaCatalogueAccess::FormulaCatalogueAccess(const std::string& data_dir, bool named,
                                               std::ostream& err) {
  std::error_code ignored;
  if (!named && !std::filesystem::is_directory(data_dir, ignored)) {
    err << "Keine Installation in " << data_dir
        << ": es gilt der eingebaute Formelkatalog (REB 23.003)\n";
    return;
  }
  session_ = std::make_unique<MasterDataSession>(ProgramTables(), data_dir, false);
  table_ = std::make_unique<formula::TTbRebFormel>(session_->Db());
  table_source_ = std::make_unique<formula::TRebFormelTableSource>(*table_);
}

FormulaCatalogueAccess::~FormulaCatalogueAccess() {
  table_source_.reset();
  table_.reset();
}

formula::TRebFormelSource& FormulaCatalogueAccess::Source() {
  if (table_source_) return *table_source_;
  return builtin_;
}

std::vector<formula::TRebFormelRow> FormulaCatalogueAccess::All() {
  if (table_) return table_->All();
  std::vector<formula::TRebFormelRow> rows;
  for (const formula::TBuiltInRebFormel& row : formula::BuiltInRebFormeln()) {
    rows.push_back({std::string(row.nr), std::string(row.bezeichnung), std::string(row.formel),
                    std::string(row.spaltentext)});
  }
  return rows;
}

}  // namespace korvan::app
