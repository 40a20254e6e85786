#include "app/commands/contract/allocation_text.h"

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"

namespace korvan::app {
namespace {

[[noreturn]] void Refuse(const std::string& text) {
  throw UsageError("\"" + text +
                   "\": erwartet UMLAGE=PROZENT% oder UMLAGE=BETRAG, wahlweise mit "
                   ":RECHNUNGSTYPEN, z. B. Bauschild=0,5%:ARSTU oder Baustrom=150:AS.");
}

}  // namespace

billing::TAllocation ParseAllocation(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) Refuse(text);
  billing::TAllocation allocation;
  allocation.name = text.substr(0, equals);
  std::string value = text.substr(equals + 1);
  if (const std::size_t colon = value.find(':'); colon != std::string::npos) {
    allocation.invoice_kinds = value.substr(colon + 1);
    value.resize(colon);
    if (allocation.invoice_kinds.empty()) Refuse(text);
  }
  if (value == "-") return allocation;
  const bool percent = !value.empty() && value.back() == '%';
  if (percent) value.pop_back();
  const std::optional<double> number = ParseGermanNumber(value);
  if (!number || *number < 0) Refuse(text);
  if (percent) {
    allocation.percent = *number;
  } else {
    allocation.amount = *number;
  }
  return allocation;
}

std::string AllocationText(const billing::TAllocation& allocation) {
  const std::string value = allocation.percent ? GermanFigure(*allocation.percent, "%.10g") + "%"
                                               : GermanFigure(allocation.amount, "%.2f");
  return allocation.name + "=" + value + ":" + allocation.invoice_kinds;
}

}  // namespace korvan::app
