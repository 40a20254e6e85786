#include "app/commands/lv/partial_qty_json.h"

#include "app/cli/json_text.h"

namespace korvan::app {

std::string PartialQtyJson(const std::vector<boq::t_LvTeilmenge_2700>& rows) {
  std::string json = "[";
  for (const boq::t_LvTeilmenge_2700& row : rows) {
    const std::string source = row.BimLvContainerCode.Get();
    json += (json.size() == 1 ? "" : ", ");
    json += "{\"nr\": " + std::to_string(row.SzLVBeschr) + ", \"qty\": " + JsonNumber(row.VMenge) +
            ", \"forecast\": " + JsonNumber(row.PMenge) +
            ", \"source\": " + (source.empty() ? "null" : JsonString(source)) + "}";
  }
  return json + "]";
}

}  // namespace korvan::app
