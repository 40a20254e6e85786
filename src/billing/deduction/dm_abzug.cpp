#include "billing/deduction/dm_abzug.h"

#include <cstring>

#include "billing/tables/billing_table_types.h"
#include "billing/tables/tb_abzug.h"
#include "boq/text/tb_texte.h"
#include "data/common/cp1252.h"
#include "data/common/result_code_text.h"
#include "storage/result_codes.h"

namespace korvan::billing {
namespace {

constexpr int kDataModuleId = 6500;
// The deductions' texts are kept in one language: they are the contract's, not an LV's.
constexpr int16_t kTextLanguage = 49;
constexpr std::size_t kMaxInvoiceKinds = 10;

bool OneOf(char code, const char* codes) {
  return code != '\0' && std::strchr(codes, code) != nullptr;
}

std::string Named(const TDeduction& deduction) {
  return "Abzug \"" + deduction.name + "\"";
}

}  // namespace

TDeduction NewDeduction(char type, const std::string& name) {
  TDeduction deduction;
  deduction.record.ID = data::kNullId;
  deduction.record.AbzugBetrag.IdWaehrung = data::kOwnerCurrencyId;
  deduction.record.KzBruttoNetto = kNetDeduction;
  deduction.record.Typ = type;
  deduction.record.SubTyp = kOtherDeduction;
  deduction.name = name;
  return deduction;
}

TdmAbzug::TdmAbzug(data::TStdDb& billing_db, char owner_kind, int32_t owner)
    : TSTDdataModule(kDataModuleId, "Abzug"),
      db_(billing_db),
      owner_kind_(owner_kind),
      owner_(owner) {}

std::vector<TDeduction> TdmAbzug::List() {
  TTbAbzug table(db_);
  boq::TTbTexte texts(db_, kRvTexteTableType);
  std::vector<TDeduction> deductions;
  for (const TAbzug& record : table.ListOf(owner_kind_, owner_)) {
    TDeduction deduction;
    deduction.record = record;
    const std::vector<std::string> lines =
        texts.ReadLines(record.ID, kDeductionTextKind, kTextLanguage);
    if (!lines.empty()) deduction.name = lines[0];
    if (lines.size() > 1) deduction.formula = lines[1];
    deductions.push_back(deduction);
  }
  return deductions;
}

TDeduction TdmAbzug::Add(TDeduction deduction) {
  CheckDeduction(deduction);
  TTbAbzug table(db_);
  if (int result = table.NewAbzug(owner_kind_, owner_); result != storage::kOk) {
    Fail("für den " + Named(deduction) + " gibt es keine Nummer", result);
  }
  deduction.record.ID = table.Rec().ID;
  Write(deduction);
  return deduction;
}

void TdmAbzug::Change(const TDeduction& deduction) {
  CheckDeduction(deduction);
  RequireOwn(deduction.record.ID);
  Write(deduction);
}

void TdmAbzug::Delete(int32_t id) {
  RequireOwn(id);
  TTbAbzug table(db_);
  table.Find(id);
  if (int result = table.DeleteRec(); result != storage::kOk) {
    Fail("der Abzug " + std::to_string(id) + " kann nicht gelöscht werden", result);
  }
  boq::TTbTexte texts(db_, kRvTexteTableType);
  if (int result = texts.DeleteOwner(id, kDeductionTextKind); result != storage::kOk) {
    Fail("die Bezeichnung des Abzugs " + std::to_string(id) + " kann nicht gelöscht werden",
         result);
  }
}

void CheckDeduction(const TDeduction& deduction) {
  const TAbzug& record = deduction.record;
  auto refuse = [&](const std::string& expected) {
    throw EDeductionError(Named(deduction) + ": erwartet " + expected + ".");
  };
  if (deduction.name.empty()) throw EDeductionError("Ein Abzug braucht eine Bezeichnung.");
  // Checked before the record is written: a text the short-text line cannot hold would
  // otherwise leave a deduction without its name.
  for (const std::string* text : {&deduction.name, &deduction.formula}) {
    data::Cp1252Report report;
    const std::string stored = data::Utf8ToCp1252(*text, &report);
    if (stored.size() > boq::TTbTexte::kLineCapacity || !report.Exact()) {
      refuse("Bezeichnung und Ansatz mit höchstens 70 Zeichen in Windows-1252");
    }
  }
  const std::string kinds = record.Rechnungstyp.Get();
  if (kinds.size() > kMaxInvoiceKinds) refuse("höchstens 10 Rechnungstypen");
  for (char kind : kinds) {
    if (!OneOf(kind, kInvoiceKinds)) {
      refuse(std::string("Rechnungstypen aus den Buchstaben ") + kInvoiceKinds + ", nicht \"" +
             kind + "\"");
    }
  }
  if (!OneOf(record.KzBruttoNetto, "BN")) refuse("brutto (B) oder netto (N)");
  if (!OneOf(record.Typ, kDeductionTypes)) {
    refuse(std::string("einen Typ aus den Buchstaben ") + kDeductionTypes);
  }
  if (!OneOf(record.SubTyp, "LS")) {
    refuse("leistungsmindernd (L) oder sonstiger Abzug (S)");
  }
}

void TdmAbzug::Write(const TDeduction& deduction) {
  TTbAbzug table(db_);
  if (!table.Find(deduction.record.ID)) table.InitRecord();
  const data::TDbRecordHeader header = table.Rec().Header;
  table.Rec() = deduction.record;
  table.Rec().Header = header;
  table.Rec().IDBezug = owner_;
  table.Rec().KzBezug = owner_kind_;
  if (int result = table.UpDateRec(); result != storage::kOk) {
    Fail(Named(deduction) + " kann nicht geschrieben werden", result);
  }
  std::vector<std::string> lines{deduction.name};
  if (!deduction.formula.empty()) lines.push_back(deduction.formula);
  boq::TTbTexte texts(db_, kRvTexteTableType);
  const boq::TShortTextResult written =
      texts.WriteLines(deduction.record.ID, kDeductionTextKind, kTextLanguage, lines);
  if (!written.refused.empty()) throw EDeductionError(Named(deduction) + ": " + written.refused);
  if (!written.Ok()) Fail(Named(deduction) + ": die Bezeichnung", written.code);
}

void TdmAbzug::RequireOwn(int32_t id) {
  TTbAbzug table(db_);
  if (!table.Find(id) || table.Rec().IDBezug != owner_ || table.Rec().KzBezug != owner_kind_) {
    throw EDeductionError(
        "Es gibt keinen Abzug " + std::to_string(id) +
        (owner_kind_ == kDeductionOfContract ? " an diesem Vertrag." : " an dieser Rechnung."));
  }
}

void TdmAbzug::Fail(const std::string& what, int code) const {
  throw EDeductionError(db_.BasePath() + "0: " + what + " (" + data::ResultCodeText(code) + ")");
}

}  // namespace korvan::billing
