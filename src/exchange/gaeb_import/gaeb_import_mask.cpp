// The OZ mask of an imported LV from the file's breakdown: each BoQ level (or lot) a run
// of its level digit, the item part a run of "P", an index level ".I". Files whose
// breakdown lacks levels or is shorter than their numbers are read by the numbers they
// hold, with a warning: the numbers are what the user knows the entries by.
#include <algorithm>
#include <string>
#include <vector>

#include "boq/model/lv_editing.h"
#include "exchange/gaeb_import/gaeb_import_context.h"

namespace korvan::exchange::gaeb_import {
namespace {

constexpr int kMaxGroupLevels = 5;

// What the body's numbers need: the longest RNoPart of sections at each depth, of
// items, and whether an item carries an index.
struct TNumbersUsed {
  std::vector<size_t> section_length;  // by depth, 0-based
  size_t item_length = 0;
  bool index = false;
};

void Scan(const TGaebElement& body, size_t depth, TNumbersUsed& used) {
  for (const TGaebElement& child : body.children) {
    const size_t length = child.Attribute("RNoPart").value_or("").size();
    if (child.name == "BoQCtgy") {
      if (used.section_length.size() <= depth) used.section_length.resize(depth + 1, 1);
      used.section_length[depth] = std::max(used.section_length[depth], length);
      if (const TGaebElement* inner = child.Child("BoQBody")) Scan(*inner, depth + 1, used);
    } else if (child.name == "Itemlist") {
      Scan(child, depth, used);
    } else if (child.name == "Item" || child.name == "MarkupItem") {
      used.item_length = std::max(used.item_length, length);
      used.index = used.index || child.Attribute("RNoIndex").has_value();
    }
  }
}

struct TLevels {
  std::vector<int> groups;  // lengths of the group levels
  int item = 0;             // 0: the breakdown has no item level
  bool index = false;
};

TLevels LevelsOfBreakdown(TImportContext& context, const TGaebElement& boq_info) {
  TLevels levels;
  for (const TGaebElement& bkdn : boq_info.children) {
    if (bkdn.name != "BoQBkdn") continue;
    context.Use(bkdn);
    TAvaGXmlBoQBkdnItem level;
    const std::optional<std::string> type_text = context.TakeText(bkdn, "Type");
    level.Type = type_text ? BoQBkdnTypeOf(*type_text) : std::nullopt;
    level.LblBoQBkdn = context.TakeText(bkdn, "LblBoQBkdn");
    level.Length = context.TakeInteger(bkdn, "Length", 1, 14);
    level.Num = context.TakeYes(bkdn, "Num");
    if (const std::optional<std::string> alignment = context.TakeText(bkdn, "Alignment")) {
      level.Alignment =
          *alignment == "right" ? TBoQBkdnAligment::bbaRight : TBoQBkdnAligment::bbaLeft;
    }
    context.Result().data.FBoQInfo.BoQBkdns.push_back(level);
    if (!level.Type || !level.Length) {
      context.ReadBad(bkdn.line, "BoQBkdn",
                      "BoQBkdn ohne gültige Art (BoQLevel, Lot, Item, Index) oder Länge 1 bis "
                      "14: die Stufe wird aus den Ordnungszahlen bestimmt");
      continue;
    }
    switch (*level.Type) {
      case TBoQBkdnType::bbtLot:
      case TBoQBkdnType::bbtBoQLevel:
        if (levels.item != 0) {
          context.Warn(bkdn.line, "BoQBkdn: eine Stufe nach der Position wird übergangen");
        } else {
          levels.groups.push_back(*level.Length);
        }
        break;
      case TBoQBkdnType::bbtItem:
        levels.item = *level.Length;
        break;
      case TBoQBkdnType::bbtIndex:
        levels.index = true;
        if (*level.Length != 1) {
          context.Warn(bkdn.line, "Index der Länge " + std::to_string(*level.Length) +
                                      ": das LV führt einen Index von einem Zeichen");
        }
        break;
    }
  }
  return levels;
}

// Levels the numbers need and the breakdown lacks, and lengths it gives too short.
void FitToNumbers(TImportContext& context, int line, const TNumbersUsed& used, TLevels& levels) {
  if (used.section_length.size() > levels.groups.size()) {
    context.Warn(line, "Gliederung (BoQBkdn) mit " + std::to_string(levels.groups.size()) +
                           " Stufen vor der Position, die Datei hat " +
                           std::to_string(used.section_length.size()) +
                           "; die fehlenden Stufen kommen aus den Ordnungszahlen");
  }
  for (size_t depth = 0; depth < used.section_length.size(); ++depth) {
    const int needed = static_cast<int>(used.section_length[depth]);
    if (depth >= levels.groups.size()) {
      levels.groups.push_back(needed);
    } else if (levels.groups[depth] < needed) {
      context.Warn(line, "Stufe " + std::to_string(depth + 1) + " der Gliederung hat " +
                             std::to_string(levels.groups[depth]) +
                             " Stellen, die Ordnungszahlen bis " + std::to_string(needed));
      levels.groups[depth] = needed;
    }
  }
  const int item = static_cast<int>(std::max<size_t>(used.item_length, 1));
  if (levels.item == 0) {
    context.Warn(line,
                 "Gliederung (BoQBkdn) ohne Stufe Item: die Länge der Positionsnummer "
                 "kommt aus den Ordnungszahlen");
    levels.item = item;
  } else if (levels.item < item) {
    context.Warn(line, "Positionsnummern bis " + std::to_string(item) +
                           " Stellen, die Gliederung gibt " + std::to_string(levels.item));
    levels.item = item;
  }
  levels.index = levels.index || used.index;
}

}  // namespace

std::string MaskOfBreakdown(TImportContext& context, const TGaebElement& boq_info,
                            const TGaebElement* body) {
  TLevels levels = LevelsOfBreakdown(context, boq_info);
  TNumbersUsed used;
  if (body != nullptr) Scan(*body, 0, used);
  FitToNumbers(context, boq_info.line, used, levels);
  if (levels.groups.size() > kMaxGroupLevels) {
    Refuse(context.File(), boq_info.line,
           "die Gliederung hat " + std::to_string(levels.groups.size()) +
               " Stufen vor der Position; erwartet höchstens 5");
  }
  std::string mask;
  char digit = '1';
  for (const int length : levels.groups) {
    mask.append(static_cast<size_t>(length), digit++).append(".");
  }
  mask.append(static_cast<size_t>(levels.item), 'P');
  if (levels.index) mask += ".I";
  if (const std::string problem = boq::CheckOzMask(mask); !problem.empty()) {
    Refuse(context.File(), boq_info.line,
           "die Gliederung ergibt die OZ-Maske \"" + mask + "\": " + problem);
  }
  return mask;
}

}  // namespace korvan::exchange::gaeb_import
