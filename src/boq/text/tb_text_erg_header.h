#pragma once

#include <string>

#include "boq/text/text_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

inline constexpr char kTextErgHeaderTableType = 'G';

// Headers of text complements. Index "1": Id (unique); index "2": IdBezug + KzBezug +
// IdBieter + IdLang + TErgStart, the complements of an owner's text for one bidder;
// index "3": KzBezug + IdBieter + IdBezug + IdLang + TErgStart, a bidder's complements.
// Deleting a header deletes its complement text lines.
class TTbTextErgHeader : public data::TTypedTB<t_TextErgHeader_201501> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;  // the layout of 2015-01

  explicit TTbTextErgHeader(data::TStdDb& db, char table_type = kTextErgHeaderTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '3'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  int DeleteRec() override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // The index "2" pattern of an owner's complements for a bidder (null id: the client).
  static std::string OwnerKey(int32_t id_bezug, char kz_bezug, int32_t id_bieter, int16_t id_lang);
  // Deletes the complements of an owner's text for every bidder and language; 0 or a code.
  int DeleteOwner(int32_t id_bezug, char kz_bezug);
};

}  // namespace korvan::boq
