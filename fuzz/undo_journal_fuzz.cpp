// Opens arbitrary bytes as the persistent undo journal of a data directory ("UNDO.QUJ")
// and takes back and makes again every step in it. A damaged journal must give
// UndoJournalError (and be set aside when asked), never a crash, a hang or a sanitizer
// report; a journal that opens must pop whole.
//
// Input: byte 0 chooses the form of the rest. Even: the rest is the raw file. Odd: the
// rest is a list of entries (kind: 1 byte, length: 2 bytes, data), written as frames
// with correct checksums behind a correct header, so that the item readers are reached.
// Byte 0's bit 1 makes the restorer refuse every record, as after a foreign change.
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "data/tables/table_change_journal.h"
#include "data/undo/undo_items.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_stream.h"

namespace {

using namespace korvan::data;

class AcceptingRecords : public RecordRestorer {
 public:
  explicit AcceptingRecords(bool refuse) : refuse_(refuse) {}
  int RestoreRecord(const TableTarget&, JournalImage, JournalImage, std::string& error) override {
    if (!refuse_) return kUndoOk;
    error = "refused";
    return kUndoConflict;
  }

 private:
  bool refuse_;
};

class AcceptingRows : public TCDataRowRestorer {
 public:
  int MoveRow(int32_t, int32_t, int32_t, std::string&) override { return kUndoOk; }
  int RemoveRow(int32_t, const std::string&, int32_t, std::string&) override { return kUndoOk; }
  int RestoreRow(int32_t, const std::string&, int32_t, std::string&) override { return kUndoOk; }
};

// A directory of its own for the journal files, removed when the fuzzer ends.
class WorkDirectory {
 public:
  WorkDirectory() {
    std::string pattern = std::filesystem::temp_directory_path() / "undo_journal_fuzz_XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) abort();
    path_ = pattern;
  }
  ~WorkDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

void Append32(std::vector<uint8_t>& out, uint32_t value) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

// A journal file whose frames are sound around data taken from the input.
std::vector<uint8_t> FramedFile(const uint8_t* data, size_t size) {
  std::vector<uint8_t> file = {'K', 'o', 'r', 'v', 'U', 'n', 'd', 'o'};
  Append32(file, 1);
  Append32(file, 0);
  size_t at = 0;
  while (at + 3 <= size) {
    const uint8_t kind = data[at] % 3;
    size_t length = data[at + 1] | size_t{data[at + 2]} << 8;
    at += 3;
    if (length > size - at) length = size - at;
    const size_t frame_start = file.size();
    file.push_back(kind);
    Append32(file, static_cast<uint32_t>(length));
    file.insert(file.end(), data + at, data + at + length);
    Append32(file, Crc32({file.data() + frame_start, 5 + length}));
    at += length;
  }
  return file;
}

void Write(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

void PopEverything(TUndoRedo& journal) {
  journal.UndoCaptions();
  journal.RedoCaptions();
  while (!journal.Empty()) {
    if (!journal.PopUndo().ok()) break;
  }
  while (journal.CanRedo()) {
    if (!journal.PopRedo().ok()) break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  static const WorkDirectory work;
  const std::string& directory = work.path();
  const std::vector<std::string> files = TUndoRedo::PersistentFiles(directory);
  const std::vector<uint8_t> bytes =
      (data[0] & 1) ? FramedFile(data + 1, size - 1) : std::vector<uint8_t>(data + 1, data + size);
  Write(files[0], bytes);

  AcceptingRecords records((data[0] & 2) != 0);
  AcceptingRows rows;
  try {
    const std::unique_ptr<TUndoRedo> journal = TUndoRedo::OpenPersistent(directory);
    journal->SetRecordRestorer(&records);
    journal->SetRowRestorer(&rows);
    PopEverything(*journal);
  } catch (const UndoJournalError& error) {
    if (!error.Damaged()) abort();  // nothing but damage can go wrong here
    // Set aside, the journal starts empty.
    const std::unique_ptr<TUndoRedo> fresh =
        TUndoRedo::OpenPersistent(directory, TDamagedFile::kSetAside);
    if (fresh->SetAsideFiles().size() != 1 || !fresh->Empty()) abort();
  }
  TUndoRedo::RemovePersistent(directory);
  std::remove((files[0] + ".defekt").c_str());
  return 0;
}
