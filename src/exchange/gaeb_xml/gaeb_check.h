#pragma once

#include "exchange/gaeb_xml/gaeb_document.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

namespace korvan::exchange::gaeb_xml {

// The structure rules of the reader: GAEBInfo with Version, Award with DP, a BoQ with
// ID, BoQInfo with Name and a BoQBody; sections and items with ID and RNoPart; remarks
// and performance descriptions with ID; every ID only once. (A section may have no body:
// an empty section is allowed.)
TGaebFindings CheckGaebStructure(const TGaebDocument& document);

// The arithmetic of the prices: every number is a decimal of the schema's form; an
// item's total is its quantity (1 when it has none) times its unit price within a cent;
// a section's and the BoQ's Total is the sum of what they hold (items counted only with
// their total: not without-total provisional items, not inapplicable items, of an
// alternative group only the first).
TGaebFindings CheckGaebArithmetic(const TGaebDocument& document);

}  // namespace korvan::exchange::gaeb_xml
