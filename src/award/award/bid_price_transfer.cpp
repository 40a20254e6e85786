#include "award/award/bid_price_transfer.h"

#include <cmath>
#include <string>

#include "boq/lv/lv_codes.h"
#include "data/records/null_values.h"

namespace korvan::award {
namespace {

constexpr double kTolerance = 0.0001;
// An item whose award price carries this currency marker takes the bid's price as it is.
constexpr int16_t kUnconvertedCurrency = -2;
constexpr double kMinutesPerHour = 60.0;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

bool IsItem(const boq::TLvPos& entry) {
  return entry.Kind() == 'P' || entry.Kind() == 'L';
}

bool UnderContract(const boq::TLvPos& entry) {
  return entry.LvBgBeschr.IdVertrag != data::kNullId;
}

double CurrencyFactor(const t_Bieter_DB_VERSION_3100& bidder) {
  return bidder.Waehrungsfaktor > 0.0 ? bidder.Waehrungsfaktor : 1.0;
}

// The factor f of the whole bid; each later rule replaces the earlier one, so a discount
// percent wins over a lump sum and a lump sum over a discount amount.
double SpreadFactor(const t_Bieter_DB_VERSION_3100& bidder) {
  double f = 1.0;
  const double sum = bidder.Summe.Betrag;
  if (!IsZero(sum) && !IsZero(bidder.NachlassAbs.Betrag)) f = 1.0 - bidder.NachlassAbs.Betrag / sum;
  if (!IsZero(sum) && !IsZero(bidder.SummePsch.Betrag)) {
    f = 1.0 - (sum - bidder.SummePsch.Betrag) / sum;
  }
  if (!IsZero(bidder.NachlassProz)) f = 1.0 - bidder.NachlassProz * 0.01;
  return f;
}

// The percentage a bid group line takes off its items. 1 is the mark for "nothing to do",
// so a group discount of exactly 1 % scales nothing; the system has always done so.
double GroupPercent(const t_Angebot_DB_VERSION_201501& group) {
  const double gp =
      IsZero(group.GPExclNachlass.Betrag) ? group.GP.Betrag : group.GPExclNachlass.Betrag;
  double p = 1.0;
  if (!IsZero(group.GPPsch.Betrag) && !IsZero(gp)) p = (gp - group.GPPsch.Betrag) / gp * 100.0;
  if (!IsZero(group.NachlassProz)) p = group.NachlassProz;
  if (!IsZero(group.DiscountAmt.Betrag) && !IsZero(gp)) p = group.DiscountAmt.Betrag * 100.0 / gp;
  return p;
}

class Transfer {
 public:
  Transfer(const TdmAngebot& bid, boq::TLVPosList& lv, const TTransferOptions& options)
      : bid_(bid),
        lv_(lv),
        options_(options),
        currency_(CurrencyFactor(bid.Bidder())),
        take_quantities_(options.bid_quantities.value_or(BidQuantitiesDiffer(bid))) {}

  TTransferResult Run() {
    RefuseAwardedLv();
    result_.factor = options_.spread ? SpreadFactor(bid_.Bidder()) : 1.0;
    if (!options_.spread && options_.target == TBidPriceTarget::kAward && !SupplementsInvolved()) {
      TakeWholeBidValues();
    }
    for (int i = 0; i < bid_.Lv().Count(); ++i) {
      boq::TLvPos* entry = Target(i);
      if (entry == nullptr) continue;
      const t_Angebot_DB_VERSION_201501& line = Line(i);
      if (IsItem(*entry)) {
        TakeItem(*entry, line);
      } else if (entry->IsGroup() && options_.target == TBidPriceTarget::kAward &&
                 !options_.spread) {
        TakeGroup(*entry, line);
      }
    }
    if (options_.spread) {
      ScaleByItemDiscounts();
      ScaleByGroupDiscounts();
    }
    return result_;
  }

 private:
  void RefuseAwardedLv() const {
    if (options_.edit_awarded || !boq::IsAwardedStatus(lv_.FLv().Status)) return;
    if (HasUncontractedSupplements(lv_)) return;
    throw ETransferRefused("LV \"" + lv_.FLv().Name.Get() +
                           "\" ist vergeben oder abgerechnet und hat keine Nachtragspositionen "
                           "ohne Vertrag; die Bieterpreise werden nicht übertragen.");
  }

  // The LV entry of the bid's line `i` when the transfer may change it.
  boq::TLvPos* Target(int i) {
    const int index = lv_.SearchItemIndexByIdLvBgBeschr(bid_.Lv()[i].Struktur.IdBgBeschr);
    if (index < 0) return nullptr;
    boq::TLvPos& entry = lv_[index];
    if (UnderContract(entry) && !options_.edit_awarded) return nullptr;
    return &entry;
  }
  const t_Angebot_DB_VERSION_201501& Line(int i) const {
    return bid_.FAList()[static_cast<std::size_t>(i)].Angebot;
  }

  bool SupplementsInvolved() {
    for (int i = 0; i < bid_.Lv().Count(); ++i) {
      const boq::TLvPos* entry = Target(i);
      if (entry != nullptr && IsItem(*entry) && entry->IsSupplement()) return true;
    }
    return false;
  }

  void TakeWholeBidValues() {
    const t_Bieter_DB_VERSION_3100& bidder = bid_.Bidder();
    const calc::TItemCalculation& rounding = bid_.Rounding();
    boq::t_Lv_DB_VERSION_3100 header = lv_.FLv();
    header.NachlassProz = bidder.NachlassProz;
    header.NachlassAbs.Betrag = rounding.RoundAmount(bidder.NachlassAbs.Betrag * currency_);
    header.SummePsch.Betrag = rounding.RoundAmount(bidder.SummePsch.Betrag * currency_);
    header.CashDiscount[0] = bidder.CashDiscount[0];
    lv_.RefreshLvProperties(header);
    result_.whole_bid_values = true;
  }

  void TakeItem(boq::TLvPos& entry, const t_Angebot_DB_VERSION_201501& line) {
    const calc::TItemCalculation& rounding = bid_.Rounding();
    boq::t_LvBeschr2_DB_VERSION_201401& item = entry.LvBeschr;
    const bool unconverted = item.VergabeEP.IdWaehrung == kUnconvertedCurrency;
    const double factor = (unconverted ? 1.0 : currency_) * result_.factor;
    const double price = rounding.RoundUnitPrice(line.EP.Betrag * factor);
    if (options_.target == TBidPriceTarget::kEstimate) {
      item.SchaetzEP.Betrag = price;
    } else {
      item.VergabeEP.Betrag = price;
      for (std::size_t k = 0; k < item.EPAnteil.size(); ++k) {
        item.EPAnteil[k].Betrag = rounding.RoundUnitPrice(line.EPAnteil[k].Betrag * factor);
      }
      item.AbrechnungsEP = item.VergabeEP;
      item.AngMenge = line.AMenge;
      entry.LvBgBeschr.IdAngebot = bid_.Bidder().ID;
    }
    TakeQuantity(item, line);
    // The bid states minutes per unit; the item keeps hours per unit, of whole minutes.
    if (!IsZero(line.Zeit)) item.ZeitFaktor = std::trunc(line.Zeit) / kMinutesPerHour;
    ++result_.items;
  }

  void TakeQuantity(boq::t_LvBeschr2_DB_VERSION_201401& item,
                    const t_Angebot_DB_VERSION_201501& line) {
    if (item.KzFrMenge != 0) {
      if (!IsZero(item.FMenge - line.AMenge)) ++result_.quantities;
      item.FMenge = line.AMenge;
      item.AngMenge = line.AMenge;
      return;
    }
    if (!take_quantities_ || IsZero(line.AMenge - item.FMenge)) return;
    // The quantity is the sum of the item's partial quantities; a bid cannot say which of
    // them it changes.
    if (item.KzTeilmengen != 0) {
      ++result_.quantities_refused;
      return;
    }
    item.FMenge = line.AMenge;
    ++result_.quantities;
  }

  void TakeGroup(boq::TLvPos& entry, const t_Angebot_DB_VERSION_201501& line) {
    const calc::TItemCalculation& rounding = bid_.Rounding();
    entry.LvBgBeschr.NachlassProz = line.NachlassProz;
    entry.LvBg.SummePsch.Betrag = rounding.RoundAmount(line.GPPsch.Betrag * currency_);
    entry.LvBg.NachlassAbs.Betrag = rounding.RoundAmount(line.DiscountAmt.Betrag * currency_);
    if (!IsZero(line.NachlassProz) || !IsZero(line.GPPsch.Betrag) ||
        !IsZero(line.DiscountAmt.Betrag)) {
      ++result_.groups;
    }
  }

  // Unrounded, as the spread has always been: the item's totals round.
  void ScaleItem(boq::TLvPos& entry, double factor) {
    boq::t_LvBeschr2_DB_VERSION_201401& item = entry.LvBeschr;
    if (options_.target == TBidPriceTarget::kEstimate) {
      item.SchaetzEP.Betrag *= factor;
      return;
    }
    item.VergabeEP.Betrag *= factor;
    for (data::t_WaeBetrag& part : item.EPAnteil) part.Betrag *= factor;
    item.AbrechnungsEP = item.VergabeEP;
  }

  void ScaleByItemDiscounts() {
    for (int i = 0; i < bid_.Lv().Count(); ++i) {
      const t_Angebot_DB_VERSION_201501& line = Line(i);
      if (IsZero(line.NachlassProz)) continue;
      boq::TLvPos* entry = Target(i);
      if (entry == nullptr || !IsItem(*entry)) continue;
      ScaleItem(*entry, 1.0 - line.NachlassProz * 0.01);
      ++result_.scaled_by_item_discount;
    }
  }

  void ScaleByGroupDiscounts() {
    for (int i = 0; i < bid_.Lv().Count(); ++i) {
      const boq::TLvPos& group = bid_.Lv()[i];
      if (!group.IsGroup()) continue;
      const char kind = group.LvBgBeschr.Titelart;
      if (kind == 'Z' || kind == 'A') continue;
      const double p = GroupPercent(Line(i));
      if (IsZero(p - 1.0)) continue;
      const double g = 1.0 - p * 0.01;
      if (IsZero(g - 1.0)) continue;
      ScaleItemsBelow(std::string(group.Oz()), g);
      ++result_.scaled_groups;
    }
  }

  void ScaleItemsBelow(const std::string& oz, double factor) {
    for (int i = 0; i < bid_.Lv().Count(); ++i) {
      if (!IsItem(bid_.Lv()[i]) || bid_.Lv()[i].Oz().rfind(oz, 0) != 0) continue;
      if (boq::TLvPos* entry = Target(i)) ScaleItem(*entry, factor);
    }
  }

  const TdmAngebot& bid_;
  boq::TLVPosList& lv_;
  const TTransferOptions& options_;
  double currency_;
  bool take_quantities_;
  TTransferResult result_;
};

}  // namespace

bool HasUncontractedSupplements(const boq::TLVPosList& lv) {
  for (const boq::TLvPos& entry : lv.Entries()) {
    if (IsItem(entry) && entry.IsSupplement() && !UnderContract(entry)) return true;
  }
  return false;
}

bool BidQuantitiesDiffer(const TdmAngebot& bid) {
  for (int i = 0; i < bid.Lv().Count(); ++i) {
    const boq::TLvPos& entry = bid.Lv()[i];
    if (!bid.IsPriced(i) || entry.LvBeschr.KzFrMenge != 0) continue;
    const double quantity = bid.FAList()[static_cast<std::size_t>(i)].Angebot.AMenge;
    if (!IsZero(quantity - entry.LvBeschr.FMenge)) return true;
  }
  return false;
}

TTransferResult TransferBidPrices(const TdmAngebot& bid, boq::TLVPosList& lv,
                                  const TTransferOptions& options) {
  return Transfer(bid, lv, options).Run();
}

}  // namespace korvan::award
