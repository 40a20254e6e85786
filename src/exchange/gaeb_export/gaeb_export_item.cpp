// Items of an exported file: numbers, flags, quantities, prices, texts and the
// sub-descriptions of a lead description.
#include <cmath>
#include <string>

#include "boq/lv/lv_codes.h"
#include "data/records/null_values.h"
#include "exchange/gaeb/gaeb_price_fields.h"
#include "exchange/gaeb/gaeb_values.h"
#include "exchange/gaeb_export/gaeb_export_context.h"

namespace korvan::exchange::gaeb_export {
namespace {

// Quantities below this are no quantities: nothing is written for them.
constexpr double kSmallestQuantity = 0.0001;
constexpr int kMaxSubDescriptions = 99;

double Rounded(double value, int decimals) {
  const double factor = std::pow(10.0, decimals);
  return std::round(value * factor) / factor;
}

bool IsRNoPart(std::string_view part, size_t max_length) {
  if (part.empty() || part.size() > max_length) return false;
  for (const char c : part) {
    const bool allowed =
        c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!allowed) return false;
  }
  return true;
}

std::vector<std::string> OzParts(std::string_view oz) {
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= oz.size()) {
    const size_t dot = std::min(oz.find('.', start), oz.size());
    std::string part(oz.substr(start, dot - start));
    while (!part.empty() && part.back() == ' ') part.pop_back();
    while (!part.empty() && part.front() == ' ') part.erase(0, 1);
    parts.push_back(std::move(part));
    start = dot + 1;
  }
  return parts;
}

std::string CheckedPart(const boq::TLvPos& entry, std::string part, size_t max_length) {
  if (!IsRNoPart(part, max_length)) {
    throw EGaebExportError(EntryName(entry) + ": \"" + part +
                           "\" ist kein Teil einer GAEB-Ordnungszahl (erwartet 1 bis " +
                           std::to_string(max_length) + " Ziffern, Buchstaben oder \"_\")");
  }
  return part;
}

struct TRNo {
  std::string part;
  std::string index;
};

TRNo ItemRNo(const TExportContext& context, const boq::TLvPos& entry) {
  std::vector<std::string> parts = OzParts(entry.Oz());
  TRNo rno;
  if (context.source.lv.FOzMask().IsIndexedOz(entry.Oz()) && parts.size() >= 2) {
    rno.index = CheckedPart(entry, parts.back(), 1);
    parts.pop_back();
  }
  rno.part = CheckedPart(entry, parts.back(), 14);
  return rno;
}

double QuantityOf(const TExportContext& context, const boq::TLvPos& entry) {
  const boq::t_LvBeschr2_DB_VERSION_201401& item = entry.LvBeschr;
  if (context.rules.bid && item.KzFrMenge != 0 && item.AngMenge != 0.0) return item.AngMenge;
  return context.options.quantity == TGaebQtyKind::kAbrechnungsMenge ? item.ReMenge : item.FMenge;
}

double UnitPriceOf(const TExportContext& context, const boq::TLvPos& entry) {
  const data::t_WaeBetrag* field = UnitPriceField(entry.LvBeschr, context.price_kind);
  return field != nullptr ? field->Betrag : entry.LvBeschr.VergabeEP.Betrag;
}

// Contingency items without total and alternatives (unless additional items) have no
// total; an omitted item keeps only its estimated one.
bool HasOwnTotal(const TExportContext& context, const boq::TLvPos& entry) {
  const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  if (common.Bedarf == 'E') return false;
  if (common.ZZWahl > 0 && common.NachtrStatus != 'Z') return false;
  return common.KzEntfaellt == 0 || context.price_kind == TUPKind::upkSchaetz;
}

// The number of the change order an item belongs to: the LV's, else its supplement number.
std::optional<int> ChangeOrderNumber(const boq::t_Lv_DB_VERSION_3100& lv) {
  if (lv.CONo >= 1 && lv.CONo <= 999) return lv.CONo;
  if (lv.NachtrNr >= 1 && lv.NachtrNr <= 999) return lv.NachtrNr;
  return std::nullopt;
}

// GAEB units have at most four characters; a longer one is cut and said so.
std::string UnitOf(const TExportContext& context, const boq::TLvPos& entry) {
  std::string unit = entry.Unit;
  while (!unit.empty() && unit.back() == ' ') unit.pop_back();
  while (!unit.empty() && unit.front() == ' ') unit.erase(0, 1);
  const std::string cut = CutToChars(unit, 4);
  if (cut.size() < unit.size()) {
    context.warnings.push_back(EntryName(entry) + ": die Einheit \"" + unit +
                               "\" ist länger als die 4 Zeichen von GAEB; geschrieben als \"" +
                               cut + "\"");
  }
  return cut;
}

bool IsNotApplicable(const TExportContext& context, const boq::TLvPos& entry) {
  return context.rules.not_appl && entry.LvBgBeschr.KzEntfaellt != 0;
}

void AddYes(TGaebElement& item, const char* name, bool set) {
  if (set) item.Add(name, std::string(kGaebYes));
}

void AddAlternative(const boq::TLvPos& entry, TGaebElement& element, const char* group_name,
                    const char* serial_name) {
  const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  if (common.ZZGruppe <= 0) return;
  if (common.ZZGruppe > 999 || common.ZZWahl < 0 || common.ZZWahl > 9) {
    throw EGaebExportError(EntryName(entry) + ": Wahlgruppe " + std::to_string(common.ZZGruppe) +
                           " / Wahlposition " + std::to_string(common.ZZWahl) +
                           " passt nicht in GAEB (Gruppe 1 bis 999, Position 0 bis 9)");
  }
  element.Add(group_name, std::to_string(common.ZZGruppe));
  element.Add(serial_name, std::to_string(common.ZZWahl));
}

void AddChangeOrder(const TExportContext& context, const boq::TLvPos& entry, TGaebElement& item) {
  if (!context.rules.item_change_orders || !entry.IsSupplement()) return;
  const std::optional<std::string_view> status = COStatusText(entry.LvBgBeschr.NachtrStatus);
  const std::optional<int> number = ChangeOrderNumber(context.Lv());
  if (!status || !number) {
    context.warnings.push_back(EntryName(entry) +
                               ": Nachtrag ohne Nachtragsnummer des LV oder ohne Status 1 bis 8; "
                               "CONo und COStatus fehlen in der Datei");
    return;
  }
  item.Add("CONo", std::to_string(*number));
  item.Add("COStatus", std::string(*status));
}

void AddReference(const TExportContext& context, const TEntryIds& ids, const boq::TLvPos& entry,
                  TGaebElement& item) {
  const int32_t target_id = entry.LvBeschr.IdBezug;
  if (target_id <= 0 || data::IsNullId(target_id)) return;
  const auto found = ids.index_of_id.find(target_id);
  const boq::TLvPos* target =
      found == ids.index_of_id.end() ? nullptr : &context.source.lv[found->second];
  if (target == nullptr || (target->Kind() != 'P' && target->Kind() != 'L')) {
    context.warnings.push_back(EntryName(entry) + ": die bezogene Position (Id " +
                               std::to_string(target_id) +
                               ") ist nicht im LV; RefRNo fehlt in der Datei");
    return;
  }
  item.Add("RefRNo").SetAttribute("IDRef", ids.ids[static_cast<size_t>(found->second)]);
}

void AddComponents(const TExportContext& context, const boq::TLvPos& entry, TGaebElement& item) {
  // The components are those of the calculated (estimated) price, of a bidder's prices, or,
  // once the LV is awarded, of the award prices: the award wrote the bid's components.
  const int count = context.Lv().PreisAnteile;
  const char status = context.Lv().Status;
  const bool awarded = boq::IsAwardedStatus(status) && context.price_kind == TUPKind::upkVergabe;
  const bool ours = context.price_kind == TUPKind::upkSchaetz || awarded ||
                    (context.source.components_of_bid && context.price_kind == TUPKind::upkAngebot);
  if (!ours || count < 2 || count > 6) return;
  for (int i = 0; i < count; ++i) {
    const double value =
        Rounded(entry.LvBeschr.EPAnteil[static_cast<size_t>(i)].Betrag, context.up_decimals);
    if (value == 0.0) continue;
    item.Add("UPComp" + std::to_string(i + 1),
             Decimal(value, context.up_decimals, 13, EntryName(entry) + ": UPComp"));
  }
}

TGaebElement SubDescriptionOf(const TExportContext& context, const boq::TLvPos& entry, int number) {
  if (number > kMaxSubDescriptions) {
    throw EGaebExportError(EntryName(entry) +
                           ": mehr als 99 Unterbeschreibungen in Folge; GAEB "
                           "zählt sie nur bis 99");
  }
  TGaebElement sub("SubDescr");
  sub.Add("SubDNo", std::to_string(number));
  if (std::optional<TGaebElement> description = DescriptionOf(context, entry)) {
    sub.Add(std::move(*description));
  }
  const double quantity = QuantityOf(context, entry);
  if (std::fabs(quantity) >= kSmallestQuantity) {
    sub.Add("Qty", Decimal(quantity, 3, 11, EntryName(entry) + ": Qty"));
    const std::string unit = context.rules.bid ? std::string() : UnitOf(context, entry);
    if (!unit.empty()) sub.Add("QU", unit);
  }
  return sub;
}

// What kind of item it is: alternative, contingency, lump sum, omitted, hourly, key,
// markup base, change order, reference.
void AddFlags(const TExportContext& context, const TEntryIds& ids, const boq::TLvPos& entry,
              TGaebElement& item) {
  const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  const boq::t_LvBeschr2_DB_VERSION_201401& part = entry.LvBeschr;
  AddAlternative(entry, item, "ALNGroupNo", "ALNSerNo");
  if (const std::optional<TProvis> provis = ProvisOfBedarf(common.Bedarf)) {
    item.Add("Provis", std::string(GaebText(*provis)));
  }
  AddYes(item, "LumpSumItem", part.LumpSumItem != 0);
  AddYes(item, "NotAppl", IsNotApplicable(context, entry));
  AddYes(item, "HourIt", part.HourIt != 0);
  AddYes(item, "KeyIt", part.KzSchwerpunktPos != 0);
  AddYes(item, "MarkupIt", part.KzZuschl != 0);
  AddChangeOrder(context, entry, item);
  AddReference(context, ids, entry, item);
}

// QtyTBD, Qty, PredQty and QU; answers the quantity written, if one was.
std::optional<double> AddQuantity(const TExportContext& context, const boq::TLvPos& entry,
                                  TGaebElement& item) {
  const TGaebPhaseRules& rules = context.rules;
  const double quantity = QuantityOf(context, entry);
  bool with_quantity = std::fabs(quantity) >= kSmallestQuantity;
  if (entry.LvBeschr.KzFrMenge != 0 && !rules.bid) {
    AddYes(item, "QtyTBD", rules.qty_tbd);
    with_quantity = with_quantity && rules.qty_with_tbd;
  }
  if (with_quantity) item.Add("Qty", Decimal(quantity, 3, 11, EntryName(entry) + ": Qty"));
  const double forecast = entry.LvBeschr.VaMenge;
  if (rules.pred_qty && std::fabs(forecast) >= kSmallestQuantity) {
    item.Add("PredQty", Decimal(forecast, 3, 11, EntryName(entry) + ": PredQty"));
  }
  if (!rules.bid) {
    // A phase that requires QU gets it even when the entry has no unit.
    const std::string unit = UnitOf(context, entry);
    if (!unit.empty() || rules.qu_required) item.Add("QU", unit);
  }
  return with_quantity ? std::optional<double>(quantity) : std::nullopt;
}

// UP with its components and IT; `counted_total` gets what the item adds to its section.
void AddPrices(const TExportContext& context, const boq::TLvPos& entry,
               const std::optional<double>& quantity, TGaebElement& item, double* counted_total) {
  const double unit_price = Rounded(UnitPriceOf(context, entry), context.up_decimals);
  item.Add("UP", Decimal(unit_price, context.up_decimals, 13, EntryName(entry) + ": UP"));
  AddComponents(context, entry, item);
  // Without a written quantity a reader would take 1 as the quantity: no total then.
  if (!quantity || !HasOwnTotal(context, entry)) return;
  const double total = Rounded(Rounded(*quantity, 3) * unit_price, 2);
  item.Add("IT", Decimal(total, 2, 13, EntryName(entry) + ": IT"));
  // An item the file marks as not applicable counts nothing, as every reader sums it.
  if (!IsNotApplicable(context, entry)) *counted_total = total;
}

}  // namespace

TEntryIds EntryIdsOf(const boq::TLVPosList& list) {
  TEntryIds ids;
  ids.ids.reserve(static_cast<size_t>(list.Count()));
  std::unordered_map<std::string, int> taken;
  for (int i = 0; i < list.Count(); ++i) {
    const int32_t id = list[i].LvBgBeschr.ID;
    std::string element_id = "ID_" + std::to_string(id);
    // An entry not saved yet has no id of its own; its place in the list stands in.
    if (id <= 0 || data::IsNullId(id) || !taken.emplace(element_id, i).second) {
      element_id = "ID_N" + std::to_string(i + 1);
    } else {
      ids.index_of_id.emplace(id, i);
    }
    ids.ids.push_back(std::move(element_id));
  }
  return ids;
}

std::string SectionRNoPart(const boq::TLvPos& entry) {
  return CheckedPart(entry, OzParts(entry.Oz()).back(), 14);
}

TGaebElement ItemOf(const TExportContext& context, const TEntryIds& ids, int index,
                    const std::vector<int>& subs, double* counted_total) {
  const boq::TLvPos& entry = context.source.lv[index];
  const TRNo rno = ItemRNo(context, entry);
  TGaebElement item("Item");
  item.SetAttribute("ID", ids.ids[static_cast<size_t>(index)]);
  item.SetAttribute("RNoPart", rno.part);
  if (!rno.index.empty()) item.SetAttribute("RNoIndex", rno.index);
  if (!context.rules.bid) AddFlags(context, ids, entry, item);
  const std::optional<double> quantity = AddQuantity(context, entry, item);
  if (context.rules.prices) AddPrices(context, entry, quantity, item, counted_total);
  if (std::optional<TGaebElement> description = DescriptionOf(context, entry)) {
    item.Add(std::move(*description));
  }
  if (entry.Kind() == 'L' && !context.rules.bid) AddYes(item, "SumDescr", true);
  int number = 0;
  for (const int sub : subs) item.Add(SubDescriptionOf(context, context.source.lv[sub], ++number));
  return item;
}

}  // namespace korvan::exchange::gaeb_export
