// The BoQ body of an imported file, walked in document order: sections as groups (B),
// items (P, or L with their sub-descriptions U), remarks (H) and performance
// descriptions (A), each numbered by the section chain and the file's breakdown.
#include <string>
#include <vector>

#include "boq/oz/oz_format.h"
#include "data/records/null_values.h"
#include "exchange/gaeb_import/gaeb_import_context.h"

namespace korvan::exchange::gaeb_import {
namespace {

// The number of group levels of a mask: its distinct level digits.
int GroupLevels(const std::string& mask) {
  int levels = 0;
  for (char digit = '1'; digit <= '5'; ++digit) {
    if (mask.find(digit) != std::string::npos) ++levels;
  }
  return levels;
}

class TBodyReader {
 public:
  TBodyReader(TImportContext& context, const TGaebImportProgress& progress)
      : context_(context),
        list_(context.Result().lv),
        mask_(list_.FOzMask().FMask()),
        group_levels_(GroupLevels(mask_)),
        progress_(progress) {}

  void Read(const TGaebElement& body) {
    total_ = CountEntries(body);
    Body(body, data::kRootParentId);
  }

 private:
  int CountEntries(const TGaebElement& element) const {
    int count = 0;
    for (const TGaebElement& child : element.children) {
      if (child.name == "BoQCtgy" || child.name == "Item") ++count;
      if (child.name == "BoQCtgy" || child.name == "BoQBody" || child.name == "Itemlist") {
        count += CountEntries(child);
      }
    }
    return count;
  }

  void Body(const TGaebElement& body, int32_t parent) {
    context_.Use(body);
    for (const TGaebElement& child : body.children) {
      if (child.name == "BoQCtgy") {
        Section(child, parent);
      } else if (child.name == "Itemlist") {
        context_.Use(child);
        for (const TGaebElement& member : child.children) Member(member, parent);
      } else {
        Member(child, parent);  // remarks may stand beside the sections
      }
    }
  }

  void Member(const TGaebElement& member, int32_t parent) {
    if (member.name == "Item" || member.name == "MarkupItem") {
      Item(member, parent);
    } else if (member.name == "Remark") {
      Text(member, parent, 'H');
    } else if (member.name == "PerfDescr") {
      Text(member, parent, 'A');
    }
  }

  boq::TLvPos& Append(char kind, int32_t parent) {
    boq::TLvPos entry = boq::NewLvPos(kind);
    entry.Struktur.IdBgBeschr = context_.NextTemporaryId();
    entry.Struktur.ZuBg = parent;
    list_.Add(std::move(entry));
    return list_[list_.Count() - 1];
  }

  void Told() {
    ++done_;
    if (progress_) progress_(done_, total_);
  }

  // The RNoPart of a section or item; an absent one is reported and read as "?".
  std::string RNoPart(const TGaebElement& element) {
    std::optional<std::string> part = element.Attribute("RNoPart");
    if (!part || part->empty()) {
      context_.ReadNo(element.line, "RNoPart",
                      element.name + " ohne RNoPart: die Ordnungszahl erhält \"?\"");
      return "?";
    }
    return *part;
  }

  // The OZ of a number chain under the mask; chains shorter or longer than the
  // breakdown are reported (missing levels stand as "_").
  std::string OzOf(std::vector<std::string> parts, bool item, const std::string& index, int line) {
    const size_t wanted = static_cast<size_t>(group_levels_) + (item ? 1 : 0);
    if (parts.size() != wanted && (item || parts.size() > wanted)) {
      context_.Warn(line, "Ordnungszahl " + Joined(parts) + " hat " + std::to_string(parts.size()) +
                              " Teile, die Gliederung " + std::to_string(wanted));
    }
    while (item && parts.size() < wanted) {
      parts.insert(parts.end() - 1, std::string(GroupWidth(parts.size() - 1), '_'));
    }
    std::string oz = Joined(parts);
    if (!index.empty()) oz += "." + index;
    const std::string formatted = boq::FormLvOZ(oz, mask_);
    if (formatted.size() > boq::kMaxOzLength) {
      context_.Warn(line, "Ordnungszahl " + oz + " ist länger als 30 Zeichen");
    }
    return formatted.substr(0, boq::kMaxOzLength);
  }

  // The width of the group level at `depth` (0-based) in the mask.
  size_t GroupWidth(size_t depth) const {
    size_t start = 0;
    for (size_t i = 0; i < depth; ++i) start = mask_.find('.', start) + 1;
    return mask_.find('.', start) - start;
  }

  static std::string Joined(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) joined += (joined.empty() ? "" : ".") + part;
    return joined;
  }

  void Section(const TGaebElement& section, int32_t parent) {
    context_.Use(section);
    Told();
    chain_.push_back(RNoPart(section));
    boq::TLvPos& entry = Append('B', parent);
    entry.SetOz(OzOf(chain_, false, {}, section.line));
    if (const TGaebElement* label = context_.Take(section, "LblTx")) {
      entry.ShortText = FitShortText(context_, label->line, PlainTextOf(*label));
    }
    const std::optional<int> group = context_.TakeInteger(section, "ALNBGroupNo", 1, 999);
    const std::optional<int> serial = context_.TakeInteger(section, "ALNBSerNo", 0, 9);
    if (group) entry.LvBgBeschr.ZZGruppe = static_cast<int16_t>(*group);
    if (serial) entry.LvBgBeschr.ZZWahl = static_cast<int16_t>(*serial);
    entry.LvBgBeschr.KzEntfaellt = context_.TakeYes(section, "NotApplBoQ") ? 1 : 0;
    if (const TGaebElement* totals = context_.Take(section, "Totals")) {
      if (const std::optional<double> amount = context_.TakeDecimal(*totals, "DiscountAmt")) {
        entry.LvBg.NachlassAbs.Betrag = *amount;
      }
      if (const std::optional<double> percent = context_.TakeDecimal(*totals, "DiscountPcnt")) {
        entry.LvBgBeschr.NachlassProz = *percent;
      }
    }
    ++context_.Result().groups;
    const int32_t id = entry.Struktur.IdBgBeschr;
    if (const TGaebElement* body = section.Child("BoQBody")) Body(*body, id);
    chain_.pop_back();
  }

  void Item(const TGaebElement& item, int32_t parent) {
    context_.Use(item);
    Told();
    const std::string part = RNoPart(item);
    const std::string index = item.Attribute("RNoIndex").value_or("");
    // An item with sub-descriptions is their lead description, also where the phase's
    // file does not say so (a bid has no SumDescr).
    const bool lead = context_.TakeYes(item, "SumDescr") || item.Child("SubDescr") != nullptr;
    std::vector<std::string> parts = chain_;
    parts.push_back(part);
    boq::TLvPos& entry = Append(lead ? 'L' : 'P', parent);
    entry.SetOz(OzOf(parts, true, index, item.line));
    ReadItemValues(context_, item, entry);
    ReadEntryDescription(item, entry);
    ++context_.Result().items;
    const std::string oz(entry.Oz());
    for (const TGaebElement& sub : item.children) {
      if (sub.name != "SubDescr") continue;
      context_.Use(sub);
      context_.TakeText(sub, "SubDNo");
      boq::TLvPos& child = Append('U', parent);
      child.SetOz(oz);
      ReadItemValues(context_, sub, child);
      ReadEntryDescription(sub, child);
      ++context_.Result().items;
    }
  }

  void ReadEntryDescription(const TGaebElement& element, boq::TLvPos& entry) {
    if (const TGaebElement* description = element.Child("Description")) {
      ReadDescription(context_, *description, entry);
      entry.ShortText = FitShortText(context_, description->line, entry.ShortText);
    }
  }

  void Text(const TGaebElement& element, int32_t parent, char kind) {
    context_.Use(element);
    boq::TLvPos& entry = Append(kind, parent);
    ReadEntryDescription(element, entry);
    // A performance description is named by its label.
    if (std::optional<std::string> label = context_.TakeText(element, "PerfLbl")) {
      entry.ShortText = FitShortText(context_, element.line, *label);
    }
    ++context_.Result().texts;
  }

  TImportContext& context_;
  boq::TLVPosList& list_;
  const std::string mask_;
  const int group_levels_;
  const TGaebImportProgress& progress_;
  std::vector<std::string> chain_;
  int done_ = 0;
  int total_ = 0;
};

}  // namespace

void ReadBoQBody(TImportContext& context, const TGaebElement& body,
                 const TGaebImportProgress& progress) {
  TBodyReader(context, progress).Read(body);
}

}  // namespace korvan::exchange::gaeb_import
