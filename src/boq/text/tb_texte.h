#pragma once

#include <string>
#include <vector>

#include "boq/text/text_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

inline constexpr char kTexteTableType = 'T';

// How writing a short text went: stored, or refused with the reason (nothing written).
struct TShortTextResult {
  int code = 0;         // 0 or a kernel code
  std::string refused;  // German; empty when the lines fit
  bool Ok() const { return code == 0 && refused.empty(); }
};

// Short texts: single lines of up to 70 characters per owner, reference kind and
// language. Index "1": IdBezug + KzBezug + IdLang + Zeile (unique).
class TTbTexte : public data::TTypedTB<t_Texte> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  static constexpr int kLineCapacity = 70;

  explicit TTbTexte(data::TStdDb& db, char table_type = kTexteTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // The key pattern of an owner's lines of one kind (every language).
  static std::string OwnerKey(int32_t id_bezug, char kz_bezug);
  // The key pattern of an LV's name lines (kind 'L').
  static std::string FillLvKey(int32_t id_lv) { return OwnerKey(id_lv, 'L'); }

  // The lines of a text in order, as UTF-8.
  std::vector<std::string> ReadLines(int32_t id_bezug, char kz_bezug, int16_t id_lang);
  // Replaces the lines of a text. A line longer than 70 characters, or with a character
  // code page 1252 cannot hold, refuses the whole text and writes nothing.
  TShortTextResult WriteLines(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                              const std::vector<std::string>& lines);
  // Removes every line of an owner's text of one kind (all languages); 0 or a code.
  int DeleteOwner(int32_t id_bezug, char kz_bezug);
};

}  // namespace korvan::boq
