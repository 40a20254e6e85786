#pragma once

#include <string_view>

#include "data/records/framework_records.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

inline constexpr char kCounterTableType = 'Z';

// Id counters: for a kind letter and a name, the last id handed out. One index:
// KzBezug + Kennung (11 characters).
class TTbCounter : public TTypedTB<t_Counter> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbCounter(TStdDb& db, char table_type = kCounterTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  // Integrity rules (see data_check.h).
  using TStdTB::DoValidateRecord;
  void DoValidateRecord(TDataCheck& check) override;

  // Hands out the next id of a counter (LastId + 1) and stores it; a counter that does
  // not exist yet starts at 1. The counter record is locked meanwhile, so that two users
  // never get the same id. 0 or a kernel code.
  int NextId(char kz_bezug, std::string_view kennung, int32_t* id);
  // Hands out `count` ids at once, *first .. *first + count - 1, with one update of the
  // counter: 0, or a kernel code (4357 when the ids would pass the 32-bit range).
  int NextIds(char kz_bezug, std::string_view kennung, int32_t count, int32_t* first);
  // The last id handed out (0 when the counter does not exist).
  int32_t LastId(char kz_bezug, std::string_view kennung);

  // The key string of a counter: the letter and the name in 10 characters.
  static std::string CounterKey(char kz_bezug, std::string_view kennung);
};

}  // namespace korvan::data
