#include "award/bid/dm_bieter.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "award/bid/estimate_bidder.h"
#include "award/tables/tb_bieter.h"
#include "boq/text/long_text_store.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/text_conversions.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

constexpr int kDataModuleId = 5100;
constexpr int16_t kTextLanguage = 49;

}  // namespace

TdmBieter::TdmBieter(data::TStdDb& lv_db, data::TStdDb* text_db, const boq::TLVPosList& lv,
                     const boq::TAvaUiValueConverter& converter, TBidSettings settings)
    : TSTDdataModule(kDataModuleId, "Bieter"),
      lv_db_(lv_db),
      text_db_(text_db),
      lv_(lv),
      converter_(converter),
      settings_(settings) {}

std::vector<t_Bieter_DB_VERSION_3100> TdmBieter::Bidders() {
  return TTbBieter(lv_db_).ListOfLv(lv_.FLv().FId);
}

t_Bieter_DB_VERSION_3100 TdmBieter::AddBidder(const std::string& name, const std::string& address) {
  TTbBieter table(lv_db_, text_db_);
  auto fail = [&](const std::string& what, int code) {
    throw EBidError(lv_db_.BasePath() + "0: " + what + " (Bieter \"" + name + "\", Fehler " +
                    std::to_string(code) + ")");
  };
  if (int result = table.NewBieter(lv_.FLv().FId, name); result != storage::kOk) {
    fail("es gibt keine Nummer für einen neuen Bieter", result);
  }
  if (int result = table.UpDateRec(); result != storage::kOk) {
    fail("der Bieter kann nicht geschrieben werden", result);
  }
  const t_Bieter_DB_VERSION_3100 bidder = table.Rec();
  if (!address.empty() && text_db_ != nullptr) {
    boq::TLongTextStore texts(*text_db_);
    if (int result = texts.Store(bidder.ID, kBidderTextKind, kTextLanguage,
                                 boq::WrapPlainAsRtf(address), {});
        result != storage::kOk) {
      fail("die Adresse des Bieters kann nicht geschrieben werden", result);
    }
  }
  return bidder;
}

t_Bieter_DB_VERSION_3100 TdmBieter::EstimateBidder(bool* created) {
  std::optional<t_Bieter_DB_VERSION_3100> bidder;
  for (const t_Bieter_DB_VERSION_3100& known : Bidders()) {
    if (IsEstimateBidder(known)) bidder = known;
  }
  if (created != nullptr) *created = !bidder.has_value();
  if (!bidder) bidder = AddBidder(kEstimateBidderName, "");
  std::unique_ptr<TdmAngebot> bid = OpenBid(*bidder);
  bid->TakeEstimatedPrices();
  bid->Recalculate();
  bid->Save();
  return bid->Bidder();
}

std::optional<t_Bieter_DB_VERSION_3100> TdmBieter::FindBidder(const std::string& number_or_name) {
  const std::vector<t_Bieter_DB_VERSION_3100> bidders = Bidders();
  for (const t_Bieter_DB_VERSION_3100& bidder : bidders) {
    if (std::to_string(bidder.BieterNrIntern) == number_or_name) return bidder;
  }
  for (const t_Bieter_DB_VERSION_3100& bidder : bidders) {
    if (std::to_string(bidder.ID) == number_or_name) return bidder;
  }
  for (const t_Bieter_DB_VERSION_3100& bidder : bidders) {
    if (bidder.Bietername.Get() == number_or_name) return bidder;
  }
  return std::nullopt;
}

std::string TdmBieter::AddressOf(int32_t bidder) {
  if (text_db_ == nullptr) return {};
  boq::TLongTextStore texts(*text_db_);
  const boq::TLongText text = texts.Read(bidder, kBidderTextKind, kTextLanguage);
  if (!text.found) return {};
  std::string plain = boq::PlainView(boq::ReadRtf(text.rich_text).text);
  while (!plain.empty() && (plain.back() == '\n' || plain.back() == '\r')) plain.pop_back();
  return plain;
}

std::unique_ptr<TdmAngebot> TdmBieter::OpenBid(const t_Bieter_DB_VERSION_3100& bidder) {
  return OpenBid(bidder, settings_);
}

std::unique_ptr<TdmAngebot> TdmBieter::OpenBid(const t_Bieter_DB_VERSION_3100& bidder,
                                               TBidSettings settings) {
  auto bid = std::make_unique<TdmAngebot>(lv_db_, lv_, converter_, settings, text_db_);
  bid->Open(bidder);
  return bid;
}

void TdmBieter::AlleBieterNeuBerechnen(const std::function<void(const std::string&)>& progress) {
  for (const t_Bieter_DB_VERSION_3100& bidder : Bidders()) {
    if (progress) progress(bidder.Bietername.Get());
    std::unique_ptr<TdmAngebot> bid = OpenBid(bidder);
    bid->Recalculate();
    bid->Save();
  }
}

std::vector<int> RankByTotal(const std::vector<t_Bieter_DB_VERSION_3100>& bidders) {
  auto net = [](const t_Bieter_DB_VERSION_3100& bidder) {
    return std::fabs(bidder.SummePsch.Betrag) >= 0.0001 ? bidder.SummePsch.Betrag
                                                        : bidder.SummeNachNL.Betrag;
  };
  std::vector<int> ranks(bidders.size(), 0);
  for (std::size_t i = 0; i < bidders.size(); ++i) {
    if ((bidders[i].Status & kBidsBlanko) != 0) continue;
    int rank = 1;
    for (const t_Bieter_DB_VERSION_3100& other : bidders) {
      if ((other.Status & kBidsBlanko) == 0 && net(other) < net(bidders[i]) - 0.0001) ++rank;
    }
    ranks[i] = rank;
  }
  return ranks;
}

}  // namespace korvan::award
