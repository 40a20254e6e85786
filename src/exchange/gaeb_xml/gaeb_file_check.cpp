#include "exchange/gaeb_xml/gaeb_file_check.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_schema.h"

namespace korvan::exchange::gaeb_xml {
namespace {

void Append(TGaebFindings& to, TGaebFindings from) {
  to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

void CheckSchema(const std::string& xml, const TGaebDocument& document,
                 const std::string& schema_dir, TGaebFileCheck& check) {
  if (document.format != TGAEBFormat::gfXML330) {
    check.findings.push_back({TGaebFindingKind::kHint, 0,
                              "Schemaprüfung nur für GAEB DA XML 3.3; die Datei ist " +
                                  std::string(FormatInfo(document.format).name)});
    return;
  }
  const std::optional<std::string> schema = SchemaFileOfPhase(schema_dir, document.phase);
  if (!schema) {
    check.findings.push_back({TGaebFindingKind::kHint, 0,
                              "Kein Schema für Phase " + std::to_string(document.phase) + " in \"" +
                                  schema_dir + "\"; Schemaprüfung entfällt"});
    return;
  }
  check.schema_checked = true;
  check.schema_file = *schema;
  Append(check.findings, ValidateAgainstSchema(xml, *schema));
}

}  // namespace

TGaebFileCheck CheckGaebFile(const std::string& path,
                             const std::optional<std::string>& schema_dir) {
  TGaebFileCheck check;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    check.findings.push_back(
        {TGaebFindingKind::kError, 0, "Datei \"" + path + "\" kann nicht geöffnet werden"});
    return check;
  }
  std::ostringstream content;
  content << file.rdbuf();
  const std::string xml = content.str();
  TGaebReadResult read = ReadGaebXml(xml);
  check.findings = std::move(read.findings);
  if (read.document) {
    Append(check.findings, CheckGaebStructure(*read.document));
    Append(check.findings, CheckGaebArithmetic(*read.document));
    if (schema_dir) CheckSchema(xml, *read.document, *schema_dir, check);
    check.document = std::move(read.document);
  }
  std::stable_sort(check.findings.begin(), check.findings.end(),
                   [](const TGaebFinding& a, const TGaebFinding& b) { return a.line < b.line; });
  return check;
}

}  // namespace korvan::exchange::gaeb_xml
