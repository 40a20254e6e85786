#include "data/text_catalogue.h"

#include <gtest/gtest.h>

#include "data/column_structure.h"

namespace korvan::data {
namespace {

TEST(TextCatalogue, KnownAndMissingNumbers) {
  const TTextCatalogue& texts = TTextCatalogue::German();
  EXPECT_EQ(texts.cLoadStr(47103), "Währung");
  EXPECT_EQ(texts.cLoadStr(47205), "Einheit");
  EXPECT_EQ(texts.cLoadStr(45506), "Abzug");
  EXPECT_TRUE(texts.Contains(kTextListeSpeichern));
  EXPECT_EQ(texts.cLoadStr(1), "cLoadStr(1) failed");
  EXPECT_EQ(texts.cLoadStr(-3), "cLoadStr(-3) failed");
  EXPECT_FALSE(texts.Contains(99999));
}

}  // namespace
}  // namespace korvan::data
