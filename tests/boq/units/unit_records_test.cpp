#include <gtest/gtest.h>

#include "boq/units/unit_record.h"

namespace korvan::boq {
namespace {

TEST(UnitRecords, DamagedValFormatBytesReadAsNone) {
  EXPECT_EQ(DecodeValFormat(2), TValFormat::vfFtIn64);
  EXPECT_EQ(DecodeValFormat(200), TValFormat::vfNONE);
}

}  // namespace
}  // namespace korvan::boq
