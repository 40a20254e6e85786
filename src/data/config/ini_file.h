#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvan::data {

// A line of a configuration file that was not understood, or a text that could not be
// written as it was. Loading never stops at such a line: it is reported, kept verbatim
// and written back unchanged, and every good line around it is used.
struct IniProblem {
  std::string file;  // the file name as given to the reader
  int line = 0;      // 1-based line number in the file
  std::string what;  // German description

  // "<file>, Zeile <line>: <what>"
  std::string ToString() const;
};

// An ini-style configuration document as Windows keeps them: [Section] headers,
// Key=Value lines, comment lines starting with ";" or "#". Section and key names are
// compared without regard to case (including the accented letters of the code page);
// the first of duplicate sections or keys counts. Saving keeps every comment, blank
// line, unknown key and the order of sections and keys; only changed values are
// rewritten. On disk the text is Windows-1252 (a file starting with a UTF-8 byte order
// mark stays UTF-8); in memory every name and value is UTF-8.
class IniFile {
 public:
  IniFile();

  // Parses the bytes of a file; `file_name` is used in the problem reports.
  static IniFile Parse(std::string_view bytes, std::string_view file_name,
                       std::vector<IniProblem>* problems);

  // Reads a file. nullopt when it does not exist; EAvaConfigError when it exists but
  // cannot be read.
  static std::optional<IniFile> Load(const std::filesystem::path& file,
                                     std::vector<IniProblem>* problems);

  // The bytes of the document. Characters the code page cannot hold are written as
  // "?" and reported in *problems with the line they are on.
  std::string Serialize(std::string_view file_name, std::vector<IniProblem>* problems) const;

  // Writes the document so that a crash never leaves a half-written file: a temporary
  // file in the same directory is written and synced, then renamed over the old one.
  // Missing parent directories are created. EAvaConfigError on failure, after which
  // the previous file is untouched.
  void Save(const std::filesystem::path& file, std::vector<IniProblem>* problems) const;

  std::optional<std::string> Get(std::string_view section, std::string_view key) const;
  bool HasSection(std::string_view section) const;
  // The line the key was read from; 0 when it was added since or does not exist.
  int LineNumber(std::string_view section, std::string_view key) const;
  bool HasKey(std::string_view section, std::string_view key) const {
    return Get(section, key).has_value();
  }

  // Changes the first matching key in place, or appends the key after the last key of
  // the section, or appends the section at the end of the document.
  void Set(std::string_view section, std::string_view key, std::string_view value);

  // Removes every line of the key; false when there was none.
  bool Remove(std::string_view section, std::string_view key);

  // Names as written in the file, in file order, without duplicates.
  std::vector<std::string> SectionNames() const;
  std::vector<std::string> KeyNames(std::string_view section) const;

  bool operator==(const IniFile&) const = default;

 private:
  enum class LineKind { kBlankOrComment, kKey, kMalformed };
  struct Line {
    LineKind kind = LineKind::kBlankOrComment;
    std::string text;  // the line as read (UTF-8), written back while unchanged
    std::string key;   // kKey: name and value as the reader sees them
    std::string value;
    int number = 0;  // line number in the file read; 0 for lines added since
    bool operator==(const Line& other) const {
      return kind == other.kind && text == other.text && key == other.key && value == other.value;
    }
  };
  struct Section {
    std::string name;    // empty for the lines before the first header
    std::string header;  // the header line as read; empty for the preamble
    std::vector<Line> lines;
    bool operator==(const Section&) const = default;
  };
  enum class Encoding { kCp1252, kUtf8WithBom };

  static Line ParseKeyLine(std::string_view text, std::string_view trimmed);
  const Section* FindSection(std::string_view name) const;
  Section* FindSection(std::string_view name);
  static std::string FormatKeyLine(std::string_view key, std::string_view value);

  std::vector<Section> sections_;  // sections_[0] is the preamble
  Encoding encoding_ = Encoding::kCp1252;
  bool crlf_ = true;
};

// Compares two names as Windows compares ini section and key names.
bool IniNamesEqual(std::string_view a, std::string_view b);

}  // namespace korvan::data
