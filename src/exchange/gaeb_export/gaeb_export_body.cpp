// The BoQ body of an exported file: the LV's tree walked depth first, groups as
// sections, items with their sub-descriptions, notes as remarks, and the section totals.
#include <cmath>
#include <string>
#include <unordered_map>
#include <vector>

#include "data/records/null_values.h"
#include "exchange/gaeb_export/gaeb_export_context.h"

namespace korvan::exchange::gaeb_export {
namespace {

double Cents(double value) {
  return std::round(value * 100.0) / 100.0;
}

bool IsText(char kind) {
  return kind == 'H' || kind == 'A' || kind == 'E' || kind == 'K';
}

class TBodyWriter {
 public:
  TBodyWriter(const TExportContext& context, const TGaebExportProgress& progress)
      : context_(context), list_(context.source.lv), ids_(EntryIdsOf(list_)), progress_(progress) {
    std::unordered_map<int32_t, bool> is_group;
    for (int i = 0; i < list_.Count(); ++i) {
      if (list_[i].IsGroup()) is_group[list_[i].Struktur.IdBgBeschr] = true;
    }
    // An entry whose group is not in the list stands at the top, so that nothing is lost.
    for (int i = 0; i < list_.Count(); ++i) {
      const int32_t parent = list_[i].Struktur.ZuBg;
      children_[is_group.count(parent) != 0 ? parent : data::kRootParentId].push_back(i);
    }
  }

  TBodyResult Root() {
    TBodyResult result;
    result.body = Body(children_[data::kRootParentId], nullptr, &result.total);
    result.add_texts = std::move(add_texts_);
    return result;
  }

 private:
  TGaebElement Body(const std::vector<int>& children, const boq::TLvPos* owner, double* total) {
    CheckNotMixed(children, owner);
    TGaebElement body("BoQBody");
    const bool sections = HasKind(children, [](const boq::TLvPos& e) { return e.IsGroup(); });
    TGaebElement itemlist("Itemlist");
    TGaebElement& target = sections ? body : itemlist;
    for (size_t at = 0; at < children.size(); ++at) {
      const int index = children[at];
      const boq::TLvPos& entry = list_[index];
      Told();
      if (entry.IsGroup()) {
        target.Add(Section(index, total));
      } else if (entry.Kind() == 'P' || entry.Kind() == 'L') {
        std::vector<int> subs;
        while (at + 1 < children.size() && list_[children[at + 1]].Kind() == 'U') {
          subs.push_back(children[++at]);
          Told();
        }
        double counted = 0.0;
        target.Add(ItemOf(context_, ids_, index, subs, &counted));
        *total += counted;
      } else if (entry.Kind() == 'U') {
        throw EGaebExportError(EntryName(entry) +
                               ": eine Unterbeschreibung steht nicht hinter einer "
                               "Leitbeschreibung (L) oder ihren Unterbeschreibungen");
      } else if (IsText(entry.Kind())) {
        if (!context_.rules.bid) target.Add(Remark(index));
      } else if (entry.Kind() == 'T') {
        if (!context_.rules.bid) add_texts_.push_back(AddTextOf(context_, entry));
      } else {
        throw EGaebExportError(EntryName(entry) + ": unbekannte Art des Eintrags");
      }
    }
    if (!itemlist.children.empty()) body.Add(std::move(itemlist));
    return body;
  }

  template <class Predicate>
  bool HasKind(const std::vector<int>& children, Predicate predicate) const {
    for (const int index : children) {
      if (predicate(list_[index])) return true;
    }
    return false;
  }

  // GAEB holds in one body either sections or items, never both.
  void CheckNotMixed(const std::vector<int>& children, const boq::TLvPos* owner) const {
    const bool sections = HasKind(children, [](const boq::TLvPos& e) { return e.IsGroup(); });
    const bool items = HasKind(children, [](const boq::TLvPos& e) { return e.IsQuantityItem(); });
    if (!sections || !items) return;
    const std::string where = owner != nullptr ? "Gruppe " + std::string(owner->Oz())
                                               : context_.LvName() + " (oberste Ebene)";
    throw EGaebExportError(where +
                           " enthält Gruppen und Positionen nebeneinander; GAEB erlaubt in "
                           "einer Gruppe nur Untergruppen oder nur Positionen");
  }

  TGaebElement Section(int index, double* parent_total) {
    const boq::TLvPos& entry = list_[index];
    TGaebElement section("BoQCtgy");
    section.SetAttribute("ID", ids_.ids[static_cast<size_t>(index)]);
    section.SetAttribute("RNoPart", SectionRNoPart(entry));
    const TGaebPhaseRules& rules = context_.rules;
    if (!rules.bid) {
      section.Add(SectionLabelOf(context_, entry));
      if (entry.LvBgBeschr.ZZGruppe > 0 && entry.LvBgBeschr.ZZGruppe <= 999 &&
          entry.LvBgBeschr.ZZWahl >= 0 && entry.LvBgBeschr.ZZWahl <= 9) {
        section.Add("ALNBGroupNo", std::to_string(entry.LvBgBeschr.ZZGruppe));
        section.Add("ALNBSerNo", std::to_string(entry.LvBgBeschr.ZZWahl));
      }
      if (rules.section_not_appl && entry.LvBgBeschr.KzEntfaellt != 0) {
        section.Add("NotApplBoQ", "Yes");
      }
    }
    double total = 0.0;
    const auto children = children_.find(entry.Struktur.IdBgBeschr);
    if (children != children_.end()) {
      TGaebElement body = Body(children->second, &entry, &total);
      if (!body.children.empty()) section.Add(std::move(body));
    }
    if (rules.prices) {
      section.Add(
          TotalsOf(context_, total, entry.LvBg.NachlassAbs.Betrag, entry.LvBgBeschr.NachlassProz));
      *parent_total += Cents(total);
    }
    return section;
  }

  TGaebElement Remark(int index) {
    TGaebElement remark("Remark");
    remark.SetAttribute("ID", ids_.ids[static_cast<size_t>(index)]);
    remark.Add(*DescriptionOf(context_, list_[index]));
    return remark;
  }

  void Told() {
    ++done_;
    if (progress_) progress_(done_, list_.Count());
  }

  const TExportContext& context_;
  const boq::TLVPosList& list_;
  TEntryIds ids_;
  const TGaebExportProgress& progress_;
  std::unordered_map<int32_t, std::vector<int>> children_;
  std::vector<TGaebElement> add_texts_;
  int done_ = 0;
};

}  // namespace

TBodyResult BoQBodyOf(const TExportContext& context, const TGaebExportProgress& progress) {
  return TBodyWriter(context, progress).Root();
}

TGaebElement TotalsOf(const TExportContext& context, double total, double discount_amount,
                      double discount_percent) {
  TGaebElement totals("Totals");
  const double sum = Cents(total);
  totals.Add("Total", Decimal(sum, 2, 13, context.LvName() + ": Summe"));
  double after = sum;
  if (std::fabs(discount_amount) >= 0.005) {
    totals.Add("DiscountAmt", Decimal(discount_amount, 2, 13, context.LvName() + ": Nachlass"));
    after = Cents(sum - discount_amount);
    totals.Add("TotAfterDisc", Decimal(after, 2, 13, context.LvName() + ": Summe nach Nachlass"));
  } else if (discount_percent > 0.0 && discount_percent <= 100.0) {
    totals.Add("DiscountPcnt", Decimal(discount_percent, 6, 9, context.LvName() + ": Nachlass"));
    after = Cents(sum * (1.0 - discount_percent / 100.0));
    totals.Add("TotAfterDisc", Decimal(after, 2, 13, context.LvName() + ": Summe nach Nachlass"));
  }
  const double vat = context.Lv().Ust;
  if (context.options.vat_on_sections && vat >= 0.0 && vat < 1000.0) {
    totals.Add("VAT", Decimal(vat, 2, 5, context.LvName() + ": MwSt."));
    totals.Add("VATAmount",
               Decimal(Cents(after * vat / 100.0), 2, 13, context.LvName() + ": MwSt.-Betrag"));
  }
  return totals;
}

}  // namespace korvan::exchange::gaeb_export
