#pragma once

#include <span>
#include <string>
#include <string_view>

#include "data/records/field_descriptor.h"
#include "data/records/field_value.h"
#include "storage/record_header.h"

namespace korvan::data {

// Diagnostic dumps of stored records. They are for people reading logs and the
// "db dump" command; nothing reads them back.

// "RecLen: %d\tRecTyp: %s"
std::string DumpHeaderShort(const storage::TDbRecordHeader& header);

// "RecLen: %d\tRecTyp: %s\tSize: %d\tVersion: %d\tLastModified: %s\tCreationDate: %s\t
// ModifiedById: %s"
std::string DumpHeaderLong(const storage::TDbRecordHeader& header);

// A whole record, field by field: the long header line when the layout starts with the
// header, then one "Name: value" line per field (nested layouts other than the header as
// "Name.Part: value"). Fields beyond the end of a short record show "<fehlt>"; bytes
// beyond the layout are counted in a last line.
std::string DumpRecord(const RecordLayout& layout, RecordBytes record);

// One column of a table dump: its caption, the field path it shows and the printf-style
// format of the value (empty: the field's own text).
struct DumpColumn {
  std::string_view caption;
  std::string_view field;
  std::string_view format = {};
};

inline constexpr std::string_view kDumpColumnSeparator = " || ";

// The header line of a table dump: the captions joined by " || ".
std::string DumpTableHeader(std::span<const DumpColumn> columns);

// One record as a line of a table dump. A column whose field the layout does not have
// shows "<unbekanntes Feld NAME>".
std::string DumpTableRow(const RecordLayout& layout, std::span<const DumpColumn> columns,
                         RecordBytes record);

// True when every column names a field of the layout; for static_asserts next to the
// column lists.
constexpr bool ColumnsResolve(const RecordLayout& layout, std::span<const DumpColumn> columns) {
  for (const DumpColumn& column : columns) {
    if (!FindField(layout, column.field).found) return false;
  }
  return true;
}

}  // namespace korvan::data
