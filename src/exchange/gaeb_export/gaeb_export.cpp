#include "exchange/gaeb_export/gaeb_export.h"

#include "exchange/gaeb_export/gaeb_export_context.h"
#include "exchange/gaeb_xml/gaeb_writer.h"

namespace korvan::exchange {
namespace {

using gaeb_export::TExportContext;
using gaeb_xml::TGaebElement;

void CheckRequest(const TGaebExportOptions& options) {
  if (FormatInfo(options.format).xml_version.empty()) {
    throw EGaebExportError("Format " + std::string(FormatInfo(options.format).name) +
                           ": die Ausgabe schreibt nur GAEB DA XML 3.1, 3.2 und 3.3");
  }
  if (!ExportPhase(options.phase)) {
    throw EGaebExportError("Phase " + std::to_string(options.phase) +
                           ": ausgegeben werden die Phasen 81 bis 86");
  }
}

// Unit prices keep the LV's decimals when GAEB knows them (2 or 3), else 2.
int UpDecimals(const boq::t_Lv_DB_VERSION_3100& lv) {
  return IsValidUPFracDig(lv.EPGenauigkeit) ? lv.EPGenauigkeit : 2;
}

// Award: DP, AwardInfo, client, contractor, BoQ; the bid (DA 84) has no client.
TGaebElement AwardOf(const TExportContext& context, gaeb_export::TBodyResult& body) {
  TGaebElement award("Award");
  award.Add("DP", std::to_string(context.options.phase));
  award.Add(gaeb_export::AwardInfoOf(context));
  if (std::optional<TGaebElement> own = gaeb_export::OwnOf(context)) award.Add(std::move(*own));
  if (std::optional<TGaebElement> ctr = gaeb_export::CtrOf(context)) award.Add(std::move(*ctr));
  TGaebElement& boq = award.Add("BoQ");
  boq.SetAttribute("ID", "ID_BoQ" + std::to_string(context.Lv().FId));
  TGaebElement& info = boq.Add(gaeb_export::BoQInfoOf(context));
  if (context.rules.prices) {
    // Totals stand after the breakdown and the component labels, before catalogs.
    info.Add(gaeb_export::TotalsOf(context, body.total, context.Lv().NachlassAbs.Betrag,
                                   context.Lv().NachlassProz));
  }
  boq.Add(std::move(body.body));
  return award;
}

// Billing prices are offered only when the LV has some.
void CheckPrices(const TExportContext& context) {
  if (!context.rules.prices || context.price_kind != TUPKind::upkAbrechnung) return;
  for (const boq::TLvPos& entry : context.source.lv.Entries()) {
    if (entry.LvBeschr.AbrechnungsEP.Betrag != 0.0) return;
  }
  throw EGaebExportError(context.LvName() +
                         " hat keine Abrechnungspreise; es können nur Schätz-, Vergabe- oder "
                         "Angebotspreise ausgegeben werden");
}

}  // namespace

TGaebExportResult BuildGaebExport(const TGaebExportSource& source,
                                  const TGaebExportOptions& options,
                                  const TGaebExportProgress& progress) {
  CheckRequest(options);
  TGaebExportResult result;
  const TExportContext context{source,
                               options,
                               PhaseRules(options.phase),
                               EffectivePriceKind(options),
                               UpDecimals(source.lv.FLv()),
                               result.warnings};
  CheckPrices(context);
  gaeb_export::TBodyResult body = gaeb_export::BoQBodyOf(context, progress);
  result.document.format = options.format;
  result.document.phase = options.phase;
  TGaebElement& root = result.document.root;
  root.Add(gaeb_export::GaebInfoOf(context));
  root.Add(gaeb_export::PrjInfoOf(context));
  root.Add(AwardOf(context, body));
  for (TGaebElement& add_text : body.add_texts) root.Add(std::move(add_text));
  result.entries = source.lv.Count();
  return result;
}

TGaebExportResult ExportGaebFile(const TGaebExportSource& source, const TGaebExportOptions& options,
                                 const std::string& path, const TGaebExportProgress& progress) {
  TGaebExportResult result = BuildGaebExport(source, options, progress);
  gaeb_xml::WriteGaebXmlFile(result.document, path);
  return result;
}

}  // namespace korvan::exchange
