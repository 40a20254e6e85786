#include "data/records/field_value.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "data/common/cp1252.h"
#include "data/records/int_date.h"
#include "data/records/short_string.h"

namespace korvan::data {
namespace {

template <typename T>
T Load(RecordBytes bytes, std::size_t at = 0) {
  T value;
  std::memcpy(&value, bytes.data() + at, sizeof(T));
  return value;
}

std::string DoubleText(double value) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

std::string ByteCode(uint8_t byte) {
  return "#" + std::to_string(byte);
}

std::string CharText(uint8_t byte) {
  if (byte < 0x20) return ByteCode(byte);
  return Cp1252ToUtf8(std::string_view(reinterpret_cast<const char*>(&byte), 1));
}

std::string BoolText(uint8_t byte) {
  if (byte == 0) return "False";
  if (byte == 1) return "True";
  return ByteCode(byte);
}

std::string TriStateText(uint8_t byte) {
  if (byte == 128) return "Default";
  return BoolText(byte);
}

std::string EnumText(const FieldDescriptor& field, uint8_t byte) {
  if (byte < field.names.size()) return std::string(field.names[byte]);
  return std::to_string(byte);
}

std::string SetText(const FieldDescriptor& field, uint8_t byte) {
  std::string text = "<";
  for (unsigned bit = 0; bit < 8; ++bit) {
    if ((byte & (1u << bit)) == 0) continue;
    if (text.size() > 1) text += ", ";
    text += bit < field.names.size() ? std::string(field.names[bit]) : "#" + std::to_string(bit);
  }
  return text + ">";
}

std::string IntDateText(int32_t value) {
  switch (ClassifyIntDate(value)) {
    case IntDateKind::kNone:
      return std::to_string(value);
    case IntDateKind::kValid:
      return std::to_string(value) + " (" + FormatIntDate(value) + ")";
    case IntDateKind::kInvalid:
      break;
  }
  return std::to_string(value) + " (ungültig)";
}

std::string ShortStringText(RecordBytes bytes) {
  const std::size_t capacity = bytes.size() - 1;
  std::string text =
      Cp1252ToUtf8(ShortStringRaw(reinterpret_cast<const char*>(bytes.data()), capacity));
  if (bytes[0] > capacity) text += " [Länge " + std::to_string(bytes[0]) + "]";
  return text;
}

std::string CharArrayText(RecordBytes bytes) {
  std::string_view chars(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  chars = chars.substr(0, chars.find('\0'));
  return Cp1252ToUtf8(chars);
}

std::string WaeBetragText(RecordBytes bytes) {
  return DoubleText(Load<double>(bytes)) + " [" + std::to_string(Load<int16_t>(bytes, 8)) + "]";
}

std::string WaeBetragArrayText(RecordBytes bytes) {
  std::string text = "(";
  for (std::size_t at = 0; at + 10 <= bytes.size(); at += 10) {
    if (at > 0) text += "; ";
    text += WaeBetragText(bytes.subspan(at, 10));
  }
  return text + ")";
}

std::string HexText(RecordBytes bytes) {
  bool all_zero = true;
  for (uint8_t b : bytes) all_zero = all_zero && b == 0;
  if (all_zero) return "(" + std::to_string(bytes.size()) + " Bytes 0)";
  std::string text;
  char buffer[4];
  for (uint8_t b : bytes) {
    std::snprintf(buffer, sizeof buffer, "%02X", b);
    text += buffer;
  }
  return text;
}

std::string NestedText(const FieldDescriptor& field, RecordBytes bytes,
                       const ShortDateFormat& date_format) {
  std::string text = "{";
  for (const FieldDescriptor& part : field.nested->fields) {
    if (text.size() > 1) text += "; ";
    text += std::string(part.name) + ": " + FieldText(part, bytes, date_format);
  }
  return text + "}";
}

// A parsed printf conversion: "%", flags, width, precision, conversion character.
struct Conversion {
  std::string modifiers;  // everything between "%" and the conversion character
  char conversion = 0;
};

std::optional<Conversion> ParseFormat(std::string_view format) {
  if (format.size() < 2 || format.front() != '%') return std::nullopt;
  Conversion parsed;
  parsed.conversion = format.back();
  parsed.modifiers = std::string(format.substr(1, format.size() - 2));
  if (std::string_view("diuxXfFeEgGs").find(parsed.conversion) == std::string_view::npos) {
    return std::nullopt;
  }
  for (char c : parsed.modifiers) {
    if (std::string_view("-+ #0123456789.").find(c) == std::string_view::npos) return std::nullopt;
  }
  if (parsed.modifiers.size() > 8) return std::nullopt;  // keeps widths within reason
  return parsed;
}

std::string Printf(const std::string& format, auto value) {
  char buffer[128];
  const int written = std::snprintf(buffer, sizeof buffer, format.c_str(), value);
  if (written < 0) return {};
  return std::string(buffer, std::min<std::size_t>(written, sizeof buffer - 1));
}

}  // namespace

bool FieldPresent(const FieldDescriptor& field, RecordBytes record) {
  return field.offset <= record.size() && field.size <= record.size() - field.offset;
}

RecordBytes FieldBytes(const FieldDescriptor& field, RecordBytes record) {
  if (!FieldPresent(field, record)) return {};
  return record.subspan(field.offset, field.size);
}

RecordBytes AvailableFieldBytes(const FieldDescriptor& field, RecordBytes record) {
  if (field.offset >= record.size()) return {};
  return record.subspan(field.offset,
                        std::min<std::size_t>(field.size, record.size() - field.offset));
}

std::optional<int64_t> FieldAsInteger(const FieldDescriptor& field, RecordBytes record) {
  const RecordBytes bytes = FieldBytes(field, record);
  if (bytes.empty()) return std::nullopt;
  switch (field.type) {
    case FieldType::kByte:
    case FieldType::kChar:
    case FieldType::kBool:
    case FieldType::kTriState:
    case FieldType::kEnum8:
    case FieldType::kSet8:
      return bytes[0];
    case FieldType::kInt16:
      return Load<int16_t>(bytes);
    case FieldType::kUInt16:
      return Load<uint16_t>(bytes);
    case FieldType::kInt32:
    case FieldType::kIntDate:
      return Load<int32_t>(bytes);
    case FieldType::kUInt32:
      return Load<uint32_t>(bytes);
    default:
      return std::nullopt;
  }
}

std::optional<double> FieldAsDouble(const FieldDescriptor& field, RecordBytes record) {
  const RecordBytes bytes = FieldBytes(field, record);
  if (bytes.empty()) return std::nullopt;
  switch (field.type) {
    case FieldType::kSingle:
      return Load<float>(bytes);
    case FieldType::kDouble:
    case FieldType::kDateTime:
    case FieldType::kWaeBetrag:
      return Load<double>(bytes);
    default:
      break;
  }
  if (const std::optional<int64_t> integer = FieldAsInteger(field, record)) {
    return static_cast<double>(*integer);
  }
  return std::nullopt;
}

std::string FieldText(const FieldDescriptor& field, RecordBytes record,
                      const ShortDateFormat& date_format) {
  const RecordBytes bytes = FieldBytes(field, record);
  if (bytes.empty()) return "<fehlt>";
  switch (field.type) {
    case FieldType::kChar:
      return CharText(bytes[0]);
    case FieldType::kBool:
      return BoolText(bytes[0]);
    case FieldType::kTriState:
      return TriStateText(bytes[0]);
    case FieldType::kEnum8:
      return EnumText(field, bytes[0]);
    case FieldType::kSet8:
      return SetText(field, bytes[0]);
    case FieldType::kSingle:
    case FieldType::kDouble:
      return DoubleText(*FieldAsDouble(field, record));
    case FieldType::kDateTime:
      return FormatDateTime(Load<double>(bytes), date_format);
    case FieldType::kIntDate:
      return IntDateText(Load<int32_t>(bytes));
    case FieldType::kShortString:
      return ShortStringText(bytes);
    case FieldType::kCharArray:
      return CharArrayText(bytes);
    case FieldType::kWaeBetrag:
      return WaeBetragText(bytes);
    case FieldType::kWaeBetragArray:
      return WaeBetragArrayText(bytes);
    case FieldType::kBytes:
      return HexText(bytes);
    case FieldType::kNested:
      return NestedText(field, bytes, date_format);
    default:
      return std::to_string(*FieldAsInteger(field, record));
  }
}

std::string FormatField(const FieldDescriptor& field, RecordBytes record,
                        std::string_view printf_format) {
  const std::optional<Conversion> parsed = ParseFormat(printf_format);
  if (!parsed) return FieldText(field, record);
  const char conversion = parsed->conversion;
  const bool integer_conversion =
      std::string_view("diuxX").find(conversion) != std::string_view::npos;
  const bool float_conversion =
      std::string_view("fFeEgG").find(conversion) != std::string_view::npos;
  // Characters, Booleans and sets have their own text under "%s"; under a numeric
  // conversion they print their number.
  if (integer_conversion) {
    if (const std::optional<int64_t> value = FieldAsInteger(field, record)) {
      return Printf("%" + parsed->modifiers + "ll" + conversion, static_cast<long long>(*value));
    }
  } else if (float_conversion) {
    if (const std::optional<double> value = FieldAsDouble(field, record)) {
      return Printf("%" + parsed->modifiers + conversion, *value);
    }
  }
  std::string modifiers = parsed->modifiers;
  std::erase_if(modifiers, [](char c) { return c != '-' && c != '.' && (c < '0' || c > '9'); });
  return Printf("%" + modifiers + "s", FieldText(field, record).c_str());
}

}  // namespace korvan::data
