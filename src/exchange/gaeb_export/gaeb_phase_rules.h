#pragma once

#include "exchange/gaeb/gaeb_phase.h"

namespace korvan::exchange {

// What the schema of a phase lets an exported file hold, where the phases differ. The
// writer asks these instead of testing phase numbers, so that every file it writes is
// valid for its phase.
struct TGaebPhaseRules {
  bool bid = false;                 // DA 84: the bid variant of every filling routine
  bool prices = false;              // UP, UPComp, IT and the totals
  bool qu_required = false;         // every item has a QU, even an empty one
  bool not_appl = false;            // NotAppl of items
  bool section_not_appl = false;    // NotApplBoQ of sections
  bool item_change_orders = false;  // CONo and COStatus of items
  bool qty_tbd = false;             // QtyTBD of free-quantity items
  bool qty_with_tbd = false;        // a free-quantity item keeps its Qty
  bool pred_qty = false;            // PredQty
  bool own = false;                 // the client (OWN) may be written
  bool own_required = false;
  bool ctr = false;  // the contractor (CTR) may be written
  bool ctr_required = false;
  bool award_add_texts = false;  // additional texts of the award
  bool section_totals_required = false;
  bool boq_info_full = false;         // BoQInfo with LblBoQ, Date, OutlCompl and the labels
  bool award_info_dates = false;      // EvalEnd and SubmLoc (invitation)
  bool award_info_execution = false;  // CnstStart, CnstEnd, PerformPcnt, WarrantPcnt
  bool award_info_contract = false;   // ContrNo, ContrDate, AcceptType
  bool boq_change_order = false;      // CONo and COStatus of the BoQ
  bool prj_info_full = false;         // AlterBidPerm and UPFracDig of the project
};

// The rules of an export phase 81 ... 86.
TGaebPhaseRules PhaseRules(TGaebPhase phase);

}  // namespace korvan::exchange
