#include "app/commands/formula/sheet_file.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

#include "app/cli/command_error.h"
#include "formula/language/formel_number.h"
#include "formula/reb/reb_sheet.h"

namespace korvan::app {
namespace {

constexpr int kMaxValues = 5;

class LineReader {
 public:
  LineReader(const std::string& file, int number) : file_(file), number_(number) {}

  [[noreturn]] void Fail(const std::string& what) const {
    throw CommandError(file_ + ", Zeile " + std::to_string(number_) + ": " + what);
  }

  // Applies a "name=value" attribute; false when the word is none.
  bool Attribute(const std::string& word, formula::TRebLine& line) {
    const size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0) return false;
    const std::string name = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    if (name == "kz") {
      if (value.size() != 1) Fail("kz= verlangt ein Zeichen (z. B. kz=H), nicht \"" + value + "\"");
      line.KZ = value[0];
    } else if (name == "vz") {
      if (value != "-" && value != "+")
        Fail("vz= verlangt \"-\" oder \"+\", nicht \"" + value + "\"");
      line.Vorzeichen = value[0] == '-' ? '-' : ' ';
    } else if (name == "faktor") {
      const std::optional<double> factor = SignedNumber(value);
      if (!factor) Fail("faktor= verlangt eine Zahl mit Dezimalkomma, nicht \"" + value + "\"");
      line.Faktor = *factor;
    } else if (name == "rz") {
      if (value.empty() || value.size() > kMaxValues) {
        Fail("rz= verlangt 1 bis 5 Rechenzeichen (\"_\" für keines), nicht \"" + value + "\"");
      }
      signs_ = value;
    } else {
      Fail("unbekannte Angabe \"" + name + "=\" (bekannt: kz=, vz=, faktor=, rz=)");
    }
    return true;
  }

  std::string Signs() const { return signs_; }

 private:
  static std::optional<double> SignedNumber(const std::string& text) {
    if (text.empty()) return std::nullopt;
    const bool negative = text[0] == '-';
    const std::optional<double> number =
        formula::ParseFormelNumber(negative ? text.substr(1) : text);
    if (!number) return std::nullopt;
    return negative ? -*number : *number;
  }

  const std::string& file_;
  int number_;
  std::string signs_;
};

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The values and signs as a stored line holds them: values 1 to 5, signs 1 to 5, "|"
// between, and the closing "=" behind them.
std::string StoredValues(const std::vector<std::string>& values, const std::string& signs,
                         bool closes) {
  std::string text;
  for (int n = 0; n < 2 * kMaxValues; ++n) {
    if (n > 0) text += '|';
    if (n < kMaxValues) {
      if (n < static_cast<int>(values.size()) && values[n] != "_") text += values[n];
    } else if (n - kMaxValues < static_cast<int>(signs.size()) && signs[n - kMaxValues] != '_') {
      text += signs[n - kMaxValues];
    }
  }
  return closes ? text + "=" : text;
}

std::optional<TSheetLine> ParseLine(const std::string& file, int number, const std::string& raw,
                                    int32_t id) {
  const std::string text = Trimmed(raw);
  if (text.empty() || text[0] == '#') return std::nullopt;
  LineReader reader(file, number);
  TSheetLine sheet_line;
  sheet_line.text_line = number;
  formula::TRebLine& line = sheet_line.line;
  line.Id = id;
  line.Adresse = std::to_string(id);
  std::istringstream words(text);
  std::string word;
  std::string nr;
  while (nr.empty() && words >> word) {
    if (!reader.Attribute(word, line)) nr = word;
  }
  if (nr.empty()) reader.Fail("die Formelnummer fehlt");
  word = nr;
  if (word != "-") {
    if (word.size() > 3 || word.find_first_not_of("0123456789") != std::string::npos) {
      reader.Fail("\"" + word + "\" ist keine Formelnummer (bis zu drei Ziffern oder \"-\")");
    }
    line.FormelNr = word;
  }
  std::string rest;
  std::getline(words, rest);
  rest = Trimmed(rest);
  if (formula::IsFreeFormula(line)) {
    line.Formel = rest;
    return sheet_line;
  }
  std::vector<std::string> values;
  bool closes = false;
  std::istringstream value_words(rest);
  while (value_words >> word) {
    if (closes) reader.Fail("nach dem abschließenden \"=\" steht noch \"" + word + "\"");
    if (word == "=") {
      closes = true;
      continue;
    }
    if (word.back() == '=') {
      closes = true;
      word.pop_back();
    }
    if (values.size() == kMaxValues) reader.Fail("mehr als 5 Werte");
    values.push_back(word);
  }
  line.Formel = StoredValues(values, reader.Signs(), closes);
  return sheet_line;
}

}  // namespace

std::vector<TSheetLine> ParseSheet(const std::string& file, const std::string& text) {
  std::vector<TSheetLine> lines;
  std::istringstream in(text);
  std::string raw;
  int number = 0;
  while (std::getline(in, raw)) {
    ++number;
    const int32_t id = static_cast<int32_t>(lines.size()) + 1;
    if (std::optional<TSheetLine> line = ParseLine(file, number, raw, id)) {
      lines.push_back(std::move(*line));
    }
  }
  return lines;
}

std::vector<TSheetLine> ReadSheetFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw CommandError(file + ": Datei kann nicht gelesen werden");
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw CommandError(file + ": Lesefehler");
  return ParseSheet(file, text);
}

}  // namespace korvan::app
