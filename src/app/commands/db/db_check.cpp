// `korvan db check`: the whole database verified, one problem per line.
#include <cmath>
#include <optional>
#include <ostream>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "app/cli/command_error.h"
#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/db_format.h"
#include "app/commands/db/db_key_walk.h"
#include "app/commands/db/key_text.h"
#include "storage/data_file_check.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

// 31 December 9999, the last day a date-time of the program can show.
constexpr double kLastDate = 2958465.0;
constexpr int kMaxModifiedByIdLength = 22;
constexpr uint8_t kFreeSpaceKeyLead = '~';

class Problems {
 public:
  explicit Problems(std::ostream& out) : out_(out) {}
  void Add(const std::string& file, const std::string& problem) { Add(file + ": " + problem); }
  void Add(const std::string& line) {
    out_ << line << "\n";
    ++count_;
  }
  int count() const { return count_; }

 private:
  std::ostream& out_;
  int count_ = 0;
};

std::string Record(const DataBlock& block) {
  return "Datensatz an Position " + std::to_string(block.position) + ": ";
}

bool IsDate(double value) {
  return std::isfinite(value) && value >= 0 && value <= kLastDate;
}

// What the kernel itself does not look at in a record header, but every writer sets.
void CheckHeaderFields(const DataBlock& block, std::vector<std::string>* problems) {
  const auto& header = block.header;
  if (!IsDate(header.LastModified)) {
    problems->push_back(Record(block) + "LastModified ist kein Datum (" +
                        std::to_string(header.LastModified) + ")");
  }
  if (!IsDate(header.CreationDate)) {
    problems->push_back(Record(block) + "CreationDate ist kein Datum (" +
                        std::to_string(header.CreationDate) + ")");
  }
  if (header.ModifiedById[0] > kMaxModifiedByIdLength) {
    problems->push_back(Record(block) + "ModifiedById gibt " +
                        std::to_string(header.ModifiedById[0]) + " Zeichen an, höchstens 22 passen");
  }
}

// The block-level checks of the data file for when the key file cannot be trusted to
// check the free-space index against.
void CheckBlockShapes(const DataBlock& block, std::vector<std::string>* problems) {
  if (!block.live) return;
  if (!block.has_header) {
    problems->push_back(Record(block) + "kürzer als sein Kopf");
  } else if (block.header.RecTyp < 'A' || block.header.RecTyp > 'Z') {
    problems->push_back(Record(block) + "Typ " + TypeLetterText(block.header.RecTyp) +
                        " ist kein Buchstabe A..Z");
  }
}

// Table keys name records: each must point at the start of a live record.
void CheckTableKeys(const OpenDatabase& db, const std::set<int64_t>& live_records,
                    Problems* problems) {
  const std::string key_file = storage::KeyFileName(db.base_path());
  try {
    WalkKeys(db, [&](uint32_t position, std::span<const uint8_t> key) {
      if (key[0] == kFreeSpaceKeyLead || live_records.count(position) != 0) return;
      problems->Add(key_file, "Schlüssel " + KeyToText(key) + " zeigt auf " + std::to_string(position) +
                                  ", wo kein Datensatz beginnt");
    });
  } catch (const CommandError& error) {
    problems->Add(error.what());
  }
}

}  // namespace

int RunDbCheck(const std::string& base_path, Streams& streams) {
  const std::string data_file = storage::DataFileName(base_path);
  const std::string key_file = storage::KeyFileName(base_path);
  Problems problems(streams.out);
  if (const int format = DataFileFormat(base_path); !IsRecordFormat(format)) {
    problems.Add(data_file, "Format " + ResultCodeText(format));
  }

  // Opening would rebuild such a key file (or refuse, where the tables are unknown).
  if (bool clean = true;
      storage::iDK_KeyFileClosedCleanly(base_path, &clean) == storage::kOk && !clean) {
    problems.Add(key_file,
                 "nicht sauber geschlossen: ein Schreiber endete ohne die Datenbank zu schließen, "
                 "die Schlüssel sind nicht verlässlich");
  }

  // A database that does not even open is one problem; its data file is still walked.
  std::optional<OpenDatabase> db;
  try {
    db.emplace(base_path, OpenDatabase::Access::kReadOnly);
  } catch (const CommandError& error) {
    problems.Add(error.what());
  }
  std::vector<std::string> tree_problems;
  if (db) tree_problems = storage::CheckKeyFile(db->handle());
  for (const std::string& problem : tree_problems) problems.Add(key_file, problem);
  const bool tree_sound = db && tree_problems.empty();

  std::vector<std::string> block_problems;
  std::set<int64_t> live_records;
  const std::string stopped = WalkDataFile(data_file, [&](const DataBlock& block) {
    if (block.live) live_records.insert(block.position);
    if (!tree_sound) CheckBlockShapes(block, &block_problems);
    if (block.has_header) CheckHeaderFields(block, &block_problems);
  });
  if (tree_sound) {
    // Walks the data file once more and matches every free block with its "~" key.
    for (const std::string& problem : storage::CheckDataFile(db->handle()).problems) {
      problems.Add(data_file, problem);
    }
    // Past a block the walk could not read, no record is known to start anywhere.
    if (stopped.empty()) CheckTableKeys(*db, live_records, &problems);
  } else {
    if (!stopped.empty()) problems.Add(data_file, stopped);
    problems.Add(data_file, "Freiplatzindex nicht geprüft: die Schlüsseldatei ist nicht brauchbar");
  }
  for (const std::string& problem : block_problems) problems.Add(data_file, problem);

  if (problems.count() == 0) {
    streams.out << base_path << ": keine Probleme gefunden\n";
    return kExitOk;
  }
  return kExitFailure;
}

}  // namespace korvan::app
