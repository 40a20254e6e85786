#include "app/commands/bid/bid_file_import.h"

#include <cmath>
#include <memory>
#include <ostream>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/gaeb/import_protocol.h"
#include "exchange/gaeb_import/gaeb_import.h"

namespace korvan::app {
namespace {

bool HasPrices(const award::TdmAngebot& bid) {
  for (const award::TAO& line : bid.FAList()) {
    if (std::fabs(line.Angebot.EP.Betrag) >= 0.0001) return true;
  }
  return false;
}

}  // namespace

BidFileImported ImportBidFile(const std::string& data_dir, const std::string& project,
                              const BidFileImport& request, std::ostream& warnings) {
  BidLv target(data_dir, project, request.lv, true);
  const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(request.bidder);
  std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
  if (HasPrices(*bid) && !request.overwrite) {
    throw CommandError("Bieter \"" + bidder.Bietername.Get() +
                       "\" hat schon Preise; --overwrite überschreibt sie. Es wurde nichts "
                       "gespeichert");
  }
  bid->ReadTexts();
  BidFileImported result;
  try {
    result.import = exchange::ImportGaebBidFile(request.file, *bid);
  } catch (const exchange::EGaebImportError& error) {
    throw CommandError(std::string(error.what()) + "; es wurde nichts gespeichert");
  }
  if (!result.import.other_lv.empty()) {
    throw CommandError(request.file + ": " + result.import.other_lv +
                       "; es wurde nichts gespeichert");
  }
  if (result.import.matched_items == 0) {
    throw CommandError(request.file + ": keine Position passt zum LV \"" + target.Name() +
                       "\"; es wurden keine Preise übernommen");
  }
  target.Change("Angebot \"" + bidder.Bietername.Get() + "\" aus " + request.file + " einlesen",
                warnings, [&] { bid->Save(); });
  result.protocol = WriteImportProtocol(target.Project().Directory(),
                                        exchange::BidImportProtocolText(result.import), warnings);
  result.lv = target.List().FLv().FId;
  result.lv_name = target.Name();
  result.bidder = bid->Bidder();
  result.totals = award::ComputeBidderSums(result.bidder, bid->Rounding());
  return result;
}

std::string ImportedBidText(const BidFileImported& imported, const std::string& file) {
  const exchange::TGaebBidImport& import = imported.import;
  const award::TBidderTotals& totals = imported.totals;
  std::ostringstream out;
  out << "Angebot \"" << imported.bidder.Bietername.Get() << "\" für LV \"" << imported.lv_name
      << "\" aus " << file << " eingelesen: " << import.matched_items << " von " << import.items
      << " Positionen zugeordnet, " << import.prices << " Preise, " << import.comments
      << " Bieterkommentare, " << import.bidder_texts << " Bietertextergänzungen, "
      << import.findings.size() << (import.findings.size() == 1 ? " Befund" : " Befunde")
      << "\nNetto " << GermanFigure(totals.net, "%.2f") << ", MwSt "
      << GermanFigure(totals.vat, "%.2f") << ", Brutto " << GermanFigure(totals.gross, "%.2f");
  return out.str();
}

}  // namespace korvan::app
