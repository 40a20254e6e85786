#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "data/tables/std_db.h"
#include "data/tables/table_registry.h"

// Rebuilding one database from its data file alone. The data file is the database's
// record of truth: every live record is in it, written through, while the key file is
// written back from the block cache and can be missing, cut short or inconsistent
// after a crash. A rebuild therefore never reads the key file: it walks the data
// file's blocks, copies every live record into a fresh database "DB_TEMP" of the same
// type in the same directory (so free space disappears), enters each record's keys
// through its table class, and replaces the old files atomically. A record whose unique
// key an earlier record of the file holds already is not copied but set aside, as it was
// stored, in a file "<data file>.Doppelt_<time>.dat" beside the database:
//
//   1. DB_TEMP.Q<t>0/1 are written completely and synced, with the directory.
//   2. The old files are kept as backups "<file>.bak" (hard links, else copies).
//   3. The commit mark "DB_TEMP.Q<t>.commit", naming the group, is written and synced.
//   4. DB_TEMP.Q<t>0/1 are renamed over the old files; the directory is synced.
//   5. The commit mark is removed; the backups are removed unless something of the
//      old data file could not be taken over (then they stay for inspection).
//
// A crash before step 3 leaves the old files untouched and a DB_TEMP that the next
// rebuild or check throws away; a crash after it is finished by
// FinishInterruptedRebuilds, which completes the renames the mark names.
namespace korvan::data {

// A block of a data file as the scan found it.
struct ScannedRecord {
  int32_t position = 0;
  std::vector<uint8_t> bytes;  // the whole slot, its length field first
};

// What a walk over a data file's blocks found.
struct DataFileScan {
  // A stretch of the file that could not be read as blocks.
  struct Skipped {
    int64_t position = 0;
    int64_t length = 0;
    std::string reason;
  };
  int64_t file_size = 0;
  int live_records = 0;
  int free_blocks = 0;
  std::vector<Skipped> skipped;  // in file order
  bool Complete() const { return skipped.empty(); }
};

// Walks the blocks of a data file from offset 80 and hands every live record to
// `on_record`. Damage (a block that cannot be one, or a record torn by a crash) does
// not end the walk: the reader goes on where the blocks read as a chain again, and the
// stretches it skipped are listed. Throws std::runtime_error naming the file when it
// cannot be read.
DataFileScan ScanDataFile(const std::string& data_file,
                          const std::function<void(const ScannedRecord&)>& on_record);

// What the rebuild of one database did.
struct DatabaseRebuild {
  std::string data_file;  // the database's data file
  int records_copied = 0;
  int records_with_keys = 0;
  int records_without_keys = 0;    // of table letters no class is registered for
  int records_not_valid = 0;       // not taken over (kept in the backup)
  int keys_not_entered = 0;        // duplicates in unique indexes
  int records_set_aside = 0;       // second holders of a unique key, kept in a file beside
  int64_t bytes_lost = 0;          // of the data file skipped as damage
  bool replaced = false;           // the new files are in place
  bool backup_kept = false;        // "<file>.bak" still holds the old files
  std::string error;               // why nothing was replaced; "" on success
  std::vector<std::string> lines;  // the protocol

  bool ok() const { return error.empty(); }
};

// Rebuilds the database of `group` in `directory` (ending in the path separator) as
// described above. The database must not be open anywhere; the caller makes sure of
// that (TdmDataRebuild signs in exclusively in the directory's "DATA.QDC"). The key
// file may be missing. Never throws for damaged input; the result says what happened.
DatabaseRebuild RebuildDatabase(const std::string& directory, const std::string& group,
                                char type_letter, int key_length, const TTableRegistry& registry);

// Completes replacements that a crash interrupted after their commit mark was written,
// and removes DB_TEMP files that were never committed. Returns protocol lines.
std::vector<std::string> FinishInterruptedRebuilds(const std::string& directory);

}  // namespace korvan::data
