#include "data/config/ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "data/config/config_error.h"
#include "data/config/config_test_support.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using korvan::testing::ReadFile;
using korvan::testing::WriteFile;

IniFile ParseText(std::string_view bytes, std::vector<IniProblem>* problems = nullptr) {
  return IniFile::Parse(bytes, "Test.ini", problems);
}
std::string Text(const IniFile& ini) {
  return ini.Serialize("Test.ini", nullptr);
}

TEST(IniFile, LooksUpSectionsAndKeysAsWindowsDoes) {
  std::vector<IniProblem> problems;
  const IniFile ini = ParseText(
      "; leading comment\r\n[Flags]\r\n  RundenWaehrung = 1 \r\nQuoted=\"  padded  \"\r\n"
      "Inline=a ; not a comment\r\nEmpty=\r\nrundenwaehrung=0\r\n"
      "[\xC4nderungen]\r\nGr\xF6\337e=\334ber\r\n",  // in Windows-1252
      &problems);

  EXPECT_EQ(ini.Get("flags", "RUNDENWAEHRUNG"), "1");
  EXPECT_EQ(ini.Get("Flags", "Quoted"), "  padded  ");
  EXPECT_EQ(ini.Get("Flags", "Inline"), "a ; not a comment");
  EXPECT_EQ(ini.Get("Flags", "Missing"), std::nullopt);
  // Accented letters compare without case as well; values come out as UTF-8.
  EXPECT_EQ(ini.Get("äNDERUNGEN", "GRÖße"), "Über");
  EXPECT_EQ(ini.SectionNames(), (std::vector<std::string>{"Flags", "Änderungen"}));
  EXPECT_EQ(ini.KeyNames("flags"),
            (std::vector<std::string>{"RundenWaehrung", "Quoted", "Inline", "Empty"}));
  // The duplicate key is reported; the first one counts.
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems[0].line, 7);
  EXPECT_NE(problems[0].what.find("mehrfach"), std::string::npos);
}

TEST(IniFile, ReportsMalformedLinesAndKeepsEverythingElse) {
  const std::string text =
      "orphan=1\n[Numerics]\nOZSchrittweite=5\nthis line has no equals sign\n=no key\n"
      "[Broken\nREBVersion=2\n[]\n[Numerics]\nLater=1\n";
  std::vector<IniProblem> problems;
  const IniFile ini = ParseText(text, &problems);

  EXPECT_EQ(ini.Get("Numerics", "OZSchrittweite"), "5");
  EXPECT_EQ(ini.Get("Numerics", "REBVersion"), "2");      // a broken header changes nothing
  EXPECT_EQ(ini.Get("Numerics", "Later"), std::nullopt);  // second [Numerics] does not count
  std::string lines;
  for (const auto& problem : problems) lines += problem.ToString().substr(0, 17) + "|";
  EXPECT_EQ(lines,
            "Test.ini, Zeile 1|Test.ini, Zeile 4|Test.ini, Zeile 5|Test.ini, Zeile 6|"
            "Test.ini, Zeile 8|Test.ini, Zeile 9|");
  // Nothing is lost when the document is written back.
  EXPECT_EQ(Text(ini), text);
}

TEST(IniFile, WritesBackUnchangedTextByteForByte) {
  for (const char* text : {"; c\r\n[A]\r\n  key =  value  \r\n\r\n[B]\r\nx=1\r\n",
                           "[A]\nk=v\n# hash comment\n", "\xEF\xBB\xBF[A]\nk=\xC3\xA4\n"}) {
    EXPECT_EQ(Text(ParseText(text)), text);
  }
  EXPECT_EQ(ParseText("\xEF\xBB\xBF[A]\nk=\xC3\xA4\n").Get("A", "k"), "ä");  // BOM: stays UTF-8
  EXPECT_EQ(Text(ParseText("[A]\r\nk=v")), "[A]\r\nk=v\r\n");  // only a final line break added
}

TEST(IniFile, SetChangesInPlaceAndAppendsInOrder) {
  IniFile ini = ParseText(
      "; Systemkonfiguration\r\n[Flags]\r\n; Runden\r\nRundenWaehrung = 0\r\nUnknown=kept\r\n"
      "\r\n; about the strings\r\n[Strings]\r\n");
  ini.Set("FLAGS", "rundenwaehrung", "1");
  ini.Set("Flags", "RoundInput", "0");
  ini.Set("Strings", "OZFormat", "11.22.PPPP");
  ini.Set("Numerics", "EuroFaktor", "1.95583");
  ini.Set("Strings", "Absender", " padded ");
  EXPECT_EQ(Text(ini),
            "; Systemkonfiguration\r\n[Flags]\r\n; Runden\r\nRundenWaehrung=1\r\nUnknown=kept\r\n"
            "RoundInput=0\r\n\r\n; about the strings\r\n[Strings]\r\nOZFormat=11.22.PPPP\r\n"
            "Absender=\" padded \"\r\n\r\n[Numerics]\r\nEuroFaktor=1.95583\r\n");
  EXPECT_EQ(ini.Get("Strings", "Absender"), " padded ");

  EXPECT_TRUE(ini.Remove("flags", "UNKNOWN"));
  EXPECT_FALSE(ini.Remove("Flags", "Unknown"));
  // Nothing that would read back differently can be set.
  EXPECT_THROW(ini.Set("Flags", "Key", "two\nlines"), EAvaConfigError);
  EXPECT_THROW(ini.Set("Fl]ags", "Key", "1"), EAvaConfigError);
  for (const char* key : {"a=b", " Key", ";Key", ""}) {
    EXPECT_THROW(ini.Set("Flags", key, "1"), EAvaConfigError) << key;
  }
}

TEST(IniFile, StoresWindows1252BytesOnDisk) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Umlaut.ini");
  IniFile ini;
  ini.Set("Maße", "Straße", "Größe 5 € – “ok”");
  std::vector<IniProblem> problems;
  ini.Save(file, &problems);
  EXPECT_TRUE(problems.empty());
  EXPECT_EQ(ReadFile(file), "[Ma\337e]\r\nStra\337e=Gr\xF6\337e 5 \x80 \x96 \x93ok\x94\r\n");

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
  EXPECT_NE(ReadFile(file).find("Pfeil=a?b\r\n"), std::string::npos);
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
  EXPECT_EQ(ReadFile(file), "[Flags]\r\nA=2\r\n");
  // Only the file itself is left: no temporary files.
  const std::filesystem::directory_iterator files(dir.File("sub/deeper"));
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);

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
  WriteFile(dir.File("plain"), "x");
  EXPECT_THROW(ini.Save(dir.File("plain/Q_User.ini"), nullptr), EAvaConfigError);
  // Reading a directory is an error, not an empty file.
  EXPECT_THROW(IniFile::Load(dir.File("Taken.ini"), nullptr), EAvaConfigError);
}

}  // namespace
}  // namespace korvan::data
