#pragma once

#include <string>

#include "boq/text/text_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

inline constexpr char kTextHeaderTableType = 'H';

// Long-text headers. Index "1": Id (unique); index "2": IdBezug + KzBezug + IdLang, the
// long text of an owner in a language. Deleting a header deletes its lines and, for the
// long and short texts of a description (kinds 'L' and 'K'), the complements of that
// text with their texts.
class TTbTextHeader : public data::TTypedTB<t_Textheader> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbTextHeader(data::TStdDb& db, char table_type = kTextHeaderTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  int DeleteRec() override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  static std::string OwnerKey(int32_t id_bezug, char kz_bezug, int16_t id_lang);
  // Deletes every long text of an owner of one kind (all languages); 0 or a code.
  int DeleteOwner(int32_t id_bezug, char kz_bezug);
};

}  // namespace korvan::boq
