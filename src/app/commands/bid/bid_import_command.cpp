// `korvan bid import`: the prices of a bidder's GAEB DA 84 file into its bid, one step of
// the journal; nothing is stored when the file belongs to another LV or nothing matches.
#include "app/commands/bid/bid_import_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/json_text.h"
#include "app/commands/bid/bid_file_import.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/gaeb/finding_kind_json.h"
#include "exchange/gaeb_import/gaeb_bid_import.h"

namespace korvan::app {
namespace {

using exchange::gaeb_xml::TGaebFinding;

std::string Optional(const std::optional<double>& value) {
  return value ? JsonNumber(*value) : std::string("null");
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
    const BidFileImported imported = ImportBidFile(
        data_dir, project, {.lv = lv_, .bidder = bidder_, .file = file_, .overwrite = overwrite_},
        streams.err);
    if (json) {
      PrintJson(streams.out, imported);
      return kExitOk;
    }
    PrintText(streams, imported);
    return kExitOk;
  }

 private:
  void PrintJson(std::ostream& out, const BidFileImported& imported) const {
    const award::TBidderTotals& totals = imported.totals;
    const exchange::TGaebBidImport& import = imported.import;
    const exchange::TGaebBidTotals& stated = import.totals;
    out << "{\"file\": " << JsonString(file_) << ", \"lv\": " << imported.lv
        << ", \"bidder\": " << JsonString(imported.bidder.Bietername.Get())
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
        << "}, \"protocol\": " << JsonString(imported.protocol) << ", \"findings\": [";
    for (std::size_t i = 0; i < import.findings.size(); ++i) {
      const TGaebFinding& finding = import.findings[i];
      out << (i == 0 ? "" : ", ") << "{\"kind\": " << JsonString(FindingKindJson(finding.kind))
          << ", \"line\": " << finding.line << ", \"message\": " << JsonString(finding.message)
          << "}";
    }
    out << "]}\n";
  }

  void PrintText(Streams& streams, const BidFileImported& imported) const {
    const exchange::TGaebBidImport& import = imported.import;
    for (const TGaebFinding& finding : import.findings) {
      streams.err << file_ << ':' << finding.line << ": "
                  << exchange::gaeb_xml::FindingKindText(finding.kind) << ": " << finding.message
                  << '\n';
    }
    streams.out << ImportedBidText(imported, file_) << '\n';
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
