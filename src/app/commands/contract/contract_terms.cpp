#include "app/commands/contract/contract_terms.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <type_traits>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "data/common/cp1252.h"
#include "data/records/int_date.h"

namespace korvan::app {
namespace {

enum class TermKind { kPercent, kAmount, kCount, kFlag, kDate, kText, kCode };

struct Term {
  const char* name;
  TermKind kind;
  std::size_t offset;
  std::size_t size;
  const char* codes = "";  // the letters a code takes
};

#define KORVAN_TERM(name, kind, ...)                                                               \
  Term {                                                                                           \
#name, kind, offsetof(billing::TVertrag, name), sizeof(billing::TVertrag::name), ##__VA_ARGS__ \
  }

// Packed fields are reached by their offset, never by reference.
const Term kTerms[] = {
    KORVAN_TERM(AuftragsNr, TermKind::kText),
    KORVAN_TERM(Auftraggeber, TermKind::kText),
    KORVAN_TERM(Auftragnehmer, TermKind::kText),
    KORVAN_TERM(Ort, TermKind::kText),
    KORVAN_TERM(AbnahmeArt, TermKind::kText),
    KORVAN_TERM(GwlEinheit, TermKind::kText),
    KORVAN_TERM(Auftragsdatum, TermKind::kDate),
    KORVAN_TERM(Baubeginndatum, TermKind::kDate),
    KORVAN_TERM(BauEndedatum, TermKind::kDate),
    KORVAN_TERM(Abnahmedatum, TermKind::kDate),
    KORVAN_TERM(SchlussDatum, TermKind::kDate),
    KORVAN_TERM(GewaehrBeginn, TermKind::kDate),
    KORVAN_TERM(GewaehrEnde, TermKind::kDate),
    KORVAN_TERM(SicherheitsbuergschaftsDatum, TermKind::kDate),
    KORVAN_TERM(GewaehrbuergschaftsDatum, TermKind::kDate),
    KORVAN_TERM(BauwesenversicherungProz, TermKind::kPercent),
    KORVAN_TERM(SicherheitseinbehaltProz, TermKind::kPercent),
    KORVAN_TERM(MaxSicherheitseinbehaltProz, TermKind::kPercent),
    KORVAN_TERM(GewaehrleistungseinbehaltProz, TermKind::kPercent),
    KORVAN_TERM(xSkonto, TermKind::kPercent),
    KORVAN_TERM(NachlassProz, TermKind::kPercent),
    KORVAN_TERM(Mwst, TermKind::kPercent),
    KORVAN_TERM(NachlassAbs, TermKind::kAmount),
    KORVAN_TERM(SummePsch, TermKind::kAmount),
    KORVAN_TERM(SummeBrutto, TermKind::kAmount),
    KORVAN_TERM(SicherheitsbuergschaftsBetrag, TermKind::kAmount),
    KORVAN_TERM(GewaehrbuergschaftsBetrag, TermKind::kAmount),
    KORVAN_TERM(Gewaehrdauer, TermKind::kCount),
    KORVAN_TERM(xSkontofrist, TermKind::kCount),
    KORVAN_TERM(AbschlagAnzahl, TermKind::kCount),
    KORVAN_TERM(SicherheitsBuergschaft, TermKind::kFlag),
    KORVAN_TERM(Gewaehrbuergschaft, TermKind::kFlag),
    KORVAN_TERM(Kumulativ, TermKind::kFlag),
    KORVAN_TERM(SRKumulativ, TermKind::kFlag),
    KORVAN_TERM(ERKumulativ, TermKind::kFlag),
    KORVAN_TERM(BauabzugsSteuer, TermKind::kFlag),
    KORVAN_TERM(Par13b, TermKind::kFlag),
    KORVAN_TERM(NettoAbzuege, TermKind::kFlag),
    KORVAN_TERM(SummeBruttoManuell, TermKind::kFlag),
    KORVAN_TERM(gesperrt, TermKind::kFlag),
    KORVAN_TERM(RechLegung, TermKind::kCode, "RTS"),
    KORVAN_TERM(BasisForBrutto, TermKind::kCode, "VNP"),
};

#undef KORVAN_TERM

[[noreturn]] void Refuse(const Term& term, const std::string& value, const std::string& expected) {
  throw UsageError("\"" + std::string(term.name) + "=" + value + "\": erwartet " + expected + ".");
}

template <typename T>
void Put(billing::TVertrag& contract, const Term& term, T value) {
  static_assert(std::is_trivially_copyable_v<T>);
  std::memcpy(reinterpret_cast<uint8_t*>(&contract) + term.offset, &value, sizeof value);
}

int32_t ParseDate(const Term& term, const std::string& value) {
  if (value.empty() || value == "-") return data::kNoIntDate;
  int day = 0;
  int month = 0;
  int year = 0;
  char rest = 0;
  if (std::sscanf(value.c_str(), "%d.%d.%d%c", &day, &month, &year, &rest) != 3) {
    Refuse(term, value, "ein Datum TT.MM.JJJJ oder - für kein Datum");
  }
  const int32_t date = data::MakeIntDate({year, month, day});
  if (data::ClassifyIntDate(date) != data::IntDateKind::kValid) {
    Refuse(term, value, "ein gültiges Datum TT.MM.JJJJ");
  }
  return date;
}

uint8_t ParseFlag(const Term& term, const std::string& value) {
  if (value == "ja" || value == "1") return 1;
  if (value == "nein" || value == "0") return 0;
  Refuse(term, value, "ja oder nein");
}

void SetText(billing::TVertrag& contract, const Term& term, const std::string& value) {
  data::Cp1252Report report;
  const std::string stored = data::Utf8ToCp1252(value, &report);
  const std::size_t capacity = term.size - 1;
  if (stored.size() > capacity || !report.Exact()) {
    Refuse(term, value, "höchstens " + std::to_string(capacity) + " Zeichen in Windows-1252");
  }
  uint8_t bytes[64] = {};
  bytes[0] = static_cast<uint8_t>(stored.size());
  std::memcpy(bytes + 1, stored.data(), stored.size());
  std::memcpy(reinterpret_cast<uint8_t*>(&contract) + term.offset, bytes, term.size);
}

void SetValue(billing::TVertrag& contract, const Term& term, const std::string& value) {
  switch (term.kind) {
    case TermKind::kPercent:
    case TermKind::kAmount: {
      const double number = RequireGermanNumber(value, term.name);
      Put(contract, term, number);  // an amount's Betrag leads its t_WaeBetrag
      if (std::strcmp(term.name, "SummeBrutto") == 0) contract.SummeBruttoManuell = 1;
      return;
    }
    case TermKind::kCount: {
      const double number = RequireGermanNumber(value, term.name);
      if (number < 0 || number > std::numeric_limits<uint16_t>::max() ||
          number != static_cast<double>(static_cast<int>(number))) {
        Refuse(term, value, "eine ganze Zahl von 0 bis 65535");
      }
      Put(contract, term, static_cast<uint16_t>(number));
      return;
    }
    case TermKind::kFlag:
      Put(contract, term, ParseFlag(term, value));
      return;
    case TermKind::kDate:
      Put(contract, term, ParseDate(term, value));
      return;
    case TermKind::kText:
      SetText(contract, term, value);
      return;
    case TermKind::kCode:
      if (value.size() != 1 || std::strchr(term.codes, value[0]) == nullptr) {
        Refuse(term, value, std::string("einen der Buchstaben ") + term.codes);
      }
      Put(contract, term, value[0]);
      return;
  }
}

template <typename T>
T Get(const billing::TVertrag& contract, const Term& term) {
  T value{};
  std::memcpy(&value, reinterpret_cast<const uint8_t*>(&contract) + term.offset, sizeof value);
  return value;
}

std::string TextOf(const billing::TVertrag& contract, const Term& term) {
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&contract) + term.offset;
  const std::size_t length = std::min<std::size_t>(bytes[0], term.size - 1);
  return data::Cp1252ToUtf8(std::string_view(reinterpret_cast<const char*>(bytes + 1), length));
}

std::string ValueText(const billing::TVertrag& contract, const Term& term) {
  switch (term.kind) {
    case TermKind::kPercent:
    case TermKind::kAmount:
      return GermanFigure(Get<double>(contract, term), "%.10g");
    case TermKind::kCount:
      return std::to_string(Get<uint16_t>(contract, term));
    case TermKind::kFlag:
      return Get<uint8_t>(contract, term) != 0 ? "ja" : "nein";
    case TermKind::kDate: {
      const int32_t date = Get<int32_t>(contract, term);
      if (data::ClassifyIntDate(date) != data::IntDateKind::kValid) return "-";
      return data::FormatIntDate(date);
    }
    case TermKind::kText:
      return TextOf(contract, term);
    case TermKind::kCode:
      return std::string(1, Get<char>(contract, term));
  }
  return {};
}

const Term* FindTerm(const std::string& name) {
  for (const Term& term : kTerms) {
    if (name == term.name) return &term;
  }
  return nullptr;
}

}  // namespace

std::string ContractTermAssignment(const billing::TVertrag& contract, const std::string& name) {
  const Term* term = FindTerm(name);
  if (term == nullptr) throw CommandError("\"" + name + "\" ist kein Feld des Vertrags.");
  return name + "=" + ValueText(contract, *term);
}

void SetContractTerm(billing::TVertrag& contract, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos) {
    throw UsageError("\"" + assignment + "\": erwartet FELD=WERT, z. B. xSkonto=3.");
  }
  const std::string name = assignment.substr(0, equals);
  const std::string value = assignment.substr(equals + 1);
  if (const Term* term = FindTerm(name)) {
    SetValue(contract, *term, value);
    return;
  }
  std::string known;
  for (const std::string& term : ContractTermNames()) known += (known.empty() ? "" : ", ") + term;
  throw UsageError("\"" + name + "\" ist kein Feld des Vertrags; möglich sind " + known + ".");
}

std::vector<std::string> ContractTermNames() {
  std::vector<std::string> names;
  for (const Term& term : kTerms) names.emplace_back(term.name);
  return names;
}

}  // namespace korvan::app
