// `korvan bid import`: the prices of a bidder's GAEB DA 84 file into its bid, one step of
// the journal; nothing is stored when the file belongs to another LV or nothing matches.
#include "app/commands/bid/bid_import_command.h"

#include <cmath>
#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/bid/bid_lv.h"
#include "award/bid/bidder_sums.h"
#include "exchange/gaeb_import/gaeb_bid_import.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {
namespace {

using exchange::gaeb_xml::TGaebFinding;
using exchange::gaeb_xml::TGaebFindingKind;

constexpr const char* kProtocolFile = "Importprotokoll.txt";

std::string_view JsonKind(TGaebFindingKind kind) {
  switch (kind) {
    case TGaebFindingKind::kWarning:
      return "warning";
    case TGaebFindingKind::kHint:
      return "hint";
    case TGaebFindingKind::kStructure:
      return "structure";
    default:
      return "error";
  }
}

std::string Optional(const std::optional<double>& value) {
  return value ? JsonNumber(*value) : std::string("null");
}

bool HasPrices(const award::TdmAngebot& bid) {
  for (const award::TAO& line : bid.FAList()) {
    if (std::fabs(line.Angebot.EP.Betrag) >= 0.0001) return true;
  }
  return false;
}

class BidImportCommand : public LvOperation {
 public:
  std::string Name() const override { return "import"; }
  std::string Summary() const override {
    return "die Preise eines Bieters aus einer GAEB-DA-84-Datei (.X84) einlesen";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    AddBidderArgument(app, bidder_);
    app.add_option("file", file_, "die Angebotsdatei (.X84)")->required();
    app.add_flag("--overwrite", overwrite_, "vorhandene Preise des Bieters überschreiben");
  }

  int Run(Streams& streams) override {
    BidLv target(data_dir, project, lv_, true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(bidder_);
    std::unique_ptr<award::TdmAngebot> bid = target.Bidders().OpenBid(bidder);
    if (HasPrices(*bid) && !overwrite_) {
      throw CommandError("Bieter \"" + bidder.Bietername.Get() +
                         "\" hat schon Preise; --overwrite überschreibt sie. Es wurde nichts "
                         "gespeichert");
    }
    bid->ReadTexts();
    exchange::TGaebBidImport import;
    try {
      import = exchange::ImportGaebBidFile(file_, *bid);
    } catch (const exchange::EGaebImportError& error) {
      throw CommandError(std::string(error.what()) + "; es wurde nichts gespeichert");
    }
    if (!import.other_lv.empty()) {
      throw CommandError(file_ + ": " + import.other_lv + "; es wurde nichts gespeichert");
    }
    if (import.matched_items == 0) {
      throw CommandError(file_ + ": keine Position passt zum LV \"" + target.Name() +
                         "\"; es wurden keine Preise übernommen");
    }
    target.Change("Angebot \"" + bidder.Bietername.Get() + "\" aus " + file_ + " einlesen",
                  streams.err, [&] { bid->Save(); });
    const std::string protocol = WriteProtocol(target, import, streams);
    if (json) {
      PrintJson(streams.out, target, *bid, import, protocol);
      return kExitOk;
    }
    PrintText(streams, target, *bid, import);
    return kExitOk;
  }

 private:
  std::string WriteProtocol(BidLv& target, const exchange::TGaebBidImport& import,
                            Streams& streams) const {
    const std::string protocol =
        (std::filesystem::path(target.Project().Directory()) / kProtocolFile).string();
    try {
      storage::WriteFileAtomically(protocol, exchange::BidImportProtocolText(import),
                                   storage::Durability::kAtomic);
    } catch (const std::exception& error) {
      streams.err << "Warnung: " << kProtocolFile << " nicht geschrieben: " << error.what() << '\n';
    }
    return protocol;
  }

  void PrintJson(std::ostream& out, BidLv& target, const award::TdmAngebot& bid,
                 const exchange::TGaebBidImport& import, const std::string& protocol) const {
    award::t_Bieter_DB_VERSION_3100 bidder = bid.Bidder();
    const award::TBidderTotals totals = award::ComputeBidderSums(bidder, bid.Rounding());
    const exchange::TGaebBidTotals& stated = import.totals;
    out << "{\"file\": " << JsonString(file_) << ", \"lv\": " << target.List().FLv().FId
        << ", \"bidder\": " << JsonString(bidder.Bietername.Get())
        << ", \"items\": " << import.items << ", \"matched_items\": " << import.matched_items
        << ", \"prices\": " << import.prices << ", \"comments\": " << import.comments
        << ", \"bidder_texts\": " << import.bidder_texts << ", \"sections\": " << import.sections
        << ", \"matched_sections\": " << import.matched_sections
        << ", \"totals\": {\"checked\": " << JsonNumber(totals.checked)
        << ", \"after_discount\": " << JsonNumber(totals.after_discount)
        << ", \"net\": " << JsonNumber(totals.net)
        << ", \"vat_rate\": " << JsonNumber(totals.vat_rate)
        << ", \"vat\": " << JsonNumber(totals.vat) << ", \"gross\": " << JsonNumber(totals.gross)
        << "}, \"stated\": {\"total\": " << Optional(stated.total)
        << ", \"discount_percent\": " << Optional(stated.discount_pcnt)
        << ", \"net\": " << Optional(stated.net) << ", \"vat_rate\": " << Optional(stated.vat_rate)
        << ", \"vat\": " << Optional(stated.vat) << ", \"gross\": " << Optional(stated.gross)
        << "}, \"protocol\": " << JsonString(protocol) << ", \"findings\": [";
    for (std::size_t i = 0; i < import.findings.size(); ++i) {
      const TGaebFinding& finding = import.findings[i];
      out << (i == 0 ? "" : ", ") << "{\"kind\": " << JsonString(JsonKind(finding.kind))
          << ", \"line\": " << finding.line << ", \"message\": " << JsonString(finding.message)
          << "}";
    }
    out << "]}\n";
  }

  void PrintText(Streams& streams, BidLv& target, const award::TdmAngebot& bid,
                 const exchange::TGaebBidImport& import) const {
    for (const TGaebFinding& finding : import.findings) {
      streams.err << file_ << ':' << finding.line << ": "
                  << exchange::gaeb_xml::FindingKindText(finding.kind) << ": " << finding.message
                  << '\n';
    }
    award::t_Bieter_DB_VERSION_3100 bidder = bid.Bidder();
    const award::TBidderTotals totals = award::ComputeBidderSums(bidder, bid.Rounding());
    streams.out << "Angebot \"" << bidder.Bietername.Get() << "\" für LV \"" << target.Name()
                << "\" aus " << file_ << " eingelesen: " << import.matched_items << " von "
                << import.items << " Positionen zugeordnet, " << import.prices << " Preise, "
                << import.comments << " Bieterkommentare, " << import.bidder_texts
                << " Bietertextergänzungen, " << import.findings.size()
                << (import.findings.size() == 1 ? " Befund" : " Befunde") << "\nNetto "
                << GermanFigure(totals.net, "%.2f") << ", MwSt " << GermanFigure(totals.vat, "%.2f")
                << ", Brutto " << GermanFigure(totals.gross, "%.2f") << '\n';
  }

  std::string lv_;
  std::string bidder_;
  std::string file_;
  bool overwrite_ = false;
};

}  // namespace

std::unique_ptr<LvOperation> MakeBidImportCommand() {
  return std::make_unique<BidImportCommand>();
}

}  // namespace korvan::app
