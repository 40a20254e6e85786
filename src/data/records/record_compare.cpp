#include "data/records/record_compare.h"

#include <algorithm>
#include <cstring>

#include "data/records/short_string.h"

namespace korvan::data {
namespace {

template <typename T>
bool SameFloat(RecordBytes a, RecordBytes b) {
  T x, y;
  std::memcpy(&x, a.data(), sizeof(T));
  std::memcpy(&y, b.data(), sizeof(T));
  return x == y || std::memcmp(&x, &y, sizeof(T)) == 0;
}

bool SameBytes(RecordBytes a, RecordBytes b) {
  return std::ranges::equal(a, b);
}

bool SameShortString(RecordBytes a, RecordBytes b) {
  const std::size_t capacity = a.size() - 1;
  return ShortStringRaw(reinterpret_cast<const char*>(a.data()), capacity) ==
         ShortStringRaw(reinterpret_cast<const char*>(b.data()), capacity);
}

void CompareFields(const RecordLayout& layout, RecordBytes a, RecordBytes b,
                   const std::string& prefix, std::vector<std::string>* differing);

void CompareField(const FieldDescriptor& field, RecordBytes a, RecordBytes b,
                  const std::string& prefix, std::vector<std::string>* differing) {
  const std::string name = prefix + std::string(field.name);
  if (field.type == FieldType::kNested) {
    CompareFields(*field.nested, AvailableFieldBytes(field, a), AvailableFieldBytes(field, b),
                  name + ".", differing);
    return;
  }
  const bool in_a = FieldPresent(field, a);
  const bool in_b = FieldPresent(field, b);
  if (!in_a || !in_b) {
    if (in_a != in_b) differing->push_back(name);
    return;
  }
  const RecordBytes x = FieldBytes(field, a);
  const RecordBytes y = FieldBytes(field, b);
  bool same = true;
  switch (field.type) {
    case FieldType::kWaeBetrag:
      CompareFields(kWaeBetragLayout, x, y, name + ".", differing);
      return;
    case FieldType::kShortString:
      same = SameShortString(x, y);
      break;
    case FieldType::kSingle:
      same = SameFloat<float>(x, y);
      break;
    case FieldType::kDouble:
    case FieldType::kDateTime:
      same = SameFloat<double>(x, y);
      break;
    default:
      same = SameBytes(x, y);
      break;
  }
  if (!same) differing->push_back(name);
}

void CompareFields(const RecordLayout& layout, RecordBytes a, RecordBytes b,
                   const std::string& prefix, std::vector<std::string>* differing) {
  for (const FieldDescriptor& field : layout.fields) CompareField(field, a, b, prefix, differing);
}

}  // namespace

std::vector<std::string> DifferingFields(const RecordLayout& layout, RecordBytes a, RecordBytes b,
                                         const RecordCompareOptions& options) {
  std::vector<std::string> differing;
  for (const FieldDescriptor& field : layout.fields) {
    const bool is_header = field.offset == 0 && field.nested != nullptr && field.name == "Header";
    if (options.skip_header && is_header) continue;
    CompareField(field, a, b, "", &differing);
  }
  return differing;
}

}  // namespace korvan::data
