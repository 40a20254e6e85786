#pragma once

#include <string>

#include "exchange/gaeb_xml/gaeb_document.h"

namespace korvan::exchange::gaeb_xml {

// Writes the document as GAEB DA XML of its version: the XML declaration (UTF-8), the
// root with the version's and phase's namespace, then the tree in the order it holds,
// indented two blanks per level. Elements of text markup (p, span) and every element
// with mixed content are written on one line without added blanks, so that their text
// reads back unchanged. Characters that XML cannot carry are escaped; control characters
// other than tab and line breaks are dropped.
std::string WriteGaebXml(const TGaebDocument& document);

// Writes the document to a file through a temporary file beside it that is then renamed,
// so that a failed write never leaves half a file under the name and never touches an
// older file of that name. Throws std::runtime_error naming the file and the reason.
void WriteGaebXmlFile(const TGaebDocument& document, const std::string& path);

}  // namespace korvan::exchange::gaeb_xml
