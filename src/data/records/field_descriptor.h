#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

namespace korvan::data {

// How a field of a stored record is encoded. Dumps, comparisons and the currency
// conversion walk records through these descriptions instead of knowing each layout.
enum class FieldType : uint8_t {
  kByte,            // Byte: 8-bit unsigned
  kChar,            // AnsiChar: one Windows-1252 character (a code letter)
  kBool,            // Boolean: 0 false, 1 true
  kTriState,        // Boolean byte that may hold 128: take the default
  kEnum8,           // an enumeration stored in one byte (value names in `names`)
  kSet8,            // a set of up to 8 members stored as bits (member names in `names`)
  kInt16,           // SmallInt
  kUInt16,          // Word
  kInt32,           // Integer (ids, counters)
  kUInt32,          // Cardinal
  kSingle,          // 32-bit IEEE
  kDouble,          // 64-bit IEEE
  kDateTime,        // 64-bit IEEE day count since 30 December 1899
  kIntDate,         // Integer date YYYYMMDD
  kShortString,     // length byte + (size - 1) Windows-1252 characters
  kCharArray,       // array of AnsiChar, not length-prefixed
  kWaeBetrag,       // t_WaeBetrag: Betrag (double) + IdWaehrung (16-bit)
  kWaeBetragArray,  // array of t_WaeBetrag
  kBytes,           // opaque bytes: arrays of other types, SizePadding
  kNested,          // a nested layout (the record header, sub-records)
};

struct RecordLayout;

struct FieldDescriptor {
  std::string_view name;
  uint32_t offset;
  uint32_t size;
  FieldType type;
  const RecordLayout* nested = nullptr;          // the layout of a kNested field
  std::span<const std::string_view> names = {};  // kEnum8 values, kSet8 members by bit
};

// One stored (or nested) layout: its name, its size in bytes and its fields in order.
struct RecordLayout {
  std::string_view name;
  uint32_t size;
  std::span<const FieldDescriptor> fields;
};

// The fixed size of a type, or 0 when the descriptor carries it.
constexpr uint32_t FixedFieldSize(FieldType type) {
  switch (type) {
    case FieldType::kByte:
    case FieldType::kChar:
    case FieldType::kBool:
    case FieldType::kTriState:
    case FieldType::kEnum8:
    case FieldType::kSet8:
      return 1;
    case FieldType::kInt16:
    case FieldType::kUInt16:
      return 2;
    case FieldType::kInt32:
    case FieldType::kUInt32:
    case FieldType::kSingle:
    case FieldType::kIntDate:
      return 4;
    case FieldType::kDouble:
    case FieldType::kDateTime:
      return 8;
    case FieldType::kWaeBetrag:
      return 10;
    default:
      return 0;
  }
}

// True when the fields follow each other without gap or overlap from offset 0 to the
// layout's size, every fixed-size type has its size, arrays hold whole elements and
// nested fields have the size of their layout. Used in static_asserts, so that a
// description can never drift from its struct.
constexpr bool DescribesLayoutExactly(const RecordLayout& layout) {
  uint32_t expected_offset = 0;
  for (const FieldDescriptor& field : layout.fields) {
    if (field.name.empty() || field.offset != expected_offset || field.size == 0) return false;
    const uint32_t fixed = FixedFieldSize(field.type);
    if (fixed != 0 && field.size != fixed) return false;
    if (field.type == FieldType::kShortString && (field.size < 2 || field.size > 256)) {
      return false;
    }
    if (field.type == FieldType::kSet8 && field.names.size() > 8) return false;
    if (field.type == FieldType::kWaeBetragArray && field.size % 10 != 0) return false;
    if (field.type == FieldType::kNested) {
      // At compile time a missing layout already fails on the dereference (and the
      // address of a header-defined layout cannot be compared there).
      if (!std::is_constant_evaluated() && field.nested == nullptr) return false;
      if (field.nested->size != field.size) return false;
    }
    expected_offset += field.size;
  }
  return expected_offset == layout.size;
}

// Finds a field by its name; a dotted path ("Header.Version", "Budget.Betrag") descends
// into nested layouts and into the parts of an amount. The result carries the offset from
// the start of the outer record. Names compare exactly.
struct FoundField {
  bool found = false;
  FieldDescriptor field{};
};

// The parts of an amount, for paths such as "Betrag.IdWaehrung".
inline constexpr FieldDescriptor kWaeBetragParts[] = {
    {"Betrag", 0, 8, FieldType::kDouble},
    {"IdWaehrung", 8, 2, FieldType::kInt16},
};
inline constexpr RecordLayout kWaeBetragLayout{"t_WaeBetrag", 10, kWaeBetragParts};
static_assert(DescribesLayoutExactly(kWaeBetragLayout));

constexpr FoundField FindField(const RecordLayout& layout, std::string_view path) {
  const std::size_t dot = path.find('.');
  const std::string_view head = path.substr(0, dot);
  for (const FieldDescriptor& field : layout.fields) {
    if (field.name != head) continue;
    if (dot == std::string_view::npos) return {true, field};
    const RecordLayout* inner = field.type == FieldType::kNested      ? field.nested
                                : field.type == FieldType::kWaeBetrag ? &kWaeBetragLayout
                                                                      : nullptr;
    if (inner == nullptr) return {};
    FoundField found = FindField(*inner, path.substr(dot + 1));
    found.field.offset += field.offset;
    return found;
  }
  return {};
}

}  // namespace korvan::data
