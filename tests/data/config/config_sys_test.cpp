#include <gtest/gtest.h>

#include <algorithm>

#include "data/config/config_test_support.h"
#include "data/config/sys_config.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using korvan::testing::ReadFile;
using korvan::testing::WriteFile;
using testing::ChangeEveryOption;
using testing::Contains;
using testing::TestContext;

TEST(SysConfig, RoundTripKeepsValuesCommentsUnknownKeysAndUmlauts) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteFile(file,
            "; Systemweite Einstellungen\r\n[Strings]\r\nAbsender=M\xFCller & S\xF6hne\r\n"
            "Ma\xDFstab=1:50 \xBD\r\n"  // unknown key with umlauts
            "[Eigenes]\r\n; bleibt\r\nSchl\xFCssel=W\xE4rme\r\n");
  TSysConfig sys(TestContext());
  sys.Load(file);
  EXPECT_EQ(sys.Absender(), "Müller & Söhne");
  EXPECT_EQ(sys.Tree().Get("strings", "MAßSTAB"), "1:50 ½");

  EXPECT_TRUE(ChangeEveryOption(sys).empty());
  const auto changed = sys.Entries();
  sys.Save();
  const std::string first_bytes = ReadFile(file);

  TSysConfig loaded(TestContext());
  loaded.Load(file);
  EXPECT_TRUE(loaded.Warnings().empty()) << loaded.Warnings().front().ToString();
  ASSERT_EQ(loaded.Entries().size(), changed.size());
  for (std::size_t i = 0; i < changed.size(); ++i) {
    EXPECT_EQ(loaded.Entries()[i].value, changed[i].value) << changed[i].key;
  }
  EXPECT_EQ(loaded.LktGTFormular()[0], "a,b");
  EXPECT_EQ(loaded.LktGTFormular()[1], "ä");
  loaded.Save();
  EXPECT_EQ(ReadFile(file), first_bytes);  // load-save is stable byte for byte

  // On disk: comments, the unknown section and key, umlauts as single bytes.
  EXPECT_EQ(first_bytes.rfind("; Systemweite Einstellungen\r\n[Strings]\r\n", 0), 0u);
  EXPECT_TRUE(Contains(first_bytes, "Ma\xDFstab=1:50 \xBD\r\n"));
  EXPECT_TRUE(Contains(first_bytes, "[Eigenes]\r\n; bleibt\r\nSchl\xFCssel=W\xE4rme\r\n"));
  EXPECT_TRUE(Contains(first_bytes, "Absender=Gr\xF6\337e \x80 \xE4\xD6\xFC\r\n"));
  EXPECT_TRUE(Contains(first_bytes, "[Globals]\r\nConfigTyp=Sys\r\n"));
  EXPECT_FALSE(Contains(first_bytes, "\xC3"));  // no UTF-8 on disk
}

TEST(SysConfig, InvalidValuesFallBackToTheirDefaults) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteFile(file,
            "[Flags]\nRundenWaehrung=ja\nCurrencyRoundingType=7\nQtyRoundingType=2\n"
            "kaputte Zeile\n[Numerics]\nOZSchrittweite=abc\nREBVersion=99999\n"
            "EuroFaktor=1,95583\nBaukostenindex=hundert\nRefDateForContractDate=20091332\n"
            "MwstNeuDatum=20240229\nRebMethodDescription=3\nAnzeigeWaeGenauigkeit=256\n"
            "[Structs]\nOZStepLengthGT=1,2,3\nBTStepLengthGT=1,2,3,4,5,6,7,8,9,x\n"
            "KatOZStepLengthGT=5,5,5,5,5,5,5,5,5,5\nAnzeigeWae=2\n[Strings]\nOZFormat=1.2.PPP\n");
  TSysConfig sys(TestContext());
  sys.Load(file);
  const TSysConfig defaults(TestContext());
  EXPECT_EQ(sys.RundenWaehrung(), defaults.RundenWaehrung());
  EXPECT_EQ(sys.QtyRoundingType(), TRoundingType::rtArithmetic);
  EXPECT_EQ(sys.REBVersion(), defaults.REBVersion());
  EXPECT_EQ(sys.EuroFaktor(), 1.95583);
  EXPECT_EQ(sys.RefDateForContractDate(), defaults.RefDateForContractDate());
  EXPECT_EQ(sys.AnzeigeWaeGenauigkeit(), defaults.AnzeigeWaeGenauigkeit());
  EXPECT_EQ(sys.MwstNeuDatum(), 20240229);
  EXPECT_EQ(sys.BTSchrittweiteGT(), defaults.BTSchrittweiteGT());
  EXPECT_EQ(sys.KatOZSchrittweiteGT(), LevelSteps(5));
  EXPECT_EQ(sys.AnzeigeWae(), 0);
  EXPECT_EQ(sys.OZFormat(), "1.2.PPP");

  // Every problem names the file and the line it is on.
  std::vector<int> lines;
  for (const auto& warning : sys.Warnings()) {
    EXPECT_EQ(warning.file, "Q_System.ini");
    lines.push_back(warning.line);
  }
  std::sort(lines.begin(), lines.end());
  EXPECT_EQ(lines, (std::vector<int>{2, 3, 5, 7, 8, 10, 11, 13, 14, 16, 17, 19}));

  // The damaged line and the bad values are kept in the file until they are replaced.
  sys.SetREBVersion(2);
  sys.Save();
  const std::string bytes = ReadFile(file);
  EXPECT_TRUE(Contains(bytes, "kaputte Zeile\n"));
  EXPECT_TRUE(Contains(bytes, "REBVersion=2\n"));
  EXPECT_TRUE(Contains(bytes, "OZSchrittweite=10\n"));
}

TEST(SysConfig, ChecksTheKindReadOnlyAndLegacyKeys) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteFile(file, "[Globals]\nConfigTyp=User\n[Numerics]\nREBVersion=2\n");
  TSysConfig sys(TestContext());
  try {
    sys.Load(file);
    FAIL() << "a user configuration is not a system configuration";
  } catch (const EAvaConfigError& error) {
    EXPECT_TRUE(Contains(error.what(), "Q_System.ini"));
    EXPECT_TRUE(Contains(error.what(), "\"User\""));
  }
  EXPECT_EQ(sys.REBVersion(), 3);  // nothing was taken over

  WriteFile(file, "[Globals]\nconfigtyp=sys\n[Strings]\nUserPasswort=alt\n");
  sys.Load(file, /*only_read=*/true);
  EXPECT_TRUE(sys.OnlyRead());
  EXPECT_EQ(sys.UserAdminPW(), "alt");
  EXPECT_THROW(sys.Save(), EAvaConfigError);

  TSysConfig writable(TestContext());
  writable.Load(file);
  writable.SetUserAdminPW("neu");
  writable.Save();
  TSysConfig reloaded(TestContext());
  reloaded.Load(file);
  EXPECT_EQ(reloaded.UserAdminPW(), "neu");  // the current key wins over the old one

  EXPECT_FALSE(reloaded.SetFromText("Numerics", "NoSuchKey", "1"));
  EXPECT_THROW(reloaded.SetFromText("numerics", "rebversion", "x"), EAvaConfigError);
  EXPECT_TRUE(reloaded.SetFromText("numerics", "rebversion", "2"));
  EXPECT_EQ(reloaded.REBVersion(), 2);
  EXPECT_THROW(TSysConfig(TestContext()).Save(), EAvaConfigError);  // no file yet
  const TSysConfig fresh(TestContext());
  EXPECT_EQ(fresh.InstallID().size(), 38u);
  EXPECT_NE(fresh.InstallID(), TSysConfig(TestContext()).InstallID());
}

TEST(SysConfig, ProjectNumbersAdvanceTheStoredCounter) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteFile(file, "[Numerics]\nProjektCounter=41\n");
  TSysConfig sys(TestContext());
  sys.Load(file);
  EXPECT_EQ(sys.NextProjektNummer(20240307), "2024-03-00042");
  EXPECT_EQ(sys.NextProjektNummer(20240308), "2024-03-00043");
  sys.Save();
  TSysConfig reloaded(TestContext());
  reloaded.Load(file);
  EXPECT_EQ(reloaded.ProjektCounter(), 43);

  reloaded.SetProjektFormat("P-{*&4*}");  // no "+": the counter stays
  EXPECT_EQ(reloaded.NextProjektNummer(20240307), "P-  43");
  EXPECT_EQ(reloaded.ProjektCounter(), 43);
  reloaded.SetProjektFormatEnabled(false);
  EXPECT_EQ(reloaded.NextProjektNummer(20240307), "");
}

}  // namespace
}  // namespace korvan::data
