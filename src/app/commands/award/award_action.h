#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "app/commands/bid/bid_lv.h"
#include "award/award/award_run.h"
#include "billing/tables/vertrag_record.h"

// The award of one bidder's bid as the command and the desktop wizard both run it: the
// prices written into the LV, the LV marked awarded and the contract made, one step of
// the installation's journal.
namespace korvan::app {

// What the award says of the letters, which need printing.
inline constexpr const char* kLettersUnavailable =
    "Zuschlags- und Absageschreiben: noch nicht verfügbar (der Druck fehlt), es wurden keine "
    "Briefe erstellt.";

struct AwardRequest {
  award::TAwardOptions options;
  bool bidder_texts = false;  // "Bietertextergänzungen übernehmen"
  bool contract = true;       // "Vertrag anlegen"
};

struct AwardOutcome {
  boq::TLVPosList lv;  // as saved
  award::TAwardResult result;
  std::optional<billing::TVertrag> contract;
  int texts_copied = 0;
};

// The bid check of `bidder` as the award runs it, nothing written: what the question
// before the award is about.
award::TBidCheck CheckBidForAward(BidLv& target, const award::t_Bieter_DB_VERSION_3100& bidder);

// Why the LV of `target` can take no (further) contract; empty when it can.
std::string WhyNoFurtherContract(BidLv& target);

// Awards `bidder`'s bid on the LV of `target` as one journal step. CommandError (German,
// naming LV and bidder) when it is refused or fails; then nothing is changed.
AwardOutcome AwardToBidder(BidLv& target, const award::t_Bieter_DB_VERSION_3100& bidder,
                           const AwardRequest& request, std::ostream& warnings);

}  // namespace korvan::app
