#include "exchange/gaeb_export/gaeb_phase_rules.h"

namespace korvan::exchange {

TGaebPhaseRules PhaseRules(TGaebPhase phase) {
  TGaebPhaseRules rules;
  rules.bid = UsesBidVariant(phase);
  rules.prices = PhaseCarriesPrices(phase);
  rules.qu_required = phase == kPhaseInvitation || phase == kPhaseAlternative;
  const bool lv_or_award = phase == kPhaseLv || phase == kPhaseCostEstimate || phase == kPhaseAward;
  rules.not_appl = lv_or_award;
  rules.section_not_appl = lv_or_award || phase == kPhaseInvitation;
  rules.item_change_orders = lv_or_award || phase == kPhaseInvitation;
  rules.qty_tbd = lv_or_award || phase == kPhaseInvitation;
  rules.qty_with_tbd = lv_or_award;
  rules.pred_qty = lv_or_award;
  rules.own = lv_or_award || phase == kPhaseInvitation;
  rules.own_required = phase == kPhaseAward;
  rules.ctr = phase == kPhaseBid || phase == kPhaseAlternative || phase == kPhaseAward;
  rules.ctr_required = phase == kPhaseBid || phase == kPhaseAward;
  rules.award_add_texts = !rules.bid;
  rules.section_totals_required = phase == kPhaseBid || phase == kPhaseAward;
  rules.boq_info_full = !rules.bid;
  rules.award_info_dates =
      phase == kPhaseLv || phase == kPhaseCostEstimate || phase == kPhaseInvitation;
  rules.award_info_execution = rules.award_info_dates || phase == kPhaseAward;
  rules.award_info_contract = phase == kPhaseAward;
  rules.boq_change_order = rules.item_change_orders;
  rules.prj_info_full = !rules.bid && phase != kPhaseAlternative;
  return rules;
}

}  // namespace korvan::exchange
