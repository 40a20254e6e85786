#include "exchange/gaeb_xml/gaeb_writer.h"

#include <stdexcept>

#include "storage/file/atomic_file.h"

namespace korvan::exchange::gaeb_xml {
namespace {

void AppendEscaped(std::string& out, std::string_view text, bool in_attribute) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += in_attribute ? "&quot;" : "\"";
        break;
      case '\t':
      case '\n':
      case '\r':
        if (in_attribute) {
          out += c == '\t' ? "&#9;" : c == '\n' ? "&#10;" : "&#13;";
        } else {
          out += c == '\r' ? "&#13;" : std::string(1, c);
        }
        break;
      default:
        if (byte >= 0x20) out += c;
        break;
    }
  }
}

bool WrittenInline(const TGaebElement& element) {
  if (element.name == "p" || element.name == "span") return true;
  for (const TGaebElement& child : element.children) {
    if (child.IsTextNode()) return true;
  }
  return false;
}

void AppendStartTag(std::string& out, const TGaebElement& element) {
  out += '<';
  out += element.name;
  for (const auto& [key, value] : element.attributes) {
    out += ' ';
    out += key;
    out += "=\"";
    AppendEscaped(out, value, true);
    out += '"';
  }
}

void AppendElement(std::string& out, const TGaebElement& element, int depth, bool pretty) {
  if (element.IsTextNode()) {
    AppendEscaped(out, element.text, false);
    return;
  }
  if (pretty) out.append(static_cast<size_t>(depth) * 2, ' ');
  AppendStartTag(out, element);
  if (element.children.empty() && element.text.empty()) {
    out += "/>";
  } else {
    out += '>';
    AppendEscaped(out, element.text, false);
    const bool children_pretty = pretty && !WrittenInline(element);
    if (children_pretty && !element.children.empty()) out += '\n';
    for (const TGaebElement& child : element.children) {
      AppendElement(out, child, depth + 1, children_pretty);
    }
    if (children_pretty && !element.children.empty()) {
      out.append(static_cast<size_t>(depth) * 2, ' ');
    }
    out += "</";
    out += element.name;
    out += '>';
  }
  if (pretty) out += '\n';
}

}  // namespace

std::string WriteGaebXml(const TGaebDocument& document) {
  TGaebElement root = document.root;
  root.name = "GAEB";
  root.SetAttribute("xmlns", GaebNamespace(document.format, document.phase));
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  AppendElement(out, root, 0, true);
  return out;
}

void WriteGaebXmlFile(const TGaebDocument& document, const std::string& path) {
  // An exported file can be written again, so it needs no sync; it must only never be
  // seen half written.
  const storage::FileWriteResult written =
      storage::WriteFileAtomically(path, WriteGaebXml(document), storage::Durability::kAtomic);
  if (!written.ok()) {
    throw std::runtime_error("GAEB-Datei \"" + path +
                             "\" kann nicht geschrieben werden: " + written.ErrorText());
  }
}

}  // namespace korvan::exchange::gaeb_xml
