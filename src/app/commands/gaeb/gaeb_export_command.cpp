#include "app/commands/gaeb/gaeb_export_command.h"

#include <filesystem>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/cli/progress_line.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/gaeb/gaeb_price_option.h"
#include "app/commands/lv/lv_operation.h"
#include "app/commands/lv/lv_project.h"
#include "app/program/data_dir.h"
#include "billing/tables/tb_vertrag.h"
#include "calc/sums/boq_ctgy_calc_sum.h"
#include "exchange/gaeb/gaeb_file_name.h"
#include "exchange/gaeb_export/gaeb_export_award.h"
#include "exchange/gaeb_export/gaeb_export_bid.h"
#include "exchange/gaeb_export/gaeb_export_source.h"

namespace korvan::app {
namespace {

// Progress is worth showing only for LVs that take a moment.
constexpr int kProgressFromEntries = 2000;

std::string ContractNames(const std::vector<billing::TVertrag>& contracts) {
  std::string names;
  for (const billing::TVertrag& contract : contracts) {
    names += (names.empty() ? "" : ", ") + ("\"" + contract.AuftragsNr.Get() + "\"");
  }
  return names.empty() ? "keine" : names;
}

// A contract of the LV chosen by number or id: the file holds its lines only, with their
// sums.
void TakeChosenContract(LvProject& target, exchange::TGaebExportSource& source,
                        const std::vector<billing::TVertrag>& contracts,
                        const std::string& chosen) {
  for (const billing::TVertrag& contract : contracts) {
    if (contract.AuftragsNr.Get() != chosen && std::to_string(contract.ID) != chosen) continue;
    exchange::TakeContractIntoExportSource(source, contract);
    exchange::KeepLinesOfContract(source, contract.ID);
    calc::TBoqCtgyCalcSum(source.lv, target.Converter(source.lv.FLv())).Calculate(contract.ID);
    return;
  }
  throw CommandError("--contract " + chosen + ": LV \"" + source.lv.FLv().Name.Get() +
                     "\" hat keinen solchen Vertrag (Auftrags-Nummer oder ID; Verträge des LV: " +
                     ContractNames(contracts) + ")");
}

// The award file (DA 86) names the contract of the LV: its contractor, number and date;
// without a choice the main contract over the whole LV.
void TakeAwardInto(LvProject& target, exchange::TGaebExportSource& source,
                   const std::string& chosen, std::vector<std::string>& notes) {
  const boq::t_Lv_DB_VERSION_3100& lv = source.lv.FLv();
  if (lv.Status != 'V' && lv.Status != 'F') {
    notes.push_back("LV \"" + lv.Name.Get() + "\" ist nicht vergeben (Status " +
                    std::string(1, lv.Status) + "); die Vergabepreise sind die des LV");
  }
  const int32_t project = target.ContractProjectNumber(false);
  std::vector<billing::TVertrag> contracts;
  if (project != data::kNullId) {
    contracts = billing::TTbVertrag(target.BillingDb()).ListOfProject(project, int32_t{lv.FId});
  }
  if (!chosen.empty()) {
    TakeChosenContract(target, source, contracts, chosen);
    return;
  }
  for (const billing::TVertrag& contract : contracts) {
    if (contract.Auftragsart != billing::kMainContract) continue;
    exchange::TakeContractIntoExportSource(source, contract);
    return;
  }
  notes.push_back("LV \"" + lv.Name.Get() + "\" hat keinen Vertrag; Auftragnehmer, " +
                  "Vertragsnummer und -datum fehlen in der Datei");
}

}  // namespace

void GaebExportCommand::Define(CLI::App& app) {
  AddLvArgument(app, lv_);
  app.add_option("--phase", phase_, "Datenaustauschphase 81 ... 86")->required();
  app.add_option("--version", version_, "GAEB-DA-XML-Version 3.1, 3.2 oder 3.3 (Vorgabe 3.3)");
  app.add_option("--prices", prices_,
                 "Preise: estimate (Schätzpreise), award (Vergabepreise), bid (Angebotspreise), "
                 "billing (Abrechnungspreise); Vorgabe je Phase");
  app.add_option("--bidder", bidder_,
                 "das Angebot dieses Bieters (Bieter-Nr., Nummer oder Name) ausgeben; nur "
                 "Phase 84");
  app.add_option("--contract", contract_,
                 "der Vertrag (Auftrags-Nummer oder ID), dessen Positionen die Datei enthält, "
                 "z. B. ein Nachauftrag; nur Phase 86 (Vorgabe: der Hauptauftrag, ganzes LV)");
  app.add_option("-o,--output", file_,
                 "Zieldatei (Vorgabe: <Projekt>_<LV>.X8x im aktuellen Ordner)");
  app.add_flag("--short-texts-only", short_texts_only_, "ohne Langtexte (nur Kurztexte)");
  app.add_flag("--multiline-short-text", multiline_short_text_,
               "mehrzeiligen Kurztext ausgeben (sonst nur die erste Zeile)");
  app.add_flag("--fill-empty-complements", fill_empty_complements_, "leere Textergänzungen füllen");
  app.add_flag("--billing-quantity", billing_quantity_,
               "Abrechnungsmenge ausgeben (sonst die Vergabemenge)");
  app.add_flag("--vat", vat_on_sections_, "MwSt. an Bereichsgruppen ausgeben");
  app.add_option("--project", project_,
                 "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
  app.add_flag("--json", json_, "Ausgabe als JSON für Skripte");
  AddDataDirOption(app, data_dir_);
}

exchange::TGaebExportOptions GaebExportCommand::Options() const {
  exchange::TGaebExportOptions options;
  if (!exchange::ExportPhase(phase_)) {
    throw UsageError("--phase " + std::to_string(phase_) + ": erwartet 81 bis 86");
  }
  options.phase = phase_;
  const std::optional<exchange::TGAEBFormat> format = exchange::XmlFormatOfVersion(version_);
  if (!format) throw UsageError("--version " + version_ + ": erwartet 3.1, 3.2 oder 3.3");
  options.format = *format;
  if (!prices_.empty()) {
    const exchange::TUPKind kind = PriceKindOption(prices_);
    if (!exchange::PhaseCarriesPrices(phase_)) {
      throw UsageError("--prices: die Phase " + exchange::PhaseCaption(phase_) +
                       " enthält keine Preise");
    }
    options.price_kind = kind;
  }
  if (!bidder_.empty()) {
    if (phase_ != exchange::kPhaseBid) {
      throw UsageError("--bidder: das Angebot eines Bieters wird als Phase 84 ausgegeben");
    }
    if (options.price_kind != exchange::TUPKind::upkNONE &&
        options.price_kind != exchange::TUPKind::upkAngebot) {
      throw UsageError("--bidder: ausgegeben werden die Angebotspreise des Bieters");
    }
  }
  if (!contract_.empty() && phase_ != exchange::kPhaseAward) {
    throw UsageError("--contract: den Vertrag nennt die Phase 86 (Auftragserteilung)");
  }
  options.long_text = !short_texts_only_;
  options.multiline_short_text = multiline_short_text_;
  options.fill_empty_complements = fill_empty_complements_;
  options.quantity = billing_quantity_ ? exchange::TGaebQtyKind::kAbrechnungsMenge
                                       : exchange::TGaebQtyKind::kVergabeMenge;
  options.vat_on_sections = vat_on_sections_;
  return options;
}

void GaebExportCommand::PrintJson(std::ostream& out, const std::string& path, int32_t id,
                                  const std::string& version,
                                  const exchange::TGaebExportResult& result) const {
  out << "{\"file\": " << JsonString(path) << ", \"lv\": " << id << ", \"phase\": " << phase_
      << ", \"version\": " << JsonString(version) << ", \"entries\": " << result.entries
      << ", \"warnings\": [";
  for (size_t i = 0; i < result.warnings.size(); ++i) {
    out << (i == 0 ? "" : ", ") << JsonString(result.warnings[i]);
  }
  out << "]}\n";
}

int GaebExportCommand::Run(Streams& streams) {
  const exchange::TGaebExportOptions options = Options();
  LvProject target(data_dir_, project_);
  data::TStdDb& db = target.Db(false);
  const int32_t id = target.ResolveLv(lv_);
  exchange::TGaebExportSource source = exchange::LoadGaebExportSource(
      db, options.long_text ? target.TextDb() : nullptr, id, target.Name(), options.long_text);
  if (!bidder_.empty()) {
    BidLv bid_lv(data_dir_, project_, lv_, false);
    std::unique_ptr<award::TdmAngebot> bid = bid_lv.Bidders().OpenBid(bid_lv.Bidder(bidder_));
    bid->Recalculate();
    exchange::TakeBidIntoExportSource(source, *bid);
  }
  std::vector<std::string> notes;
  if (phase_ == exchange::kPhaseAward) TakeAwardInto(target, source, contract_, notes);
  std::string path = file_;
  if (path.empty()) {
    path = exchange::DefaultGaebFileName(target.Name(), source.lv.FLv().Name.Get()) +
           exchange::GaebExtension(options.format, options.phase);
  }
  exchange::TGaebExportResult result;
  {
    ProgressLine progress(streams.err);
    const bool large = source.lv.Count() >= kProgressFromEntries;
    result = exchange::ExportGaebFile(source, options, path, [&](int done, int total) {
      if (large) progress.Show("GAEB-Ausgabe", done, total);
    });
  }
  result.warnings.insert(result.warnings.begin(), notes.begin(), notes.end());
  for (const std::string& warning : result.warnings) streams.err << "Warnung: " << warning << '\n';
  const std::string version(exchange::FormatInfo(options.format).xml_version);
  if (json_) {
    PrintJson(streams.out, path, id, version, result);
    return kExitOk;
  }
  streams.out << "LV " << id << " \"" << source.lv.FLv().Name.Get() << "\" als GAEB DA XML "
              << version << ", Phase " << exchange::PhaseCaption(phase_) << ", mit "
              << result.entries << (result.entries == 1 ? " Eintrag" : " Einträgen")
              << " geschrieben: " << path << '\n';
  return kExitOk;
}

}  // namespace korvan::app
