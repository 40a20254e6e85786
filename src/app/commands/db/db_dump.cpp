// `korvan db dump`: the blocks of a data file, one line each.
#include <ostream>

#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/db_format.h"
#include "storage/file/file_names.h"

namespace korvan::app {
namespace {

// The record type letter of a live block, "?" for a block too short to hold one.
std::string BlockKind(const DataBlock& block) {
  if (!block.live) return "frei";
  if (block.length <= static_cast<int32_t>(sizeof block.header.RecLen)) return "?";
  return TypeLetterText(block.header.RecTyp);
}

}  // namespace

int RunDbDump(const std::string& base_path, Streams& streams) {
  const std::string data_file = storage::DataFileName(base_path);
  if (const int format = DataFileFormat(base_path); !IsRecordFormat(format)) {
    streams.err << data_file << ": " << ResultCodeText(format) << "\n";
    return kExitFailure;
  }
  const std::string stopped = WalkDataFile(data_file, [&](const DataBlock& block) {
    streams.out << block.position << " " << block.length << " " << BlockKind(block) << "\n";
  });
  if (stopped.empty()) return kExitOk;
  streams.err << data_file << ": " << stopped << "\n";
  return kExitFailure;
}

}  // namespace korvan::app
