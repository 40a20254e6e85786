// GAEBInfo, PrjInfo, AwardInfo, the parties and BoQInfo of an exported file.
#include <ctime>
#include <string>

#include "boq/oz/oz_hierarchy.h"
#include "data/records/int_date.h"
#include "exchange/gaeb/gaeb_values.h"
#include "exchange/gaeb_export/gaeb_export_context.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"

namespace korvan::exchange::gaeb_export {
namespace {

// The system keeps amounts in euro unless the LV's GAEB information names another
// currency.
constexpr const char* kDefaultCurrency = "EUR";
constexpr const char* kDefaultCurrencyLabel = "Euro";
// What an address the schema requires gets in place of a part the LV does not know.
constexpr const char* kNotGiven = "nicht angegeben";

std::string TimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof text, "%H:%M:%S", &local);
  return text;
}

void AddIfSet(TGaebElement& parent, const char* name, const std::string& value) {
  if (!value.empty()) parent.Add(name, value);
}

std::string HeaderText(const TExportContext& context, auto field) {
  return context.source.header ? ((*context.source.header).*field).Get() : std::string();
}

bool HeaderFlag(const TExportContext& context, uint8_t t_Gaeb_DB_VERSION_201401::*field) {
  return context.source.header && (*context.source.header).*field != 0;
}

std::string Currency(const TExportContext& context) {
  const std::string own = HeaderText(context, &t_Gaeb_DB_VERSION_201401::WAEKU);
  return own.empty() ? kDefaultCurrency : CutToChars(own, 4);
}

std::string CurrencyLabel(const TExportContext& context) {
  if (HeaderText(context, &t_Gaeb_DB_VERSION_201401::WAEKU).empty()) return kDefaultCurrencyLabel;
  return HeaderText(context, &t_Gaeb_DB_VERSION_201401::WAEBEZ);
}

void AddCurrency(const TExportContext& context, TGaebElement& parent) {
  parent.Add("Cur", Currency(context));
  AddIfSet(parent, "CurLbl", CutToChars(CurrencyLabel(context), 50));
}

void AddDate(TGaebElement& parent, const char* name, int32_t date) {
  AddIfSet(parent, name, XmlDate(date));
}

void AddPercent(TGaebElement& parent, const char* name, double percent) {
  if (percent > 0.0) parent.Add(name, Decimal(percent, 6, 9, name));
}

// An address of which the LV knows at most the name: the name in up to four lines of
// 40 characters, the parts the schema requires as "nicht angegeben".
TGaebElement AddressOf(const std::string& name, const std::string& party,
                       const TExportContext& context) {
  TGaebElement address("Address");
  std::string rest = name.empty() ? party : name;
  for (int line = 1; line <= 4 && !rest.empty(); ++line) {
    const std::string part = CutToChars(rest, 40);
    address.Add("Name" + std::to_string(line), part);
    rest = rest.substr(part.size());
  }
  address.Add("Street", kNotGiven);
  address.Add("PCode", kNotGiven);
  address.Add("City", kNotGiven);
  context.warnings.push_back(
      "Die Anschrift des " + party + "s ist nicht erfasst; Straße, PLZ und Ort stehen als \"" +
      kNotGiven + "\" in der Datei" + (name.empty() ? ", der Name als \"" + party + "\"" : ""));
  return address;
}

// Levels of the OZ mask as BoQBkdn; an indexed mask adds the index level.
void AddBreakdown(const TExportContext& context, TGaebElement& info) {
  const boq::TLvOzMask& mask = context.source.lv.FOzMask();
  if (mask.FMask().empty()) {
    throw EGaebExportError(context.LvName() +
                           " hat keine OZ-Maske; GAEB verlangt die Gliederung der "
                           "Ordnungszahlen (\"korvan lv structure\" legt sie fest)");
  }
  for (const boq::THierarchyLevel& level : boq::HierarchyFromMask(mask.FMask())) {
    if (level.Laenge == 0) continue;
    const std::optional<TBoQBkdnType> type = BoQBkdnTypeOfHierarchyRow(level.Typ);
    TGaebElement& bkdn = info.Add("BoQBkdn");
    bkdn.Add("Type", std::string(GaebText(type.value_or(TBoQBkdnType::bbtBoQLevel))));
    AddIfSet(bkdn, "LblBoQBkdn", CutToChars(level.Bez, 40));
    bkdn.Add("Length", std::to_string(level.Laenge));
    bkdn.Add("Num", level.Num ? "Yes" : "No");
    if (level.Alignment == boq::TBoQBkdnAligment::bbaRight) bkdn.Add("Alignment", "right");
  }
  if (mask.FIsIndexed()) {
    TGaebElement& index = info.Add("BoQBkdn");
    index.Add("Type", std::string(GaebText(TBoQBkdnType::bbtIndex)));
    index.Add("Length", "1");
    index.Add("Num", "No");
  }
}

// The number of unit-price components the LV uses, when the schema knows it (0, 2 ... 6).
int UpComponents(const TExportContext& context) {
  const int count = context.Lv().PreisAnteile;
  return count >= 2 && count <= 6 ? count : 0;
}

void AddComponentLabels(const TExportContext& context, TGaebElement& info) {
  const int count = UpComponents(context);
  if (count == 0) return;
  info.Add("NoUPComps", std::to_string(count));
  if (!context.source.header) return;
  for (int i = 0; i < count; ++i) {
    const std::string label = context.source.header->KENNWORT[static_cast<size_t>(i)].Get();
    if (label.empty()) continue;
    info.Add("LblUPComp" + std::to_string(i + 1), CutToChars(label, 20))
        .SetAttribute("Type", "Miscellaneous");
  }
}

}  // namespace

TGaebElement GaebInfoOf(const TExportContext& context) {
  TGaebElement info("GAEBInfo");
  const TGAEBFormat format = context.options.format;
  info.Add("Version", std::string(FormatInfo(format).xml_version));
  info.Add("VersDate", std::string(gaeb_xml::GaebVersDate(format)));
  const int32_t date = context.options.date != 0 ? context.options.date : data::TodayAsIntDate();
  info.Add("Date", XmlDate(date));
  info.Add("Time", context.options.time.empty() ? TimeNow() : context.options.time);
  info.Add("ProgSystem", "Korvan");
  info.Add("ProgName", "Korvan AVA");
  return info;
}

TGaebElement PrjInfoOf(const TExportContext& context) {
  TGaebElement info("PrjInfo");
  // The bid must name the project; an LV of no named project names itself.
  const std::string name = context.source.project_name.empty() && context.rules.bid
                               ? context.Lv().Name.Get()
                               : context.source.project_name;
  AddIfSet(info, "NamePrj", CutToChars(name, 60));
  std::string label = HeaderText(context, &t_Gaeb_DB_VERSION_201401::PROBEZ);
  if (label.empty()) label = context.source.project_label;
  AddIfSet(info, "LblPrj", CutToChars(label, 100));
  if (context.rules.bid) return info;
  AddCurrency(context, info);
  if (HeaderFlag(context, &t_Gaeb_DB_VERSION_201401::BidCommPerm)) info.Add("BidCommPerm", "Yes");
  if (!context.rules.prj_info_full) return info;
  if (HeaderFlag(context, &t_Gaeb_DB_VERSION_201401::AlterBidPerm)) {
    info.Add("AlterBidPerm", "Yes");
  }
  if (IsValidUPFracDig(context.up_decimals)) {
    info.Add("UPFracDig", std::to_string(context.up_decimals));
  }
  return info;
}

TGaebElement AwardInfoOf(const TExportContext& context) {
  const boq::t_Lv_DB_VERSION_3100& lv = context.Lv();
  const TGaebPhaseRules& rules = context.rules;
  TGaebElement info("AwardInfo");
  AddCurrency(context, info);
  if (rules.award_info_dates) {
    AddDate(info, "EvalEnd", lv.ZusEnde);
    AddIfSet(info, "SubmLoc", CutToChars(lv.AbgabeOrt.Get(), 60));
  }
  if (rules.award_info_execution) {
    AddDate(info, "CnstStart", lv.AusfBeginn);
    AddDate(info, "CnstEnd", lv.AusfEnde);
  }
  if (rules.award_info_contract && context.source.header) {
    const t_Gaeb_DB_VERSION_201401& header = *context.source.header;
    AddIfSet(info, "ContrNo", CutToChars(header.ContrNo.Get(), 20));
    AddDate(info, "ContrDate", header.ContrDate);
    AddIfSet(info, "AcceptType", CutToChars(header.AcceptType.Get(), 60));
  }
  if (rules.award_info_execution && context.source.header) {
    AddPercent(info, "PerformPcnt", context.source.header->AusfProz);
    AddPercent(info, "WarrantPcnt", context.source.header->GwlProzent);
  }
  return info;
}

std::optional<TGaebElement> OwnOf(const TExportContext& context) {
  if (!context.rules.own) return std::nullopt;
  const std::string name = HeaderText(context, &t_Gaeb_DB_VERSION_201401::AGBEZ);
  const std::string dp_no = CutToChars(context.Lv().DvNr.Get(), 60);
  std::string award_no = context.Lv().VergabeNr.Get();
  if (award_no.empty()) award_no = HeaderText(context, &t_Gaeb_DB_VERSION_201401::VERGAN);
  if (!context.rules.own_required && name.empty() && dp_no.empty() && award_no.empty()) {
    return std::nullopt;
  }
  TGaebElement own("OWN");
  if (context.rules.own_required || !name.empty()) {
    own.Add(AddressOf(name, "Auftraggeber", context));
  }
  AddIfSet(own, "DPNo", dp_no);
  AddIfSet(own, "AwardNo", CutToChars(award_no, 60));
  return own;
}

std::optional<TGaebElement> CtrOf(const TExportContext& context) {
  if (!context.rules.ctr) return std::nullopt;
  const std::string name = HeaderText(context, &t_Gaeb_DB_VERSION_201401::ANBEZ);
  if (!context.rules.ctr_required && name.empty()) return std::nullopt;
  TGaebElement ctr("CTR");
  ctr.Add(AddressOf(name, "Auftragnehmer", context));
  AddIfSet(ctr, "DPNo", CutToChars(HeaderText(context, &t_Gaeb_DB_VERSION_201401::DVNRAN), 60));
  AddIfSet(ctr, "BidderNo", HeaderText(context, &t_Gaeb_DB_VERSION_201401::BIETERAG));
  return ctr;
}

TGaebElement BoQInfoOf(const TExportContext& context) {
  const boq::t_Lv_DB_VERSION_3100& lv = context.Lv();
  TGaebElement info("BoQInfo");
  const std::string name = lv.Name.Get().empty() ? std::to_string(lv.FId) : lv.Name.Get();
  info.Add("Name", CutToChars(name, 20));
  if (context.rules.boq_info_full) {
    info.Add("LblBoQ", CutToChars(name, 60));
    const std::optional<std::string_view> status =
        COStatusText(static_cast<char>('0' + lv.COStatus));
    if (context.rules.boq_change_order && lv.CONo > 0 && lv.CONo <= 999 && status) {
      info.Add("CONo", std::to_string(lv.CONo));
      info.Add("COStatus", std::string(*status));
    }
    AddDate(info, "Date", lv.Datum);
    info.Add("OutlCompl", context.options.long_text ? "AllTxt" : "OutTxt");
  }
  AddBreakdown(context, info);
  if (context.rules.boq_info_full) AddComponentLabels(context, info);
  return info;
}

}  // namespace korvan::exchange::gaeb_export
