#include "data/integrity/duplicate_guids.h"

#include <algorithm>
#include <cstring>

#include "data/common/cp1252.h"
#include "storage/record_header.h"

namespace korvan::data {
namespace {

// Whether the field lies inside the record and can hold a GUID at all; a field that
// cannot is treated as absent rather than written past its end.
bool Usable(const TGuidField& field, size_t record_size) {
  return field.offset >= 0 && field.capacity >= static_cast<int>(kGuidBareLength) &&
         field.capacity <= 255 &&
         static_cast<size_t>(field.offset) + 1 + static_cast<size_t>(field.capacity) <= record_size;
}

// The stored characters of the field; a damaged length byte reads as the capacity.
std::string_view StoredText(const TGuidField& field, RecordView record) {
  const size_t length = std::min<size_t>(record[static_cast<size_t>(field.offset)],
                                         static_cast<size_t>(field.capacity));
  return {reinterpret_cast<const char*>(record.data()) + field.offset + 1, length};
}

// Writes the text into the field; the unused bytes are zeroed as records store them.
void StoreText(const TGuidField& field, std::string_view text, std::vector<uint8_t>& record) {
  uint8_t* start = record.data() + field.offset;
  std::fill_n(start, 1 + field.capacity, uint8_t{0});
  start[0] = static_cast<uint8_t>(text.size());
  std::memcpy(start + 1, text.data(), text.size());
}

}  // namespace

std::string TDuplicateGuidReplacer::Describe(TStdTB& table, RecordView record) {
  storage::TDbRecordHeader header{};
  std::memcpy(&header, record.data(), std::min(record.size(), sizeof header));
  if (table.NeedsConversion(header, static_cast<int>(record.size()))) {
    std::vector<uint8_t> current;
    if (table.Convert(record, current) != 0) return table.TableName();
    table.SetTbRecord(RecordView(current.data(), current.size()));
  } else {
    table.SetTbRecord(record);
  }
  return table.CurrentRecordToString();
}

std::optional<std::vector<uint8_t>> TDuplicateGuidReplacer::ReplaceDuplicateGUIDs(
    TStdTB& table, RecordView record, int32_t position, std::vector<std::string>& lines) {
  const std::optional<TGuidField> field = table.GuidField(record);
  if (!field || !Usable(*field, record.size())) return std::nullopt;
  const std::string_view old_text = StoredText(*field, record);
  const bool empty = IsNullGuid(old_text);
  if (empty && !field->mandatory) return std::nullopt;
  std::set<std::string>& seen = FSeen[table.TableType()];
  if (!empty && seen.insert(NormalizedGuid(old_text)).second) return std::nullopt;

  // Braces as the record had them; an empty field gets the registry form where it fits.
  const bool braced = field->capacity >= static_cast<int>(kGuidBracedLength) &&
                      (empty || old_text.starts_with('{'));
  std::string fresh = FGenerator.Next(braced);
  while (!seen.insert(NormalizedGuid(fresh)).second) fresh = FGenerator.Next(braced);

  std::vector<uint8_t> renewed(record.begin(), record.end());
  StoreText(*field, fresh, renewed);
  ++FReplaced;
  if (FAnnounced.insert(table.TableType()).second) {
    lines.push_back("ReplaceDuplicateGUIDs in " + table.TableName());
  }
  const std::string what =
      empty ? std::string("GUID fehlt") : "GUID \"" + Cp1252ToUtf8(old_text) + "\" doppelt";
  lines.push_back("  Datensatz " + Describe(table, record) + " (Position " +
                  std::to_string(position) + "): " + what + ", ersetzt durch \"" + fresh + "\"");
  return renewed;
}

}  // namespace korvan::data
