// `korvan db dump --table <letter>`: the records of one table, in data-file order.
#include <cstring>
#include <fstream>
#include <ostream>
#include <span>
#include <vector>

#include "app/cli/command_error.h"
#include "app/cli/display_path.h"
#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/db_format.h"
#include "data/records/record_dump.h"
#include "data/tables/table_registry.h"
#include "storage/file/file_names.h"

namespace korvan::app {
namespace {

// The bytes of the record in a block: as many as its header's Size says when that fits
// the block (a block may be a few bytes longer than its record), else the whole block.
std::vector<uint8_t> ReadRecord(std::ifstream& file, const std::string& path,
                                const DataBlock& block) {
  int32_t length = block.length;
  if (block.header.Size >= storage::kRecordHeaderSize && block.header.Size <= block.length) {
    length = block.header.Size;
  }
  std::vector<uint8_t> record(static_cast<size_t>(length));
  file.seekg(block.position);
  file.read(reinterpret_cast<char*>(record.data()), length);
  if (!file)
    throw CommandError(path + ": Block an Position " + std::to_string(block.position) +
                       " nicht lesbar");
  return record;
}

class TableDump {
 public:
  TableDump(const data::TableDumpFormat* format, std::ostream& out) : format_(format), out_(out) {}

  void Record(int32_t position, const std::vector<uint8_t>& record) {
    if (!format_) {
      storage::TDbRecordHeader header{};
      std::memcpy(&header, record.data(), sizeof header);
      out_ << "Position " << position << ": " << data::DumpHeaderLong(header) << "\t("
           << record.size() << " Bytes, Aufbau unbekannt)\n";
    } else if (!format_->columns.empty()) {
      if (count_ == 0) out_ << data::DumpTableHeader(format_->columns) << "\n";
      out_ << data::DumpTableRow(*format_->layout, format_->columns, record) << "\n";
    } else {
      out_ << "Position " << position << ":\n" << data::DumpRecord(*format_->layout, record);
      out_ << "\n";
    }
    ++count_;
  }

  int count() const { return count_; }

 private:
  const data::TableDumpFormat* format_;
  std::ostream& out_;
  int count_ = 0;
};

}  // namespace

int RunDbDumpTable(const std::string& base_path, char table_type,
                   const data::TTableRegistry& tables, Streams& streams) {
  const std::string data_file = storage::DataFileName(base_path);
  if (const int format = DataFileFormat(base_path); !IsRecordFormat(format)) {
    streams.err << data_file << ": " << ResultCodeText(format) << "\n";
    return kExitFailure;
  }
  std::ifstream file(data_file, std::ios::binary);
  if (!file) throw CommandError(data_file + ": nicht lesbar");

  const char db_type = storage::TypeLetterOfBasePath(base_path);
  const data::TableDumpFormat* format =
      tables.FindDumpFormat(db_type ? db_type : data::TTableRegistry::kAnyDbType, table_type);
  TableDump dump(format, streams.out);
  const std::string stopped = WalkDataFile(data_file, [&](const DataBlock& block) {
    if (block.has_header && block.header.RecTyp == table_type) {
      dump.Record(block.position, ReadRecord(file, data_file, block));
    }
  });
  streams.out << CountOf(dump.count(), "Datensatz", "Datensätze") << " der Tabelle "
              << TypeLetterText(table_type);
  if (format) streams.out << " (" << format->layout->name << ")";
  streams.out << "\n";
  if (stopped.empty()) return kExitOk;
  streams.err << data_file << ": " << stopped << "\n";
  return kExitFailure;
}

}  // namespace korvan::app
