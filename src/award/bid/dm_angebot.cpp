#include "award/bid/dm_angebot.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <unordered_map>

#include "award/bid/bidder_sums.h"
#include "award/bid/estimate_bidder.h"
#include "award/tables/tb_angebot.h"
#include "award/tables/tb_bieter.h"
#include "data/records/null_values.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

constexpr double kTolerance = 0.0001;
constexpr char kBidLineCounterKind = 'L';
constexpr char kBidLineCounter[] = "Angebot";
constexpr int kDataModuleId = 5101;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

bool IsSurcharge(const boq::TLvPos& entry) {
  const char kind = entry.LvBeschr.ZuschArt;
  return kind == 'A' || kind == 'S' || kind == 'Z';
}

// Descriptions, notes and texts carry no prices.
bool IsTextKind(char kind) {
  return kind == 'A' || kind == 'E' || kind == 'F' || kind == 'H' || kind == 'T' || kind == 'U';
}

// Group kinds whose sums count in the bid's total.
bool CountsInTotal(char titelart, bool contingency_in_totals) {
  if (titelart == 'A') return false;
  if (titelart == 'E') return contingency_in_totals;
  return true;
}

// The part of a record after its header: what a line's values are.
bool SameValues(const t_Angebot_DB_VERSION_201501& a, const t_Angebot_DB_VERSION_201501& b) {
  constexpr std::size_t header = sizeof(data::TDbRecordHeader);
  return std::memcmp(reinterpret_cast<const char*>(&a) + header,
                     reinterpret_cast<const char*>(&b) + header, sizeof a - header) == 0;
}

// Whether a line not stored yet holds anything worth a record; a comment hangs on the
// line's id, so it needs one.
bool HoldsValues(const TAO& bid_line) {
  const t_Angebot_DB_VERSION_201501& line = bid_line.Angebot;
  if (!bid_line.Kommentar.empty()) return true;
  if (!IsZero(line.EP.Betrag) || !IsZero(line.GP.Betrag) || !IsZero(line.NachlassProz) ||
      !IsZero(line.GPPsch.Betrag) || !IsZero(line.DiscountAmt.Betrag) || !IsZero(line.Zeit) ||
      line.Kennz != kMarkNone) {
    return true;
  }
  for (const data::t_WaeBetrag& part : line.EPAnteil) {
    if (!IsZero(part.Betrag)) return true;
  }
  return false;
}

// Every line's EP and components times `factor`; components would give the old price back
// otherwise. An item's total stated without quantity is scaled alike.
void ScalePrices(TAngebotList& lines, const boq::TLVPosList& lv,
                 const calc::TItemCalculation& rounding, double factor) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    t_Angebot_DB_VERSION_201501& a = lines[i].Angebot;
    a.EP.Betrag = rounding.RoundUnitPrice(a.EP.Betrag * factor);
    for (data::t_WaeBetrag& part : a.EPAnteil) {
      part.Betrag = rounding.RoundUnitPrice(part.Betrag * factor);
    }
    if (!lv[static_cast<int>(i)].IsGroup()) {
      SetStatedTotalWithoutQuantity(a,
                                    rounding.RoundAmount(StatedTotalWithoutQuantity(a) * factor));
    }
  }
}

}  // namespace

double ComponentSum(const t_Angebot_DB_VERSION_201501& line) {
  double sum = 0.0;
  for (const data::t_WaeBetrag& part : line.EPAnteil) sum += part.Betrag;
  return sum;
}

TdmAngebot::TdmAngebot(data::TStdDb& lv_db, const boq::TLVPosList& lv,
                       const boq::TAvaUiValueConverter& converter, TBidSettings settings,
                       data::TStdDb* text_db)
    : TSTDdataModule(kDataModuleId, "Angebot"),
      lv_db_(lv_db),
      text_db_(text_db),
      lv_(lv),
      converter_(converter),
      rounding_(converter, lv.FLv().EPGenauigkeit),
      settings_(settings) {
  lv_.RefreshGroupKinds();
  IndexLines();
}

void TdmAngebot::IndexLines() {
  const int count = lv_.Count();
  std::unordered_map<int32_t, int> group_line;
  for (int i = 0; i < count; ++i) {
    if (lv_[i].IsGroup()) group_line[lv_[i].Struktur.IdBgBeschr] = i;
  }
  children_.assign(static_cast<std::size_t>(count), {});
  for (int i = 0; i < count; ++i) {
    if (auto parent = group_line.find(lv_[i].Struktur.ZuBg); parent != group_line.end()) {
      children_[static_cast<std::size_t>(parent->second)].push_back(i);
    } else {
      outside_groups_.push_back(i);
    }
  }
}

void TdmAngebot::Fail(const std::string& what, int code) const {
  throw EBidError(lv_db_.BasePath() + "0: " + what + " (Bieter " + std::to_string(bidder_.ID) +
                  " \"" + bidder_.Bietername.Get() + "\", Fehler " + std::to_string(code) + ")");
}

void TdmAngebot::Open(const t_Bieter_DB_VERSION_3100& bidder) {
  bidder_ = bidder;
  TTbAngebot table(lv_db_);
  std::vector<t_Angebot_DB_VERSION_201501> read;
  if (int result = table.LinesOf(bidder.ID, read); result != storage::kOk) {
    Fail("die Angebotszeilen können nicht gelesen werden", result);
  }
  std::unordered_map<int32_t, std::size_t> stored;
  stored.reserve(read.size());
  for (std::size_t r = 0; r < read.size(); ++r) stored[read[r].IdLvBgBeschr] = r;
  table.InitRecord();
  const t_Angebot_DB_VERSION_201501 fresh = table.Rec();
  lines_.assign(static_cast<std::size_t>(lv_.Count()), TAO{});
  for (int i = 0; i < lv_.Count(); ++i) {
    TAO& line = lines_[static_cast<std::size_t>(i)];
    const int32_t entry = lv_[i].Struktur.IdBgBeschr;
    if (auto found = stored.find(entry); found != stored.end()) {
      line.Angebot = read[found->second];
      line.AsStored = line.Angebot;
      line.Stored = true;
    } else {
      line.Angebot = fresh;
      line.Angebot.IdBieter = bidder.ID;
      line.Angebot.IdLvBgBeschr = entry;
    }
  }
}

void TdmAngebot::ReadTexts() {
  bidder_gaps_.assign(lines_.size(), {});
  texts_read_ = text_db_ != nullptr;
  if (!texts_read_) return;
  TBidTextStore texts(*text_db_);
  for (int i = 0; i < lv_.Count(); ++i) {
    TAO& line = lines_[static_cast<std::size_t>(i)];
    if (line.TextsChanged) continue;  // set in memory, not stored yet
    if (line.Stored) line.Kommentar = texts.CommentOf(line.Angebot.ID);
    const int32_t description = lv_[i].LvBgBeschr.IDBeschr;
    if (description == data::kNullId) continue;
    bidder_gaps_[static_cast<std::size_t>(i)] = texts.GapsOf(description);
    if (!bidder_gaps_[static_cast<std::size_t>(i)].empty()) {
      line.BidderTexts = texts.TextsOf(bidder_.ID, description);
    }
  }
}

const std::vector<int>& TdmAngebot::BidderGapsOf(int line) const {
  static const std::vector<int> kNone;
  if (!texts_read_) return kNone;
  return bidder_gaps_[static_cast<std::size_t>(line)];
}

void TdmAngebot::SetTexts(int line, std::vector<std::string> comment, TBidderTexts texts) {
  TAO& bid_line = lines_[static_cast<std::size_t>(line)];
  bid_line.Kommentar = std::move(comment);
  bid_line.BidderTexts = std::move(texts);
  bid_line.TextsChanged = true;
}

bool TdmAngebot::IsPriced(int line) const {
  const boq::TLvPos& entry = lv_[line];
  if (entry.Kind() != 'P' && entry.Kind() != 'L') return false;
  const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  if (common.ZZWahl != 0 || common.KzEntfaellt != 0) return false;
  return common.Bedarf != 'E' || settings_.contingency_in_totals;
}

double TdmAngebot::LvBidQuantity(int line) const {
  const boq::t_LvBeschr2_DB_VERSION_201401& item = lv_[line].LvBeschr;
  // The LV's bid quantities are its own unless it says otherwise and gives one.
  if (lv_.FLv().AngebotsmengenGleichLvMengen != 0 || IsZero(item.AngMenge)) return item.FMenge;
  return item.AngMenge;
}

double TdmAngebot::SurchargeBase(int line) const {
  const boq::TLvPos& entry = lv_[line];
  const int32_t parent = entry.Struktur.ZuBg;
  auto boundary = [&](int at) { return lv_[at].IsGroup() || lv_[at].Struktur.ZuBg != parent; };
  auto after_discount = [&](int at) {
    return lines_[static_cast<std::size_t>(at)].Angebot.GPnachNL.Betrag;
  };
  double base = 0.0;
  switch (entry.LvBeschr.ZuschArt) {
    case 'A':
      for (int at = line - 1; at >= 0 && !boundary(at); --at) {
        if (IsSurcharge(lv_[at])) {
          if (at == line - 1) continue;  // a surcharge item directly above is stepped over
          break;
        }
        base += after_discount(at);
      }
      break;
    case 'S':
      for (const boq::TLvPosRef& ref : entry.RefIDs) {
        if (ref.Type != boq::kQuantityRefType) continue;
        const int at = lv_.SearchItemIndexByIdLvBgBeschr(ref.Id);
        if (at >= 0) base += after_discount(at);
      }
      break;
    case 'Z': {
      int at = line - 1;
      while (at >= 0 && !boundary(at) && lv_[at].LvBeschr.ZuschArt == 'Z') --at;
      for (; at >= 0 && !boundary(at) && !IsSurcharge(lv_[at]); --at) {
        if (lv_[at].LvBeschr.KzZuschl != 0 || lv_[at].Kind() == 'U') base += after_discount(at);
      }
      break;
    }
    default:
      break;
  }
  return base;
}

void TdmAngebot::Gesamtpreis(int line) {
  const boq::TLvPos& entry = lv_[line];
  t_Angebot_DB_VERSION_201501& a = lines_[static_cast<std::size_t>(line)].Angebot;
  if (entry.IsGroup()) {
    a.EP.Betrag = 0.0;
    a.AMenge = 0.0;
    return;
  }
  const double components = ComponentSum(a);
  // A line marked faulty keeps the unit price its file gave.
  if (!IsZero(components) && a.Kennz != kMarkFaulty) a.EP.Betrag = components;
  a.EP.Betrag = rounding_.RoundUnitPrice(a.EP.Betrag);
  if (entry.LvBeschr.KzFrMenge == 0) a.AMenge = LvBidQuantity(line);
  a.GP.Betrag = 0.0;
  a.GPnachNL.Betrag = 0.0;
  if (IsTextKind(entry.Kind())) {
    a.EP.Betrag = 0.0;
    a.AMenge = 0.0;
    return;
  }
  if (!IsPriced(line)) return;
  if (IsSurcharge(entry)) {
    a.GP.Betrag = rounding_.RoundAmount(SurchargeBase(line) / 100.0 * a.EP.Betrag);
  } else if (IsZero(a.AMenge) && !IsZero(StatedTotalWithoutQuantity(a))) {
    a.GP.Betrag = StatedTotalWithoutQuantity(a);
  } else {
    a.GP.Betrag = rounding_.RoundAmount(a.AMenge * a.EP.Betrag);
  }
  a.GPnachNL.Betrag = rounding_.RoundAmount(a.GP.Betrag * (1.0 - a.NachlassProz / 100.0));
}

void TdmAngebot::BuildGroupSums() {
  angebot_gp_ = 0.0;
  summe_ = 0.0;
  total_time_ = 0.0;
  for (int i : outside_groups_) {
    if (!lv_[i].IsGroup() && lv_[i].LvBgBeschr.KzEntfaellt == 0) {
      // Items outside any group (an LV without groups) count in the total themselves.
      const t_Angebot_DB_VERSION_201501& item = lines_[static_cast<std::size_t>(i)].Angebot;
      angebot_gp_ += item.GP.Betrag;
      summe_ += item.GPnachNL.Betrag;
    }
  }
  for (int g = lv_.Count() - 1; g >= 0; --g) {
    if (!lv_[g].IsGroup()) continue;
    TAO& group = lines_[static_cast<std::size_t>(g)];
    t_Angebot_DB_VERSION_201501& sum = group.Angebot;
    sum.GP.Betrag = 0.0;
    sum.GPnachNL.Betrag = 0.0;
    sum.Zeit = 0.0;
    group.GPAnteil = {};
    group.GPvorNL = 0.0;
    for (int c : children_[static_cast<std::size_t>(g)]) {
      const TAO& child = lines_[static_cast<std::size_t>(c)];
      const t_Angebot_DB_VERSION_201501& line = child.Angebot;
      const boq::TLvPos& entry = lv_[c];
      if (entry.IsGroup()) {
        sum.GP.Betrag += line.GP.Betrag;
        group.GPvorNL += line.GPnachNL.Betrag;
        for (std::size_t k = 0; k < 6; ++k) group.GPAnteil[k] += child.GPAnteil[k];
        sum.Zeit += line.Zeit;
        continue;
      }
      const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
      if (common.KzEntfaellt != 0) continue;
      sum.GP.Betrag += line.GP.Betrag;
      group.GPvorNL += rounding_.RoundAmount(line.GP.Betrag * (1.0 - line.NachlassProz / 100.0));
      for (std::size_t k = 0; k < 6; ++k) {
        group.GPAnteil[k] += line.EPAnteil[k].Betrag * entry.LvBeschr.FMenge;
      }
      if (common.ZZWahl == 0 && common.Bedarf != 'E') sum.Zeit += line.AMenge * line.Zeit;
    }
    sum.GP.Betrag = rounding_.RoundAmount(sum.GP.Betrag);
    group.GPvorNL = rounding_.RoundAmount(group.GPvorNL);
    sum.GPExclNachlass.Betrag = group.GPvorNL;
    sum.GPnachNL.Betrag = group.GPvorNL;
    if (!IsZero(sum.NachlassProz)) {
      sum.GPnachNL.Betrag = rounding_.RoundAmount(group.GPvorNL * (1.0 - sum.NachlassProz / 100.0));
      sum.GPPsch.Betrag = 0.0;
    } else if (!IsZero(sum.DiscountAmt.Betrag)) {
      sum.GPnachNL.Betrag = rounding_.RoundAmount(group.GPvorNL - sum.DiscountAmt.Betrag);
      sum.GPPsch.Betrag = 0.0;
    } else if (!IsZero(sum.GPPsch.Betrag)) {
      sum.GPnachNL.Betrag = sum.GPPsch.Betrag;
    }
    const boq::TLvPos& entry = lv_[g];
    if (entry.Struktur.ZuBg == data::kRootParentId &&
        CountsInTotal(entry.LvBgBeschr.Titelart, settings_.contingency_in_totals)) {
      angebot_gp_ += sum.GP.Betrag;
      summe_ += sum.GPnachNL.Betrag;
      total_time_ += sum.Zeit * 60.0 / 3600.0;
    }
  }
  angebot_gp_ = rounding_.RoundAmount(angebot_gp_);
  summe_ = rounding_.RoundAmount(summe_);
}

void TdmAngebot::Recalculate() {
  for (int i = 0; i < lv_.Count(); ++i) {
    if (!IsSurcharge(lv_[i])) Gesamtpreis(i);
  }
  for (int i = 0; i < lv_.Count(); ++i) {
    if (IsSurcharge(lv_[i])) Gesamtpreis(i);
  }
  BuildGroupSums();
  WriteBidderSums();
}

void TdmAngebot::WriteBidderSums() {
  bidder_.Summe.Betrag = summe_;
  bidder_.TotalTime = total_time_;
  ComputeBidderSums(bidder_, rounding_);
  UpdateStatus();
}

void TdmAngebot::UpdateStatus() {
  int priced = 0;
  int without = 0;
  for (int i = 0; i < lv_.Count(); ++i) {
    if (!IsPriced(i)) continue;
    if (IsZero(lines_[static_cast<std::size_t>(i)].Angebot.EP.Betrag)) {
      ++without;
    } else {
      ++priced;
    }
  }
  bidder_.Status = priced == 0 ? kBidsBlanko : (without > 0 ? kBidsIncomplete : 0);
}

void TdmAngebot::SetUnitPrice(int line, double price) {
  t_Angebot_DB_VERSION_201501& a = lines_[static_cast<std::size_t>(line)].Angebot;
  a.EP.Betrag = price;
  SetStatedTotalWithoutQuantity(a, 0.0);  // a typed price replaces it
  for (data::t_WaeBetrag& part : a.EPAnteil) part.Betrag = 0.0;
  if (a.Kennz == kMarkComponents || a.Kennz == kMarkFaulty || a.Kennz == kMarkNotOffered) {
    a.Kennz = kMarkNone;
  }
}

TBidCheck TdmAngebot::AngebotsCheck() const {
  TBidCheck check;
  for (int i = 0; i < lv_.Count(); ++i) {
    if (!IsPriced(i)) continue;
    const boq::TLvPos& entry = lv_[i];
    const t_Angebot_DB_VERSION_201501& a = lines_[static_cast<std::size_t>(i)].Angebot;
    if (IsZero(a.EP.Betrag)) check.without_price.push_back(i);
    const bool free_quantity = entry.LvBeschr.KzFrMenge != 0;
    const char surcharge = entry.LvBeschr.ZuschArt;
    if ((free_quantity && IsZero(a.AMenge)) ||
        (!free_quantity && (surcharge == ' ' || surcharge == 0 || surcharge == 'B') &&
         IsZero(LvBidQuantity(i)))) {
      check.without_quantity.push_back(i);
    }
    if (!IsZero(entry.LvBeschr.FMenge - a.AMenge) && !IsSurcharge(entry)) {
      check.other_quantity.push_back(i);
    }
    const double components = ComponentSum(a);
    if (a.Kennz == kMarkFaulty || a.Kennz == kMarkComponents ||
        (!IsZero(components) && !IsZero(components - a.EP.Betrag))) {
      check.components_differ.push_back(i);
    }
    if (!IsSurcharge(entry) &&
        !IsZero(a.GP.Betrag - rounding_.RoundAmount(a.AMenge * a.EP.Betrag))) {
      check.total_differs.push_back(i);
    }
  }
  check.bidder_texts_checked = texts_read_;
  for (int i = 0; texts_read_ && i < lv_.Count(); ++i) {
    const TAO& line = lines_[static_cast<std::size_t>(i)];
    if (!UnfilledGaps(BidderGapsOf(i), line.BidderTexts).empty()) {
      check.without_bidder_texts.push_back(i);
    }
  }
  return check;
}

int TdmAngebot::TakeEstimatedPrices() {
  int priced = 0;
  for (int i = 0; i < lv_.Count(); ++i) {
    const boq::TLvPos& entry = lv_[i];
    if (entry.Kind() != 'P' && entry.Kind() != 'L') continue;
    const double price = entry.LvBeschr.SchaetzEP.Betrag;
    SetUnitPrice(i, price);
    t_Angebot_DB_VERSION_201501& a = lines_[static_cast<std::size_t>(i)].Angebot;
    a.Kennz = kMarkNone;
    if (IsZero(LvBidQuantity(i)) && !IsSurcharge(entry)) {
      SetStatedTotalWithoutQuantity(a, entry.LvBgBeschr.SchaetzGP.Betrag);
    }
    if (!IsZero(price) || !IsZero(StatedTotalWithoutQuantity(a))) ++priced;
  }
  return priced;
}

bool TdmAngebot::ConvertLumpSum() {
  if (IsZero(bidder_.SummePsch.Betrag)) return false;
  if (IsEstimateBidder(bidder_)) TakeEstimatedPrices();
  Recalculate();
  const double net = bidder_.SummeNachNL.Betrag;
  if (IsZero(net)) return false;
  const double factor = bidder_.SummePsch.Betrag / net;
  ScalePrices(lines_, lv_, rounding_, factor);
  Recalculate();
  return true;
}

bool TdmAngebot::ApplyMarkup(double percent, double amount) {
  if (IsZero(percent) && IsZero(amount)) return false;
  double factor = 1.0;
  if (!IsZero(percent)) {
    factor = percent / 100.0 + 1.0;
  } else {
    Recalculate();
    const double net = bidder_.SummeNachNL.Betrag;
    if (!IsZero(net)) factor = (net + amount) / net;
  }
  ScalePrices(lines_, lv_, rounding_, factor);
  Recalculate();
  return true;
}

void TdmAngebot::Save() {
  std::vector<TAO*> fresh;
  for (TAO& line : lines_) {
    if (!line.Stored && HoldsValues(line)) fresh.push_back(&line);
  }
  if (!fresh.empty()) {
    int32_t first = 0;
    data::TTbCounter counters(lv_db_);
    if (int result = counters.NextIds(kBidLineCounterKind, kBidLineCounter,
                                      static_cast<int32_t>(fresh.size()), &first);
        result != storage::kOk) {
      Fail("für die Angebotszeilen gibt es keine Nummern", result);
    }
    for (TAO* line : fresh) line->Angebot.ID = first++;
  }
  TTbAngebot table(lv_db_);
  for (TAO& line : lines_) {
    const bool is_new = !line.Stored && line.Angebot.ID != data::kNullId;
    if (!is_new && !(line.Stored && !SameValues(line.Angebot, line.AsStored))) continue;
    if (is_new) {
      table.InitRecord();
    } else if (!table.Find(line.Angebot.IdBieter, line.Angebot.IdLvBgBeschr)) {
      Fail("eine Angebotszeile fehlt in der Tabelle", table.LastError());
    }
    const data::TDbRecordHeader header = table.Rec().Header;
    table.Rec() = line.Angebot;
    table.Rec().Header = header;
    if (int result = table.UpDateRec(); result != storage::kOk) {
      Fail("eine Angebotszeile kann nicht geschrieben werden", result);
    }
    line.Stored = true;
    line.Angebot = table.Rec();
    line.AsStored = line.Angebot;
  }
  SaveTexts();
  TTbBieter bidders(lv_db_);
  if (!bidders.Find(bidder_.ID)) Fail("der Bieter fehlt in der Tabelle", bidders.LastError());
  const data::TDbRecordHeader header = bidders.Rec().Header;
  bidders.Rec() = bidder_;
  bidders.Rec().Header = header;
  if (int result = bidders.UpDateRec(); result != storage::kOk) {
    Fail("der Bieter kann nicht geschrieben werden", result);
  }
  bidder_ = bidders.Rec();
}

void TdmAngebot::SaveTexts() {
  std::optional<TBidTextStore> store;
  for (int i = 0; i < lv_.Count(); ++i) {
    TAO& line = lines_[static_cast<std::size_t>(i)];
    if (!line.TextsChanged) continue;
    if (text_db_ == nullptr) {
      Fail(
          "die Texte des Angebots können nicht gespeichert werden: das Projekt hat keine "
          "Textdatenbank",
          storage::kOk);
    }
    if (!store) store.emplace(*text_db_);
    TBidTextStore& texts = *store;
    if (line.Stored) {
      const boq::TShortTextResult written = texts.StoreComment(line.Angebot.ID, line.Kommentar);
      if (!written.Ok()) {
        Fail("der Kommentar zu " + std::string(lv_[i].Oz()) + " kann nicht gespeichert werden" +
                 (written.refused.empty() ? "" : ": " + written.refused),
             written.code);
      }
    }
    const int32_t description = lv_[i].LvBgBeschr.IDBeschr;
    if (description != data::kNullId) {
      if (int result = texts.StoreTexts(bidder_.ID, description, line.BidderTexts);
          result != storage::kOk) {
        Fail("die Bietertextergänzungen zu " + std::string(lv_[i].Oz()) +
                 " können nicht gespeichert werden",
             result);
      }
    }
    line.TextsChanged = false;
  }
}

}  // namespace korvan::award
