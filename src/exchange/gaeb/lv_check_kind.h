#pragma once

namespace korvan::exchange {

// The kinds of finding of the LV check that may guard an export, in their order.
enum class TLvCheckKind {
  ckNONE,
  ckOZFailToSchema,  // OZ does not fit the mask
  ckOZNotClear,      // OZ ambiguous
  ckOZNotRising,     // OZ not ascending
  ckBoQCtgyInvalid,
  ckZZEmpty,
  ckNoGrundposition,  // alternative without base item
  ckProvisNotAllowed,
  ckIncompleteLeitUnter,  // lead description without sub-items or the reverse
  ckGAEB90MaxRowCount,
  ckEmptyTA,
  ckEmptyTB,
  ckSTLBBauUV,
  ckSTLBBauUG,
  ckSTLBBauChanged,
  ckHBOUG,
  ckInvalidPosRef,
  ckWithoutQty,
  ckWrongFreeQty,
  ckWrongPauschalpositionQty,
  ckWithoutQU,
  ckQUNotDefined,
  ckCtlgAssignKogr1NotDefined,
  ckCtlgAssignKogr2NotDefined,
  ckCtlgAssignKogr3NotDefined,
  ckCtlgAssignKostNotDefined,
  ckCtlgAssignLBNotDefined,
  ckCtlgAssignFrNrNotDefined,
  ckCtlgAssignUnitNotDefined,
  ckWithoutSchaetzUP,
  ckWithoutVergabeUP,
  ckWithoutAngebotUP,
  ckWithoutContractRef,
  ckForwardRefsInREBStatementsForVergabe,
  ckForwardRefsInREBStatementsForPrognose,
  ckForwardRefsInREBStatementsForAufmass,
  ckGAEB90EmptyDescription,
  ckFormelValuesInREBStatementsForVergabe,
  ckFormelValuesInREBStatementsForPrognose,
  ckFormelValuesInREBStatementsForAufmass,
  ckQtyWithQtySplit,
  ckValidTE,
  ckEmptyNameBoQ,
  ckEmptyLblBoQ,
  ckNoBoQBkdn,
  ckWrongBoQBkdn,
  ckCtlgAssignDifferingKogr,
  ckInvalidGraphicLink,
};

}  // namespace korvan::exchange
