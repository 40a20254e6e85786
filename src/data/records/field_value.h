#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "data/common/date_time.h"
#include "data/records/field_descriptor.h"

namespace korvan::data {

// Read access to one described field inside a record's bytes. Records come from disk
// and may be shorter than their layout (older versions, damage): a field that does not lie
// wholly inside the bytes is absent, and nothing reads past the end.

using RecordBytes = std::span<const uint8_t>;

template <typename Record>
RecordBytes BytesOf(const Record& record) {
  return {reinterpret_cast<const uint8_t*>(&record), sizeof(Record)};
}

bool FieldPresent(const FieldDescriptor& field, RecordBytes record);

// The field's bytes; empty when absent.
RecordBytes FieldBytes(const FieldDescriptor& field, RecordBytes record);

// As much of the field's bytes as the record holds (a nested layout of a short record is
// still read part by part).
RecordBytes AvailableFieldBytes(const FieldDescriptor& field, RecordBytes record);

// The value of integer-like fields (bytes, characters, Booleans, enumerations, sets,
// 16- and 32-bit integers, integer dates); nullopt for other types or absent fields.
std::optional<int64_t> FieldAsInteger(const FieldDescriptor& field, RecordBytes record);

// The value of floating-point fields, date-times and the Betrag of an amount, and of the
// integer-like fields; nullopt otherwise or when absent.
std::optional<double> FieldAsDouble(const FieldDescriptor& field, RecordBytes record);

// The field as a diagnostic text in UTF-8: numbers in full precision, characters and
// short strings decoded, dates readable, Booleans as "True"/"False", bytes that are not a
// valid value for the type as "#<byte>". "<fehlt>" for an absent field.
std::string FieldText(const FieldDescriptor& field, RecordBytes record,
                      const ShortDateFormat& date_format = kGermanDateFormat);

// The field through a printf-style format with one conversion ("%.11d", "%7.3f", "%11s").
// The argument always matches the conversion: a numeric conversion of a field without a
// number, or "%s", prints FieldText within the given width. An empty or malformed format
// prints FieldText as is.
std::string FormatField(const FieldDescriptor& field, RecordBytes record,
                        std::string_view printf_format);

}  // namespace korvan::data
