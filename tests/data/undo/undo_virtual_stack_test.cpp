#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "data/undo/undo_test_support.h"
#include "data/undo/virtual_stack.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

namespace fs = std::filesystem;
using testing::FakeTables;
using testing::MakeImage;

TDBUndoRedoItem RecordItem(int32_t id, std::vector<uint8_t> payload = {}) {
  return TDBUndoRedoItem(FakeTables::Target('W'), {}, MakeImage('W', id, std::move(payload)));
}

int32_t IdOfItem(const TCustomUndoRedoItem& item) {
  return testing::IdOf(dynamic_cast<const TDBUndoRedoItem&>(item).After());
}

TEST(UndoVirtualStack, PushPopAndTransactionsKeepTheirOrder) {
  korvan::testing::TempDir dir;
  TVirtualStack stack(dir.path().string());
  EXPECT_EQ(stack.Pop(), nullptr);
  EXPECT_EQ(stack.LastStartItem(), nullptr);
  stack.StartTransaction(TStartItem(1, TOperationKind::okEdit, "first"));
  stack.StartTransaction(TStartItem(2, TOperationKind::okEdit, "second"));  // reuses the start
  EXPECT_EQ(stack.TransactionCount(), 1);
  stack.Push(RecordItem(10));
  stack.Push(RecordItem(11));
  stack.StartTransaction(TStartItem(3, TOperationKind::okDelete, "third"));
  stack.Push(RecordItem(12));
  EXPECT_EQ(stack.GetTransactions(), (std::vector<std::string>{"third", "second"}));
  EXPECT_EQ(stack.PurePeek(), TStackEntryKind::kRecord);
  EXPECT_EQ(IdOfItem(*stack.Peek()), 12);

  stack.LastStartItem()->AddCounterInfo('E', 'W', TRecordChange::kInsert);
  stack.LastStartItem()->SetReloadAll(true);
  stack.UpdateLastStartItem();
  const TUndoTransaction last = stack.ReadLastTransaction();
  EXPECT_TRUE(last.start.ReloadAll());
  ASSERT_EQ(last.start.GetCounterItems().size(), 1u);
  ASSERT_EQ(last.items.size(), 1u);
  EXPECT_EQ(IdOfItem(*last.items[0]), 12);

  EXPECT_EQ(IdOfItem(*stack.Pop()), 12);
  EXPECT_EQ(stack.Pop(), nullptr);  // the start of "third" ends the items
  EXPECT_TRUE(stack.Normalize());   // an empty start is dropped
  EXPECT_FALSE(stack.Normalize());
  EXPECT_EQ(IdOfItem(*stack.Pop()), 11);
  EXPECT_EQ(IdOfItem(*stack.Pop()), 10);
  EXPECT_EQ(stack.LastStartItem()->Caption(), "second");
  stack.DropLastTransaction();
  EXPECT_TRUE(stack.Empty());
  EXPECT_EQ(fs::file_size(stack.FileName()), 16u);  // popped bytes are cut from the file
}

// A start item that grows or shrinks moves a large tail of items along intact.
TEST(UndoVirtualStack, RewrittenStartItemMovesLargeTails) {
  korvan::testing::TempDir dir;
  TVirtualStack stack(dir.path().string());
  stack.StartTransaction(TStartItem(1, TOperationKind::okImport, "before"));
  stack.Push(RecordItem(99));
  stack.StartTransaction(TStartItem(1, TOperationKind::okImport, "import"));
  std::vector<std::vector<uint8_t>> images;
  for (int32_t id = 0; id < 4; ++id) {
    std::vector<uint8_t> payload(50000);
    for (size_t i = 0; i < payload.size(); ++i) payload[i] = static_cast<uint8_t>(i * 7 + id);
    stack.Push(RecordItem(id, payload));
    images.push_back(MakeImage('W', id, payload));
  }
  for (size_t caption_length : {5000u, 3u, 70000u, 0u}) {
    stack.UpdateStartItemAtStackItem(
        2, TStartItem(2, TOperationKind::okImport, std::string(caption_length, 'x')));
    const TUndoTransaction read = stack.ReadLastTransaction();
    EXPECT_EQ(read.start.Caption().size(), caption_length);
    ASSERT_EQ(read.items.size(), images.size());
    for (size_t i = 0; i < images.size(); ++i) {
      EXPECT_EQ(dynamic_cast<const TDBUndoRedoItem&>(*read.items[i]).After(), images[i]);
    }
  }
  stack.DropLastTransaction();
  EXPECT_EQ(stack.GetTransactions(), std::vector<std::string>{"before"});
  EXPECT_EQ(IdOfItem(*stack.Peek()), 99);
}

TEST(UndoVirtualStack, LeftoversOfDeadProcessesAreRemovedLiveOnesKept) {
  korvan::testing::TempDir dir;
  TVirtualStack live(dir.path().string());
  std::string gone_file;
  {
    TVirtualStack gone(dir.path().string());  // a journal file whose process died
    gone_file = gone.FileName();
    fs::copy_file(gone_file, dir.File("~dead01.tmp"));
  }
  EXPECT_FALSE(fs::exists(gone_file));  // a stack's file lives as long as the stack
  std::ofstream(dir.File("~empty1.tmp")).close();
  std::ofstream(dir.File("~word.tmp")) << "somebody else's temporary file";
  std::ofstream(dir.File("keep.tmp")) << "KorvUndo";

  EXPECT_EQ(TVirtualStack::RemoveLeftoverFiles(dir.path().string()), 2);
  EXPECT_FALSE(fs::exists(dir.File("~dead01.tmp")));
  EXPECT_FALSE(fs::exists(dir.File("~empty1.tmp")));
  EXPECT_TRUE(fs::exists(live.FileName()));
  EXPECT_TRUE(fs::exists(dir.File("~word.tmp")));
  EXPECT_TRUE(fs::exists(dir.File("keep.tmp")));
  live.StartTransaction(TStartItem(1, TOperationKind::okEdit, "still usable"));
  EXPECT_EQ(live.TransactionCount(), 1);
}

TEST(UndoVirtualStack, PersistentFileIsReadBackAndEveryDamageIsReported) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("UNDO.QUJ");
  {
    auto stack = TVirtualStack::OpenPersistent(path);
    stack->StartTransaction(TStartItem(1, TOperationKind::okEdit, "Menge ändern"));
    stack->Push(RecordItem(5));
    stack->Push(RecordItem(6));
    EXPECT_THROW(TVirtualStack::OpenPersistent(path), UndoJournalError);  // in use
  }
  {
    auto stack = TVirtualStack::OpenPersistent(path);
    EXPECT_EQ(stack->GetTransactions(), std::vector<std::string>{"Menge ändern"});
    EXPECT_EQ(IdOfItem(*stack->Peek()), 6);
  }
  const std::vector<char> bytes = testing::ReadJournalBytes(path);
  int accepted = 0;
  for (size_t cut = 1; cut < bytes.size(); ++cut) {
    testing::WriteJournalBytes(path, {bytes.begin(), bytes.begin() + static_cast<long>(cut)});
    try {
      EXPECT_LE(TVirtualStack::OpenPersistent(path)->TransactionCount(), 1);
      ++accepted;
    } catch (const UndoJournalError& error) {
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    }
  }
  EXPECT_EQ(accepted, 3);  // after the header, after the start, after the first item
  for (size_t at = 0; at < bytes.size(); ++at) {
    std::vector<char> damaged = bytes;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
    testing::WriteJournalBytes(path, damaged);
    EXPECT_THROW(TVirtualStack::OpenPersistent(path), UndoJournalError) << at;
  }
}

}  // namespace
}  // namespace korvan::data
