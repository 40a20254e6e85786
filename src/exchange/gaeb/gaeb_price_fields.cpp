#include "exchange/gaeb/gaeb_price_fields.h"

namespace korvan::exchange {

data::t_WaeBetrag* UnitPriceField(boq::t_LvBeschr2_DB_VERSION_201401& item, TUPKind kind) {
  switch (kind) {
    case TUPKind::upkSchaetz:
      return &item.SchaetzEP;
    case TUPKind::upkVergabe:
      return &item.VergabeEP;
    case TUPKind::upkAngebot:
      return &item.AngebotsEP;
    case TUPKind::upkAbrechnung:
      return &item.AbrechnungsEP;
    default:
      return nullptr;
  }
}

data::t_WaeBetrag* TotalField(boq::t_LvBgBeschr_3000& common, TUPKind kind) {
  switch (kind) {
    case TUPKind::upkSchaetz:
      return &common.SchaetzGP;
    case TUPKind::upkVergabe:
      return &common.VergabeGP;
    case TUPKind::upkAngebot:
      return &common.AngebotsGP;
    case TUPKind::upkAbrechnung:
      return &common.AbrechnungsGP;
    default:
      return nullptr;
  }
}

const data::t_WaeBetrag* UnitPriceField(const boq::t_LvBeschr2_DB_VERSION_201401& item,
                                        TUPKind kind) {
  return UnitPriceField(const_cast<boq::t_LvBeschr2_DB_VERSION_201401&>(item), kind);
}

}  // namespace korvan::exchange
