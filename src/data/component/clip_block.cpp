#include "data/component/clip_block.h"

#include <charconv>
#include <fstream>
#include <sstream>
#include <system_error>

#include "storage/file/atomic_file.h"

namespace korvan::data {

// File form: the lines "Origin=", "Info=" and "Rows=<count>", then one line per row with
// key, row kind, level and the values, separated by tabs. Backslash, tab, carriage return
// and line feed inside a text are written as \\, \t, \r and \n.
namespace {

constexpr std::string_view kOrigin = "Origin=";
constexpr std::string_view kInfo = "Info=";
constexpr std::string_view kRows = "Rows=";
constexpr int kMaxBlockRows = 1000000;

std::string Escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      default:
        out += c;
    }
  }
  return out;
}

class BlockReader {
 public:
  explicit BlockReader(const std::filesystem::path& path) : path_(path), in_(path) {
    if (!in_)
      throw EBlockFileError("Blockdatei \"" + path_.string() + "\" kann nicht gelesen werden");
  }

  TBlockFile Read() {
    TBlockFile block;
    block.Origin = Unescape(Tagged(kOrigin));
    block.Info = Unescape(Tagged(kInfo));
    int count = RowCount(Tagged(kRows));
    for (int i = 0; i < count; ++i) block.Rows.push_back(Row());
    std::string extra;
    if (NextLine(extra)) Fail("mehr Zeilen als \"Rows=\" angibt");
    return block;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw EBlockFileError("Blockdatei \"" + path_.string() + "\", Zeile " + std::to_string(line_) +
                          ": " + what);
  }

  bool NextLine(std::string& line) {
    if (!std::getline(in_, line)) return false;
    ++line_;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
  }

  std::string Tagged(std::string_view tag) {
    std::string line;
    if (!NextLine(line)) {
      ++line_;
      Fail("\"" + std::string(tag) + "\" fehlt (Datei zu kurz)");
    }
    if (line.compare(0, tag.size(), tag) != 0) Fail("\"" + std::string(tag) + "\" erwartet");
    return line.substr(tag.size());
  }

  int RowCount(const std::string& text) {
    int count = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || count < 0 ||
        count > kMaxBlockRows) {
      Fail("ungültige Zeilenzahl \"" + text + "\"");
    }
    return count;
  }

  std::string Unescape(std::string_view text) const {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
      if (text[i] != '\\') {
        out += text[i];
        continue;
      }
      if (++i == text.size()) Fail("unvollständige Escape-Folge");
      switch (text[i]) {
        case '\\':
          out += '\\';
          break;
        case 't':
          out += '\t';
          break;
        case 'r':
          out += '\r';
          break;
        case 'n':
          out += '\n';
          break;
        default:
          Fail(std::string("unbekannte Escape-Folge \"\\") + text[i] + "\"");
      }
    }
    return out;
  }

  TBlockRow Row() {
    std::string line;
    if (!NextLine(line)) {
      ++line_;
      Fail("Datenzeile fehlt (Datei zu kurz)");
    }
    std::vector<std::string_view> fields;
    std::string_view rest(line);
    for (;;) {
      size_t tab = rest.find('\t');
      fields.push_back(rest.substr(0, tab));
      if (tab == std::string_view::npos) break;
      rest.remove_prefix(tab + 1);
    }
    if (fields.size() < 3) Fail("Datenzeile braucht Schlüssel, Zeilenart und Ebene");
    TBlockRow row;
    row.Key = Unescape(fields[0]);
    std::string zart = Unescape(fields[1]);
    if (zart.size() != 1) Fail("ungültige Zeilenart \"" + std::string(fields[1]) + "\"");
    row.ZArt = zart[0];
    auto [end, error] =
        std::from_chars(fields[2].data(), fields[2].data() + fields[2].size(), row.Level);
    if (fields[2].empty() || error != std::errc() || end != fields[2].data() + fields[2].size()) {
      Fail("ungültige Ebene \"" + std::string(fields[2]) + "\"");
    }
    for (size_t f = 3; f < fields.size(); ++f) row.Values.push_back(Unescape(fields[f]));
    return row;
  }

  std::filesystem::path path_;
  std::ifstream in_;
  int line_ = 0;
};

}  // namespace

void WriteBlockFile(const std::filesystem::path& path, const TBlockFile& block) {
  std::ostringstream out;
  out << kOrigin << Escape(block.Origin) << "\r\n";
  out << kInfo << Escape(block.Info) << "\r\n";
  out << kRows << block.Rows.size() << "\r\n";
  for (const TBlockRow& row : block.Rows) {
    out << Escape(row.Key) << '\t' << Escape(std::string(1, row.ZArt)) << '\t' << row.Level;
    for (const std::string& value : row.Values) out << '\t' << Escape(value);
    out << "\r\n";
  }
  // A block file is a clipboard: copying again recreates it, so a crash may lose it.
  if (!storage::WriteFileAtomically(path.string(), out.str(), storage::Durability::kAtomic).ok()) {
    throw EBlockFileError("Blockdatei \"" + path.string() + "\" kann nicht geschrieben werden");
  }
}

TBlockFile ReadBlockFile(const std::filesystem::path& path) {
  return BlockReader(path).Read();
}

}  // namespace korvan::data
