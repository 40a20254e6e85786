// The JSON reader that the --json tests rely on: it must refuse what is not JSON, or
// those tests could not fail on broken output.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "testing/json_value.h"

namespace korvan::testing {
namespace {

TEST(JsonReader, ReadsValuesAndRefusesWhatIsNotJson) {
  const JsonValue value = ParseJson(
      " {\"a\": [1, -2.5e1, 0.25, true, false, null], \"s\": \"\\u00e4\\ud83d\\ude00\\n\\\"\"} ");
  EXPECT_EQ(value["a"].Items().size(), 6u);
  EXPECT_EQ(value["a"].Items()[1].Number(), -25);
  EXPECT_TRUE(value["a"].Items()[5].IsNull());
  EXPECT_EQ(value["s"].String(), "ä😀\n\"");
  EXPECT_THROW(value["missing"], std::runtime_error);
  EXPECT_THROW(value["s"].Number(), std::runtime_error);

  for (const char* broken :
       {"", "{", "{\"a\": 1,}", "[1 2]", "{\"a\": 1} x", "{'a': 1}", "01", "1.", "-", ".5", "nul",
        "\"open", "\"tab\there\"", "{\"a\": 1, \"a\": 2}", "\"\\ud800\"", "\"\\x\"", "{\"a\" 1}",
        "1,5"}) {
    SCOPED_TRACE(broken);
    EXPECT_THROW(ParseJson(broken), std::runtime_error);
  }
}

}  // namespace
}  // namespace korvan::testing
