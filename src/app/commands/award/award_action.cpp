#include "app/commands/award/award_action.h"

#include <memory>
#include <vector>

#include "app/cli/command_error.h"
#include "app/commands/lv/lv_operation.h"
#include "award/bid/bid_texts.h"
#include "billing/contract/dm_vertrag.h"
#include "billing/tables/billing_table_types.h"
#include "boq/lv/project_lvs.h"

namespace korvan::app {
namespace {

billing::TContractParty PartyOf(const award::t_Bieter_DB_VERSION_3100& bidder) {
  billing::TContractParty party;
  party.bidder = bidder.ID;
  party.address = bidder.IdAdresse;
  party.name = bidder.Bietername.Get();
  party.bid_date = bidder.Rueckgabedatum;
  party.vat_rate = bidder.USt < 0.0F ? -1.0 : double{bidder.USt};
  party.cash_discount = bidder.CashDiscount[0];
  return party;
}

// The items the transfer may change: those under no contract yet.
std::vector<int32_t> DescriptionsUnderNoContract(const boq::TLVPosList& list) {
  std::vector<int32_t> descriptions;
  for (const boq::TLvPos& entry : list.Entries()) {
    if (entry.IsQuantityItem() && entry.LvBgBeschr.IdVertrag == data::kNullId) {
      descriptions.push_back(int32_t{entry.LvBgBeschr.IDBeschr});
    }
  }
  return descriptions;
}

int CopyBidderTexts(LvProject& project, int32_t bidder, const std::vector<int32_t>& descriptions) {
  data::TStdDb* text_db = project.TextDb();
  if (text_db == nullptr) {
    throw CommandError("Bietertextergänzungen: das Projekt hat keine Textdatenbank");
  }
  award::TBidTextStore texts(*text_db);
  int total = 0;
  for (int32_t description : descriptions) {
    int copied = 0;
    if (int code = texts.CopyIntoLv(bidder, description, &copied); code != 0) {
      throw CommandError("Bietertextergänzungen können nicht ins LV übernommen werden (" +
                         std::to_string(code) + ")");
    }
    total += copied;
  }
  return total;
}

}  // namespace

std::string WhyNoFurtherContract(BidLv& target) {
  LvProject& project = target.Project();
  const int32_t number = project.ContractProjectNumber(false);
  if (number == data::kNullId) return {};
  billing::TdmVertrag book(project.BillingDb(), number, target.Converter());
  return book.WhyNoContract(target.List());
}

award::TBidCheck CheckBidForAward(BidLv& target, const award::t_Bieter_DB_VERSION_3100& bidder) {
  std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
  bid->Recalculate();
  return bid->AngebotsCheck();
}

AwardOutcome AwardToBidder(BidLv& target, const award::t_Bieter_DB_VERSION_3100& bidder,
                           const AwardRequest& request, std::ostream& warnings) {
  std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
  bid->Recalculate();
  LvProject& project = target.Project();
  AwardOutcome outcome;
  outcome.lv = target.List();
  // Checked before the step, so that a refused contract leaves the LV's prices alone.
  if (request.contract) {
    if (const std::string why = WhyNoFurtherContract(target); !why.empty()) throw CommandError(why);
  }
  const billing::TContractSettings& settings = project.ContractSettings();  // before any write
  RunAsOneStep<award::EAwardRefused, award::ETransferRefused, billing::EContractError,
               award::EBidError, boq::EStoredLvError, CommandError>(
      project.Journal(), data::TOperationKind::okEdit,
      "Vergabe an \"" + bidder.Bietername.Get() + "\" im LV \"" + target.Name() + "\"",
      {"es wurde nichts geändert", "die Änderungen konnten nicht zurückgenommen werden",
       "die Vergabe"},
      warnings, [&] {
        const std::vector<int32_t> open_lines = DescriptionsUnderNoContract(outcome.lv);
        outcome.result = award::AwardBid(*bid, outcome.lv, request.options);
        if (request.bidder_texts) {
          outcome.texts_copied = CopyBidderTexts(project, bidder.ID, open_lines);
        }
        if (request.contract) {
          billing::TdmVertrag book(project.BillingDb(), project.ContractProjectNumber(true),
                                   target.Converter());
          outcome.contract = book.Create(outcome.lv, PartyOf(bidder), settings);
        }
        project.SaveWithSums(outcome.lv, warnings);
      });
  return outcome;
}

}  // namespace korvan::app
