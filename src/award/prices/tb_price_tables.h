#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "award/prices/price_records.h"
#include "data/tables/std_tb.h"

namespace korvan::award {

// The price levels. Index "1": Id (unique); "2": the name's first 50 bytes, Id.
class TTbPrNiveau : public data::TTypedTB<t_PrNiveau> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbPrNiveau(data::TStdDb& db);

  // Ids none, created and changed today.
  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  bool Find(int32_t id);
  // The level of exactly this name.
  std::optional<t_PrNiveau> FindByName(const std::string& name);
};

// The price entries. Index "1": Id (unique); "2": IdPrNiveau, IdBezug (the entry of an item
// at a level); "3": IdIdxBezug, Id (the entries relative to a base entry).
class TTbPrEntry : public data::TTypedTB<t_PrEntry> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbPrEntry(data::TStdDb& db);

  // Ids none, factor 1 (100 %), the price 0 in the owner's currency, created today.
  void InitRecord() override;
  char GetMaxIndex() const override { return '3'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  bool Find(int32_t id);
  // The entry of a catalog item or price group at a level.
  bool FindOf(int32_t level, int32_t item);
};

}  // namespace korvan::award
