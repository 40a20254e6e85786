#include "exchange/gaeb_import/gaeb_import_context.h"

#include <algorithm>
#include <charconv>

#include "data/records/int_date.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"

namespace korvan::exchange::gaeb_import {

void Refuse(const std::string& file, int line, const std::string& message) {
  throw EGaebImportError(file + ":" + std::to_string(line) + ": " + message);
}
namespace {

using gaeb_xml::TGaebFindingKind;

// The price kind a phase's unit prices are: the export's choice read backwards.
TUPKind PhasePriceKind(TGaebPhase phase) {
  if (phase == kPhaseLv || phase == kPhaseCostEstimate) return TUPKind::upkSchaetz;
  if (phase == kPhaseAward) return TUPKind::upkVergabe;
  return TUPKind::upkAngebot;
}

std::string Trimmed(const std::string& text) {
  const size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

}  // namespace

TImportContext::TImportContext(const std::string& file, const TGaebImportOptions& options,
                               TGaebImport& result)
    : file_(file),
      options_(options),
      result_(result),
      price_kind_(!options.prices                          ? TUPKind::upkNONE
                  : options.price_kind != TUPKind::upkNONE ? options.price_kind
                                                           : PhasePriceKind(result.phase)) {}

const TGaebElement* TImportContext::Take(const TGaebElement& parent, std::string_view name) {
  const TGaebElement* child = parent.Child(name);
  if (child != nullptr) UseWhole(*child);
  return child;
}

std::optional<std::string> TImportContext::TakeText(const TGaebElement& parent,
                                                    std::string_view name) {
  const TGaebElement* child = Take(parent, name);
  if (child == nullptr) return std::nullopt;
  return Trimmed(child->text);
}

bool TImportContext::TakeYes(const TGaebElement& parent, std::string_view name) {
  const std::optional<std::string> text = TakeText(parent, name);
  if (!text) return false;
  if (*text == kGaebYes) return true;
  if (*text != "No") {
    ReadBad(parent.Child(name)->line, std::string(name),
            std::string(name) + " \"" + *text + "\": erwartet \"Yes\" oder \"No\"");
  }
  return false;
}

std::optional<double> TImportContext::TakeDecimal(const TGaebElement& parent,
                                                  std::string_view name) {
  const std::optional<std::string> text = TakeText(parent, name);
  if (!text) return std::nullopt;
  const std::optional<double> value = gaeb_xml::ParseGaebDecimal(*text);
  if (!value) {
    ReadBad(parent.Child(name)->line, std::string(name),
            std::string(name) + " \"" + *text + "\": erwartet eine Dezimalzahl wie 12.50");
  }
  return value;
}

std::optional<int> TImportContext::TakeInteger(const TGaebElement& parent, std::string_view name,
                                               int low, int high) {
  const std::optional<std::string> text = TakeText(parent, name);
  if (!text) return std::nullopt;
  int value = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
  if (error != std::errc() || end != text->data() + text->size() || value < low || value > high) {
    ReadBad(parent.Child(name)->line, std::string(name),
            std::string(name) + " \"" + *text + "\": erwartet eine ganze Zahl von " +
                std::to_string(low) + " bis " + std::to_string(high));
    return std::nullopt;
  }
  return value;
}

std::optional<int32_t> TImportContext::TakeDate(const TGaebElement& parent, std::string_view name) {
  const std::optional<std::string> text = TakeText(parent, name);
  if (!text) return std::nullopt;
  int year = 0, month = 0, day = 0;
  char tail = 0;
  if (text->size() >= 10 &&
      std::sscanf(text->c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &tail) >= 3) {
    const int32_t date = year * 10000 + month * 100 + day;
    if (data::ClassifyIntDate(date) == data::IntDateKind::kValid) return date;
  }
  ReadBad(parent.Child(name)->line, std::string(name),
          std::string(name) + " \"" + *text + "\": erwartet ein Datum wie 2026-11-23");
  return std::nullopt;
}

void TImportContext::Warn(int line, std::string message) {
  result_.findings.push_back({TGaebFindingKind::kWarning, line, std::move(message)});
}

void TImportContext::Hint(int line, std::string message) {
  result_.findings.push_back({TGaebFindingKind::kHint, line, std::move(message)});
}

void TImportContext::ReadNo(int line, const std::string& element, const std::string& message) {
  result_.protocol.push_back("Read: No " + element + " (Zeile " + std::to_string(line) + ")");
  Warn(line, message);
}

void TImportContext::ReadBad(int line, const std::string& element, const std::string& message) {
  result_.protocol.push_back("Read: Bad " + element + " (Zeile " + std::to_string(line) + ")");
  Warn(line, message);
}

void TImportContext::ReportUnused(const TGaebElement& root) {
  for (std::vector<const TGaebElement*>* list : {&used_, &whole_}) {
    std::sort(list->begin(), list->end());
  }
  ReportUnusedBelow(root);
}

void TImportContext::ReportUnusedBelow(const TGaebElement& root) {
  for (const TGaebElement& child : root.children) {
    if (std::binary_search(whole_.begin(), whole_.end(), &child)) continue;
    if (!std::binary_search(used_.begin(), used_.end(), &child)) {
      if (child.IsTextNode()) continue;
      Hint(child.line, "Element \"" + child.name + "\" nicht übernommen");
      continue;
    }
    ReportUnusedBelow(child);
  }
}

}  // namespace korvan::exchange::gaeb_import
