#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace korvan::data {

// The structure of a component that has none of its own: one integer column "Nr".
inline constexpr std::string_view kDefaultColumnStructure = "Nr,I,0,50,4,N,0,1,1,0,0,,0,1";

// A column definition string that cannot be used; the message names the string and the
// field that was wrong.
class EColumnStructureError : public std::runtime_error {
 public:
  explicit EColumnStructureError(const std::string& message) : std::runtime_error(message) {}
};

// The value type letter of a column.
enum class TFeldTyp : char {
  Integer = 'I',
  Text = 'N',
  Real = 'R',
  Betrag = 'W',  // amount
  Kodiert = 'G'  // coded value
};

// One column, parsed from its comma-separated definition string: name, value type,
// column number (0-based), width in pixels, value length in characters, a flag letter,
// decimals, the view's layout flags, the caption text number and the view's further
// flags.
struct TColumnDef {
  std::string Name;
  TFeldTyp Typ = TFeldTyp::Text;
  int Spalte = 0;
  int Breite = 0;
  int Laenge = 0;
  char KzFeld = 'N';
  int Nachkomma = 0;
  std::vector<std::string> LayoutFlags;  // fields 8 to 14, as written
  std::optional<int> CaptionTextNr;      // field 15: the caption in the text catalogue
  std::vector<std::string> ViewFlags;    // fields after the caption, as written
  std::string Definition;                // the string this column was read from
};

// Parses one definition string; throws EColumnStructureError.
TColumnDef ParseColumnDef(std::string_view definition);

// The columns of a list in definition order. Column numbers must be unique.
class TColumnStructure {
 public:
  TColumnStructure() = default;
  // Parses every string; throws EColumnStructureError for the first bad one.
  static TColumnStructure Parse(const std::vector<std::string>& definitions);
  static TColumnStructure Default();

  int FeldAnzahl() const { return static_cast<int>(columns_.size()); }
  const std::vector<TColumnDef>& Columns() const { return columns_; }
  const TColumnDef& operator[](int column) const { return columns_[static_cast<size_t>(column)]; }
  // How many values a row has: the highest column number plus one.
  int ValueCount() const;
  // Index of the column with this name (case-sensitive), or -1.
  int IndexOf(std::string_view name) const;
  std::vector<std::string> Definitions() const;

 private:
  std::vector<TColumnDef> columns_;
};

}  // namespace korvan::data
