#include "data/config/ini_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "data/common/ascii_text.h"
#include "data/common/cp1252.h"
#include "data/config/config_error.h"
#include "storage/file/atomic_file.h"
#include "storage/file/unique_fd.h"

namespace korvan::data {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
// Configuration files are a few kilobytes; anything this large is not one of them.
constexpr std::size_t kMaxFileSize = 16 * 1024 * 1024;

// Windows drops one pair of double quotes around a value; writing quotes around values
// that need them makes leading and trailing blanks survive a round trip.
std::string_view Unquote(std::string_view value) {
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

bool NeedsQuotes(std::string_view value) {
  if (value.empty()) return false;
  if (Trim(value).size() != value.size()) return true;
  return value.size() >= 2 && value.front() == '"' && value.back() == '"';
}

// Case folding of the letters the code page has in both cases.
char32_t FoldCase(char32_t c) {
  if (c >= U'A' && c <= U'Z') return c + 0x20;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
  switch (c) {
    case 0x160:
      return 0x161;  // Š
    case 0x152:
      return 0x153;  // Œ
    case 0x17D:
      return 0x17E;  // Ž
    case 0x178:
      return 0xFF;  // Ÿ
    default:
      return c;
  }
}

// Next character of a name for comparison; malformed bytes compare as themselves.
char32_t NextFolded(std::string_view* text) {
  std::size_t length = 0;
  const auto code_point = DecodeUtf8(*text, &length);
  const char32_t c = code_point ? *code_point : 0x110000 + static_cast<uint8_t>(text->front());
  text->remove_prefix(length);
  return FoldCase(c);
}

bool IsValidUtf8(std::string_view text) {
  while (!text.empty()) {
    std::size_t length = 0;
    if (!DecodeUtf8(text, &length)) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string ErrnoText(int error) {
  return std::error_code(error, std::generic_category()).message();
}

// A name that the reader would not give back as it is cannot be written.
void CheckName(std::string_view what, std::string_view name, std::string_view forbidden) {
  const bool bad = Trim(name).empty() || Trim(name).size() != name.size() ||
                   name.find_first_of(forbidden) != std::string_view::npos || name.front() == '[' ||
                   name.front() == ';' || name.front() == '#';
  if (bad) {
    throw EAvaConfigError(std::string(what) + " \"" + std::string(name) +
                          "\" kann nicht in einer Konfigurationsdatei stehen");
  }
}

std::optional<std::string> ReadWholeFile(const std::filesystem::path& file) {
  const storage::UniqueFd fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.valid()) {
    if (errno == ENOENT) return std::nullopt;
    throw EAvaConfigError("Konfigurationsdatei \"" + file.string() +
                          "\" kann nicht geöffnet werden: " + ErrnoText(errno));
  }
  std::string bytes;
  char buffer[8192];
  for (;;) {
    const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      throw EAvaConfigError("Konfigurationsdatei \"" + file.string() +
                            "\" kann nicht gelesen werden: " + ErrnoText(errno));
    }
    if (got == 0) return bytes;
    bytes.append(buffer, static_cast<std::size_t>(got));
    if (bytes.size() > kMaxFileSize) {
      throw EAvaConfigError("Konfigurationsdatei \"" + file.string() + "\" ist zu groß");
    }
  }
}

}  // namespace

std::string IniProblem::ToString() const {
  return file + ", Zeile " + std::to_string(line) + ": " + what;
}

bool IniNamesEqual(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (NextFolded(&a) != NextFolded(&b)) return false;
  }
  return a.empty() && b.empty();
}

IniFile::IniFile() : sections_(1) {}

IniFile::Line IniFile::ParseKeyLine(std::string_view text, std::string_view trimmed) {
  const auto equals = trimmed.find('=');
  Line line;
  line.text = std::string(text);
  line.kind = LineKind::kKey;
  line.key = std::string(Trim(trimmed.substr(0, equals)));
  line.value = std::string(Unquote(Trim(trimmed.substr(equals + 1))));
  return line;
}

IniFile IniFile::Parse(std::string_view bytes, std::string_view file_name,
                       std::vector<IniProblem>* problems) {
  IniFile doc;
  auto report = [&](int line_number, std::string what) {
    if (problems) problems->push_back({std::string(file_name), line_number, std::move(what)});
  };

  std::string text;
  if (bytes.starts_with(kUtf8Bom) && IsValidUtf8(bytes.substr(kUtf8Bom.size()))) {
    doc.encoding_ = Encoding::kUtf8WithBom;
    text = std::string(bytes.substr(kUtf8Bom.size()));
  } else {
    text = Cp1252ToUtf8(bytes);
  }
  const auto first_newline = text.find('\n');
  doc.crlf_ =
      first_newline == std::string::npos || (first_newline > 0 && text[first_newline - 1] == '\r');

  std::string_view rest = text;
  for (int line_number = 1; !rest.empty(); ++line_number) {
    const auto newline = rest.find('\n');
    std::string_view raw = rest.substr(0, newline);
    rest.remove_prefix(newline == std::string_view::npos ? rest.size() : newline + 1);
    if (raw.ends_with('\r')) raw.remove_suffix(1);

    Section& current = doc.sections_.back();
    const std::string_view trimmed = Trim(raw);
    if (trimmed.empty() || trimmed.front() == ';' || trimmed.front() == '#') {
      current.lines.push_back({LineKind::kBlankOrComment, std::string(raw), {}, {}, line_number});
      continue;
    }
    if (trimmed.front() == '[') {
      const auto close = trimmed.find(']');
      const std::string_view name =
          close == std::string_view::npos ? std::string_view{} : Trim(trimmed.substr(1, close - 1));
      if (name.empty()) {
        report(line_number, close == std::string_view::npos
                                ? "Abschnittskopf ohne \"]\" wird übergangen"
                                : "Abschnittskopf ohne Namen wird übergangen");
        current.lines.push_back({LineKind::kMalformed, std::string(raw), {}, {}, line_number});
        continue;
      }
      if (doc.FindSection(name)) {
        report(line_number,
               "Abschnitt [" + std::string(name) + "] kommt mehrfach vor; es gilt der erste");
      }
      doc.sections_.push_back({std::string(name), std::string(raw), {}});
      continue;
    }
    const auto equals = trimmed.find('=');
    if (equals == std::string_view::npos || Trim(trimmed.substr(0, equals)).empty()) {
      report(line_number, equals == std::string_view::npos
                              ? "Zeile ohne \"=\" wird übergangen"
                              : "Zeile ohne Schlüsselnamen wird übergangen");
      current.lines.push_back({LineKind::kMalformed, std::string(raw), {}, {}, line_number});
      continue;
    }
    if (doc.sections_.size() == 1) {
      report(line_number, "Schlüssel vor dem ersten Abschnitt wird übergangen");
      current.lines.push_back({LineKind::kMalformed, std::string(raw), {}, {}, line_number});
      continue;
    }
    Line line = ParseKeyLine(raw, trimmed);
    line.number = line_number;
    for (const Line& earlier : current.lines) {
      if (earlier.kind == LineKind::kKey && IniNamesEqual(earlier.key, line.key)) {
        report(line_number, "Schlüssel \"" + line.key + "\" in [" + current.name +
                                "] kommt mehrfach vor; es gilt der erste");
        break;
      }
    }
    current.lines.push_back(std::move(line));
  }
  return doc;
}

std::optional<IniFile> IniFile::Load(const std::filesystem::path& file,
                                     std::vector<IniProblem>* problems) {
  const auto bytes = ReadWholeFile(file);
  if (!bytes) return std::nullopt;
  return Parse(*bytes, file.filename().string(), problems);
}

std::string IniFile::Serialize(std::string_view file_name,
                               std::vector<IniProblem>* problems) const {
  const std::string_view eol = crlf_ ? "\r\n" : "\n";
  std::string out;
  if (encoding_ == Encoding::kUtf8WithBom) out.append(kUtf8Bom);
  int line_number = 0;
  auto emit = [&](const std::string& line) {
    ++line_number;
    if (encoding_ == Encoding::kUtf8WithBom) {
      out.append(line);
    } else {
      Cp1252Report report;
      out.append(Utf8ToCp1252(line, &report));
      if (!report.Exact() && problems) {
        problems->push_back({std::string(file_name), line_number, report.Describe()});
      }
    }
    out.append(eol);
  };
  for (const Section& section : sections_) {
    if (!section.header.empty()) emit(section.header);
    for (const Line& line : section.lines) emit(line.text);
  }
  return out;
}

void IniFile::Save(const std::filesystem::path& file, std::vector<IniProblem>* problems) const {
  const std::string bytes = Serialize(file.filename().string(), problems);
  const std::filesystem::path directory =
      file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) {
    throw EAvaConfigError("Verzeichnis \"" + directory.string() +
                          "\" kann nicht angelegt werden: " + error.message());
  }

  // Settings are the user's work: durable, and kept whole when writing fails.
  const storage::FileWriteResult result =
      storage::WriteFileAtomically(file.string(), bytes, storage::Durability::kDurable);
  if (result.failed == storage::FileWriteStep::kReplace) {
    throw EAvaConfigError("Konfigurationsdatei \"" + file.string() +
                          "\" kann nicht ersetzt werden: " + ErrnoText(result.error));
  }
  if (!result.ok()) {
    throw EAvaConfigError("Konfigurationsdatei \"" + file.string() +
                          "\" kann nicht geschrieben werden: " + ErrnoText(result.error));
  }
}

const IniFile::Section* IniFile::FindSection(std::string_view name) const {
  for (std::size_t i = 1; i < sections_.size(); ++i) {
    if (IniNamesEqual(sections_[i].name, name)) return &sections_[i];
  }
  return nullptr;
}

IniFile::Section* IniFile::FindSection(std::string_view name) {
  return const_cast<Section*>(std::as_const(*this).FindSection(name));
}

std::optional<std::string> IniFile::Get(std::string_view section, std::string_view key) const {
  const Section* found = FindSection(section);
  if (!found) return std::nullopt;
  for (const Line& line : found->lines) {
    if (line.kind == LineKind::kKey && IniNamesEqual(line.key, key)) return line.value;
  }
  return std::nullopt;
}

bool IniFile::HasSection(std::string_view section) const {
  return FindSection(section);
}

int IniFile::LineNumber(std::string_view section, std::string_view key) const {
  const Section* found = FindSection(section);
  if (!found) return 0;
  for (const Line& line : found->lines) {
    if (line.kind == LineKind::kKey && IniNamesEqual(line.key, key)) return line.number;
  }
  return 0;
}

std::string IniFile::FormatKeyLine(std::string_view key, std::string_view value) {
  std::string line(key);
  line += '=';
  if (NeedsQuotes(value)) {
    line.append("\"").append(value).append("\"");
  } else {
    line.append(value);
  }
  return line;
}

void IniFile::Set(std::string_view section, std::string_view key, std::string_view value) {
  CheckName("Abschnittsname", section, "[]\r\n");
  CheckName("Schlüsselname", key, "=\r\n");
  if (value.find_first_of("\r\n") != std::string_view::npos) {
    throw EAvaConfigError("Wert von \"" + std::string(key) +
                          "\" enthält einen Zeilenumbruch und kann nicht gespeichert werden");
  }

  Section* target = FindSection(section);
  if (!target) {
    Section& last = sections_.back();
    const bool has_text = sections_.size() > 1 || !last.lines.empty();
    if (has_text && (last.lines.empty() || !Trim(last.lines.back().text).empty())) {
      last.lines.push_back({LineKind::kBlankOrComment, "", {}, {}});
    }
    sections_.push_back({std::string(section), "[" + std::string(section) + "]", {}});
    target = &sections_.back();
  }

  std::size_t insert_at = 0;
  std::size_t after_text = 0;
  for (std::size_t i = 0; i < target->lines.size(); ++i) {
    Line& line = target->lines[i];
    if (line.kind == LineKind::kKey && IniNamesEqual(line.key, key)) {
      if (line.value != value) {
        line.value = std::string(value);
        line.text = FormatKeyLine(line.key, value);
        line.number = 0;
      }
      return;
    }
    if (line.kind == LineKind::kKey) insert_at = i + 1;
    if (!Trim(line.text).empty()) after_text = i + 1;
  }
  if (insert_at == 0) insert_at = after_text;
  Line line{LineKind::kKey, FormatKeyLine(key, value), std::string(key), std::string(value)};
  target->lines.insert(target->lines.begin() + static_cast<std::ptrdiff_t>(insert_at),
                       std::move(line));
}

bool IniFile::Remove(std::string_view section, std::string_view key) {
  Section* target = FindSection(section);
  if (!target) return false;
  const auto removed = std::erase_if(target->lines, [&](const Line& line) {
    return line.kind == LineKind::kKey && IniNamesEqual(line.key, key);
  });
  return removed > 0;
}

std::vector<std::string> IniFile::SectionNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 1; i < sections_.size(); ++i) {
    if (FindSection(sections_[i].name) == &sections_[i]) names.push_back(sections_[i].name);
  }
  return names;
}

std::vector<std::string> IniFile::KeyNames(std::string_view section) const {
  std::vector<std::string> names;
  const Section* found = FindSection(section);
  if (!found) return names;
  for (const Line& line : found->lines) {
    if (line.kind != LineKind::kKey) continue;
    bool seen = false;
    for (const auto& name : names) seen = seen || IniNamesEqual(name, line.key);
    if (!seen) names.push_back(line.key);
  }
  return names;
}

}  // namespace korvan::data
