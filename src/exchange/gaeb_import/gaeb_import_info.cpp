// PrjInfo, AwardInfo, the parties and BoQInfo of an imported file: into the options data
// (what the file says) and, unless left out, into the LV header and its GAEB header
// record, the same fields the export writes them from.
#include <filesystem>
#include <string>

#include "exchange/gaeb_import/gaeb_import_context.h"

namespace korvan::exchange::gaeb_import {
namespace {

// What the export writes for address parts the LV does not know; not worth a hint.
constexpr const char* kNotGiven = "nicht angegeben";

void ReadCurrency(TImportContext& context, const TGaebElement& parent,
                  std::optional<std::string>& cur, std::optional<std::string>& label) {
  if (const std::optional<std::string> text = context.TakeText(parent, "Cur")) cur = text;
  if (const std::optional<std::string> text = context.TakeText(parent, "CurLbl")) label = text;
}

void StoreCurrency(TImportContext& context, const TGaebElement& parent,
                   t_Gaeb_DB_VERSION_201401& header) {
  const TGXmlImportOptionsData& data = context.Result().data;
  const std::optional<std::string>& cur =
      data.FPrjInfo.Cur ? data.FPrjInfo.Cur : data.FAwardInfo.Cur;
  const std::optional<std::string>& label =
      data.FPrjInfo.Cur ? data.FPrjInfo.CurLbl : data.FAwardInfo.CurLbl;
  if (!cur || context.Options().ignore_currency) return;
  context.Store(header.WAEKU, *cur, "Währung", parent.line);
  if (label) context.Store(header.WAEBEZ, *label, "Währungsbezeichnung", parent.line);
}

void ReadPrjInfo(TImportContext& context, const TGaebElement& info) {
  context.Use(info);
  TAvaGXmlPrjInfo& prj = context.Result().data.FPrjInfo;
  prj.NamePrj = context.TakeText(info, "NamePrj");
  prj.LblPrj = context.TakeText(info, "LblPrj");
  ReadCurrency(context, info, prj.Cur, prj.CurLbl);
  if (info.Child("BidCommPerm") != nullptr) prj.BidCommPerm = context.TakeYes(info, "BidCommPerm");
  if (info.Child("AlterBidPerm") != nullptr) {
    prj.AlterBidPerm = context.TakeYes(info, "AlterBidPerm");
  }
  prj.UPFracDig = context.TakeInteger(info, "UPFracDig", 2, 3);
  if (context.Options().ignore_project_info) return;
  TGaebImport& result = context.Result();
  if (prj.LblPrj) context.Store(result.header.PROBEZ, *prj.LblPrj, "LblPrj", info.line);
  result.header.BidCommPerm = prj.BidCommPerm.value_or(false) ? 1 : 0;
  result.header.AlterBidPerm = prj.AlterBidPerm.value_or(false) ? 1 : 0;
  if (prj.UPFracDig) {
    boq::t_Lv_DB_VERSION_3100 lv = result.lv.FLv();
    lv.EPGenauigkeit = static_cast<uint8_t>(*prj.UPFracDig);
    result.lv.RefreshLvProperties(lv);
  }
}

void ReadAwardInfo(TImportContext& context, const TGaebElement& info) {
  context.Use(info);
  TAvaGXmlAwardInfo& award = context.Result().data.FAwardInfo;
  ReadCurrency(context, info, award.Cur, award.CurLbl);
  award.EvalEnd = context.TakeDate(info, "EvalEnd");
  award.SubmLoc = context.TakeText(info, "SubmLoc");
  award.CnstStart = context.TakeDate(info, "CnstStart");
  award.CnstEnd = context.TakeDate(info, "CnstEnd");
  award.ContrNo = context.TakeText(info, "ContrNo");
  award.ContrDate = context.TakeDate(info, "ContrDate");
  award.AcceptType = context.TakeText(info, "AcceptType");
  award.PerformPcnt = context.TakeDecimal(info, "PerformPcnt");
  award.WarrantPcnt = context.TakeDecimal(info, "WarrantPcnt");
  TGaebImport& result = context.Result();
  boq::t_Lv_DB_VERSION_3100 lv = result.lv.FLv();
  lv.ZusEnde = award.EvalEnd.value_or(0);
  if (award.SubmLoc) context.Store(lv.AbgabeOrt, *award.SubmLoc, "SubmLoc", info.line);
  lv.AusfBeginn = award.CnstStart.value_or(0);
  lv.AusfEnde = award.CnstEnd.value_or(0);
  result.lv.RefreshLvProperties(lv);
  t_Gaeb_DB_VERSION_201401& header = result.header;
  if (award.ContrNo) context.Store(header.ContrNo, *award.ContrNo, "ContrNo", info.line);
  header.ContrDate = award.ContrDate.value_or(0);
  if (award.AcceptType)
    context.Store(header.AcceptType, *award.AcceptType, "AcceptType", info.line);
  header.AusfProz = award.PerformPcnt.value_or(0.0);
  header.GwlProzent = award.WarrantPcnt.value_or(0.0);
}

// An address's name lines as one name, as the export splits it.
std::string NameOf(TImportContext& context, const TGaebElement& party, TAvaGXmlAddress& address) {
  const TGaebElement* element = party.Child("Address");
  if (element == nullptr) return {};
  context.Use(*element);
  std::string name;
  std::optional<std::string>* lines[] = {&address.Name1, &address.Name2, &address.Name3,
                                         &address.Name4};
  for (int line = 1; line <= 4; ++line) {
    *lines[line - 1] = context.TakeText(*element, "Name" + std::to_string(line));
    if (*lines[line - 1]) name += (name.empty() ? "" : " ") + **lines[line - 1];
  }
  for (const char* part : {"Street", "PCode", "City"}) {
    const TGaebElement* child = element->Child(part);
    if (child != nullptr && child->text == kNotGiven) context.UseWhole(*child);
  }
  return name;
}

void ReadOwn(TImportContext& context, const TGaebElement& own) {
  context.Use(own);
  TGaebImport& result = context.Result();
  TAvaGXmlOWN& data = result.data.FOWN.emplace();
  const std::string name = NameOf(context, own, data.Address);
  data.DPNo = context.TakeText(own, "DPNo");
  data.AwardNo = context.TakeText(own, "AwardNo");
  if (context.Options().ignore_project_info) return;
  if (!name.empty()) context.Store(result.header.AGBEZ, name, "Auftraggeber", own.line);
  boq::t_Lv_DB_VERSION_3100 lv = result.lv.FLv();
  if (data.DPNo) context.Store(lv.DvNr, *data.DPNo, "DPNo", own.line);
  if (data.AwardNo) context.Store(lv.VergabeNr, *data.AwardNo, "AwardNo", own.line);
  result.lv.RefreshLvProperties(lv);
}

void ReadCtr(TImportContext& context, const TGaebElement& ctr) {
  context.Use(ctr);
  TGaebImport& result = context.Result();
  TAvaGXmlCTR& data = result.data.FCTR.emplace();
  const std::string name = NameOf(context, ctr, data.Address);
  data.DPNo = context.TakeText(ctr, "DPNo");
  data.BidderNo = context.TakeText(ctr, "BidderNo");
  if (context.Options().ignore_project_info) return;
  if (!name.empty()) context.Store(result.header.ANBEZ, name, "Auftragnehmer", ctr.line);
  if (data.DPNo) context.Store(result.header.DVNRAN, *data.DPNo, "CTR/DPNo", ctr.line);
  if (data.BidderNo) context.Store(result.header.BIETERAG, *data.BidderNo, "BidderNo", ctr.line);
}

void ReadComponentLabels(TImportContext& context, const TGaebElement& info) {
  TAvaGXmlBoQInfo& boq_info = context.Result().data.FBoQInfo;
  boq_info.NoUPComps = context.TakeInteger(info, "NoUPComps", 0, 6);
  for (int i = 1; i <= 6; ++i) {
    const std::optional<std::string> label =
        context.TakeText(info, "LblUPComp" + std::to_string(i));
    if (!label) continue;
    boq_info.LblUPComps.push_back({i, *label});
    context.Store(context.Result().header.KENNWORT[static_cast<size_t>(i - 1)], *label, "LblUPComp",
                  info.line);
  }
}

void ReadBoQInfo(TImportContext& context, const TGaebElement& info, const TGaebElement* body) {
  context.Use(info);
  TGaebImport& result = context.Result();
  TAvaGXmlBoQInfo& data = result.data.FBoQInfo;
  data.Name = context.TakeText(info, "Name");
  data.LblBoQ = context.TakeText(info, "LblBoQ");
  data.Date = context.TakeDate(info, "Date");
  data.CONo = context.TakeText(info, "CONo");
  data.COStatus = context.TakeText(info, "COStatus");
  if (const std::optional<std::string> outline = context.TakeText(info, "OutlCompl")) {
    data.OutlCompl = *outline == "AllTxt";
  }
  ReadComponentLabels(context, info);
  boq::t_Lv_DB_VERSION_3100 lv = result.lv.FLv();
  std::string name = !context.Options().lv_name.empty() ? context.Options().lv_name
                     : data.Name                        ? *data.Name
                                                        : data.LblBoQ.value_or("");
  if (name.empty()) {
    name = std::filesystem::path(context.File()).stem().string();
    context.ReadNo(info.line, "BoQInfo/Name",
                   "BoQInfo ohne Name: das LV heißt nach der Datei \"" + name + "\"");
  }
  context.Store(lv.Name, name, "Name des LV", info.line);
  lv.Datum = data.Date.value_or(0);
  lv.PosMaske.Set(MaskOfBreakdown(context, info, body));
  lv.PreisAnteile = static_cast<uint8_t>(data.NoUPComps.value_or(0));
  if (data.CONo) {
    if (const std::optional<int> number = context.TakeInteger(info, "CONo", 1, 999)) {
      lv.CONo = *number;
    }
    if (const std::optional<char> status = COStatusOf(data.COStatus.value_or(""))) {
      lv.COStatus = static_cast<uint8_t>(*status - '0');
    }
  }
  if (const TGaebElement* totals = context.Take(info, "Totals")) {
    if (const std::optional<double> amount = context.TakeDecimal(*totals, "DiscountAmt")) {
      lv.NachlassAbs.Betrag = *amount;
    }
    if (const std::optional<double> percent = context.TakeDecimal(*totals, "DiscountPcnt")) {
      lv.NachlassProz = *percent;
    }
    if (const std::optional<double> vat = context.TakeDecimal(*totals, "VAT")) lv.Ust = *vat;
  }
  result.lv.RefreshLvProperties(lv);
}

}  // namespace

void ReadInformation(TImportContext& context, const TGaebElement& root, const TGaebElement& award,
                     const TGaebElement& boq) {
  if (const TGaebElement* info = root.Child("PrjInfo")) ReadPrjInfo(context, *info);
  if (const TGaebElement* info = award.Child("AwardInfo")) ReadAwardInfo(context, *info);
  StoreCurrency(context, award, context.Result().header);
  if (const TGaebElement* own = award.Child("OWN")) ReadOwn(context, *own);
  if (const TGaebElement* ctr = award.Child("CTR")) ReadCtr(context, *ctr);
  const TGaebElement* info = boq.Child("BoQInfo");
  if (info == nullptr) {
    context.Result().protocol.push_back("Read: No FGaebXML.Award.BoQ.BoQInfo");
    throw EGaebImportError(context.File() + ":" + std::to_string(boq.line) +
                           ": BoQ ohne BoQInfo: erwartet Name und Gliederung (BoQBkdn) des LV");
  }
  ReadBoQInfo(context, *info, boq.Child("BoQBody"));
}

}  // namespace korvan::exchange::gaeb_import
