#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/language/formel_errors.h"
#include "formula/reb/reb_ansatz_record.h"
#include "formula/reb/reb_sheet.h"

namespace korvan::formula {
namespace {

TRebLine Line(std::string nr, std::string formel, char kz = ' ', double faktor = 0,
              char vorzeichen = ' ') {
  static int32_t next_id = 1;
  TRebLine line;
  line.Id = next_id++;
  line.FormelNr = std::move(nr);
  line.Formel = std::move(formel);
  line.KZ = kz;
  line.Faktor = faktor;
  line.Vorzeichen = vorzeichen;
  return line;
}

// The built-in list, plus a formula 112 for the numbers of the 7xx range.
class TestCatalogue : public TRebFormelSource {
 public:
  std::optional<TRebFormelRow> Find(std::string_view nr) override {
    if (CatalogueKeyOf(nr) == "112") return TRebFormelRow{"112", "Probe", "<1>+<2>", ""};
    return builtin_.Find(nr);
  }

 private:
  TBuiltInRebFormelSource builtin_;
};

TRebSheetOutcome Sheet(TRebVersion version, std::vector<TRebLine> lines) {
  TestCatalogue catalogue;
  auto interpreter = version == TRebVersion::k23003 ? CoREB003FormelInterpreter::Create(catalogue)
                                                    : CoREB004FormelInterpreter::Create(catalogue);
  return EvaluateRebLines(*interpreter, lines);
}

constexpr TRebVersion k003 = TRebVersion::k23003;
constexpr TRebVersion k004 = TRebVersion::k23004;

TEST(RebFreeFormulas, ContinuationLinesAreCollectedByTheLineThatCompletesThem) {
  const TRebSheetOutcome sheet = Sheet(k003, {Line("0", "3,5*"), Line("0", "2")});
  EXPECT_DOUBLE_EQ(sheet.lines[1].result, 7);
  EXPECT_EQ(sheet.lines[1].expression, "3,5*2");
  EXPECT_DOUBLE_EQ(sheet.sum, 7);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("0", "-(2+3)=")}).sum, -5);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("30", "3*3+4*4=")}).sum, 5);
  EXPECT_DOUBLE_EQ(Sheet(k004, {Line("", "2*"), Line("", "4=")}).sum, 8);
  EXPECT_DOUBLE_EQ(Sheet(k004, {Line("091", "2*"), Line("091", "{Achse} 4=")}).sum, 8);
}

TEST(RebFreeFormulas, FactorSignAndMarksDecideWhatCounts) {
  const TRebSheetOutcome sheet =
      Sheet(k003, {Line("0", "2=", ' ', 3, '-'), Line("0", "5=", ' ', 1), Line("0", "4=", ' ', 0),
                   Line("0", "0,0000005=", ' ', 0, '-'), Line("0", "100=", 'H'),
                   Line("0", "100=", 'V'), Line("0", "{nur Text}", '*')});
  EXPECT_DOUBLE_EQ(sheet.lines[0].result, -6);
  EXPECT_DOUBLE_EQ(sheet.lines[1].result, 5);
  EXPECT_DOUBLE_EQ(sheet.lines[2].result, 4);
  EXPECT_DOUBLE_EQ(sheet.lines[3].result, 0.0000005);
  EXPECT_DOUBLE_EQ(sheet.sum, -6 + 5 + 4 + 0.0000005);
}

TEST(RebFreeFormulas, SubTotalsAndItemSumsCountTheirOwnResultOnly) {
  const TRebSheetOutcome sheet =
      Sheet(k003, {Line("0", "2="), Line("0", "3="), Line("0", "1=", 'Z'), Line("0", "4="),
                   Line("0", "0=", 'P')});
  EXPECT_DOUBLE_EQ(sheet.lines[2].result, 6);   // 1 + 2 + 3
  EXPECT_DOUBLE_EQ(sheet.lines[4].result, 10);  // 4 + 3 + 2 and the sub-total's own 1
  EXPECT_DOUBLE_EQ(sheet.sum, 10);
}

TEST(RebFreeFormulas, NamesAreVariablesOfTheOwnerOrAddressesOfEarlierLines) {
  std::vector<TRebLine> lines = {Line("0", "5="), Line("0", "#0101*Breite=")};
  lines[0].Adresse = "0101";
  TestCatalogue catalogue;
  auto interpreter = CoREB003FormelInterpreter::Create(catalogue);
  const TRebSheetOutcome sheet = EvaluateRebLines(*interpreter, lines, [](const std::string& name) {
    return name == "BREITE" ? std::optional<double>(2) : std::nullopt;
  });
  EXPECT_DOUBLE_EQ(sheet.lines[1].result, 10);
  EXPECT_EQ(Sheet(k003, {Line("0", "#0101*2=")}).lines[0].error, kFormelUnknownVariable);
}

TEST(RebNumberedFormulas, CatalogueFormulasWithTheirValues) {
  // Rectangle 3,5 x 2 x 0,5; triangle 4 x 3 / 2 without its optional length.
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("4", "3,5|2|0,5")}).sum, 3.5);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("1", "4|3")}).sum, 6);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("01", "4|-3")}).sum, -6);
  // Triangle of sides 3, 4, 5 (Heron) is 6; trapezoid (2+4)/2 x 3 is 9.
  EXPECT_NEAR(Sheet(k003, {Line("3", "3|4|5")}).sum, 6, 1e-9);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("05", "2|4")}).sum, 3);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("5", "2|4|3")}).sum, 9);
  // Quarter circle of radius 2: pi.
  EXPECT_NEAR(Sheet(k003, {Line("7", "2|90")}).sum, 3.141592653589793, 1e-12);
  // Under 23.004 an empty value is no factor 1.
  EXPECT_EQ(Sheet(k004, {Line("001", "4|3")}).lines[0].error, kFormelUnknownVariable);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("712", "1|2")}).sum, 3);
}

TEST(RebNumberedFormulas, RunsOfPointsAndValues) {
  // Polyline (0,0) (3,4) (3,10): 5 + 6; rectangle 4 x 3 by its corners.
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("21", "0|0"), Line("21", "3|4"), Line("21", "3|10=")}).sum,
                   11);
  EXPECT_DOUBLE_EQ(
      Sheet(k003, {Line("22", "0|0"), Line("22", "4|0"), Line("22", "4|3"), Line("22", "0|3=")})
          .sum,
      12);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("31", "2|4"), Line("31", "6=")}).sum, 4);
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("32", "3|4="), Line("0", "0=")}).sum, std::sqrt(12.5));
  EXPECT_DOUBLE_EQ(Sheet(k004, {Line("099", "3|2||||*|*"), Line("099", "4=")}).sum, 24);
}

TEST(RebNumberedFormulas, StationSeriesByTheTrapezoidRule) {
  // Stations 0, 10, 25 with cross-sections 2, 4, 4: 10 x 3 + 15 x 4.
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("23", "0|1|1"), Line("23", "10|4"), Line("23", "25|1|1|1|1=")})
                       .lines[2]
                       .result,
                   90);
  // Formula 98: 2 x the mean of 3 and 5 (the zero does not count) is 8 at both stations.
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("98", "0|2|3|0|5"), Line("98", "10|2|3|0|5=")}).sum, 80);
  // Formula 25: 2 x (1 + 3) / 2 = 4 at both stations, factor of the earliest line.
  EXPECT_DOUBLE_EQ(Sheet(k003, {Line("25", "0|2|1|3", ' ', 2), Line("25", "5|2|1|3=")}).sum, 40);
}

TEST(RebNumberedFormulas, Version004SumsSideCalculationsAndTakesOverResults) {
  std::vector<TRebLine> lines = {Line("", "2="), Line("", "3="), Line("", "4=", 'H')};
  const std::string first = "#" + std::to_string(lines[0].Id);
  const std::string second = "#" + std::to_string(lines[1].Id);
  lines.push_back(Line("060", first + "|" + second));
  lines.push_back(Line("060", second + "|" + first));
  lines.push_back(Line("061", ""));
  TestCatalogue catalogue;
  auto interpreter = CoREB004FormelInterpreter::Create(catalogue);
  const TRebSheetOutcome sheet = EvaluateRebLines(*interpreter, lines);
  EXPECT_DOUBLE_EQ(sheet.lines[3].result, 5);
  EXPECT_DOUBLE_EQ(sheet.lines[4].result, 0);
  EXPECT_DOUBLE_EQ(sheet.lines[5].result, 2 + 3 + 5 + 0);
  // Value 1 of a rectangle computed by the following line marked "1".
  EXPECT_DOUBLE_EQ(Sheet(k004, {Line("004", "|2|3"), Line("", "2*5=", '1')}).lines[0].result, 60);
  TRebLine kept = Line("700", "");
  kept.Ergebnis = 12.5;
  EXPECT_DOUBLE_EQ(Sheet(k004, {kept}).sum, 12.5);
}

TEST(RebSettings, RoundedLinesAddUpToWhatTheyShowAndTheVersionPicksTheVariant) {
  TestCatalogue catalogue;
  TRebSettings settings;
  settings.zeilen_runden = true;
  settings.version = TRebVersion::k23004;
  auto interpreter = CreateRebFormelInterpreter(catalogue, settings);
  EXPECT_EQ(interpreter->Version(), k004);
  std::vector<TRebLine> lines = {Line("", "1,2345="), Line("", "1,2344=", ' ', 1, '-')};
  const TRebSheetOutcome sheet = EvaluateRebLines(*interpreter, lines);
  EXPECT_DOUBLE_EQ(sheet.lines[0].result, 1.235);  // halves away from zero
  EXPECT_DOUBLE_EQ(sheet.lines[1].result, -1.234);
  EXPECT_NEAR(sheet.sum, 0.001, 1e-12);
}

TEST(RebProtocol, AnExpressionThatFailsGivesOneLineNamingItsPosition) {
  TestCatalogue catalogue;
  auto interpreter = CoREB003FormelInterpreter::Create(catalogue);
  std::vector<TRebLine> lines = {Line("0", "2="), Line("0", "#0101*2="), Line("4", "1|2|3")};
  std::vector<std::string> protocol;
  EvaluateRebLines(*interpreter, lines, {},
                   [&](const std::string& line) { protocol.push_back(line); });
  EXPECT_EQ(protocol,
            (std::vector<std::string>{"Eine Variable hat keinen Wert in Zeile 2: #0101*2="}));
}

TEST(RebAnsatzRecord, AStoredLineIsReadAsTheInterpreterSeesIt) {
  t_RebAnsatz_2900 record{};
  TRebLine line = Line("1", "4|3|2");
  line.Adresse = "000102";
  line.Erlaeuterung = "Giebel Süd";
  ASSERT_TRUE(StoreRebLine(line, record));
  record.KZ = '\0';  // a mark never written reads as blank
  const TRebLine read = RebLineOf(record);
  EXPECT_EQ(read.KZ, ' ');
  EXPECT_EQ(read.Formel, "4|3|2");
  EXPECT_EQ(read.Adresse, "000102");
  EXPECT_EQ(read.Erlaeuterung, "Giebel Süd");
  EXPECT_DOUBLE_EQ(Sheet(k003, {read}).sum, 12);
  // The formula text has 70 bytes; what is longer is cut and said so.
  EXPECT_FALSE(StoreRebLine(Line("0", std::string(71, '1')), record));
  EXPECT_EQ(RebLineOf(record).Formel, std::string(70, '1'));
}

}  // namespace
}  // namespace korvan::formula
