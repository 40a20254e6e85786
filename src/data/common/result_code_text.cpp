#include "data/common/result_code_text.h"

#include <utility>

#include "storage/db_error_translate.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

// Codes below the kernel's own range come from the key file layer and the block cache.
const std::pair<int, const char*> kKeyLayerTexts[] = {
    {storage::kBlockBeyondEnd, "Schlüsseldatei kürzer als der Block, den sie enthalten soll"},
    {storage::kNoBlocksFree, "Blockpuffer zu klein"},
    {storage::kKeyLengthOutOfRange,
     "Schlüssellänge außerhalb des Bereichs oder Kopf der Schlüsseldatei unbrauchbar"},
    {storage::kKeyFileNearlyFull, "Schlüsseldatei fast voll"},
    {storage::kKeyFileFull, "Schlüsseldatei voll"},
    {storage::kKeyDuplicate, "doppelter Schlüssel"},
    {storage::kKeyIndexEmpty, "Schlüsseldatei leer"},
    {storage::kKeyNotFoundOnDelete, "Schlüssel nicht gefunden"},
    {storage::kKeyNoMatch, "kein passender Schlüssel"},
    {storage::kKeyFileCorrupt, "Schlüsseldatei beschädigt: Knoten oder Kopf unbrauchbar"},
    {storage::kKeyFileUnknownVersion, "unbekannte Version der Schlüsseldatei"},
};

}  // namespace

std::string ResultCodeText(int code) {
  for (const auto& [known, text] : kKeyLayerTexts) {
    if (known == code) return std::to_string(code) + " (" + text + ")";
  }
  return std::to_string(code) + " (" + storage::KernelErrorTranslate().GetErrorString(code) + ")";
}

}  // namespace korvan::data
