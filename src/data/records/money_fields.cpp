#include "data/records/money_fields.h"

#include <cstddef>
#include <cstring>

#include "data/records/wae_betrag.h"

namespace korvan::data {
namespace {

void Visit(const RecordLayout& layout, uint32_t base, const std::function<void(uint32_t)>& visit) {
  for (const FieldDescriptor& field : layout.fields) {
    const uint32_t at = base + field.offset;
    switch (field.type) {
      case FieldType::kWaeBetrag:
        visit(at);
        break;
      case FieldType::kWaeBetragArray:
        for (uint32_t i = 0; i < field.size / sizeof(t_WaeBetrag); ++i) {
          visit(at + i * static_cast<uint32_t>(sizeof(t_WaeBetrag)));
        }
        break;
      case FieldType::kNested:
        if (field.nested != nullptr) Visit(*field.nested, at, visit);
        break;
      default:
        break;
    }
  }
}

}  // namespace

void ForEachMoneyField(const RecordLayout& layout, const std::function<void(uint32_t)>& visit) {
  Visit(layout, 0, visit);
}

void SetCurrencyIds(const RecordLayout& layout, std::span<uint8_t> record, int16_t currency_id) {
  ForEachMoneyField(layout, [&](uint32_t offset) {
    const size_t at = offset + offsetof(t_WaeBetrag, IdWaehrung);
    if (at + sizeof currency_id <= record.size()) {
      std::memcpy(record.data() + at, &currency_id, sizeof currency_id);
    }
  });
}

}  // namespace korvan::data
