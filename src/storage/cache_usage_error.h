#pragma once

#include <stdexcept>

namespace korvan::storage {

// A caller broke the protocol of the block cache ("No write before read", "No release
// before read", a registration that is not open) or the cache's bookkeeping contradicts
// itself ("Bufferindex not found"). These are programming errors, never results.
class CacheUsageError : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

}  // namespace korvan::storage
