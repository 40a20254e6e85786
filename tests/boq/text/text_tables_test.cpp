#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "boq/boq_tables.h"
#include "boq/text/long_text_store.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/rtf_writer.h"
#include "boq/text/tb_texte.h"
#include "boq/text/tb_textzeile.h"
#include "boq/text/text_complement.h"
#include "boq/text/text_conversions.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "data/tables/table_change_journal.h"
#include "data/tables/table_key.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"
#include "testing/temp_dir.h"

namespace korvan::boq {
namespace {

using data::kNullId;

class TextTablesTest : public ::testing::Test {
 protected:
  void SetUp() override { Open(true); }
  void TearDown() override {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  void Open(bool create) {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
    db_ = std::make_unique<data::TStdDb>("DB_Texte", dir_.path().string(), 'C', 45);
    db_->SetMessages(&messages_);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(create ? db_->DbCreate() : db_->DbOpen(), 0);
  }

  int32_t RecordsOf(char table_type) {
    int32_t count = 0;
    EXPECT_EQ(db_->RecordCount(table_type, &count), 0);
    return count;
  }

  korvan::testing::TempDir dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> db_;
};

// A description's long text: umlauts, €, a character outside code page 1252, a table
// and two gaps, one for the client and one for the bidder.
TRichText SampleText() {
  TRichText text;
  text.blocks[0].runs = {{"Außenwand aus Ziegeln, Dicke ", {}, 0},
                         {"", {}, 1},
                         {" cm, Fugen ", {}, 0},
                         {"glatt", {true, false, false}, 2},
                         {" – Preis in € ≥ Ω", {}, 0}};
  TRichBlock row;
  row.row = true;
  row.cells = {{{{"Größe", {}, 0}}, 2000}, {{{"Maß", {false, true, false}, 0}}, 4000}};
  text.blocks.push_back(row);
  text.blocks.emplace_back();
  text.blocks.back().runs = {{"Übrige Ausführung nach Wahl des Bieters.", {}, 0}};
  return text;
}

TTEList SampleComplements() {
  TTEList list;
  TTEItem client{"", kNullId, 1, 'A', kNullId, 1, 0, 0, WriteRtf(RichTextFromPlain("36,5"))};
  TTEItem bidder{
      "", kNullId, 2, 'B', kNullId, 2, 0, 0, WriteRtf(RichTextFromPlain("geschlämmt, weiß 😀"))};
  EXPECT_GE(list.Add(ComplementName(1, 'A'), client), 0);
  EXPECT_GE(list.Add(ComplementName(2, 'B'), bidder), 0);
  return list;
}

TEST_F(TextTablesTest, LongTextWithTableAndComplementsSurvivesStoringAndLoading) {
  const TRichText text = SampleText();
  {
    TLongTextStore store(*db_);
    ASSERT_EQ(store.Store(4711, 'L', 49, WriteRtf(text), SampleComplements()), 0)
        << (messages_.errors.empty() ? "" : messages_.errors.front());
  }
  Open(false);
  TLongTextStore store(*db_);
  const TLongText read = store.Read(4711, 'L', 49);
  ASSERT_TRUE(read.found);
  const TRtfReadResult rich = ReadRtf(read.rich_text);
  EXPECT_TRUE(rich.problems.empty());
  EXPECT_EQ(rich.text, text);
  ASSERT_EQ(read.complements.Count(), 2);
  const TTEItem* bidder = read.complements.GetTE("TB2");
  ASSERT_NE(bidder, nullptr);
  EXPECT_EQ(bidder->start, 2);
  EXPECT_EQ(PlainView(ReadRtf(bidder->text).text), "geschlämmt, weiß 😀");
  EXPECT_EQ(PlainView(ReadRtf(read.complements.GetTE("TA1")->text).text), "36,5");

  EXPECT_FALSE(store.Read(4711, 'L', 44).found);  // another language
  EXPECT_TRUE(store.Read(4711, 'L', 44).rich_text.empty());
}

// The stored rich-text line of a header, bytes as read (header and change time included).
std::vector<uint8_t> StoredLine(data::TStdDb& db, int32_t id_header, char kz_header) {
  TTbTextzeile lines(db);
  if (!lines.GetKey(TTbTextzeile::LineKey(id_header, kz_header, 'R', 1))) return {};
  return lines.CurrentRecord();
}

TEST_F(TextTablesTest, WritingTheSameTextAgainChangesNothing) {
  TLongTextStore store(*db_);
  const std::string rtf = WriteRtf(SampleText());
  ASSERT_EQ(store.Store(1, 'L', 49, rtf, SampleComplements()), 0);
  const int32_t header = store.Read(1, 'L', 49).header_id;
  const std::vector<uint8_t> first = StoredLine(*db_, header, 'T');
  ASSERT_FALSE(first.empty());
  EXPECT_EQ(store.WriteText(header, 'T', rtf), 0);
  ASSERT_EQ(store.Store(1, 'L', 49, rtf, SampleComplements()), 0);
  EXPECT_EQ(StoredLine(*db_, header, 'T'), first);
  EXPECT_EQ(RecordsOf(kTextZeileTableType), 3);
  EXPECT_EQ(RecordsOf(kTextErgHeaderTableType), 2);

  ASSERT_EQ(store.WriteText(header, 'T', "{\\rtf1 neu}"), 0);
  EXPECT_NE(StoredLine(*db_, header, 'T'), first);
  EXPECT_EQ(store.Read(1, 'L', 49).rich_text, "{\\rtf1 neu}");
}

TEST_F(TextTablesTest, LoneCarriageReturnsGetTheirLineFeedWhenStored) {
  EXPECT_EQ(InsertMissingLineFeeds("A\rB"), "A\r\nB");
  EXPECT_EQ(InsertMissingLineFeeds("A\r\nB\r"), "A\r\nB\r\n");
  TLongTextStore store(*db_);
  ASSERT_EQ(store.Store(2, 'L', 49, "A\rB\r", {}), 0);
  EXPECT_EQ(store.Read(2, 'L', 49).rich_text, "A\r\nB\r\n");
}

TEST_F(TextTablesTest, EscapedLineFeedsAreReadAsParagraphs) {
  TLongTextStore store(*db_);
  ASSERT_EQ(store.Store(3, 'L', 49, "{\\rtf1 A\\'0aB \\\\'0a}", {}), 0);
  const std::string read = store.Read(3, 'L', 49).rich_text;
  EXPECT_EQ(read, "{\\rtf1 A\\par\r\nB \\\\'0a}");
  EXPECT_EQ(PlainView(ReadRtf(read).text), "A\nB \\'0a");
}

TEST_F(TextTablesTest, ComplementsNoLongerGivenAreDeletedWithTheirTexts) {
  TLongTextStore store(*db_);
  ASSERT_EQ(store.Store(5, 'L', 49, "{\\rtf1 x}", SampleComplements()), 0);
  TTEList fewer = SampleComplements();
  ASSERT_TRUE(fewer.Delete("TA1"));
  ASSERT_EQ(store.Store(5, 'L', 49, "{\\rtf1 x}", fewer), 0);
  const TLongText read = store.Read(5, 'L', 49);
  ASSERT_EQ(read.complements.Count(), 1);
  EXPECT_EQ(read.complements.GetItem(0).name, "TB2");
  EXPECT_EQ(RecordsOf(kTextErgHeaderTableType), 1);
  EXPECT_EQ(RecordsOf(kTextZeileTableType), 2);  // the text and the one complement text
}

TEST_F(TextTablesTest, DeletingALongTextTakesItsLinesAndComplements) {
  TLongTextStore store(*db_);
  ASSERT_EQ(store.Store(6, 'L', 49, "{\\rtf1 de}", SampleComplements()), 0);
  ASSERT_EQ(store.Store(6, 'L', 44, "{\\rtf1 en}", SampleComplements()), 0);
  ASSERT_EQ(store.Delete(6, 'L', 49), 0);
  EXPECT_FALSE(store.Read(6, 'L', 49).found);
  const TLongText english = store.Read(6, 'L', 44);
  EXPECT_EQ(english.rich_text, "{\\rtf1 en}");
  EXPECT_EQ(english.complements.Count(), 2);
  EXPECT_EQ(RecordsOf(kTextHeaderTableType), 1);
  EXPECT_EQ(RecordsOf(kTextErgHeaderTableType), 2);
  EXPECT_EQ(RecordsOf(kTextZeileTableType), 3);
}

TEST_F(TextTablesTest, TracingWritesEveryTextReadInsertedOrUpdated) {
  korvan::testing::TempDir trace;
  TLongTextStore store(*db_);
  store.SetTraceFolder(trace.path().string() + "/");
  ASSERT_EQ(store.Store(9, 'L', 49, "{\\rtf1 eins}", {}), 0);
  const int32_t header = store.Read(9, 'L', 49).header_id;
  ASSERT_EQ(store.Store(9, 'L', 49, "{\\rtf1 zwei}", {}), 0);
  const auto file = [&](const std::string& name) {
    std::ifstream in(trace.path() / name, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  };
  const std::string id = std::to_string(header);
  EXPECT_EQ(file("AfterInsertLangtext(" + id + ")-T.rtf"), "{\\rtf1 eins}");
  EXPECT_EQ(file("AfterReadLangtext(9)-L.rtf"), "{\\rtf1 eins}");
  EXPECT_EQ(file("AfterUpdateLangtext(" + id + ")-T.rtf"), "{\\rtf1 zwei}");
  EXPECT_TRUE(store.TraceProblems().empty());

  store.SetTraceFolder((trace.path() / "fehlt/").string());
  store.Read(9, 'L', 49);
  ASSERT_EQ(store.TraceProblems().size(), 1u);
  EXPECT_NE(store.TraceProblems()[0].find("AfterReadLangtext(9)-L.rtf"), std::string::npos);
}

TEST_F(TextTablesTest, PlainLinesAreJoinedWhenThereIsNoRichText) {
  TTbTextHeader headers(*db_);
  headers.Rec().Id = 70;
  headers.Rec().IdBezug = 7;
  headers.Rec().IdLang = 49;
  ASSERT_EQ(headers.UpDateRec(), 0);
  TTbTextzeile lines(*db_);
  for (int16_t line : {2, 1}) {
    lines.InitRecord();
    lines.Rec().IdHeader = 70;
    lines.Rec().KzTyp = 'T';
    lines.Rec().Zeile = line;
    lines.SetText(line == 1 ? "erste" : "zweite");
    ASSERT_EQ(lines.UpDateRec(), 0);
  }
  TLongTextStore store(*db_);
  EXPECT_EQ(store.Read(7, 'L', 49).rich_text, "erste\r\nzweite");
}

TEST_F(TextTablesTest, ShortTextLinesKeepTheirOrderAndRefuseWhatCannotBeStored) {
  TTbTexte texts(*db_);
  ASSERT_TRUE(texts.WriteLines(10, 'L', 49, {"Rohbau Haus 3", "Los 2: Mauerarbeiten €"}).Ok());
  EXPECT_EQ(texts.ReadLines(10, 'L', 49),
            (std::vector<std::string>{"Rohbau Haus 3", "Los 2: Mauerarbeiten €"}));
  const TShortTextResult outside = texts.WriteLines(10, 'L', 49, {"neu", "Ω"});
  EXPECT_FALSE(outside.Ok());
  EXPECT_NE(outside.refused.find("Zeile 2"), std::string::npos) << outside.refused;
  const TShortTextResult too_long = texts.WriteLines(10, 'L', 49, {std::string(71, 'x')});
  EXPECT_NE(too_long.refused.find("71 Zeichen"), std::string::npos) << too_long.refused;
  EXPECT_EQ(texts.ReadLines(10, 'L', 49).size(), 2u);  // nothing written
  EXPECT_EQ(TTbTexte::FillLvKey(10), data::KeyNumber(10) + "L");
  ASSERT_EQ(texts.DeleteOwner(10, 'L'), 0);
  EXPECT_TRUE(texts.ReadLines(10, 'L', 49).empty());
}

// Long-text lines are as long as their text; the journal takes them back and makes them
// again whole.
TEST_F(TextTablesTest, StoringALongTextIsOneUndoStep) {
  korvan::testing::TempDir journal_dir;
  data::TUndoRedo journal(journal_dir.path().string());
  data::TTableRegistry tables;
  data::RegisterDataTables(tables);
  RegisterBoqTables(tables);
  data::TTableRecordRestorer restorer(std::vector<data::TStdDb*>{db_.get()}, std::move(tables));
  journal.SetRecordRestorer(&restorer);
  data::ScopedTableChangeObserver observing(&journal);
  TLongTextStore store(*db_);
  const auto step = [&](const std::string& caption, const std::string& rtf) {
    journal.StartTransaction(data::TStartItem(1, data::TOperationKind::okEdit, caption));
    EXPECT_EQ(store.Store(8, 'L', 49, rtf, SampleComplements()), 0);
    journal.EndTransaction();
  };
  const std::string first = WriteRtf(SampleText());
  const std::string second = first + std::string(20000, ' ');
  step("Langtext", first);
  step("Langtext länger", second);
  ASSERT_EQ(journal.UndoCaptions().size(), 2u) << journal.LastError();

  ASSERT_TRUE(journal.PopUndo().ok());
  EXPECT_EQ(store.Read(8, 'L', 49).rich_text, first);
  ASSERT_TRUE(journal.PopUndo().ok());
  EXPECT_FALSE(store.Read(8, 'L', 49).found);
  EXPECT_EQ(RecordsOf(kTextZeileTableType), 0);
  EXPECT_EQ(RecordsOf(kTextErgHeaderTableType), 0);
  ASSERT_TRUE(journal.PopRedo().ok());
  ASSERT_TRUE(journal.PopRedo().ok());
  const TLongText again = store.Read(8, 'L', 49);
  EXPECT_EQ(again.rich_text, second);
  EXPECT_EQ(again.complements.Count(), 2);
}

TEST(TextComplements, AreNamedByKindAndNumberAndUniqueByName) {
  EXPECT_EQ(ComplementName(3, 'A'), "TA3");
  EXPECT_EQ(ComplementName(3, 'B'), "TB3");
  EXPECT_EQ(ComplementName(0, 'A'), "");
  TTEList list;
  EXPECT_EQ(list.Add("TB3"), 0);
  EXPECT_EQ(list.Add("TA3"), 0);  // sorted: TA3 comes first
  EXPECT_EQ(list.Add("TA3"), -1);
  EXPECT_EQ(list.Add(""), -1);
  EXPECT_EQ(list.GetItem(1).name, "TB3");
  EXPECT_TRUE(list.Delete("TA3"));
  EXPECT_FALSE(list.Delete("TA3"));
  EXPECT_EQ(list.GetTE("TA3"), nullptr);
  EXPECT_TRUE(list.Delete(0));
  EXPECT_EQ(list.Count(), 0);
}

TEST(TextConversions, GapMarkersBecomeInternalGapsAndBack) {
  EXPECT_EQ(MarkComplementGaps("Dicke .. cm, Farbe XX, Maß variabel; XXL ...!"),
            "Dicke \xFF\xFF cm, Farbe \xFF\xFF, Maß \xFF\xFF; XXL \xFF\xFF!");
  EXPECT_EQ(UnmarkComplementGaps("Dicke \xFF\xFF cm, Farbe \xFFweiss\xFF"),
            "Dicke .. cm, Farbe weiss");
  const TRichText text = RichTextFromPlainWithGaps("A .. B xx\nC");
  ASSERT_EQ(text.blocks[0].runs.size(), 4u);
  EXPECT_EQ(text.blocks[0].runs[1].complement, 1);
  EXPECT_EQ(text.blocks[0].runs[3].complement, 2);
  EXPECT_EQ(PlainView(text), "A .. B ..\nC");
}

TEST(TextConversions, PlainTextIsWrappedAsRichText) {
  EXPECT_EQ(WrapPlainAsRtf("A\r\nB"), "{\\rtf1\\ A\\par B}");
  EXPECT_EQ(PlainView(ReadRtf(WrapPlainAsRtf("Größe {x}\nÜ 😀")).text), "Größe {x}\nÜ 😀");
}

}  // namespace
}  // namespace korvan::boq
