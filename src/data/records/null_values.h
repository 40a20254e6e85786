#pragma once

#include <cstdint>

namespace korvan::data {

// Marker values stored in records for "not set" and "use the default".

// An unset 32-bit id. In keys it is written as pad bytes (0x04), which match anything in a
// search pattern; in the byte order of the key tree they sort before every real id.
inline constexpr int32_t kNullId = 2147483647;
// An unset 16-bit id.
inline constexpr int16_t kNullId16 = 32767;
// The parent id of a top-level LV group: "root" rather than "missing".
inline constexpr int32_t kRootParentId = kNullId - 1;
// A currency id meaning "the currency of the LV or project".
inline constexpr int16_t kOwnerCurrencyId = -1;
// A percentage meaning "take the project or system default".
inline constexpr double kDefaultPercent = -1.0;

constexpr bool IsNullId(int32_t id) {
  return id == kNullId;
}
constexpr bool IsNullId16(int16_t id) {
  return id == kNullId16;
}

// A Boolean byte that may also say "neither: take the default from the project or
// system settings".
enum class TriState : uint8_t { kFalse = 0, kTrue = 1, kDefault = 128 };

inline constexpr uint8_t kTriStateDefaultByte = static_cast<uint8_t>(TriState::kDefault);

// Reads a stored tri-state byte. Bytes other than 0, 1 and 128 come only from damaged or
// foreign data; they read as kDefault so that the configured default applies.
constexpr TriState DecodeTriState(uint8_t stored) {
  if (stored == 0) return TriState::kFalse;
  if (stored == 1) return TriState::kTrue;
  return TriState::kDefault;
}

constexpr bool IsValidTriStateByte(uint8_t stored) {
  return stored == 0 || stored == 1 || stored == kTriStateDefaultByte;
}

// The effective value of a tri-state flag, given the default that applies to it.
constexpr bool ResolveTriState(uint8_t stored, bool default_value) {
  switch (DecodeTriState(stored)) {
    case TriState::kFalse:
      return false;
    case TriState::kTrue:
      return true;
    case TriState::kDefault:
      break;
  }
  return default_value;
}

// A stored Boolean byte: 0 is false, anything else reads as true (as any byte other than
// 0 does in the records' own language); IsValidBoolByte tells the checker about others.
constexpr bool DecodeBool(uint8_t stored) {
  return stored != 0;
}
constexpr bool IsValidBoolByte(uint8_t stored) {
  return stored <= 1;
}

}  // namespace korvan::data
