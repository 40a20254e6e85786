#pragma once

#include <stdexcept>
#include <string>

#include "award/award/bid_price_transfer.h"
#include "award/bid/bid_check.h"
#include "award/bid/dm_angebot.h"
#include "boq/model/lv_pos_list.h"

// "Vergabe durchführen": the bid checked once more, its prices transferred into the LV,
// the LV checked for the award and marked awarded. The contract that follows is billing's
// (billing/contract); letters and contract documents are printing's, which does not exist
// yet.
namespace korvan::award {

// The award refused before anything changed: the bid check found something the user did
// not accept, or the LV cannot be awarded; the message says what and on which LV.
class EAwardRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TAwardOptions {
  TTransferOptions transfer;
  bool transfer_prices = true;         // "Bieterpreise in LV übertragen"
  bool accept_check_findings = false;  // the answer Yes to "Die Vergabe fortsetzen?"
};

struct TAwardResult {
  TBidCheck check;
  bool prices_transferred = false;
  TTransferResult transfer;
  // Items of the LV that are priced but carry no award price after the transfer.
  int items_without_award_price = 0;
};

// The question asked when the bid check found something.
inline constexpr const char* kCheckQuestion =
    "Der Angebotscheck hat Fehler gefunden. Die Vergabe fortsetzen?";

// What the bid check found, "2 Positionen ohne Angebotspreis, 1 Positionen ohne Menge";
// empty when nothing.
std::string CheckFindingsText(const TBidCheck& check);

// Awards the opened, recalculated `bid` on `lv` (loaded for saving): the steps above, the
// LV's status set to "V". EAwardRefused or ETransferRefused before anything in `lv` changed.
TAwardResult AwardBid(const TdmAngebot& bid, boq::TLVPosList& lv, const TAwardOptions& options);

}  // namespace korvan::award
