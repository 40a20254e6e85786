// `korvan db info`: what a database's header and files say about it.
#include <iomanip>
#include <ostream>

#include "app/cli/command_error.h"
#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/db_format.h"
#include "storage/db_kernel.h"
#include "storage/delphi_datetime.h"
#include "storage/file/file_names.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

int KeyFileVersionOf(const OpenDatabase& db) {
  int version = 0;
  if (const int result = storage::KeyFileVersion(db.handle(), &version); result != storage::kOk) {
    throw CommandError(storage::KeyFileName(db.base_path()) + ": " + ResultCodeText(result));
  }
  return version;
}

void PrintHeader(const std::string& base_path, int format, std::ostream& out) {
  uint32_t version = 0;
  double stamp = 0;
  const int result = storage::iDK_DbFileInfo(storage::DataFileName(base_path), &version, &stamp);
  if (result != storage::kOk) {
    throw CommandError(storage::DataFileName(base_path) + ": " + ResultCodeText(result));
  }
  out << "Datendatei: " << storage::DataFileName(base_path) << "\n"
      << "Format: " << FormatCodeText(format) << "\n"
      << "Dateiversion: " << version << "\n"
      << "Zeitstempel: " << storage::FormatDelphiDateTime(stamp) << " (" << std::fixed
      << std::setprecision(8) << stamp << std::defaultfloat << ")\n";
}

}  // namespace

int RunDbInfo(const std::string& base_path, Streams& streams) {
  const int format = DataFileFormat(base_path);
  PrintHeader(base_path, format, streams.out);

  const OpenDatabase db(base_path, OpenDatabase::Access::kReadOnly);
  streams.out << "Schlüsseldatei: " << storage::KeyFileName(base_path) << "\n"
              << "Version der Schlüsseldatei: " << KeyFileVersionOf(db) << "\n"
              << "Schlüssellänge: " << db.KeyLength() << "\n";

  int64_t records = 0;
  int64_t free_blocks = 0;
  const std::string stopped =
      WalkDataFile(storage::DataFileName(base_path),
                   [&](const DataBlock& block) { ++(block.live ? records : free_blocks); });
  const uint32_t all_keys = db.KeyCount(true);
  const uint32_t table_keys = db.KeyCount(false);
  streams.out << "Datensätze: " << records << "\n"
              << "Schlüssel: " << all_keys << " (" << table_keys << " Tabellenschlüssel, "
              << all_keys - table_keys << " Freiplatzschlüssel)\n"
              << "freie Blöcke: " << free_blocks << "\n";

  int exit_code = kExitOk;
  if (!IsRecordFormat(format)) {
    streams.err << storage::DataFileName(base_path) << ": " << ResultCodeText(format) << "\n";
    exit_code = kExitFailure;
  }
  if (!stopped.empty()) {
    streams.err << storage::DataFileName(base_path) << ": " << stopped
                << " (die Anzahlen zählen die Blöcke davor)\n";
    exit_code = kExitFailure;
  }
  return exit_code;
}

}  // namespace korvan::app
