#pragma once

#include <string>

#include "billing/deduction/contract_allocations.h"

namespace korvan::app {

// An allocation as the command line and the defaults file write it: "NAME=PCT%" or
// "NAME=AMOUNT", each optionally followed by ":RTYP" (the invoice kinds, e.g. "AS"); "NAME=0"
// or "NAME=-" for none. UsageError naming the text and what was expected.
billing::TAllocation ParseAllocation(const std::string& text);
// The same text back: "Bauschild=0,5%:ARSTU".
std::string AllocationText(const billing::TAllocation& allocation);

}  // namespace korvan::app
