#pragma once

#include <string>
#include <string_view>

#include "boq/text/text_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

inline constexpr char kTextZeileTableType = 'L';

// Lines of long texts and complement texts: a fixed part and the text's bytes in the same
// record, so one line may hold a whole rich text. Index "1": IdHeader + KzHeader + KzTyp
// + Zeile (unique).
class TTbTextzeile : public data::TTypedTB<t_TextZeile> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbTextzeile(data::TStdDb& db, char table_type = kTextZeileTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  // The fixed part plus LENTEXT bytes.
  int RecordLength(data::RecordView record) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // The key pattern of a header's lines of one kind and type ('\0' for every type).
  static std::string LinesKey(int32_t id_header, char kz_header, char kz_typ = '\0');
  static std::string LineKey(int32_t id_header, char kz_header, char kz_typ, int16_t zeile);

  // The current line's text bytes.
  std::string Text() const;
  // Sets the current line's text and LENTEXT.
  void SetText(std::string_view bytes);

  // Removes every line of a header of one kind; 0 or a code.
  int DeleteLines(int32_t id_header, char kz_header);
};

}  // namespace korvan::boq
