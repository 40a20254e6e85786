#include "app/commands/gaeb/gaeb_lv_export.h"

#include <memory>
#include <sstream>
#include <vector>

#include "app/cli/command_error.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/lv/lv_project.h"
#include "billing/tables/tb_vertrag.h"
#include "calc/sums/boq_ctgy_calc_sum.h"
#include "exchange/gaeb/gaeb_file_name.h"
#include "exchange/gaeb_export/gaeb_export_award.h"
#include "exchange/gaeb_export/gaeb_export_bid.h"
#include "exchange/gaeb_export/gaeb_export_source.h"

namespace korvan::app {
namespace {

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

GaebLvExported ExportGaebLv(const std::string& data_dir, const std::string& project,
                            const GaebLvExport& request,
                            const exchange::TGaebExportProgress& progress) {
  const exchange::TGaebExportOptions& options = request.options;
  LvProject target(data_dir, project);
  data::TStdDb& db = target.Db(false);
  GaebLvExported exported;
  exported.id = target.ResolveLv(request.lv);
  exchange::TGaebExportSource source =
      exchange::LoadGaebExportSource(db, options.long_text ? target.TextDb() : nullptr, exported.id,
                                     target.Name(), options.long_text);
  if (!request.bidder.empty()) {
    BidLv bid_lv(data_dir, project, request.lv, false);
    std::unique_ptr<award::TdmAngebot> bid =
        bid_lv.Bidders().OpenBid(bid_lv.Bidder(request.bidder));
    bid->Recalculate();
    exchange::TakeBidIntoExportSource(source, *bid);
  }
  std::vector<std::string> notes;
  if (options.phase == exchange::kPhaseAward) {
    TakeAwardInto(target, source, request.contract, notes);
  }
  exported.lv_name = source.lv.FLv().Name.Get();
  exported.path = request.file;
  if (exported.path.empty()) {
    exported.path = exchange::DefaultGaebFileName(target.Name(), exported.lv_name) +
                    exchange::GaebExtension(options.format, options.phase);
  }
  exported.result = exchange::ExportGaebFile(source, options, exported.path, progress);
  std::vector<std::string>& warnings = exported.result.warnings;
  warnings.insert(warnings.begin(), notes.begin(), notes.end());
  return exported;
}

std::string ExportedLvText(const GaebLvExported& exported,
                           const exchange::TGaebExportOptions& options) {
  const int entries = exported.result.entries;
  std::ostringstream out;
  out << "LV " << exported.id << " \"" << exported.lv_name << "\" als GAEB DA XML "
      << exchange::FormatInfo(options.format).xml_version << ", Phase "
      << exchange::PhaseCaption(options.phase) << ", mit " << entries
      << (entries == 1 ? " Eintrag" : " Einträgen") << " geschrieben: " << exported.path;
  return out.str();
}

}  // namespace korvan::app
