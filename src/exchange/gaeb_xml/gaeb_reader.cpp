#include "exchange/gaeb_xml/gaeb_reader.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <climits>
#include <fstream>
#include <memory>
#include <sstream>

namespace korvan::exchange::gaeb_xml {
namespace {

constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOCDATA | XML_PARSE_BIG_LINES;

struct DocFree {
  void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
struct XmlCharFree {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
struct ContextFree {
  void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};

int LineAt(std::string_view xml, size_t offset) {
  int line = 1;
  for (size_t i = 0; i < offset && i < xml.size(); ++i) {
    if (xml[i] == '\n') ++line;
  }
  return line;
}

// The position of a document type declaration in the prolog, if there is one: after an
// optional byte-order mark, blanks, processing instructions and comments.
std::optional<size_t> DoctypeInProlog(std::string_view xml) {
  size_t at = xml.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
  while (at < xml.size()) {
    const char c = xml[at];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++at;
    } else if (xml.compare(at, 2, "<?") == 0) {
      const size_t end = xml.find("?>", at + 2);
      if (end == std::string_view::npos) return std::nullopt;
      at = end + 2;
    } else if (xml.compare(at, 4, "<!--") == 0) {
      const size_t end = xml.find("-->", at + 4);
      if (end == std::string_view::npos) return std::nullopt;
      at = end + 3;
    } else if (xml.compare(at, 2, "<!") == 0) {
      return at;
    } else {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::string Trimmed(const std::string& message) {
  size_t end = message.size();
  while (end > 0 && (message[end - 1] == '\n' || message[end - 1] == ' ')) --end;
  return message.substr(0, end);
}

void CollectError(void* findings, xmlErrorPtr error) {
  if (error == nullptr) return;
  auto* list = static_cast<TGaebFindings*>(findings);
  const TGaebFindingKind kind =
      error->level == XML_ERR_WARNING ? TGaebFindingKind::kWarning : TGaebFindingKind::kError;
  list->push_back(
      {kind, error->line, "XML nicht lesbar: " + Trimmed(error->message ? error->message : "")});
}

std::string TextOf(const xmlChar* content) {
  return content == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(content));
}

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

int LineOf(const xmlNode* node) {
  const long line = xmlGetLineNo(node);
  return line < 0 || line > INT_MAX ? 0 : static_cast<int>(line);
}

// A name with the prefix it was written with, so that foreign elements and attributes
// (xsi:schemaLocation) are written back as they came.
std::string QualifiedName(const xmlNs* ns, const xmlChar* name) {
  if (ns == nullptr || ns->prefix == nullptr) return TextOf(name);
  return TextOf(ns->prefix) + ":" + TextOf(name);
}

// The root's default namespace is the version's and is written anew by the writer; every
// other namespace declaration is kept as an attribute so that foreign content keeps its
// namespace.
TGaebElement ElementOf(const xmlNode* node, TGaebFindings& findings, bool root = false) {
  TGaebElement element(QualifiedName(node->ns, node->name));
  element.line = LineOf(node);
  for (const xmlNs* ns = node->nsDef; ns; ns = ns->next) {
    if (ns->prefix != nullptr) {
      element.SetAttribute("xmlns:" + TextOf(ns->prefix), TextOf(ns->href));
    } else if (!root) {
      element.SetAttribute("xmlns", TextOf(ns->href));
    }
  }
  for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
    std::unique_ptr<xmlChar, XmlCharFree> value(
        xmlNodeListGetString(node->doc, attribute->children, 1));
    element.attributes.emplace_back(QualifiedName(attribute->ns, attribute->name),
                                    TextOf(value.get()));
  }
  std::vector<std::pair<std::string, int>> runs;
  bool any_element = false;
  bool any_content = false;
  for (const xmlNode* child = node->children; child; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) {
      any_element = true;
    } else if (child->type == XML_TEXT_NODE && !IsBlank(TextOf(child->content))) {
      any_content = true;
    } else if (child->type == XML_ENTITY_REF_NODE) {
      findings.push_back({TGaebFindingKind::kError, LineOf(child),
                          "Entity-Verweis \"&" + TextOf(child->name) + ";\" wird nicht aufgelöst"});
    }
  }
  const bool keep_blank_runs = any_content || element.name == "p" || element.name == "span";
  for (const xmlNode* child = node->children; child; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) {
      element.children.push_back(ElementOf(child, findings));
    } else if (child->type == XML_TEXT_NODE) {
      const std::string run = TextOf(child->content);
      if (!any_element) {
        element.text += run;
      } else if (keep_blank_runs || !IsBlank(run)) {
        if (!element.children.empty() && element.children.back().IsTextNode()) {
          element.children.back().text += run;
        } else {
          element.AddText(run).line = LineOf(child);
        }
      }
    }
  }
  return element;
}

std::string NamespaceOf(const xmlNode* root) {
  return root->ns != nullptr ? TextOf(root->ns->href) : std::string();
}

// Version from the namespace: ".../DA83/3.3" or the single 3.1 namespace.
std::optional<TGAEBFormat> FormatOfNamespace(const std::string& uri) {
  constexpr std::string_view kPrefix = "http://www.gaeb.de/GAEB_DA_XML/";
  if (uri == "http://www.gaeb.de/GAEB_DA_XML/200407") return TGAEBFormat::gfXML;
  if (uri.compare(0, kPrefix.size(), kPrefix) != 0) return std::nullopt;
  const size_t slash = uri.rfind('/');
  return XmlFormatOfVersion(std::string_view(uri).substr(slash + 1));
}

void ReadVersionAndPhase(const xmlNode* root, TGaebDocument& document, TGaebFindings& findings) {
  const std::string uri = NamespaceOf(root);
  const std::optional<TGAEBFormat> format = FormatOfNamespace(uri);
  if (format) {
    document.format = *format;
  } else {
    findings.push_back({TGaebFindingKind::kWarning, LineOf(root),
                        "Namensraum \"" + uri +
                            "\" ist keiner GAEB-DA-XML-Version 3.1 bis 3.3 "
                            "zugeordnet; gelesen wird wie 3.3"});
  }
  document.phase = 0;
  for (const char* branch : {"Award", "ElementalCosting"}) {
    const TGaebElement* dp = document.root.Find(std::string(branch) + "/DP");
    if (dp == nullptr) continue;
    if (const std::optional<TGaebPhase> phase = PhaseOfDpText(dp->text)) {
      document.phase = *phase;
    } else {
      findings.push_back(
          {TGaebFindingKind::kError, dp->line, "DP \"" + dp->text + "\" ist keine Austauschphase"});
    }
    return;
  }
}

}  // namespace

TGaebReadResult ReadGaebXml(std::string_view xml) {
  TGaebReadResult result;
  if (const std::optional<size_t> doctype = DoctypeInProlog(xml)) {
    result.findings.push_back({TGaebFindingKind::kError, LineAt(xml, *doctype),
                               "Dokumenttyp-Deklaration (<!DOCTYPE ...>) ist nicht erlaubt: "
                               "GAEB-Dateien laden keine DTD und deklarieren keine Entities"});
    return result;
  }
  if (xml.size() > static_cast<size_t>(INT_MAX)) {
    result.findings.push_back({TGaebFindingKind::kError, 0, "Datei ist zu groß"});
    return result;
  }
  std::unique_ptr<xmlParserCtxt, ContextFree> context(xmlNewParserCtxt());
  if (!context) {
    result.findings.push_back({TGaebFindingKind::kError, 0, "XML-Leser nicht verfügbar"});
    return result;
  }
  xmlSetStructuredErrorFunc(&result.findings, &CollectError);
  std::unique_ptr<xmlDoc, DocFree> doc(xmlCtxtReadMemory(
      context.get(), xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, kParseOptions));
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  if (!doc || !context->wellFormed) {
    if (result.findings.empty()) {
      result.findings.push_back({TGaebFindingKind::kError, 0, "XML nicht lesbar"});
    }
    return result;
  }
  if (doc->intSubset != nullptr) {
    result.findings.push_back({TGaebFindingKind::kError, LineOf(xmlDocGetRootElement(doc.get())),
                               "Dokumenttyp-Deklaration ist nicht erlaubt"});
    return result;
  }
  const xmlNode* root = xmlDocGetRootElement(doc.get());
  if (root == nullptr) {
    result.findings.push_back({TGaebFindingKind::kError, 0, "Datei hat kein Wurzelelement"});
    return result;
  }
  TGaebDocument document;
  document.root = ElementOf(root, result.findings, true);
  if (document.root.name != "GAEB") {
    result.findings.push_back(
        {TGaebFindingKind::kStructure, document.root.line,
         "Wurzelelement ist \"" + document.root.name + "\", erwartet \"GAEB\""});
  }
  ReadVersionAndPhase(root, document, result.findings);
  result.document = std::move(document);
  return result;
}

TGaebReadResult ReadGaebXmlFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    TGaebReadResult result;
    result.findings.push_back(
        {TGaebFindingKind::kError, 0, "Datei \"" + path + "\" kann nicht geöffnet werden"});
    return result;
  }
  std::ostringstream content;
  content << file.rdbuf();
  return ReadGaebXml(content.str());
}

}  // namespace korvan::exchange::gaeb_xml
