#include "data/component/column_structure.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace korvan::data {

namespace {

constexpr size_t kFirstLayoutField = 7;
constexpr size_t kCaptionField = 14;
constexpr int kMaxDecimals = 15;
constexpr const char* kRequiredFields[] = {"Name", "Typ", "Spalte", "Breite", "Länge"};

std::vector<std::string> SplitFields(std::string_view text) {
  std::vector<std::string> fields;
  size_t start = 0;
  for (;;) {
    size_t comma = text.find(',', start);
    fields.emplace_back(
        text.substr(start, comma == std::string_view::npos ? text.npos : comma - start));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  return fields;
}

[[noreturn]] void Fail(std::string_view definition, size_t field, std::string_view what,
                       std::string_view value) {
  throw EColumnStructureError("Spaltendefinition \"" + std::string(definition) + "\": Feld " +
                              std::to_string(field + 1) + " (" + std::string(what) +
                              ") ist ungültig: \"" + std::string(value) + "\"");
}

std::optional<int> ToInt(std::string_view text) {
  int value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

int NonNegative(std::string_view definition, const std::vector<std::string>& fields, size_t field,
                std::string_view what) {
  std::optional<int> value = ToInt(fields[field]);
  if (!value || *value < 0) Fail(definition, field, what, fields[field]);
  return *value;
}

TFeldTyp ParseTyp(std::string_view definition, const std::string& text) {
  if (text.size() == 1) {
    switch (text[0]) {
      case 'I':
      case 'N':
      case 'R':
      case 'W':
      case 'G':
        return static_cast<TFeldTyp>(text[0]);
    }
  }
  Fail(definition, 1, "Typ", text);
}

}  // namespace

TColumnDef ParseColumnDef(std::string_view definition) {
  std::vector<std::string> fields = SplitFields(definition);
  if (fields.size() < 5) {
    throw EColumnStructureError("Spaltendefinition \"" + std::string(definition) + "\": Feld " +
                                std::to_string(fields.size() + 1) + " (" +
                                kRequiredFields[fields.size()] + ") fehlt");
  }
  TColumnDef column;
  column.Definition = std::string(definition);
  column.Name = fields[0];
  if (column.Name.empty()) Fail(definition, 0, "Name", fields[0]);
  column.Typ = ParseTyp(definition, fields[1]);
  column.Spalte = NonNegative(definition, fields, 2, "Spalte");
  column.Breite = NonNegative(definition, fields, 3, "Breite");
  column.Laenge = NonNegative(definition, fields, 4, "Länge");
  if (fields.size() > 5 && !fields[5].empty()) {
    if (fields[5].size() != 1) Fail(definition, 5, "Kennzeichen", fields[5]);
    column.KzFeld = fields[5][0];
  }
  if (fields.size() > 6 && !fields[6].empty()) {
    column.Nachkomma = NonNegative(definition, fields, 6, "Nachkommastellen");
    if (column.Nachkomma > kMaxDecimals) Fail(definition, 6, "Nachkommastellen", fields[6]);
  }
  for (size_t f = kFirstLayoutField; f < fields.size() && f < kCaptionField; ++f) {
    if (!fields[f].empty() && !ToInt(fields[f])) Fail(definition, f, "Layout", fields[f]);
    column.LayoutFlags.push_back(fields[f]);
  }
  if (fields.size() > kCaptionField && !fields[kCaptionField].empty()) {
    column.CaptionTextNr = NonNegative(definition, fields, kCaptionField, "Textnummer");
  }
  for (size_t f = kCaptionField + 1; f < fields.size(); ++f) column.ViewFlags.push_back(fields[f]);
  return column;
}

TColumnStructure TColumnStructure::Parse(const std::vector<std::string>& definitions) {
  TColumnStructure structure;
  std::set<int> numbers;
  for (const std::string& definition : definitions) {
    TColumnDef column = ParseColumnDef(definition);
    if (!numbers.insert(column.Spalte).second) {
      Fail(definition, 2, "Spalte doppelt", std::to_string(column.Spalte));
    }
    structure.columns_.push_back(std::move(column));
  }
  return structure;
}

TColumnStructure TColumnStructure::Default() {
  return Parse({std::string(kDefaultColumnStructure)});
}

int TColumnStructure::ValueCount() const {
  int count = 0;
  for (const TColumnDef& column : columns_) count = std::max(count, column.Spalte + 1);
  return count;
}

int TColumnStructure::IndexOf(std::string_view name) const {
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].Name == name) return static_cast<int>(i);
  }
  return -1;
}

std::vector<std::string> TColumnStructure::Definitions() const {
  std::vector<std::string> definitions;
  for (const TColumnDef& column : columns_) definitions.push_back(column.Definition);
  return definitions;
}

}  // namespace korvan::data
