#include "app/commands/contract/contract_view.h"

#include <cstdio>
#include <ostream>

#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "billing/contract/contract_sums.h"
#include "billing/contract/dm_vertrag.h"
#include "billing/deduction/contract_allocations.h"
#include "billing/deduction/deduction_amounts.h"
#include "billing/tables/billing_table_types.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

std::string Percent(double value) {
  return GermanFigure(value, "%g");
}

std::string JsonDate(int32_t date) {
  if (data::ClassifyIntDate(date) != data::IntDateKind::kValid) return "null";
  const data::CivilDate parts = data::IntDateParts(date);
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", parts.year, parts.month, parts.day);
  return JsonString(text);
}

std::string JsonId(int32_t id) {
  return id == data::kNullId ? std::string("null") : std::to_string(id);
}

std::string JsonBool(uint8_t value) {
  return value != 0 ? "true" : "false";
}

std::string JsonChar(char value) {
  return value == '\0' || value == ' ' ? std::string("null") : JsonString(std::string(1, value));
}

const char* BillingModeText(char mode) {
  switch (mode) {
    case 'T':
      return "Teilrechnung";
    case 'S':
      return "Schlußrechnung";
    default:
      return "Rechnung";
  }
}

const char* DeductionTypeText(char type) {
  switch (type) {
    case 'U':
      return "Umlage";
    case 'R':
      return "Rückstellung";
    case 'E':
      return "Einbehalt";
    case 'W':
      return "Wertminderung";
    case 'S':
      return "Schaden";
    case 'F':
      return "Fremdleistung";
    case 'G':
      return "Gewährleistung";
    case 'B':
      return "Bauleistung";
    default:
      return "Vertrag";
  }
}

std::string DeductionJson(const billing::TDeduction& deduction, double vat_rate,
                          const boq::TAvaUiValueConverter& converter) {
  const billing::TAbzug& r = deduction.record;
  const std::optional<double> percent = billing::PercentOfFormula(deduction.formula);
  const std::optional<billing::TDeductionAmounts> amounts =
      billing::FixedDeductionAmounts(deduction, vat_rate, converter);
  auto amount = [&](double billing::TDeductionAmounts::*field) {
    return amounts ? JsonNumber((*amounts).*field) : std::string("null");
  };
  return "{\"id\": " + std::to_string(r.ID) + ", \"name\": " + JsonString(deduction.name) +
         ", \"type\": " + JsonChar(r.Typ) + ", \"subtype\": " + JsonChar(r.SubTyp) +
         ", \"entered\": " + JsonString(r.KzBruttoNetto == 'B' ? "gross" : "net") +
         ", \"invoice_kinds\": " + JsonString(r.Rechnungstyp.Get()) +
         ", \"amount\": " + JsonNumber(double{r.AbzugBetrag.Betrag}) + ", \"formula\": " +
         (deduction.formula.empty() ? std::string("null") : JsonString(deduction.formula)) +
         ", \"percent\": " + (percent ? JsonNumber(*percent) : std::string("null")) +
         ", \"net\": " + amount(&billing::TDeductionAmounts::net) +
         ", \"gross\": " + amount(&billing::TDeductionAmounts::gross) +
         ", \"vat\": " + amount(&billing::TDeductionAmounts::vat) + "}";
}

void PrintDeduction(std::ostream& out, const billing::TDeduction& deduction, double vat_rate,
                    const boq::TAvaUiValueConverter& converter) {
  const billing::TAbzug& r = deduction.record;
  out << "  " << DeductionTypeText(r.Typ) << " \"" << deduction.name << "\": ";
  if (const std::optional<double> percent = billing::PercentOfFormula(deduction.formula)) {
    out << Percent(*percent) << " % des Rechnungsbetrags";
  } else if (!deduction.formula.empty()) {
    out << "Ansatz " << deduction.formula;
  } else if (const auto amounts = billing::FixedDeductionAmounts(deduction, vat_rate, converter)) {
    out << GermanMoney(amounts->net) << " netto, " << GermanMoney(amounts->gross)
        << " brutto (MwSt " << GermanMoney(amounts->vat) << ")";
  }
  out << ", Rechnungstypen " << (r.Rechnungstyp.Get().empty() ? "keine" : r.Rechnungstyp.Get())
      << '\n';
}

}  // namespace

std::string ContractJson(const ContractView& view, const boq::TAvaUiValueConverter& converter) {
  const billing::TVertrag& c = view.contract;
  const billing::TCashDiscountSums cash = billing::CashDiscountSums(c, converter);
  std::string supplements = "[";
  for (std::size_t i = 0; i < view.supplements.size(); ++i) {
    supplements += (i == 0 ? "" : ", ") + JsonString(view.supplements[i]);
  }
  supplements += "]";
  std::string deductions = "[";
  for (std::size_t i = 0; i < view.deductions.size(); ++i) {
    deductions += (i == 0 ? "" : ", ") + DeductionJson(view.deductions[i], c.Mwst, converter);
  }
  deductions += "]";
  return "{\"id\": " + std::to_string(c.ID) + ", \"number\": " + JsonString(c.AuftragsNr.Get()) +
         ", \"kind\": " + JsonChar(c.Auftragsart) + ", \"lv\": " + JsonId(c.IdLv) +
         ", \"lv_name\": " + JsonString(view.lv_name) + ", \"main\": " +
         (view.main_number.empty() ? std::string("null") : JsonString(view.main_number)) +
         ", \"supplements\": " + supplements + ", \"bidder\": " + JsonId(c.IdBieter) +
         ", \"contractor\": " + JsonString(c.Auftragnehmer.Get()) +
         ", \"client\": " + JsonString(c.Auftraggeber.Get()) +
         ", \"date\": " + JsonDate(c.Auftragsdatum) +
         ", \"bid_date\": " + JsonDate(c.AngebotsDatum) +
         ", \"sum_from_lv\": " + JsonNumber(double{c.SummeAusLV.Betrag}) +
         ", \"discount_percent\": " + JsonNumber(double{c.NachlassProz}) +
         ", \"discount_amount\": " + JsonNumber(double{c.NachlassAbs.Betrag}) +
         ", \"sum_after_discount\": " + JsonNumber(double{c.SummeNachNL.Betrag}) +
         ", \"lump_sum\": " + JsonNumber(double{c.SummePsch.Betrag}) +
         ", \"contract_sum\": " + JsonNumber(double{c.Auftragssumme.Betrag}) +
         ", \"vat_rate\": " + JsonNumber(double{c.Mwst}) +
         ", \"gross_base\": " + JsonChar(c.BasisForBrutto) +
         ", \"gross_by_hand\": " + JsonBool(c.SummeBruttoManuell) +
         ", \"gross\": " + JsonNumber(double{c.SummeBrutto.Betrag}) +
         ", \"sum_from_lv_cumulative\": " + JsonNumber(double{c.SummeAusLVKum.Betrag}) +
         ", \"contract_sum_cumulative\": " + JsonNumber(double{c.AuftragssummeKum.Betrag}) +
         ", \"cash_discount_percent\": " + JsonNumber(cash.percent) +
         ", \"cash_discount_days\": " + std::to_string(c.xSkontofrist) +
         ", \"gross_after_cash_discount\": " + JsonNumber(cash.gross) +
         ", \"net_after_cash_discount\": " + JsonNumber(cash.net) +
         ", \"invoiced\": " + JsonNumber(double{c.Rechnungssumme.Betrag}) +
         ", \"retention_percent\": " + JsonNumber(double{c.SicherheitseinbehaltProz}) +
         ", \"max_retention_percent\": " + JsonNumber(double{c.MaxSicherheitseinbehaltProz}) +
         ", \"security_bond\": " + JsonBool(c.SicherheitsBuergschaft) +
         ", \"warranty_retention_percent\": " +
         JsonNumber(double{c.GewaehrleistungseinbehaltProz}) +
         ", \"warranty_duration\": " + std::to_string(c.Gewaehrdauer) +
         ", \"warranty_unit\": " + JsonString(c.GwlEinheit.Get()) +
         ", \"warranty_bond\": " + JsonBool(c.Gewaehrbuergschaft) +
         ", \"insurance_percent\": " + JsonNumber(double{c.BauwesenversicherungProz}) +
         ", \"billing_mode\": " + JsonChar(c.RechLegung) +
         ", \"cumulative\": " + JsonBool(c.Kumulativ) +
         ", \"final_cumulative\": " + JsonBool(c.SRKumulativ) +
         ", \"single_cumulative\": " + JsonBool(c.ERKumulativ) +
         ", \"part_payments\": " + std::to_string(c.AbschlagAnzahl) +
         ", \"construction_tax\": " + JsonBool(c.BauabzugsSteuer) +
         ", \"reverse_charge\": " + JsonBool(c.Par13b) +
         ", \"net_deductions\": " + JsonBool(c.NettoAbzuege) +
         ", \"place\": " + JsonString(c.Ort.Get()) + ", \"locked\": " + JsonBool(c.gesperrt) +
         ", \"deductions\": " + deductions + "}";
}

void PrintContractLine(std::ostream& out, const ContractView& view) {
  const billing::TVertrag& c = view.contract;
  out << "  " << c.AuftragsNr.Get() << "  " << billing::ContractKindText(c.Auftragsart) << "  LV \""
      << view.lv_name << "\"  " << c.Auftragnehmer.Get() << "  Auftragssumme "
      << GermanMoney(c.Auftragssumme.Betrag) << "  brutto " << GermanMoney(c.SummeBrutto.Betrag)
      << (c.gesperrt != 0 ? "  gesperrt" : "") << '\n';
}

void PrintContract(std::ostream& out, const ContractView& view,
                   const boq::TAvaUiValueConverter& converter) {
  const billing::TVertrag& c = view.contract;
  out << "Vertrag \"" << c.AuftragsNr.Get() << "\" (" << billing::ContractKindText(c.Auftragsart);
  if (!view.main_number.empty()) out << " zu \"" << view.main_number << "\"";
  out << "), LV \"" << view.lv_name << "\", Auftragnehmer \"" << c.Auftragnehmer.Get() << "\"";
  if (data::ClassifyIntDate(c.Auftragsdatum) == data::IntDateKind::kValid) {
    out << ", vom " << data::FormatIntDate(c.Auftragsdatum);
  }
  out << '\n';
  out << "  Summe aus LV " << GermanMoney(c.SummeAusLV.Betrag);
  if (c.NachlassProz != 0.0) out << ", Nachlass " << Percent(c.NachlassProz) << " %";
  if (c.NachlassAbs.Betrag != 0.0) out << ", Nachlass " << GermanMoney(c.NachlassAbs.Betrag);
  out << ", Summe nach NL " << GermanMoney(c.SummeNachNL.Betrag);
  if (c.SummePsch.Betrag != 0.0) out << ", pauschal " << GermanMoney(c.SummePsch.Betrag);
  out << "\n  Auftragssumme " << GermanMoney(c.Auftragssumme.Betrag) << ", MwSt " << Percent(c.Mwst)
      << " %, brutto " << GermanMoney(c.SummeBrutto.Betrag)
      << (c.SummeBruttoManuell != 0 ? " (von Hand)" : "") << '\n';
  if (!view.supplements.empty()) {
    out << "  Nachträge:";
    for (const std::string& number : view.supplements) out << " \"" << number << "\"";
    out << "; Vertragssumme kum. " << GermanMoney(c.AuftragssummeKum.Betrag) << '\n';
  }
  const billing::TCashDiscountSums cash = billing::CashDiscountSums(c, converter);
  out << "  Skonto " << Percent(cash.percent) << " % (" << c.xSkontofrist
      << " Tage): brutto ./. NL ./. Skonto " << GermanMoney(cash.gross) << ", netto ./. Skonto "
      << GermanMoney(cash.net) << '\n';
  out << "  Sicherheitseinbehalt " << Percent(c.SicherheitseinbehaltProz) << " % pro AZ, max "
      << Percent(c.MaxSicherheitseinbehaltProz) << " %"
      << (c.SicherheitsBuergschaft != 0 ? " (Bürgschaft liegt vor)" : "")
      << "; Gewährleistungseinbehalt " << Percent(c.GewaehrleistungseinbehaltProz) << " % über "
      << c.Gewaehrdauer << ' ' << c.GwlEinheit.Get()
      << (c.Gewaehrbuergschaft != 0 ? " (Bürgschaft liegt vor)" : "") << '\n';
  out << "  Rechnungslegung " << BillingModeText(c.RechLegung)
      << (c.Kumulativ != 0 ? ", kumulativ" : "") << (c.SRKumulativ != 0 ? ", SR kumulativ" : "")
      << (c.ERKumulativ != 0 ? ", ER kumulativ" : "") << (c.gesperrt != 0 ? "; gesperrt" : "")
      << '\n';
  if (view.deductions.empty()) return;
  out << "  Umlagen und Abzüge (Prozente und Ansätze rechnet erst die Rechnung; Rechnungen "
         "sind noch nicht verfügbar):\n";
  for (const billing::TDeduction& deduction : view.deductions) {
    PrintDeduction(out, deduction, c.Mwst, converter);
  }
}

}  // namespace korvan::app
