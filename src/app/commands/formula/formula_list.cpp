// `korvan formula list`: the numbered formulas of the catalogue.
#include <ostream>

#include "app/cli/json_text.h"
#include "app/commands/formula/formula_catalogue_access.h"
#include "app/commands/formula/formula_command.h"

namespace korvan::app {

int RunFormulaList(const std::string& data_dir, bool named, bool json, Streams& streams) {
  FormulaCatalogueAccess catalogue(data_dir, named, streams.err);
  const std::vector<formula::TRebFormelRow> rows = catalogue.All();
  if (json) {
    std::string items;
    for (const formula::TRebFormelRow& row : rows) {
      items += (items.empty() ? "" : ", ") + std::string("{\"nr\": ") + JsonString(row.nr) +
               ", \"name\": " + JsonString(row.bezeichnung) +
               ", \"formula\": " + JsonString(row.formel) +
               ", \"columns\": " + JsonString(row.spaltentext) + "}";
    }
    streams.out << "{\"formulas\": [" << items << "]}\n";
    return kExitOk;
  }
  if (rows.empty()) streams.out << "Der Formelkatalog ist leer.\n";
  for (const formula::TRebFormelRow& row : rows) {
    streams.out << row.nr << "  " << row.bezeichnung;
    if (!row.formel.empty()) streams.out << "  " << row.formel;
    if (!row.spaltentext.empty()) streams.out << "  [" << row.spaltentext << "]";
    streams.out << '\n';
  }
  return kExitOk;
}

}  // namespace korvan::app
