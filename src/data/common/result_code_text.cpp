#include "data/common/result_code_text.h"

#include <utility>

#include "storage/db_error_translate.h"
#include "storage/db_kernel_codes.h"
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

// Kernel codes whose text in the kernel's table is not what the user should read: 4319
// comes from an open that another program's lock refused at once, and from a lock wait
// that ran out; its table text is run together and speaks of a wait in either case.
const std::pair<int, const char*> kPlainKernelTexts[] = {
    {storage::kDkSharingViolation,
     "ein anderes Programm hat die Datei exklusiv geöffnet oder hält die Sperre; später noch "
     "einmal versuchen"},
};

}  // namespace

std::string ResultCodeText(int code) {
  for (const auto& [known, text] : kPlainKernelTexts) {
    if (known == code) return std::to_string(code) + " (" + text + ")";
  }
  for (const auto& [known, text] : kKeyLayerTexts) {
    if (known == code) return std::to_string(code) + " (" + text + ")";
  }
  return std::to_string(code) + " (" + storage::KernelErrorTranslate().GetErrorString(code) + ")";
}

}  // namespace korvan::data
