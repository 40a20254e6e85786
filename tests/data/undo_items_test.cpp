#include <gtest/gtest.h>

#include "data/undo_items.h"
#include "data/undo_stream.h"
#include "undo_test_support.h"

namespace korvan::data {
namespace {

using testing::MakeImage;

std::vector<uint8_t> Saved(const TCustomUndoRedoItem& item) {
  TUndoWriter out;
  item.SaveToStream(out);
  return out.Bytes();
}

TEST(UndoText, Utf16RoundTripKeepsEveryPathByte) {
  const std::string samples[] = {"",
                                 "C:/Daten/Bürogebäude/DB_Stamm.QE",
                                 "Straße €",
                                 "\xF0\x9F\x8F\x97 crane",
                                 "raw \xFF\xFE bytes \xC3",
                                 "\xE2\x82"};
  for (const std::string& text : samples) {
    EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text) << text;
  }
  EXPECT_EQ(Utf8ToUtf16("Bü€"), std::u16string(u"Bü€"));
  EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x8F\x97").size(), 2u);  // a surrogate pair
  EXPECT_EQ(Crc32(std::vector<uint8_t>{'1', '2', '3', '4', '5', '6', '7', '8', '9'}), 0xCBF43926u);
}

TEST(UndoItems, RecordItemStreamFormHasFieldsInOrder) {
  const std::vector<uint8_t> before = MakeImage('W', 7, {1, 2});
  const std::vector<uint8_t> after = MakeImage('W', 7, {3, 4, 5});
  const TDBUndoRedoItem item({"C:/Bü", 'E', 'W', 61}, before, after);
  const std::vector<uint8_t> bytes = Saved(item);

  size_t at = 0;
  const auto u32 = [&] {
    const uint32_t v =
        bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | uint32_t{bytes[at + 3]} << 24;
    at += 4;
    return v;
  };
  EXPECT_EQ(bytes[at++], 0);  // undo item
  EXPECT_EQ(bytes[at++], 'W');
  EXPECT_EQ(bytes[at++], 'E');
  ASSERT_EQ(u32(), 5u);  // characters of the path
  const char16_t path[] = u"C:/Bü";
  for (int i = 0; i < 5; ++i, at += 2) EXPECT_EQ(bytes[at] | bytes[at + 1] << 8, path[i]);
  EXPECT_EQ(u32(), 61u);
  ASSERT_EQ(u32(), after.size());
  EXPECT_TRUE(std::equal(after.begin(), after.end(), bytes.begin() + static_cast<long>(at)));
  at += after.size();
  ASSERT_EQ(u32(), before.size());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), bytes.begin() + static_cast<long>(at)));
  EXPECT_EQ(at + before.size(), bytes.size());

  TUndoReader in(bytes, "item");
  auto loaded = LoadUndoRedoItem(TStackEntryKind::kRecord, in);
  const auto& record = dynamic_cast<const TDBUndoRedoItem&>(*loaded);
  EXPECT_EQ(record.Before(), before);
  EXPECT_EQ(record.After(), after);
  EXPECT_EQ(record.Target().db_file, "C:/Bü");
  EXPECT_EQ(record.Target().static_len, 61);
}

TEST(UndoItems, StartAndRowItemsRoundTrip) {
  TStartItem start(4711, TOperationKind::okPaste, "Einfügen Position 01.02");
  start.SetTag(3);
  start.SetReloadAll(true);
  start.AddCounterInfo('E', 'W', TRecordChange::kInsert);
  start.AddCounterInfo('E', 'W', TRecordChange::kInsert);
  start.AddCounterInfo('E', 'X', TRecordChange::kDelete);
  ASSERT_EQ(start.GetCounterItems().size(), 2u);
  EXPECT_EQ(start.GetCounterItems()[0].counters, (TCounterItem{2, 0, 0}));
  TUndoWriter out;
  start.SaveToStream(out);
  TUndoReader in(out.Bytes(), "start");
  TStartItem loaded;
  loaded.LoadFromStream(in);
  EXPECT_TRUE(in.AtEnd());
  EXPECT_EQ(loaded, start);

  TCDataUndoRedoItem rows(12);
  rows.AddMove(3, 1);
  rows.AddDelete("01.02.0030", 5);
  const std::vector<uint8_t> bytes = Saved(rows);
  TUndoReader rows_in(bytes, "rows");
  auto copy = LoadUndoRedoItem(TStackEntryKind::kCData, rows_in);
  const auto& back = dynamic_cast<const TCDataUndoRedoItem&>(*copy);
  EXPECT_EQ(back.CDataId(), 12);
  ASSERT_EQ(back.Infos().size(), 2u);
  EXPECT_EQ(back.Infos()[0].move.SourceRow, 3);
  EXPECT_EQ(back.Infos()[1].deleted.SourceKey, "01.02.0030");
  EXPECT_EQ(back.Infos()[1].deleted.SourceRow, 5);
}

// Every cut and every single damaged byte of an item is either rejected with a message
// or read as some well-formed item; nothing is read beyond the data.
TEST(UndoItems, DamagedItemDataIsRejectedNeverTrusted) {
  const TDBUndoRedoItem item({"/d/DB.QE", 'E', 'W', 52}, MakeImage('W', 1, {9}),
                             MakeImage('W', 1, {8}));
  const std::vector<uint8_t> bytes = Saved(item);
  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    std::vector<uint8_t> part(bytes.begin(), bytes.begin() + static_cast<long>(cut));
    TUndoReader in(part, "cut item");
    EXPECT_THROW(LoadUndoRedoItem(TStackEntryKind::kRecord, in), UndoJournalError) << cut;
  }
  std::vector<uint8_t> longer = bytes;
  longer.push_back(0);
  TUndoReader in_longer(longer, "long item");
  EXPECT_THROW(LoadUndoRedoItem(TStackEntryKind::kRecord, in_longer), UndoJournalError);

  int rejected = 0;
  for (size_t at = 0; at < bytes.size(); ++at) {
    std::vector<uint8_t> damaged = bytes;
    damaged[at] ^= 0xA5;
    TUndoReader in(damaged, "damaged item");
    try {
      LoadUndoRedoItem(TStackEntryKind::kRecord, in);
    } catch (const UndoJournalError& error) {
      EXPECT_NE(std::string(error.what()).find("damaged item"), std::string::npos);
      ++rejected;
    }
  }
  EXPECT_GT(rejected, 10);  // all lengths, kinds and type letters are checked

  std::vector<uint8_t> wrong_type = bytes;
  wrong_type[1] = 'Q';  // the table letter no longer matches the images
  TUndoReader in_wrong(wrong_type, "item");
  EXPECT_THROW(LoadUndoRedoItem(TStackEntryKind::kRecord, in_wrong), UndoJournalError);
}

}  // namespace
}  // namespace korvan::data
