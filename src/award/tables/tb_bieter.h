#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "award/tables/award_table_types.h"
#include "award/tables/bieter_record.h"
#include "data/tables/std_tb.h"

namespace korvan::award {

// The bidders of the LVs. Index "1": ID (unique); "2": IDLv, SzLv (the bidders of one LV
// in order); "3": the address link, IdAdresse, ID. Deleting a bidder deletes its bid
// lines and, with a text database, its texts.
class TTbBieter : public data::TTypedTB<t_Bieter_DB_VERSION_3100> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbBieter(data::TStdDb& db, data::TStdDb* text_db = nullptr,
                     char table_type = kBieterTableType);

  // Ids none, amounts 0 in the LV's currency, VAT and currency factor not set, the
  // exchange-rate date today, status {bidsBlanko}, cash-discount days in calendar days.
  void InitRecord() override;
  char GetMaxIndex() const override { return '3'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  int DeleteRec() override;

  // Prepares a new bidder of the LV in the current record: a new id and the next running
  // number of the LV. 0 or a kernel code; the caller writes it with UpDateRec.
  int NewBieter(int32_t lv, const std::string& name);
  bool Find(int32_t id);
  // The bidders of an LV in their order.
  std::vector<t_Bieter_DB_VERSION_3100> ListOfLv(int32_t lv);
  // Deletes every bidder of the LV with its lines; 0 or the first kernel code.
  int DeleteAllOfLv(int32_t lv);

 private:
  data::TStdDb* text_db_;
};

// Deletes the texts of a bidder from the text database: its address, its text additions
// and the comments of its bid lines (read from `lv_db`); 0 or a kernel code.
int DeleteBidderTexts(data::TStdDb& lv_db, data::TStdDb& text_db, int32_t bidder);

}  // namespace korvan::award
