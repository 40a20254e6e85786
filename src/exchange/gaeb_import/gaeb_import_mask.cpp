// The OZ mask of an imported LV from the file's breakdown: each BoQ level (or lot) a run
// of its level digit, the item part a run of "P", an index level ".I".
#include <string>

#include "boq/model/lv_editing.h"
#include "exchange/gaeb_import/gaeb_import_context.h"

namespace korvan::exchange::gaeb_import {
namespace {

constexpr int kMaxGroupLevels = 5;

[[noreturn]] void Refuse(TImportContext& context, int line, const std::string& message) {
  throw EGaebImportError(context.File() + ":" + std::to_string(line) + ": " + message);
}

}  // namespace

std::string MaskOfBreakdown(TImportContext& context, const TGaebElement& boq_info) {
  std::string mask;
  int group_levels = 0;
  bool item = false;
  bool index = false;
  for (const TGaebElement& bkdn : boq_info.children) {
    if (bkdn.name != "BoQBkdn") continue;
    context.Use(bkdn);
    TAvaGXmlBoQBkdnItem level;
    const std::optional<std::string> type_text = context.TakeText(bkdn, "Type");
    level.Type = type_text ? BoQBkdnTypeOf(*type_text) : std::nullopt;
    level.LblBoQBkdn = context.TakeText(bkdn, "LblBoQBkdn");
    level.Length = context.TakeInteger(bkdn, "Length", 0, 14);
    level.Num = context.TakeYes(bkdn, "Num");
    if (const std::optional<std::string> alignment = context.TakeText(bkdn, "Alignment")) {
      level.Alignment =
          *alignment == "right" ? TBoQBkdnAligment::bbaRight : TBoQBkdnAligment::bbaLeft;
    }
    context.Result().data.FBoQInfo.BoQBkdns.push_back(level);
    if (!level.Type) {
      Refuse(context, bkdn.line,
             "BoQBkdn/Type \"" + type_text.value_or("") +
                 "\": erwartet BoQLevel, Lot, Item oder Index");
    }
    if (!level.Length || *level.Length == 0) {
      Refuse(context, bkdn.line, "BoQBkdn/Length: erwartet eine Länge von 1 bis 14");
    }
    const int length = *level.Length;
    if (item && *level.Type != TBoQBkdnType::bbtIndex) {
      Refuse(context, bkdn.line, "BoQBkdn: nach der Stufe Item erwartet nur noch Index");
    }
    if (!mask.empty()) mask += '.';
    switch (*level.Type) {
      case TBoQBkdnType::bbtLot:
      case TBoQBkdnType::bbtBoQLevel:
        if (++group_levels > kMaxGroupLevels) {
          Refuse(context, bkdn.line, "BoQBkdn: erwartet höchstens 5 Stufen vor der Position");
        }
        mask.append(static_cast<size_t>(length), static_cast<char>('0' + group_levels));
        break;
      case TBoQBkdnType::bbtItem:
        item = true;
        mask.append(static_cast<size_t>(length), 'P');
        break;
      case TBoQBkdnType::bbtIndex:
        if (!item || index) Refuse(context, bkdn.line, "BoQBkdn: Index erwartet nach Item");
        index = true;
        if (length != 1) {
          context.Warn(bkdn.line, "Index der Länge " + std::to_string(length) +
                                      ": das LV führt einen Index von einem Zeichen");
        }
        mask += 'I';
        break;
    }
  }
  if (!item) {
    Refuse(context, boq_info.line,
           "BoQInfo: erwartet eine Gliederung (BoQBkdn) mit der Stufe Item");
  }
  if (const std::string problem = boq::CheckOzMask(mask); !problem.empty()) {
    Refuse(context, boq_info.line, "Gliederung ergibt die OZ-Maske \"" + mask + "\": " + problem);
  }
  return mask;
}

}  // namespace korvan::exchange::gaeb_import
