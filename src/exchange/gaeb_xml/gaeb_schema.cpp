#include "exchange/gaeb_xml/gaeb_schema.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <memory>
#include <vector>

namespace korvan::exchange::gaeb_xml {
namespace {

struct SchemaParserFree {
  void operator()(xmlSchemaParserCtxt* context) const { xmlSchemaFreeParserCtxt(context); }
};
struct SchemaFree {
  void operator()(xmlSchema* schema) const { xmlSchemaFree(schema); }
};
struct ValidFree {
  void operator()(xmlSchemaValidCtxt* context) const { xmlSchemaFreeValidCtxt(context); }
};
struct DocFree {
  void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};

std::string Trimmed(const char* message) {
  std::string text = message != nullptr ? message : "";
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

void Collect(void* findings, xmlErrorPtr error) {
  if (error == nullptr) return;
  static_cast<TGaebFindings*>(findings)->push_back(
      {error->level == XML_ERR_WARNING ? TGaebFindingKind::kWarning : TGaebFindingKind::kError,
       error->line, "Schema: " + Trimmed(error->message)});
}

// Routes libxml2's messages into a findings list while it lives.
class ErrorRoute {
 public:
  explicit ErrorRoute(TGaebFindings& findings) { xmlSetStructuredErrorFunc(&findings, &Collect); }
  ~ErrorRoute() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
  ErrorRoute(const ErrorRoute&) = delete;
  ErrorRoute& operator=(const ErrorRoute&) = delete;
};

}  // namespace

std::optional<std::string> SchemaFileOfPhase(const std::string& folder, TGaebPhase phase) {
  const std::string prefix = "GAEB_DA_XML_" + std::to_string(phase) + "_3.3_";
  std::vector<std::string> found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind(prefix, 0) == 0 && entry.path().extension() == ".xsd") {
      found.push_back(entry.path().string());
    }
  }
  if (found.empty()) return std::nullopt;
  return *std::max_element(found.begin(), found.end());  // the newest schema date
}

TGaebFindings ValidateAgainstSchema(const std::string& xml, const std::string& schema_file) {
  TGaebFindings findings;
  if (xml.find("<!DOCTYPE") != std::string::npos || xml.size() > static_cast<size_t>(INT_MAX)) {
    findings.push_back({TGaebFindingKind::kError, 0,
                        "Schema: Dokument nicht prüfbar (Dokumenttyp-Deklaration oder zu groß)"});
    return findings;
  }
  ErrorRoute route(findings);
  std::unique_ptr<xmlSchemaParserCtxt, SchemaParserFree> parser(
      xmlSchemaNewParserCtxt(schema_file.c_str()));
  std::unique_ptr<xmlSchema, SchemaFree> schema(parser ? xmlSchemaParse(parser.get()) : nullptr);
  if (!schema) {
    findings.push_back(
        {TGaebFindingKind::kError, 0, "Schema \"" + schema_file + "\" kann nicht gelesen werden"});
    return findings;
  }
  std::unique_ptr<xmlDoc, DocFree> doc(xmlReadMemory(xml.data(), static_cast<int>(xml.size()),
                                                     nullptr, nullptr,
                                                     XML_PARSE_NONET | XML_PARSE_BIG_LINES));
  if (!doc) return findings;
  std::unique_ptr<xmlSchemaValidCtxt, ValidFree> validation(xmlSchemaNewValidCtxt(schema.get()));
  if (validation) xmlSchemaValidateDoc(validation.get(), doc.get());
  return findings;
}

}  // namespace korvan::exchange::gaeb_xml
