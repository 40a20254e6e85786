#include "billing/contract/contract_defaults.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace korvan::billing {

void TakeDefaultTerms(TVertrag& contract, const TVertrag& defaults) {
  for (const data::FieldDescriptor& field : kVertragFields) {
    if (std::find(kDefaultTermNames.begin(), kDefaultTermNames.end(), field.name) ==
        kDefaultTermNames.end()) {
      continue;
    }
    std::memcpy(reinterpret_cast<uint8_t*>(&contract) + field.offset,
                reinterpret_cast<const uint8_t*>(&defaults) + field.offset, field.size);
  }
}

}  // namespace korvan::billing
