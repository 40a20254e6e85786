#include "data/config/number_pattern.h"

#include <gtest/gtest.h>

#include <climits>

#include "data/config/config_error.h"

namespace korvan::data {
namespace {

TEST(NumberPattern, ExpandsEveryPlaceholder) {
  NumberPatternInputs inputs;
  inputs.date = 20240307;
  inputs.running_number = 7;
  inputs.counter = 41;
  inputs.project_counter = 99999;
  const auto text = [&](std::string_view pattern) {
    return ExpandNumberPattern(pattern, inputs).text;
  };

  // The default patterns of contracts, invoices and projects.
  auto contract = ExpandNumberPattern("{*LNR*}-{*MM*}-{*JJJJ*}", inputs);
  EXPECT_EQ(contract.text, "7-03-2024");
  EXPECT_FALSE(contract.counter_advanced || contract.project_counter_advanced);
  auto invoice = ExpandNumberPattern("{*%5.5+*}-{*MM*}-{*JJJJ*}", inputs);
  EXPECT_EQ(invoice.text, "00042-03-2024");
  EXPECT_TRUE(invoice.counter_advanced && !invoice.project_counter_advanced);
  auto project = ExpandNumberPattern("{*JJJJ*}-{*MM*}-{*&5.5+*}", inputs);
  EXPECT_EQ(project.text, "2024-03-100000");  // more digits than asked for are kept
  EXPECT_TRUE(project.project_counter_advanced && !project.counter_advanced);

  // Without "+" the last value is shown and nothing advances; width pads with blanks.
  auto plain = ExpandNumberPattern("R{*%8.3*}/{*&*}/{*%*}", inputs);
  EXPECT_EQ(plain.text, "R     041/99999/41");
  EXPECT_FALSE(plain.counter_advanced || plain.project_counter_advanced);

  // Names in either case, literal text around and between, repeated "+" share one value.
  EXPECT_EQ(text("V {*lnr*}*} {*jjjj*}{*mm*} {*%3+*}{*%.4+*}"), "V 7*} 202403  420042");
  EXPECT_EQ(text(""), "");
  inputs.date = 99991231;
  EXPECT_EQ(text("{*MM*}.{*JJJJ*}"), "12.9999");
  inputs.date = 5000101;  // year 500
  EXPECT_EQ(text("{*JJJJ*}"), "0500");
}

TEST(NumberPattern, RejectsWhatCannotBeExpanded) {
  NumberPatternInputs inputs;
  inputs.date = 20240307;
  auto message = [&](std::string_view pattern) {
    try {
      ExpandNumberPattern(pattern, inputs);
    } catch (const EAvaConfigError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_NE(message("A-{*LNR").find("\"A-{*LNR\""), std::string::npos);
  EXPECT_NE(message("{*XY*}").find("{*XY*}"), std::string::npos);
  for (const char* pattern : {"{**}", "{*%5.*}", "{*%-5*}", "{*%21*}", "{*%5+x*}"}) {
    EXPECT_NE(message(pattern).find("unbekannter Platzhalter"), std::string::npos) << pattern;
  }
  EXPECT_EQ(message("{*%20.20*}"), "no error");

  inputs.date = 0;
  EXPECT_NE(message("{*MM*}").find("Datum"), std::string::npos);
  EXPECT_EQ(message("{*LNR*}"), "no error");  // no date needed
  inputs.date = 20241301;
  EXPECT_NE(message("{*JJJJ*}").find("20241301"), std::string::npos);
  inputs.counter = INT32_MAX;
  EXPECT_NE(message("{*%5+*}").find("Höchstwert"), std::string::npos);
  EXPECT_EQ(message("{*%5*}"), "no error");
}

}  // namespace
}  // namespace korvan::data
