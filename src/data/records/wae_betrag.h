#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/records/null_values.h"

namespace korvan::data {

#pragma pack(push, 1)

// A money amount with the id of its currency.
struct t_WaeBetrag {
  double Betrag;
  int16_t IdWaehrung;  // kOwnerCurrencyId: the LV's or project's currency
};

#pragma pack(pop)

static_assert(sizeof(t_WaeBetrag) == 10);
static_assert(offsetof(t_WaeBetrag, Betrag) == 0);
static_assert(offsetof(t_WaeBetrag, IdWaehrung) == 8);

// Unit-price components and other fixed series of amounts, stored back to back.
using TArray6OfWaeBetrag = std::array<t_WaeBetrag, 6>;
using TArray15OfWaeBetrag = std::array<t_WaeBetrag, 15>;

static_assert(sizeof(TArray6OfWaeBetrag) == 60);
static_assert(sizeof(TArray15OfWaeBetrag) == 150);

// Amounts differing by less than this are the same amount.
inline constexpr double kAmountTolerance = 0.0001;

}  // namespace korvan::data
