#include "data/records/record_dump.h"

#include <cstring>

#include "data/common/cp1252.h"
#include "data/common/date_time.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::data {
namespace {

std::string RecTypText(char rec_typ) {
  const auto byte = static_cast<uint8_t>(rec_typ);
  if (byte < 0x20) return "#" + std::to_string(byte);
  return Cp1252ToUtf8(std::string_view(&rec_typ, 1));
}

std::string ModifiedByText(const storage::TDbRecordHeader& header) {
  const auto* chars = reinterpret_cast<const char*>(header.ModifiedById);
  return Cp1252ToUtf8(ShortStringRaw(chars, sizeof header.ModifiedById - 1));
}

bool StartsWithHeader(const RecordLayout& layout) {
  return !layout.fields.empty() && layout.fields.front().nested == &kRecordHeaderLayout;
}

void DumpFieldLines(const FieldDescriptor& field, RecordBytes record, const std::string& prefix,
                    std::string* out) {
  const std::string name = prefix + std::string(field.name);
  if (field.type == FieldType::kNested) {
    const RecordBytes inner = AvailableFieldBytes(field, record);
    for (const FieldDescriptor& part : field.nested->fields) {
      DumpFieldLines(part, inner, name + ".", out);
    }
    return;
  }
  *out += name + ": " + FieldText(field, record) + "\n";
}

}  // namespace

std::string DumpHeaderShort(const storage::TDbRecordHeader& header) {
  return "RecLen: " + std::to_string(header.RecLen) + "\tRecTyp: " + RecTypText(header.RecTyp);
}

std::string DumpHeaderLong(const storage::TDbRecordHeader& header) {
  return DumpHeaderShort(header) + "\tSize: " + std::to_string(header.Size) +
         "\tVersion: " + std::to_string(header.Version) +
         "\tLastModified: " + FormatDateTime(header.LastModified) +
         "\tCreationDate: " + FormatDateTime(header.CreationDate) +
         "\tModifiedById: " + ModifiedByText(header);
}

std::string DumpRecord(const RecordLayout& layout, RecordBytes record) {
  std::string out;
  std::size_t first = 0;
  if (StartsWithHeader(layout) && record.size() >= sizeof(storage::TDbRecordHeader)) {
    storage::TDbRecordHeader header;
    std::memcpy(&header, record.data(), sizeof header);
    out += DumpHeaderLong(header) + "\n";
    first = 1;
  }
  for (std::size_t i = first; i < layout.fields.size(); ++i) {
    DumpFieldLines(layout.fields[i], record, "", &out);
  }
  if (record.size() > layout.size) {
    out += "(" + std::to_string(record.size() - layout.size) + " Bytes nach " +
           std::string(layout.name) + ")\n";
  }
  return out;
}

std::string DumpTableHeader(std::span<const DumpColumn> columns) {
  std::string line;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) line += kDumpColumnSeparator;
    line += columns[i].caption;
  }
  return line;
}

std::string DumpTableRow(const RecordLayout& layout, std::span<const DumpColumn> columns,
                         RecordBytes record) {
  std::string line;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) line += kDumpColumnSeparator;
    const FoundField found = FindField(layout, columns[i].field);
    if (!found.found) {
      line += "<unbekanntes Feld " + std::string(columns[i].field) + ">";
      continue;
    }
    line += FormatField(found.field, record, columns[i].format);
  }
  return line;
}

}  // namespace korvan::data
