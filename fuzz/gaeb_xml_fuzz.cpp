// Reads arbitrary bytes as a GAEB DA XML file. The reader must never crash, hang or trip a
// sanitizer; what it read must survive being written and read again unchanged; the
// structure and arithmetic checks and the text converter must take whatever tree it gave.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace korvan::exchange::gaeb_xml;
  const TGaebReadResult read =
      ReadGaebXml(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!read.document) return 0;
  CheckGaebStructure(*read.document);
  CheckGaebArithmetic(*read.document);
  RichTextFromGaeb(read.document->root);
  TGaebDocument document = *read.document;
  document.root.name = "GAEB";
  const TGaebReadResult again = ReadGaebXml(WriteGaebXml(document));
  if (!again.document || again.document->root != document.root) __builtin_trap();
  return 0;
}
