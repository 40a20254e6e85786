#include "data/integrity/table_damage.h"

#include <exception>

#include "data/common/message_format.h"
#include "data/common/result_code_text.h"
#include "data/integrity/database_recovery.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

constexpr int kRecTypOffset = 4;

// What is wrong with the record at `position` as the table read it.
std::string RecordProblem(const TStdTB& table, int32_t position) {
  std::vector<uint8_t> raw;
  if (const int read = table.Db().ReadRaw(position, raw); read != storage::kOk) {
    return ResultCodeText(read);
  }
  if (raw.size() > kRecTypOffset && static_cast<char>(raw[kRecTypOffset]) != table.TableType()) {
    return Printf("Tabellenbuchstabe \"%s\" ($%x) statt \"%c\"",
                  Letter(static_cast<char>(raw[kRecTypOffset])).c_str(),
                  Code(static_cast<char>(raw[kRecTypOffset])), table.TableType());
  }
  return ResultCodeText(table.LastError());
}

}  // namespace

std::string DescribeTableDamage(const TStdTB& table, int records_walked) {
  const TStdDb& db = table.Db();
  const std::string data_file = db.BasePath() + "0";
  const std::string key_file = db.BasePath() + "1";
  const std::string head = "Datenbank " + db.Name() + ", Tabelle " + table.TableName() + ": ";
  if (table.LastError() != storage::kOk) {
    const int32_t position = table.FailedPosition();
    if (position >= 0) {
      return head +
             Printf("der Datensatz an Position %d in \"%s\" ist beschädigt: ", position,
                    data_file.c_str()) +
             RecordProblem(table, position);
    }
    return head + "die Schlüsseldatei \"" + key_file +
           "\" ist beschädigt: " + ResultCodeText(table.LastError());
  }
  int stored = 0;
  DataFileScan scan;
  try {
    scan = ScanDataFile(data_file, [&](const ScannedRecord& record) {
      if (static_cast<char>(record.bytes[kRecTypOffset]) == table.TableType()) ++stored;
    });
  } catch (const std::exception& error) {
    return head + error.what();
  }
  if (!scan.Complete()) {
    const DataFileScan::Skipped& first = scan.skipped.front();
    return head + Printf("die Datendatei \"%s\" ist ab Position %lld beschädigt: %s",
                         data_file.c_str(), static_cast<long long>(first.position),
                         first.reason.c_str());
  }
  if (stored != records_walked) {
    return head + Printf(
                      "die Schlüsseldatei \"%s\" ist beschädigt: sie führt zu %d von %d "
                      "Datensätzen der Tabelle in \"%s\"",
                      key_file.c_str(), records_walked, stored, data_file.c_str());
  }
  return "";
}

}  // namespace korvan::data
