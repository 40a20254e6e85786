#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>

#include "data/component/c_data.h"
#include "data/component/c_data_registry.h"
#include "data/component/c_data_test_module.h"
#include "data/undo/undo_redo.h"
#include "storage/record_header.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::FakeModule;
using Keys = std::vector<std::string>;
using Records = std::map<std::string, TStringList>;

// The fake modules' records as journaled tables, found by their database path: every
// change is reported to the undo journal as a record image (header, then key and values
// separated by '|'), and the journal writes images back through RestoreRecord.
class JournaledTables : public RecordRestorer {
 public:
  explicit JournaledTables(TUndoRedo& journal) : journal_(journal) {}

  void Attach(const std::string& db_file, FakeModule& module) {
    tables_[db_file] = &module.records;
    module.on_record_change = [this, db_file](const std::string& key, const TStringList* before,
                                              const TStringList* after) {
      const TableTarget table{db_file, 'E', 'Z', 0};
      if (before == nullptr) {
        journal_.RecordInserted(table, Image(key, *after));
      } else if (after == nullptr) {
        journal_.RecordDeleted(table, Image(key, *before));
      } else {
        journal_.RecordUpdated(table, Image(key, *before), Image(key, *after));
      }
    };
  }
  void Detach(const std::string& db_file) { tables_.erase(db_file); }

  int RestoreRecord(const TableTarget& target, JournalImage expected, JournalImage image,
                    std::string& error) override {
    const auto table = tables_.find(target.db_file);
    if (table == tables_.end()) {
      error = "no table " + target.db_file;
      return kUndoNoTarget;
    }
    Records& records = *table->second;
    const auto [key, expected_values] = Parse(expected.empty() ? image : expected);
    const auto stored = records.find(key);
    if (expected.empty() ? stored != records.end()
                         : stored == records.end() || stored->second != expected_values) {
      error = "record " + key + " changed meanwhile";
      return kUndoConflict;
    }
    if (image.empty()) {
      records.erase(key);
    } else {
      records[key] = Parse(image).second;
    }
    return kUndoOk;
  }

 private:
  static std::vector<uint8_t> Image(const std::string& key, const TStringList& values) {
    std::string text = key;
    for (const std::string& value : values) text += "|" + value;
    std::vector<uint8_t> image(static_cast<size_t>(storage::kRecordHeaderSize));
    image.insert(image.end(), text.begin(), text.end());
    storage::TDbRecordHeader header{};
    header.RecLen = static_cast<int32_t>(image.size());
    header.RecTyp = 'Z';
    std::memcpy(image.data(), &header, sizeof header);
    return image;
  }
  static std::pair<std::string, TStringList> Parse(JournalImage image) {
    std::vector<std::string> texts(1);
    for (size_t at = static_cast<size_t>(storage::kRecordHeaderSize); at < image.size(); ++at) {
      if (image[at] == '|') {
        texts.emplace_back();
      } else {
        texts.back() += static_cast<char>(image[at]);
      }
    }
    return {texts.front(), TStringList(texts.begin() + 1, texts.end())};
  }

  TUndoRedo& journal_;
  std::map<std::string, Records*> tables_;
};

// What a list and its table look like: the row keys in order, what each row shows, and
// the records.
struct ListState {
  Keys keys;
  std::vector<TStringList> shown;
  Records records;
  bool operator==(const ListState&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ListState& state) {
  out << "rows";
  for (const std::string& key : state.keys) out << " " << (key.empty() ? "-" : key);
  out << "; records";
  for (const auto& [key, values] : state.records) out << " " << key << "=" << values.at(0);
  return out;
}

// One list with its module and journaled records, entered in a registry.
struct LiveList {
  LiveList(JournaledTables& tables, UserActionScope& actions, TCDataRegistry& registry,
           TCDataClipboard& clipboard, int id)
      : module(cdata), db_file("/daten/Liste" + std::to_string(id) + ".QE"), tables(tables) {
    tables.Attach(db_file, module);
    cdata.FC_ID = id;
    cdata.FC_letIdDrop = "7,8";
    cdata.FDatenName = "Liste" + std::to_string(id);
    cdata.SetStruktur(
        {"Name,N,0,100,20,N,0,1,1,0,0,,0,1,47204", "Wert,R,1,80,10,N,2,1,1,0,0,,0,1,47105"});
    cdata.SetUndoJournal(&actions);
    cdata.SetRegistry(&registry);
    cdata.SetClipboard(&clipboard);
  }
  ~LiveList() { tables.Detach(db_file); }

  void Fill(const Keys& keys) {
    for (size_t i = 0; i < keys.size(); ++i) {
      module.Add(keys[i], {"Name " + keys[i], std::to_string((i * 7) % 5)});
    }
    EXPECT_EQ(cdata.ListOperation(0, loInit), TListOpResult::Done);
  }
  ListState State() {
    ListState state{module.RowKeys(), {}, module.records};
    for (int z = 1; z <= cdata.GetRmax(); ++z) state.shown.push_back(cdata.Data2Screen(z));
    return state;
  }
  void Mark(const std::vector<int>& rows) {
    for (int z = 1; z <= cdata.GetRmax(); ++z) cdata.GetR(z).Markiert = false;
    for (int z : rows) cdata.GetR(z).Markiert = true;
  }

  TCData cdata;
  FakeModule module;
  std::string db_file;
  JournaledTables& tables;
};

class CDataUndoRowsTest : public ::testing::Test {
 protected:
  CDataUndoRowsTest() {
    undo.SetRecordRestorer(&tables);
    undo.SetRowRestorer(&registry);
    list.Fill({"A", "B", "C", "D", "E", "F"});
  }

  // Takes the newest step back, or makes it again, and lets the lists read their rows.
  void Undo() {
    const TUndoOutcome outcome = undo.PopUndo();
    ASSERT_TRUE(outcome.ok()) << outcome.error;
    registry.AfterUndoRedo(outcome);
  }
  void Redo() {
    const TUndoOutcome outcome = undo.PopRedo();
    ASSERT_TRUE(outcome.ok()) << outcome.error;
    registry.AfterUndoRedo(outcome);
  }
  // Undo gives back `before`, redo `after`, and so again.
  void ExpectUndoAndRedo(const ListState& before, const ListState& after) {
    for (int round = 0; round < 2; ++round) {
      Undo();
      ASSERT_EQ(list.State(), before) << "undo, round " << round;
      Redo();
      ASSERT_EQ(list.State(), after) << "redo, round " << round;
    }
  }

  korvan::testing::TempDir dir;
  TUndoRedo undo{dir.path().string()};
  TCDataUndoJournal actions{undo};
  TCDataRegistry registry;
  TCDataClipboard clipboard;
  JournaledTables tables{undo};
  LiveList list{tables, actions, registry, clipboard, 7};
};

TEST_F(CDataUndoRowsTest, DeletedAndNewRowsAreTakenBackWhereTheyWere) {
  // A block of scattered rows, deleted from the bottom: each row goes back to its place,
  // marked as it was; a locked row stays in the list.
  ListState before = list.State();
  list.Mark({1, 3, 4, 5});
  list.cdata.GetR(4).Locked = true;
  ASSERT_EQ(list.cdata.ListOperation(1, loDeleteBlock), TListOpResult::Done);
  ListState after = list.State();
  ASSERT_EQ(after.keys, (Keys{"B", "D", "F"}));
  ExpectUndoAndRedo(before, after);
  Undo();
  EXPECT_TRUE(list.cdata.GetMarkiert(1));
  EXPECT_FALSE(list.cdata.GetMarkiert(2));
  EXPECT_TRUE(list.cdata.GetMarkiert(5));
  EXPECT_EQ(list.cdata.GetZArt(3), 'P');

  // The current row follows the rows put back before it.
  ASSERT_EQ(list.cdata.ListOperation(4, loChangeRecordIndex), TListOpResult::Done);
  list.Mark({1, 2});
  ASSERT_EQ(list.cdata.ListOperation(1, loDeleteBlock), TListOpResult::Done);
  EXPECT_EQ(list.cdata.CurrentRecordIndex(), 2);
  Undo();
  EXPECT_EQ(list.cdata.CurrentRecordIndex(), 4);
  EXPECT_EQ(list.cdata.CurrentRecord(), list.cdata.Data2Screen(4));

  // A new row's first edit gives it its key; undo leaves the empty row it was.
  ASSERT_EQ(list.cdata.ListOperation(2, loInsertRecord), TListOpResult::Done);
  before = list.State();
  ASSERT_EQ(list.cdata.Screen2Data(2, {"Neu", "9"}), TScreen2DataResult::Stored);
  after = list.State();
  ASSERT_EQ(after.keys[1], "K100");
  ExpectUndoAndRedo(before, after);

  // A row comes back before its record does; the list reads it again once the whole step
  // is back, so that it shows the record (here: the kind the module gives a stored row).
  const auto read = list.cdata.Events.C_OnGetDaten;
  list.cdata.Events.C_OnGetDaten = [&, read](TCData& sender, int z, TStringList& t, bool& mark,
                                             char& button, char& kind) {
    read(sender, z, t, mark, button, kind);
    kind = list.module.records.contains(sender.GetKey(z)) ? 'R' : '?';
  };
  ASSERT_EQ(list.cdata.ListOperation(3, loDeleteRecord), TListOpResult::Done);
  const TUndoOutcome outcome = undo.PopUndo();
  ASSERT_TRUE(outcome.ok()) << outcome.error;
  EXPECT_EQ(list.cdata.GetZArt(3), '?');  // read while the record was still missing
  registry.AfterUndoRedo(outcome);
  EXPECT_EQ(list.cdata.GetZArt(3), 'R');
  EXPECT_EQ(list.cdata.GetKey(3), "B");
}

TEST_F(CDataUndoRowsTest, MovedBlocksTakeTheirOrderBack) {
  struct Move {
    std::vector<int> marked;
    int target;
    Keys expected;
  };
  const Move moves[] = {
      {{2, 5}, 1, {"B", "E", "A", "C", "D", "F"}},  // scattered rows to the top
      {{1, 2}, 7, {"A", "C", "D", "F", "B", "E"}},  // a block to the end
      {{2, 6}, 4, {"A", "D", "C", "E", "F", "B"}},  // rows from both sides into the middle
      {{3}, 3, {"A", "D", "C", "E", "F", "B"}},     // a row before itself: no change
  };
  for (const Move& move : moves) {
    const ListState before = list.State();
    list.Mark(move.marked);
    const size_t steps = undo.UndoCaptions().size();
    ASSERT_EQ(list.cdata.ListOperation(move.target, loMoveBlock), TListOpResult::Done);
    const ListState after = list.State();
    ASSERT_EQ(after.keys, move.expected);
    if (after.keys == before.keys) {
      EXPECT_EQ(undo.UndoCaptions().size(), steps);  // nothing moved, nothing to undo
    } else {
      ExpectUndoAndRedo(before, after);
    }
  }
}

TEST_F(CDataUndoRowsTest, CutAndPasteIsTakenBackInBothLists) {
  LiveList second(tables, actions, registry, clipboard, 8);
  second.Fill({"X", "Y"});
  second.module.records["A"] = list.module.records.at("A");  // what its paste handler reads
  const ListState before = list.State();
  const ListState second_before = second.State();
  list.Mark({1, 5});
  ASSERT_EQ(list.cdata.ListOperation(1, loCutBlock), TListOpResult::Done);
  ASSERT_EQ(second.cdata.ListOperation(2, loPaste), TListOpResult::Done);
  EXPECT_EQ(undo.UndoCaptions().back(), "Einfügen");
  const ListState after = list.State();
  const ListState second_after = second.State();
  ASSERT_EQ(after.keys, (Keys{"B", "C", "D", "F"}));
  ASSERT_EQ(second_after.keys, (Keys{"X", "K100", "K101", "Y"}));
  EXPECT_EQ(second.module.records.at("K100"), second.module.records.at("A"));
  for (int round = 0; round < 2; ++round) {
    Undo();
    EXPECT_EQ(list.State(), before);
    EXPECT_EQ(second.State(), second_before);
    Redo();
    EXPECT_EQ(list.State(), after);
    EXPECT_EQ(second.State(), second_after);
  }

  // Closed, the second list is left alone by undo; its rows come from its table.
  second.cdata.SetRegistry(nullptr);
  Undo();
  EXPECT_EQ(list.State(), before);
  EXPECT_EQ(second.State().keys, second_after.keys);
  EXPECT_EQ(second.module.records, second_before.records);
}

TEST_F(CDataUndoRowsTest, RowsThatDoNotFitAreRefusedWithAClearText) {
  std::string error;
  // Rows outside the list and keys that do not match: a code, a text, no change.
  EXPECT_EQ(registry.MoveRow(7, 2, 9, error), kUndoRowMismatch);
  EXPECT_NE(error.find("Liste 7: Zeile 9 gibt es nicht"), std::string::npos) << error;
  EXPECT_EQ(registry.RemoveRow(7, "B", 3, error), kUndoRowMismatch);
  EXPECT_NE(error.find("in Zeile 3 steht der Schlüssel \"C\", nicht \"B\""), std::string::npos)
      << error;
  EXPECT_EQ(registry.RestoreRow(7, "G", 8, error), kUndoRowMismatch);
  EXPECT_NE(error.find("außerhalb"), std::string::npos) << error;
  EXPECT_EQ(registry.RestoreRow(7, std::string(81, 'k'), 1, error), kUndoRowMismatch);
  list.cdata.FLZmax = 6;
  EXPECT_EQ(registry.RestoreRow(7, "G", 7, error), kUndoRowMismatch);
  list.cdata.FLZmax = 16000;
  EXPECT_EQ(list.State().keys, (Keys{"A", "B", "C", "D", "E", "F"}));

  // A list that is not open: its rows are read from the tables when it opens.
  EXPECT_EQ(registry.MoveRow(99, 1, 2, error), kUndoOk);
  EXPECT_EQ(registry.RestoreRow(99, "Q", 1, error), kUndoOk);

  // Two open lists with one id: nobody can say which one the rows belong to.
  {
    LiveList twin(tables, actions, registry, clipboard, 7);
    EXPECT_EQ(registry.Find(7).size(), 2u);
    EXPECT_EQ(registry.MoveRow(7, 1, 2, error), kUndoListAmbiguous);
    EXPECT_NE(error.find("2-mal geöffnet"), std::string::npos) << error;
  }
  EXPECT_EQ(registry.Find(7).size(), 1u);  // the closed list left the registry
  EXPECT_EQ(registry.MoveRow(7, 1, 2, error), kUndoOk);
  EXPECT_EQ(registry.MoveRow(7, 2, 1, error), kUndoOk);

  // A step whose rows changed meanwhile is refused whole: no row, no record changes.
  ASSERT_EQ(list.cdata.ListOperation(6, loDeleteRecord), TListOpResult::Done);
  undo.Lock();  // a change the journal does not see
  ASSERT_EQ(list.cdata.ListOperation(1, loDeleteRecord), TListOpResult::Done);
  undo.UnLock();
  const ListState changed = list.State();
  const TUndoOutcome outcome = undo.PopUndo();
  EXPECT_EQ(outcome.code, kUndoRowMismatch);
  EXPECT_NE(outcome.error.find("Zeile 6"), std::string::npos) << outcome.error;
  EXPECT_EQ(list.State(), changed);
  EXPECT_EQ(undo.UndoCaptions().size(), 1u);

  // A registry that goes first leaves its lists working without it.
  auto early = std::make_unique<TCDataRegistry>();
  LiveList orphan(tables, actions, *early, clipboard, 9);
  early.reset();
  orphan.Fill({"P"});
  EXPECT_EQ(orphan.State().keys, (Keys{"P"}));
}

// Random list operations with undo and redo in between: after every step the rows and
// the records are those the model expects, and undoing everything gives back the start.
TEST_F(CDataUndoRowsTest, RandomOperationsUndoAndRedoFollowTheModel) {
  std::mt19937 random(20240611);
  const auto pick = [&](int count) { return 1 + static_cast<int>(random() % count); };
  const ListState start = list.State();
  ListState model = start;
  std::vector<ListState> undo_models;
  std::vector<ListState> redo_models;
  for (int step = 0; step < 200; ++step) {
    const int rows = list.cdata.GetRmax();
    const int choice = static_cast<int>(random() % 12);
    const size_t steps_before = undo.UndoCaptions().size();
    const ListState before = model;
    std::vector<int> marked;
    for (int z = 1; z <= rows; ++z) {
      if (random() % 3 == 0) marked.push_back(z);
    }
    if (marked.empty() && rows > 0) marked.push_back(pick(rows));
    list.Mark(marked);
    bool user_step = true;
    if (choice < 3 && !(choice < 2 ? undo_models : redo_models).empty()) {
      const bool back = choice < 2;
      back ? Undo() : Redo();
      (back ? redo_models : undo_models).push_back(model);
      model = (back ? undo_models : redo_models).back();
      (back ? undo_models : redo_models).pop_back();
      user_step = false;
    } else if (choice < 4 || rows < 3) {
      list.Mark(marked.size() > 2 ? std::vector<int>(marked.begin(), marked.begin() + 2) : marked);
      ASSERT_EQ(list.cdata.ListOperation(pick(rows + 1), loCopyBlock), TListOpResult::Done);
    } else if (choice < 5) {
      ASSERT_EQ(list.cdata.ListOperation(pick(rows), loDeleteRecord), TListOpResult::Done);
    } else if (choice < 6) {
      if (static_cast<int>(marked.size()) == rows) list.cdata.GetR(marked.front()).Markiert = false;
      ASSERT_EQ(list.cdata.ListOperation(1, loDeleteBlock), TListOpResult::Done);
    } else if (choice < 8) {
      ASSERT_EQ(list.cdata.ListOperation(pick(rows + 1), loMoveBlock), TListOpResult::Done);
    } else if (choice < 9) {
      if (random() % 2 == 0) list.Mark({});
      const TListOpArgs sort{.SortColumn = static_cast<int>(random() % 2),
                             .Descending = random() % 2 == 0};
      ASSERT_EQ(list.cdata.ListOperationEx(0, loSortBlock, sort), TListOpResult::Done);
    } else if (choice < 10) {
      ASSERT_EQ(list.cdata.ListOperation(1, loCutBlock), TListOpResult::Done);
      ASSERT_EQ(list.cdata.ListOperation(pick(rows + 1), loPaste), TListOpResult::Done);
    } else {
      const int z = pick(rows);
      const TStringList values = {"Wert " + std::to_string(step), std::to_string(random() % 9)};
      ASSERT_EQ(list.cdata.Screen2Data(z, values), TScreen2DataResult::Stored);
    }
    if (user_step) {
      model = list.State();
      if (undo.UndoCaptions().size() > steps_before) {
        ASSERT_EQ(undo.UndoCaptions().size(), steps_before + 1) << "step " << step;
        undo_models.push_back(before);
        redo_models.clear();
      } else {
        ASSERT_EQ(model, before) << "step " << step << " changed data without an undo step";
      }
    }
    ASSERT_EQ(list.State(), model) << "step " << step << ", choice " << choice;
  }
  while (!undo_models.empty()) {
    Undo();
    model = undo_models.back();
    undo_models.pop_back();
    ASSERT_EQ(list.State(), model);
  }
  EXPECT_EQ(list.State(), start);
}

}  // namespace
}  // namespace korvan::data
