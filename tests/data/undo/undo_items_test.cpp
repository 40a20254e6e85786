#include <gtest/gtest.h>

#include "data/undo/undo_items.h"
#include "data/undo/undo_stream.h"
#include "data/undo/undo_test_support.h"

namespace korvan::data {
namespace {

using testing::MakeImage;

std::vector<uint8_t> Saved(const TCustomUndoRedoItem& item) {
  TUndoWriter out;
  item.SaveToStream(out);
  return out.Bytes();
}

TEST(UndoText, Utf16RoundTripKeepsEveryPathByte) {
  for (const std::string text : {"", "C:/Daten/Bürogebäude/DB_Stamm.QE", "\xF0\x9F\x8F\x97 crane",
                                 "raw \xFF\xFE bytes \xC3", "\xE2\x82"}) {
    EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text) << text;
  }
  EXPECT_EQ(Utf8ToUtf16("Bü€\xF0\x9F\x8F\x97"), std::u16string(u"Bü€\U0001F3D7"));
  EXPECT_EQ(Crc32(std::vector<uint8_t>{'1', '2', '3', '4', '5', '6', '7', '8', '9'}), 0xCBF43926u);
}

// The journal files outlive the program run, so the stream form of an item is fixed:
// kind, table letter, database letter, path (UTF-16), static length, after, before.
TEST(UndoItems, RecordItemStreamFormAndRoundTrip) {
  const std::vector<uint8_t> before = MakeImage('W', 7, {1, 2});
  const std::vector<uint8_t> after = MakeImage('W', 7, {3, 4, 5});
  const std::vector<uint8_t> bytes = Saved(TDBUndoRedoItem({"C:/Bü", 'E', 'W', 61}, before, after));
  std::vector<uint8_t> expected = {0, 'W', 'E', 5, 0, 0, 0};
  for (const char16_t c : std::u16string(u"C:/Bü")) {
    expected.insert(expected.end(), {static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8)});
  }
  expected.insert(expected.end(), {61, 0, 0, 0, static_cast<uint8_t>(after.size()), 0, 0, 0});
  expected.insert(expected.end(), after.begin(), after.end());
  expected.insert(expected.end(), {static_cast<uint8_t>(before.size()), 0, 0, 0});
  expected.insert(expected.end(), before.begin(), before.end());
  EXPECT_EQ(bytes, expected);

  TUndoReader in(bytes, "item");
  const auto loaded = LoadUndoRedoItem(TStackEntryKind::kRecord, in);
  const auto& record = dynamic_cast<const TDBUndoRedoItem&>(*loaded);
  EXPECT_EQ(record.Before(), before);
  EXPECT_EQ(record.After(), after);
  EXPECT_EQ(record.Target().db_file, "C:/Bü");

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
  TUndoReader start_in(out.Bytes(), "start");
  TStartItem loaded_start;
  loaded_start.LoadFromStream(start_in);
  EXPECT_TRUE(start_in.AtEnd());
  EXPECT_EQ(loaded_start, start);

  TCDataUndoRedoItem rows(12);
  rows.AddMove(3, 1);
  rows.AddDelete("01.02.0030", 5);
  const std::vector<uint8_t> row_bytes = Saved(rows);
  TUndoReader rows_in(row_bytes, "rows");
  const auto copy = LoadUndoRedoItem(TStackEntryKind::kCData, rows_in);
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
  const std::vector<uint8_t> bytes = Saved(
      TDBUndoRedoItem({"/d/DB.QE", 'E', 'W', 52}, MakeImage('W', 1, {9}), MakeImage('W', 1, {8})));
  const auto load = [](std::vector<uint8_t> data) {
    TUndoReader in(data, "damaged item");
    LoadUndoRedoItem(TStackEntryKind::kRecord, in);
  };
  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    EXPECT_THROW(load({bytes.begin(), bytes.begin() + static_cast<long>(cut)}), UndoJournalError)
        << cut;
  }
  std::vector<uint8_t> changed = bytes;
  changed.push_back(0);
  EXPECT_THROW(load(changed), UndoJournalError);
  changed = bytes;
  changed[1] = 'Q';  // the table letter no longer matches the images
  EXPECT_THROW(load(changed), UndoJournalError);

  int rejected = 0;
  for (size_t at = 0; at < bytes.size(); ++at) {
    changed = bytes;
    changed[at] ^= 0xA5;
    try {
      load(changed);
    } catch (const UndoJournalError& error) {
      EXPECT_NE(std::string(error.what()).find("damaged item"), std::string::npos);
      ++rejected;
    }
  }
  EXPECT_GT(rejected, 10);  // all lengths, kinds and type letters are checked
}

}  // namespace
}  // namespace korvan::data
