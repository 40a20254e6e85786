// Reads arbitrary bytes as a GAEB DA XML file. The reader must never crash, hang or trip a
// sanitizer; what it read must survive being written and read again unchanged; the
// structure and arithmetic checks, the text converter and the LV import must take
// whatever tree it gave (the import may refuse it, with its own error only), and an LV
// the import built must be one the export can walk.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace {

void ImportAndExportAgain(const korvan::exchange::gaeb_xml::TGaebDocument& document) {
  using namespace korvan::exchange;
  TGaebImport import;
  try {
    import = ImportGaebDocument(document, "fuzz.x83", {});
  } catch (const EGaebImportError&) {
    return;
  }
  if (import.groups + import.items + import.texts > import.lv.Count()) __builtin_trap();
  TGaebExportSource source;
  source.lv = import.lv;
  source.header = import.header;
  try {
    BuildGaebExport(source, {});
  } catch (const EGaebExportError&) {
    // An LV the export cannot write (mixed sections and items, numbers GAEB does not
    // allow) is refused with a message; that is all that is asked of it here.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace korvan::exchange::gaeb_xml;
  const TGaebReadResult read =
      ReadGaebXml(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!read.document) return 0;
  CheckGaebStructure(*read.document);
  CheckGaebArithmetic(*read.document);
  RichTextFromGaeb(read.document->root);
  ImportAndExportAgain(*read.document);
  TGaebDocument document = *read.document;
  document.root.name = "GAEB";
  const TGaebReadResult again = ReadGaebXml(WriteGaebXml(document));
  if (!again.document || again.document->root != document.root) __builtin_trap();
  return 0;
}
