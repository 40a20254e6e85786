#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "data/short_string.h"

namespace korvan::data {
namespace {

TEST(RecordShortString, StoresAndReadsUtf8ThroughTheCodePage) {
  string10 s;
  std::memset(&s, 0x5A, sizeof s);  // garbage left from an earlier record
  Cp1252Report report;
  const ShortStringStore stored = s.Set("Maß € „x“", &report);
  EXPECT_TRUE(stored.Exact(report));
  EXPECT_EQ(s.length, 9);
  EXPECT_EQ(s.Raw(), "Ma\xDF \x80 \x84x\x93");
  EXPECT_EQ(s.Get(), "Maß € „x“");
  // The bytes after the text are cleared, so equal texts give equal stored bytes.
  EXPECT_EQ(s.chars[9], '\0');

  s.Clear();
  EXPECT_EQ(s.length, 0);
  EXPECT_EQ(s.Get(), "");
}

TEST(RecordShortString, CutsAtCapacityBetweenWholeCharacters) {
  string3 s;
  // "äöüß" is 8 UTF-8 bytes but 4 characters; three whole characters are kept.
  const ShortStringStore stored = s.Set("äöüß");
  EXPECT_TRUE(stored.truncated);
  EXPECT_EQ(stored.stored_chars, 3u);
  EXPECT_EQ(stored.dropped_chars, 1u);
  EXPECT_EQ(s.Get(), "äöü");

  // Exactly N characters is not a truncation.
  const ShortStringStore exact = s.Set("€€€");
  EXPECT_FALSE(exact.truncated);
  EXPECT_EQ(s.Get(), "€€€");

  ShortString<255> longest;
  const std::string text(300, 'x');
  EXPECT_TRUE(longest.Set(text).truncated);
  EXPECT_EQ(longest.length, 255);
  EXPECT_EQ(longest.Get(), std::string(255, 'x'));
}

TEST(RecordShortString, UnmappableCharactersAreStoredAsQuestionMarksAndReported) {
  string10 s;
  Cp1252Report report;
  const ShortStringStore stored = s.Set("Beton C\u2082\u2080", &report);  // subscript digits
  EXPECT_FALSE(stored.Exact(report));
  EXPECT_FALSE(stored.truncated);
  EXPECT_EQ(report.UnmappableCount(), 2);
  EXPECT_EQ(s.Get(), "Beton C??");
}

TEST(RecordShortString, DamagedLengthByteIsClampedToCapacity) {
  // A record read from disk whose length byte exceeds the field: reads stay inside the
  // field (ASan would report an overrun into the guard bytes).
  struct {
    string4 field;
    char guard[4];
  } buffer;
  std::memcpy(&buffer,
              "\xFF"
              "abcdXXXX",
              9);
  EXPECT_FALSE(buffer.field.LengthIsValid());
  EXPECT_EQ(buffer.field.Length(), 4u);
  EXPECT_EQ(buffer.field.Get(), "abcd");

  // Bytes after a valid length are ignored, whatever they hold.
  std::memcpy(&buffer,
              "\x02"
              "ab\x9F\x80",
              5);
  EXPECT_TRUE(buffer.field.LengthIsValid());
  EXPECT_EQ(buffer.field.Get(), "ab");

  string4 same;
  same.Set("ab");
  EXPECT_TRUE(buffer.field == same);  // garbage after the length does not count
  same.Set("ab ");
  EXPECT_FALSE(buffer.field == same);
}

}  // namespace
}  // namespace korvan::data
