#include "data/ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config_test_support.h"
#include "data/config_error.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::ReadBytes;
using testing::WriteBytes;

IniFile ParseText(std::string_view bytes, std::vector<IniProblem>* problems = nullptr) {
  return IniFile::Parse(bytes, "Test.ini", problems);
}

TEST(IniFile, LooksUpSectionsAndKeysAsWindowsDoes) {
  std::vector<IniProblem> problems;
  const IniFile ini = ParseText(
      "; leading comment\r\n"
      "[Flags]\r\n"
      "  RundenWaehrung = 1 \r\n"
      "Quoted=\"  padded  \"\r\n"
      "Inline=a ; not a comment\r\n"
      "Empty=\r\n"
      "rundenwaehrung=0\r\n"
      "[\xC4nderungen]\r\n"  // "Änderungen" in Windows-1252
      "Gr\xF6\xDF"
      "e=\xDC"
      "ber\r\n",
      &problems);

  EXPECT_EQ(ini.Get("flags", "RUNDENWAEHRUNG"), "1");
  EXPECT_EQ(ini.Get("Flags", "Quoted"), "  padded  ");
  EXPECT_EQ(ini.Get("Flags", "Inline"), "a ; not a comment");
  EXPECT_EQ(ini.Get("Flags", "Empty"), "");
  EXPECT_EQ(ini.Get("Flags", "Missing"), std::nullopt);
  EXPECT_EQ(ini.Get("Missing", "RundenWaehrung"), std::nullopt);
  // Accented letters compare without case as well; values come out as UTF-8.
  EXPECT_EQ(ini.Get("äNDERUNGEN", "GRÖße"), "Über");
  EXPECT_TRUE(ini.HasSection("ÄNDERUNGEN"));
  EXPECT_EQ(ini.SectionNames(), (std::vector<std::string>{"Flags", "Änderungen"}));
  EXPECT_EQ(ini.KeyNames("flags"),
            (std::vector<std::string>{"RundenWaehrung", "Quoted", "Inline", "Empty"}));
  // The duplicate key is reported; the first one counts.
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems[0].line, 7);
  EXPECT_NE(problems[0].what.find("mehrfach"), std::string::npos);
  EXPECT_TRUE(IniNamesEqual("Straße", "STRAßE"));
  EXPECT_FALSE(IniNamesEqual("Strasse", "Straße"));
}

TEST(IniFile, ReportsMalformedLinesAndKeepsEverythingElse) {
  const std::string text =
      "orphan=1\n"
      "[Numerics]\n"
      "OZSchrittweite=5\n"
      "this line has no equals sign\n"
      "=no key\n"
      "[Broken\n"
      "REBVersion=2\n"
      "[]\n"
      "[Numerics]\n"
      "Later=1\n";
  std::vector<IniProblem> problems;
  const IniFile ini = ParseText(text, &problems);

  EXPECT_EQ(ini.Get("Numerics", "OZSchrittweite"), "5");
  EXPECT_EQ(ini.Get("Numerics", "REBVersion"), "2");      // a broken header changes nothing
  EXPECT_EQ(ini.Get("Numerics", "Later"), std::nullopt);  // second [Numerics] does not count
  std::vector<int> lines;
  for (const auto& problem : problems) {
    lines.push_back(problem.line);
    EXPECT_EQ(problem.ToString().rfind("Test.ini, Zeile " + std::to_string(problem.line) + ": ", 0),
              0u);
  }
  EXPECT_EQ(lines, (std::vector<int>{1, 4, 5, 6, 8, 9}));
  // Nothing is lost when the document is written back.
  EXPECT_EQ(ini.Serialize("Test.ini", nullptr), text);
}

TEST(IniFile, WritesBackUnchangedTextByteForByte) {
  for (const std::string& text :
       {std::string("; c\r\n[A]\r\n  key =  value  \r\n\r\n[B]\r\nx=1\r\n"),
        std::string("[A]\nk=v\n# hash comment\n"), std::string("\xEF\xBB\xBF[A]\nk=\xC3\xA4\n")}) {
    std::vector<IniProblem> problems;
    const IniFile ini = ParseText(text, &problems);
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(ini.Serialize("Test.ini", nullptr), text);
  }
  // A file with a byte order mark stays UTF-8.
  EXPECT_EQ(ParseText("\xEF\xBB\xBF[A]\nk=\xC3\xA4\n").Get("A", "k"), "ä");
  // A file without trailing newline gains one, nothing else.
  EXPECT_EQ(ParseText("[A]\r\nk=v").Serialize("Test.ini", nullptr), "[A]\r\nk=v\r\n");
}

TEST(IniFile, SetChangesInPlaceAndAppendsInOrder) {
  IniFile ini = ParseText(
      "; Systemkonfiguration\r\n"
      "[Flags]\r\n"
      "; Runden\r\n"
      "RundenWaehrung = 0\r\n"
      "Unknown=kept\r\n"
      "\r\n"
      "; about the strings\r\n"
      "[Strings]\r\n");
  ini.Set("FLAGS", "rundenwaehrung", "1");
  ini.Set("Flags", "RoundInput", "0");
  ini.Set("Strings", "OZFormat", "11.22.PPPP");
  ini.Set("Numerics", "EuroFaktor", "1.95583");
  ini.Set("Strings", "Absender", " padded ");
  EXPECT_EQ(ini.Serialize("Test.ini", nullptr),
            "; Systemkonfiguration\r\n"
            "[Flags]\r\n"
            "; Runden\r\n"
            "RundenWaehrung=1\r\n"
            "Unknown=kept\r\n"
            "RoundInput=0\r\n"
            "\r\n"
            "; about the strings\r\n"
            "[Strings]\r\n"
            "OZFormat=11.22.PPPP\r\n"
            "Absender=\" padded \"\r\n"
            "\r\n"
            "[Numerics]\r\n"
            "EuroFaktor=1.95583\r\n");
  EXPECT_EQ(ini.Get("Strings", "Absender"), " padded ");

  EXPECT_TRUE(ini.Remove("flags", "UNKNOWN"));
  EXPECT_FALSE(ini.Remove("Flags", "Unknown"));
  EXPECT_EQ(ini.Get("Flags", "Unknown"), std::nullopt);

  // Nothing that would read back differently can be set.
  EXPECT_THROW(ini.Set("Flags", "Key", "two\nlines"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Flags", "a=b", "1"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Fl]ags", "Key", "1"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Flags", " Key", "1"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Flags", ";Key", "1"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Flags", "", "1"), EAvaConfigError);
}

TEST(IniFile, StoresWindows1252BytesOnDisk) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Umlaut.ini");
  IniFile ini;
  ini.Set("Maße", "Straße", "Größe 5 € – “ok”");
  std::vector<IniProblem> problems;
  ini.Save(file, &problems);
  EXPECT_TRUE(problems.empty());
  EXPECT_EQ(ReadBytes(file),
            "[Ma\xDF"
            "e]\r\nStra\xDF"
            "e=Gr\xF6\xDF"
            "e 5 \x80 \x96 \x93ok\x94\r\n");

  const auto loaded = IniFile::Load(file, &problems);
  ASSERT_TRUE(loaded.has_value());
  EXPECT_EQ(loaded->Get("MASSE", "x"), std::nullopt);
  EXPECT_EQ(loaded->Get("MAßE", "STRAßE"), "Größe 5 € – “ok”");
  EXPECT_TRUE(problems.empty());

  // A character the code page lacks becomes "?" and is reported with its line.
  IniFile arrows = *loaded;
  arrows.Set("Maße", "Pfeil", "a→b");
  arrows.Save(file, &problems);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems[0].line, 3);
  EXPECT_NE(ReadBytes(file).find("Pfeil=a?b\r\n"), std::string::npos);
}

TEST(IniFile, SavesAtomicallyAndReportsFileErrors) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("sub/deeper/Q_System.ini");
  EXPECT_EQ(IniFile::Load(file, nullptr), std::nullopt);

  IniFile ini;
  ini.Set("Flags", "A", "1");
  ini.Save(file, nullptr);  // creates the missing directories
  ini.Set("Flags", "A", "2");
  ini.Save(file, nullptr);
  EXPECT_EQ(ReadBytes(file), "[Flags]\r\nA=2\r\n");
  // Only the file itself is left: no temporary files.
  int entries = 0;
  for (const auto& entry : std::filesystem::directory_iterator(dir.File("sub/deeper"))) {
    (void)entry;
    ++entries;
  }
  EXPECT_EQ(entries, 1);

  // A directory in the way of the file: the save fails, names the file, leaves nothing.
  std::filesystem::create_directory(dir.File("Taken.ini"));
  try {
    ini.Save(dir.File("Taken.ini"), nullptr);
    FAIL() << "saving over a directory must fail";
  } catch (const EAvaConfigError& error) {
    EXPECT_NE(std::string(error.what()).find("Taken.ini"), std::string::npos);
  }
  EXPECT_TRUE(std::filesystem::is_directory(dir.File("Taken.ini")));
  EXPECT_TRUE(std::filesystem::is_empty(dir.File("Taken.ini")));
  // A file where a directory should be.
  WriteBytes(dir.File("plain"), "x");
  EXPECT_THROW(ini.Save(dir.File("plain/Q_User.ini"), nullptr), EAvaConfigError);
  // Reading a directory is an error, not an empty file.
  EXPECT_THROW(IniFile::Load(dir.File("Taken.ini"), nullptr), EAvaConfigError);
}

}  // namespace
}  // namespace korvan::data
