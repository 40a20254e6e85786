#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "formula/language/formel_errors.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_obj.h"

namespace korvan::formula {
namespace {

// One line of the language: the formula and either its value or its error code.
struct Case {
  const char* formula;
  double value;
  int error = 0;
};

void ExpectCases(const std::vector<Case>& cases, bool gon = false) {
  for (const Case& c : cases) {
    TFormelObj formula = gon ? TFormelObj::CreateNeugrad() : TFormelObj();
    formula.SetFormel(c.formula);
    int error = -1;
    const double value = formula.GetResult(error);
    EXPECT_EQ(error, c.error) << c.formula;
    EXPECT_NEAR(value, c.value, 1e-9) << c.formula;
  }
}

TEST(FormelLanguage, NumbersSignsAndConstants) {
  ExpectCases({
      {"3,50*2,10=", 7.35},
      {"1.250,5+0,5", 1251},
      {",5*4", 2},
      {"-3+5", 2},
      {"2*-3", -6},
      {"2 -3", -1},
      {"-PI", -3.141592653589793},
      {"E§", 2.71828182845},
      {"EPSILON", 1e-11},
      {"2.5", 0, kFormelBadNumber},
      {"1,2,3", 0, kFormelBadNumber},
      {"", 0},
      {"4 {Wandfläche {innen}} *2", 8},
      {"3*2= {Kommentar}", 6},
  });
}

TEST(FormelLanguage, ArithmeticAndPrecedence) {
  ExpectCases({
      {"2*3+4=", 10},
      {"2+3*4", 14},
      {"(12,4+3,1)*0,24", 3.72},
      {"10-4-3", 3},
      {"2^3^2", 64},
      {"2**3", 8},
      {"(-2)^2", 0, kFormelPowerBase},
      {"0^2", 0, kFormelPowerBase},
      {"10/0", 0},
      {"10/4", 2.5},
      {"3*()", 0},
      {"50%", 0.5},
      {"200*10%", 20},
      {"((((2))))", 2},
  });
}

TEST(FormelLanguage, WholeDivisionAndModulo) {
  ExpectCases({
      {"7\\2", 4},
      {"-7\\2", -2},
      {"6\\3", 2},
      {"7 DIV 2", 4},
      {"10\\0", 0, kFormelDivisionByZero},
      {"7 MOD 2", -1},
      {"6 MOD 3", 0},
      {"7 MOD 2,5", 0, kFormelNotWhole},
  });
}

TEST(FormelLanguage, Functions) {
  ExpectCases({
      {"LOG(100)", 0},
      {"LN(E§)", 0.9999999999966724},
      {"LN(0)", 0, kFormelLogarithm},
      {"LG(2)", 100},
      {"LG(-1)", 0, kFormelLogarithm},
      {"EEX(3)", 1000},
      {"SQRT(16)+WRZ(9)", 7},
      {"SQR(3)+QUA(2)", 13},
      {"SQR 3+1", 10},
      {"INT(2,3)", 3},
      {"INT(-2,3)", -1},
      {"INT(4)", 4},
      {"TRUNC(-2,7)", -2},
      {"ROUND(2,5)+ROUND(-2,5)", 0},
      {"ROUND(2,4)", 2},
      {"CEIL(2,1)+FLOOR(-2,1)", 0},
      {"ABS(-3)", 3},
      {"ROUNDK(2,345;2)", 2.35},
      {"ROUNDK(2,344;2)*2", 4.68},
      {"DEG(PI)", 180},
      {"SQRT(-4)", 0, kFormelOutOfRange},
      {"EXP(1000)", 0, kFormelOutOfRange},
      {"-SQR(3)", -9},
  });
}

TEST(FormelLanguage, AnglesInDegreesGonAndRadians) {
  ExpectCases({
      {"SIN(90)", 1},
      {"COS(60)", 0.5},
      {"TAN(45)", 1},
      {"TAN(90)", 0, kFormelTangent},
      {"COT(90)", 0, kFormelTangent},
      {"SIN(RAD(90))", 1},
      {"RAD(180)", 3.141592653589793},
  });
  ExpectCases({{"SIN(90)", 0.98768834059513777}, {"SIN(100)", 1}, {"SIN(RAD(90))", 1}}, true);
}

TEST(FormelLanguage, ComparisonsLogicAndIf) {
  ExpectCases({
      {"IF(2>1;10;20)", 10},
      {"IF(0;10;20)", 20},
      {"IF(EPSILON/10;10;20)", 10},
      {"IF(1=1,000000000001;10;20)", 10},
      {"3>2 AND 1<2", 1},
      {"3<2 OR 0", 0},
      {"2=2+1", 0},
      {"IF(1;2)", 0, kFormelStuck},
      {"IF(1>;2;3)", 0},
      {"2+IF(3>4;1;2+3)*2", 12},
  });
}

TEST(FormelLanguage, SyntaxErrors) {
  ExpectCases({
      {"(2+3", 0, kFormelOneOpen},
      {"((2+3", 0, kFormelManyOpen},
      {"2+3)", 0, kFormelOneSurplusClose},
      {"2+3))", 0, kFormelManySurplusClose},
      {"2*/3", 0, kFormelOperatorAfterOperator},
      {"2*-(3)", 0, kFormelOperatorAfterOperator},
      {"2*3==", 0, kFormelOperatorAtEnd},
      {"2*SIN", 0, kFormelOperatorAtEnd},
      {"*3", 0},
      {"2 3", 0, kFormelStuck},
      {";", 0, kFormelNoValueLeft},
      {"A*2", 0, kFormelUnknownVariable},
      {std::string(128, 'A').c_str(), 0, kFormelTokenTooLong},
      {std::string(127, 'A').c_str(), 0, kFormelUnknownVariable},
  });
}

TEST(FormelLanguage, VariablesTakeTheirValuesAndSigns) {
  TFormelObj formula;
  formula.SetFormel("Breite*-Höhe+breite");
  EXPECT_EQ(formula.Unknowns(), (std::vector<std::string>{"BREITE", "HÖHE"}));
  formula.SetVariable("breite", 2.5);
  formula.SetVariable("HöHE", 4);
  int error = -1;
  EXPECT_DOUBLE_EQ(formula.GetResult(error), -7.5);
  EXPECT_EQ(error, 0);
}

TEST(FormelLanguage, AnErrorClearsTheFormula) {
  TFormelObj formula;
  formula.SetFormel("10\\0");
  int error = 0;
  formula.GetResult(error);
  EXPECT_EQ(error, kFormelDivisionByZero);
  EXPECT_EQ(formula.GetFormel(), "");
  EXPECT_EQ(TFormelObj::GetFehler(9121), "Ganzzahlige Division durch 0");
  EXPECT_EQ(TFormelObj::GetFehler(9127), "unbekannter Fehler");
  EXPECT_EQ(FehlerTextNr(9126), 46870);
}

// A small reference evaluator for +, -, * and parentheses over whole numbers, written
// with recursion the usual way, against which random formulas are checked.
class Reference {
 public:
  explicit Reference(const std::string& text) : text_(text) {}
  double Sum() {
    double value = Product();
    while (pos_ < text_.size() && (text_[pos_] == '+' || text_[pos_] == '-')) {
      const char op = text_[pos_++];
      const double right = Product();
      value = op == '+' ? value + right : value - right;
    }
    return value;
  }

 private:
  double Product() {
    double value = Factor();
    while (pos_ < text_.size() && text_[pos_] == '*') {
      ++pos_;
      value *= Factor();
    }
    return value;
  }
  double Factor() {
    if (text_[pos_] == '(') {
      ++pos_;
      const double value = Sum();
      ++pos_;  // ")"
      return value;
    }
    double value = 0;
    while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
      value = value * 10 + (text_[pos_++] - '0');
    }
    return value;
  }
  const std::string& text_;
  size_t pos_ = 0;
};

std::string RandomFormula(std::mt19937& random, int depth) {
  std::uniform_int_distribution<int> pick(0, 9);
  if (depth == 0 || pick(random) < 3) return std::to_string(pick(random) + 1);
  const char ops[] = {'+', '-', '*'};
  std::string text =
      RandomFormula(random, depth - 1) + ops[pick(random) % 3] + RandomFormula(random, depth - 1);
  return pick(random) < 4 ? "(" + text + ")" : text;
}

TEST(FormelLanguage, RandomArithmeticAgreesWithAReferenceEvaluator) {
  std::mt19937 random(20);
  for (int i = 0; i < 2000; ++i) {
    const std::string text = RandomFormula(random, 5);
    TFormelObj formula;
    formula.SetFormel(text + "=");
    int error = -1;
    const double value = formula.GetResult(error);
    ASSERT_EQ(error, 0) << text;
    ASSERT_DOUBLE_EQ(value, Reference(text).Sum()) << text;
  }
}

TEST(FormelLanguage, SimplifyFoldsWhatNoVariableChanges) {
  struct Folding {
    const char* formula;
    const char* simplified;
  };
  const std::vector<Folding> cases = {
      {"2*3+B", "6+B"},
      {"B+2*3", "B+6"},
      {"B-2+3", "B-2+3"},  // (B-2)+3 is not B+1 in floating point
      {"(2+3)*4", "20"},
      {"SQRT(SQR(3)+16)*B", "5*B"},
      {"IF(1>2;B;3*4)", "IF(0;B;12)"},
      {"ROUNDK(2,345;2)+B", "2,35+B"},
      {"50%*B", "0,5*B"},
      {"2^B*3", "2^B*3"},
      {"(1\\0)+B", "(1\\0)+B"},  // the error stays to be reported
  };
  for (const Folding& c : cases) {
    TFormelObj formula;
    formula.SetFormel(c.formula);
    formula.Simplify();
    EXPECT_EQ(formula.GetFormel(), c.simplified) << c.formula;
  }
}

TEST(FormelLanguage, SimplifiedRandomFormulasKeepTheirValueToTheLastBit) {
  std::mt19937 random(7);
  for (int i = 0; i < 1000; ++i) {
    std::string text = RandomFormula(random, 5);
    for (char& c : text) {
      if (c == '7') c = 'B';
    }
    TFormelObj whole;
    whole.SetFormel(text);
    whole.SetVariable("B", 0.7);
    TFormelObj simplified = whole;
    simplified.Simplify();
    int error = -1;
    const double expected = whole.GetResult(error);
    ASSERT_EQ(error, 0) << text;
    ASSERT_EQ(simplified.GetResult(error), expected) << text;
  }
}

TEST(FormelLanguage, VariablesAreListedAndExchangedForTheirValues) {
  TFormelObj formula;
  formula.SetFormel("Breite*-Höhe+Breite*Tiefe");
  formula.SetVariable("Breite", 2);
  formula.SetVariable("Höhe", 1.5);
  std::vector<std::string> names;
  for (std::string name; names.empty() ? formula.GetFirstVar(name) : formula.GetNextVar(name);) {
    names.push_back(name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"BREITE", "HÖHE", "TIEFE"}));
  EXPECT_EQ(formula.ExchangeVar(), 3);
  EXPECT_EQ(formula.GetFormel(), "2*-1,5+2*TIEFE");
  formula.SetFormelCol(4);
  EXPECT_EQ(formula.GetFormelCol(), 4);
}

TEST(FormelLanguage, LongAndDeepInputAnswersWithoutRecursion) {
  std::string deep(50000, '(');
  deep += "1" + std::string(50000, ')');
  TFormelObj formula;
  formula.SetFormel(deep);
  int error = -1;
  EXPECT_DOUBLE_EQ(formula.GetResult(error), 1);
  std::string sum = "1";
  for (int i = 0; i < 50000; ++i) sum += "+1";
  formula.SetFormel(sum + "*2");
  EXPECT_DOUBLE_EQ(formula.GetResult(error), 50002);
  // Simplify too goes through in one pass (quadratic work would take minutes here).
  formula.SetFormel(std::string(10000, '(') + "2*3" + std::string(10000, ')'));
  formula.Simplify();
  EXPECT_EQ(formula.GetFormel(), "6");
  formula.SetFormel(sum.substr(0, 20001) + "+B");
  formula.Simplify();
  EXPECT_EQ(formula.GetFormel(), "10001+B");
}

TEST(FormelNumber, PrintsWithADecimalComma) {
  EXPECT_EQ(FormatFormelNumber(10), "10");
  EXPECT_EQ(FormatFormelNumber(7.35), "7,35");
  EXPECT_EQ(FormatFormelNumber(-0.0), "0");
  EXPECT_EQ(FormatFormelNumber(0.1 + 0.2), "0,3");
}

}  // namespace
}  // namespace korvan::formula
