#include <gtest/gtest.h>

#include <algorithm>

#include "config_test_support.h"
#include "data/machine_config.h"
#include "data/sys_config.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::ChangeEveryOption;
using testing::ReadBytes;
using testing::TestContext;
using testing::WriteBytes;

TEST(SysConfig, FreshInstallationStartsWithTheDefaults) {
  korvan::testing::TempDir dir;
  TMachineEnvironment environment;
  environment.ProgrammDirectory = dir.path().string();
  const TMachineConfig machine(TestContext(), environment);
  const TSysConfig sys = TSysConfig::Open(TestContext(), machine);  // no file anywhere

  EXPECT_FALSE(sys.States().Contains(TConfigState::csFileRead));
  EXPECT_EQ(sys.SyskonPath(), machine.SysConfigFile().string());
  EXPECT_EQ(sys.ConfigTyp(), "Sys");
  EXPECT_EQ(sys.OZFormat(), "11.22.PPPP");
  EXPECT_EQ(sys.OZSchrittweiteGT(), LevelSteps(10));
  EXPECT_EQ(sys.BTSchrittweiteGT(), LevelSteps(10));
  EXPECT_EQ(sys.KatOZSchrittweiteGT(), LevelSteps(10));
  EXPECT_EQ(sys.LktSchrittweiteGT(), LevelSteps(10));
  EXPECT_EQ(sys.OZAutoNumGT(), LevelFlags(true));
  EXPECT_EQ(sys.LktGTFormularAuto(), LevelFlags(false));
  EXPECT_EQ(sys.REBVersion(), 3);
  EXPECT_EQ(sys.EuroFaktor(), 1.95583);
  EXPECT_EQ(sys.RefDateForContractDate(), 20091217);
  EXPECT_EQ(sys.OZSchrittweite(), 10);
  EXPECT_EQ(sys.BTSchrittweite(), 1);
  EXPECT_EQ(sys.LktSchrittweite(), 1);
  EXPECT_EQ(sys.BTFormat(), "11.22.33.BB.TT");
  EXPECT_EQ(sys.LandesWaeEinheit(), "DEM");
  EXPECT_EQ(sys.EuroWaeEinheit(), "EUR");
  EXPECT_EQ(sys.VertragFormat(), "{*LNR*}-{*MM*}-{*JJJJ*}");
  EXPECT_EQ(sys.RechnungFormat(), "{*%5.5+*}-{*MM*}-{*JJJJ*}");
  EXPECT_EQ(sys.ProjektFormat(), "{*JJJJ*}-{*MM*}-{*&5.5+*}");
  EXPECT_EQ(sys.Version(), "70");
  EXPECT_EQ(sys.LandesWaeGenauigkeit(), 2);
  EXPECT_EQ(sys.EuroWaeGenauigkeit(), 2);
  EXPECT_EQ(sys.AnzeigeWaeGenauigkeit(), 5);
  EXPECT_EQ(sys.Baukostenindex(), 100.0);
  EXPECT_EQ(sys.IdAnzeigeWae(), 32766);
  EXPECT_EQ(sys.IdBasisWae(), 32766);
  EXPECT_EQ(sys.ExcptSmtpPort(), 25);
  EXPECT_EQ(sys.RebMethodDescription(), 2);
  EXPECT_EQ(sys.Language(), 49);
  EXPECT_TRUE(sys.OZAutoNum());
  EXPECT_TRUE(sys.ProjektFormatEnabled());
  EXPECT_TRUE(sys.UseRecordReadCache());
  EXPECT_TRUE(sys.AutoPictureResize());
  EXPECT_FALSE(sys.RoundInput());
  EXPECT_FALSE(sys.KdCadLktImpRemoveDeletedQuantities());
  EXPECT_TRUE(sys.KdCadLktImpDoNotExportDeletedQuantities());
  // The values a fresh system needs although the file normally brings them.
  EXPECT_TRUE(sys.RundenWaehrung());
  EXPECT_EQ(sys.CurrencyRoundingType(), TRoundingType::rtCommercial);
  EXPECT_EQ(sys.QtyRoundingType(), TRoundingType::rtCommercial);
  EXPECT_EQ(sys.Mwst(), 19.0);
  EXPECT_EQ(sys.MwstNeu(), 19.0);
  EXPECT_EQ(sys.MwstNeuDatum(), 0);
  EXPECT_EQ(sys.InstallID().size(), 38u);
  EXPECT_NE(sys.InstallID(), TSysConfig(TestContext()).InstallID());
  EXPECT_EQ(sys.SystemUserName(), "anna");
  EXPECT_EQ(sys.MachineName(), "ws01");
  EXPECT_EQ(sys.AvaVersionAsInt(), 100);
}

TEST(SysConfig, RoundTripKeepsValuesCommentsUnknownKeysAndUmlauts) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteBytes(file,
             "; Systemweite Einstellungen\r\n"
             "[Strings]\r\n"
             "Absender=M\xFCller & S\xF6hne\r\n"
             "Ma\xDFstab=1:50 \xBD\r\n"  // unknown key with umlauts
             "[Eigenes]\r\n"
             "; bleibt\r\n"
             "Schl\xFC"
             "ssel=W\xE4rme\r\n");
  TSysConfig sys(TestContext());
  sys.Load(file);
  EXPECT_EQ(sys.Absender(), "Müller & Söhne");
  EXPECT_EQ(sys.Tree().Get("Strings", "MASSSTAB"), std::nullopt);
  EXPECT_EQ(sys.Tree().Get("strings", "MAßSTAB"), "1:50 ½");

  EXPECT_TRUE(ChangeEveryOption(sys).empty());
  const auto changed = sys.Entries();
  for (const auto& entry : TSysConfig(TestContext()).Entries()) {
    const auto it = std::find_if(changed.begin(), changed.end(), [&](const auto& other) {
      return other.section == entry.section && other.key == entry.key;
    });
    ASSERT_NE(it, changed.end());
    EXPECT_NE(it->value, entry.value) << entry.section << "/" << entry.key;
  }
  sys.Save();
  const std::string first_bytes = ReadBytes(file);

  TSysConfig loaded(TestContext());
  loaded.Load(file);
  EXPECT_TRUE(loaded.Warnings().empty()) << loaded.Warnings().front().ToString();
  ASSERT_EQ(loaded.Entries().size(), changed.size());
  for (std::size_t i = 0; i < changed.size(); ++i) {
    EXPECT_EQ(loaded.Entries()[i].value, changed[i].value) << changed[i].key;
  }
  EXPECT_EQ(loaded.Absender(), "Größe € äÖü");
  EXPECT_EQ(loaded.LktGTFormular()[0], "a,b");
  EXPECT_EQ(loaded.LktGTFormular()[1], "ä");
  loaded.Save();
  EXPECT_EQ(ReadBytes(file), first_bytes);  // load-save is stable byte for byte

  // On disk: comments, the unknown section and key, umlauts as single bytes.
  EXPECT_EQ(first_bytes.rfind("; Systemweite Einstellungen\r\n[Strings]\r\n", 0), 0u);
  EXPECT_NE(first_bytes.find("Ma\xDFstab=1:50 \xBD\r\n"), std::string::npos);
  EXPECT_NE(first_bytes.find("[Eigenes]\r\n; bleibt\r\nSchl\xFCssel=W\xE4rme\r\n"),
            std::string::npos);
  EXPECT_NE(first_bytes.find("Absender=Gr\xF6\xDF"
                             "e \x80 \xE4\xD6\xFC\r\n"),
            std::string::npos);
  EXPECT_NE(first_bytes.find("[Globals]\r\nConfigTyp=Sys\r\n"), std::string::npos);
  EXPECT_EQ(first_bytes.find("\xC3"), std::string::npos);  // no UTF-8 on disk
}

TEST(SysConfig, InvalidValuesFallBackToTheirDefaults) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteBytes(file,
             "[Flags]\n"
             "RundenWaehrung=ja\n"
             "CurrencyRoundingType=7\n"
             "QtyRoundingType=2\n"
             "kaputte Zeile\n"
             "[Numerics]\n"
             "OZSchrittweite=abc\n"
             "REBVersion=99999\n"
             "EuroFaktor=1,95583\n"
             "Baukostenindex=hundert\n"
             "RefDateForContractDate=20091332\n"
             "MwstNeuDatum=20240229\n"
             "RebMethodDescription=3\n"
             "AnzeigeWaeGenauigkeit=256\n"
             "[Structs]\n"
             "OZStepLengthGT=1,2,3\n"
             "BTStepLengthGT=1,2,3,4,5,6,7,8,9,x\n"
             "KatOZStepLengthGT=5,5,5,5,5,5,5,5,5,5\n"
             "AnzeigeWae=2\n"
             "[Strings]\n"
             "OZFormat=1.2.PPP\n");
  TSysConfig sys(TestContext());
  sys.Load(file);

  EXPECT_TRUE(sys.RundenWaehrung());
  EXPECT_EQ(sys.CurrencyRoundingType(), TRoundingType::rtCommercial);
  EXPECT_EQ(sys.QtyRoundingType(), TRoundingType::rtArithmetic);
  EXPECT_EQ(sys.OZSchrittweite(), 10);
  EXPECT_EQ(sys.REBVersion(), 3);
  EXPECT_EQ(sys.EuroFaktor(), 1.95583);
  EXPECT_EQ(sys.Baukostenindex(), 100.0);
  EXPECT_EQ(sys.RefDateForContractDate(), 20091217);
  EXPECT_EQ(sys.MwstNeuDatum(), 20240229);
  EXPECT_EQ(sys.RebMethodDescription(), 2);
  EXPECT_EQ(sys.AnzeigeWaeGenauigkeit(), 5);
  EXPECT_EQ(sys.OZSchrittweiteGT(), LevelSteps(10));
  EXPECT_EQ(sys.BTSchrittweiteGT(), LevelSteps(10));
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
  const std::string bytes = ReadBytes(file);
  EXPECT_NE(bytes.find("kaputte Zeile\n"), std::string::npos);
  EXPECT_NE(bytes.find("REBVersion=2\n"), std::string::npos);
  EXPECT_NE(bytes.find("OZSchrittweite=10\n"), std::string::npos);
}

TEST(SysConfig, ChecksTheKindReadOnlyAndLegacyKeys) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteBytes(file, "[Globals]\nConfigTyp=User\n[Numerics]\nREBVersion=2\n");
  TSysConfig sys(TestContext());
  try {
    sys.Load(file);
    FAIL() << "a user configuration is not a system configuration";
  } catch (const EAvaConfigError& error) {
    EXPECT_NE(std::string(error.what()).find("Q_System.ini"), std::string::npos);
    EXPECT_NE(std::string(error.what()).find("\"User\""), std::string::npos);
  }
  EXPECT_EQ(sys.REBVersion(), 3);  // nothing was taken over

  WriteBytes(file, "[Globals]\nconfigtyp=sys\n[Strings]\nUserPasswort=alt\n");
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
}

TEST(SysConfig, ProjectNumbersAdvanceTheStoredCounter) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_System.ini");
  WriteBytes(file, "[Numerics]\nProjektCounter=41\n");
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
