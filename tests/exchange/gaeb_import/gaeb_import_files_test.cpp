// The import of files it did not write: the shared samples against an independent
// reading of each file, deviations read with a finding, and what is refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"
#include "exchange/gaeb_xml/gaeb_file_check.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "testing/temp_dir.h"

namespace korvan::exchange {
namespace {

namespace fs = std::filesystem;
using gaeb_xml::TGaebElement;
using gaeb_xml::testing::Listed;
using gaeb_xml::testing::Mentions;

// Every section, item and sub-description of the file arrives in its order, with its
// number, quantity and unit.
void ExpectEveryEntryArrived(const fs::path& file, const TGaebImport& import) {
  const gaeb_xml::TGaebReadResult read = gaeb_xml::ReadGaebXmlFile(file.string());
  ASSERT_TRUE(read.document.has_value());
  // Items, sub-descriptions and sections of the document in document order.
  const std::vector<const TGaebElement*> wanted =
      gaeb_xml::testing::All(read.document->root, {"BoQCtgy", "Item", "MarkupItem", "SubDescr"});
  std::vector<const boq::TLvPos*> got;
  for (const boq::TLvPos& entry : import.lv.Entries()) {
    if (entry.IsGroup() || entry.IsQuantityItem()) got.push_back(&entry);
  }
  ASSERT_EQ(got.size(), wanted.size());
  for (size_t i = 0; i < wanted.size(); ++i) {
    const TGaebElement& element = *wanted[i];
    const boq::TLvPos& entry = *got[i];
    SCOPED_TRACE(element.name + " line " + std::to_string(element.line));
    EXPECT_EQ(entry.IsGroup(), element.name == "BoQCtgy");
    if (const std::optional<std::string> part = element.Attribute("RNoPart")) {
      EXPECT_NE(std::string(entry.Oz()).find(*part), std::string::npos) << entry.Oz();
    }
    if (const std::optional<std::string> qty = element.ChildText("Qty")) {
      EXPECT_NEAR(entry.LvBeschr.FMenge, gaeb_xml::ParseGaebDecimal(*qty).value_or(-1), 0.0005);
    }
    if (const std::optional<std::string> unit = element.ChildText("QU")) {
      EXPECT_EQ(entry.Unit, *unit);
    }
  }
  EXPECT_EQ(import.groups + import.items, static_cast<int>(wanted.size()));
}

// The imported LV written again as a file of its phase is valid for the official schema.
void ExpectExportedAgainValid(const TGaebImport& import, const std::string& path) {
  if (gaeb_xml::testing::SchemaDir().empty()) return;
  TGaebExportSource source;
  source.lv = import.lv;
  source.header = import.header;
  source.project_name = import.data.FPrjInfo.NamePrj.value_or("");
  TGaebExportOptions options;
  options.phase = import.phase;
  ExportGaebFile(source, options, path);
  const gaeb_xml::TGaebFileCheck check =
      gaeb_xml::CheckGaebFile(path, gaeb_xml::testing::SchemaDir().string());
  EXPECT_TRUE(check.schema_checked);
  EXPECT_FALSE(gaeb_xml::HasErrors(check.findings)) << Listed(check.findings);
}

// Every sample of an LV arrives whole and, exported again, validates; the others are
// refused naming the file.
TEST(GaebImportFiles, EverySampleOfAnLvArrivesWholeTheOthersAreRefused) {
  const korvan::testing::TempDir dir;
  if (gaeb_xml::testing::SampleDir().empty()) GTEST_SKIP() << gaeb_xml::testing::kNoSamples;
  const std::vector<std::string> refused = {"confirmation.x87", "description.x80", "invoice.x89",
                                            "minimal.x83", "supporting.x89b"};
  int imported = 0;
  for (const fs::directory_entry& sample : fs::directory_iterator(gaeb_xml::testing::SampleDir())) {
    const std::string name = sample.path().filename().string();
    if (name == "LICENSE") continue;
    SCOPED_TRACE(name);
    TGaebImportOptions options;
    options.lv_name = "Probe";
    if (std::find(refused.begin(), refused.end(), name) != refused.end()) {
      try {
        ImportGaebFile(sample.path().string(), options);
        ADD_FAILURE() << "not refused";
      } catch (const EGaebImportError& error) {
        EXPECT_NE(std::string(error.what()).find(sample.path().string() + ":"), std::string::npos)
            << error.what();
      }
      continue;
    }
    const TGaebImport import = ImportGaebFile(sample.path().string(), options);
    EXPECT_FALSE(gaeb_xml::HasErrors(import.findings)) << Listed(import.findings);
    ExpectEveryEntryArrived(sample.path(), import);
    ExpectExportedAgainValid(import, dir.File(name));
    ++imported;
  }
  EXPECT_EQ(imported, 8);
}

// A small file of one section with one item, with `item_extra` inside the item.
std::string SmallFile(const std::string& item_extra, const std::string& name = "Rohbau",
                      const std::string& prolog = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>") {
  return prolog +
         "\n<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA83/3.3\">\n"
         "<Award><DP>83</DP><BoQ><BoQInfo><Name>" +
         name +
         "</Name>\n"
         "<BoQBkdn><Type>BoQLevel</Type><Length>2</Length></BoQBkdn>\n"
         "<BoQBkdn><Type>Item</Type><Length>4</Length></BoQBkdn></BoQInfo>\n"
         "<BoQBody><BoQCtgy RNoPart=\"01\"><LblTx><p><span>Erdarbeiten</span></p></LblTx>\n"
         "<BoQBody><Itemlist><Item RNoPart=\"10\"><Qty>5.000</Qty><QU>m3</QU>\n" +
         item_extra + "\n</Item></Itemlist></BoQBody></BoQCtgy></BoQBody></BoQ></Award></GAEB>\n";
}

TEST(GaebImportFiles, DeviationsOfRealFilesAreReadWithAFindingNamingTheLine) {
  const struct {
    const char* deviation;
    std::string xml;
    std::string finding;  // part of a finding's line and message
  } cases[] = {
      {"a name longer than an LV's", SmallFile("", "Rohbau Schule Nord Bauabschnitt 2"),
       "3: Name des LV \"Rohbau Schule Nord Bauabschnitt 2\" passt nicht ganz"},
      {"an unknown element", SmallFile("<Farbe>grün</Farbe>"), "8: Element \"Farbe\" nicht"},
      {"a short text longer than a line",
       SmallFile("<Description><OutlineText><OutlTxt><TextOutlTxt><p><span>" +
                 std::string(50, 'a') + " " + std::string(50, 'b') +
                 "</span></p></TextOutlTxt></OutlTxt></OutlineText></Description>"),
       "8: Kurztext mit Zeilen über 70 Zeichen: auf mehrere Zeilen umbrochen"},
      {"a value that is no decimal", SmallFile("<PredQty>1,5</PredQty>"), "8: PredQty \"1,5\""},
      {"another encoding",
       SmallFile("", "Rohbau", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"),
       "1: Zeichensatz \"ISO-8859-1\""},
  };
  for (const auto& file : cases) {
    SCOPED_TRACE(file.deviation);
    const TGaebImport import = ImportGaebXml(file.xml, "a.x83", {});
    EXPECT_TRUE(Mentions(import.findings, file.finding)) << Listed(import.findings);
    EXPECT_EQ(import.lv.Count(), 2);
    EXPECT_EQ(import.lv[1].Oz(), "01.0010");
  }
  // A value that cannot be read is a "Read: Bad" line of the protocol.
  EXPECT_NE(ImportProtocolText(ImportGaebXml(SmallFile("<PredQty>1,5</PredQty>"), "a.x83", {}))
                .find("Read: Bad PredQty (Zeile 8)"),
            std::string::npos);
  // Without BoQInfo/Name the LV is named after the file.
  const TGaebImport unnamed = ImportGaebXml(SmallFile("", ""), "dir/Schule.x83", {});
  EXPECT_EQ(unnamed.lv.FLv().Name.Get(), "Schule");
  EXPECT_TRUE(Mentions(unnamed.findings, "3: BoQInfo ohne Name")) << Listed(unnamed.findings);
  // The declared encoding is the one read: "ä" in Latin-1 is one byte.
  const TGaebImport latin = ImportGaebXml(
      SmallFile("<Description><OutlineText><OutlTxt><TextOutlTxt><p><span>M\xE4hen</span></p>"
                "</TextOutlTxt></OutlTxt></OutlineText></Description>",
                "Rohbau", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"),
      "a.x83", {});
  EXPECT_EQ(latin.lv[1].ShortText, "M\xC3\xA4hen");
  // A breakdown that lacks the item level takes it from the numbers.
  std::string no_item = SmallFile("");
  no_item.erase(no_item.find("<BoQBkdn><Type>Item"),
                no_item.find("</BoQInfo>") - no_item.find("<BoQBkdn><Type>Item"));
  const TGaebImport derived = ImportGaebXml(no_item, "a.x83", {});
  EXPECT_EQ(derived.lv.FOzMask().FMask(), "11.PP");
  EXPECT_TRUE(Mentions(derived.findings, "ohne Stufe Item")) << Listed(derived.findings);
}

TEST(GaebImportFiles, FilesThatAreNoLvAreRefusedNamingFileLineAndExpectation) {
  const std::string good = SmallFile("");
  const struct {
    const char* damage;
    std::string xml;
    std::string message;
  } cases[] = {
      {"not XML", "Kurztext;Menge;Einheit\n", "a.x83:1: XML nicht lesbar"},
      {"truncated", good.substr(0, good.size() / 2), "a.x83:"},
      {"a DTD", "<?xml version=\"1.0\"?>\n<!DOCTYPE GAEB SYSTEM \"gaeb.dtd\">\n<GAEB/>",
       "a.x83:2: Dokumenttyp-Deklaration"},
      {"an external entity",
       "<?xml version=\"1.0\"?>\n<!DOCTYPE GAEB [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>\n"
       "<GAEB>&x;</GAEB>",
       "a.x83:2: Dokumenttyp-Deklaration"},
      {"an entity bomb",
       "<?xml version=\"1.0\"?>\n\n<!DOCTYPE b [<!ENTITY a \"aaaaaaaa\">"
       "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
       "\"&b;&b;&b;&b;&b;&b;&b;&b;\">]>\n<b>&c;</b>",
       "a.x83:3: Dokumenttyp-Deklaration"},
      {"an undeclared entity", "<?xml version=\"1.0\"?>\n<GAEB>\n&x;</GAEB>", "a.x83:3:"},
      {"another root", "<?xml version=\"1.0\"?>\n<Rechnung/>", "a.x83:2: Wurzelelement"},
      {"no phase", "<GAEB xmlns=\"http://www.gaeb.de/GAEB_DA_XML/DA83/3.3\"><Award/></GAEB>",
       "a.x83:1: Award/DP fehlt"},
      {"a phase of no LV", "<GAEB>\n<Award><DP>89</DP></Award></GAEB>", "a.x83:2: Phase \"89\""},
      {"no BoQ", "<GAEB>\n<Award><DP>83</DP></Award></GAEB>", "a.x83:2: Read: No BoQ: erwartet"},
      {"no BoQInfo", "<GAEB><Award><DP>83</DP>\n<BoQ/></Award></GAEB>",
       "a.x83:2: BoQ ohne BoQInfo"},
  };
  for (const auto& file : cases) {
    SCOPED_TRACE(file.damage);
    try {
      ImportGaebXml(file.xml, "a.x83", {});
      ADD_FAILURE() << "not refused";
    } catch (const EGaebImportError& error) {
      EXPECT_EQ(std::string(error.what()).rfind(file.message, 0), 0u) << error.what();
    }
  }
}

}  // namespace
}  // namespace korvan::exchange
