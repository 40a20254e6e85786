#pragma once

#include <string>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/item_calc_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The materials of the project's cost approach lines. Index "1": ID (unique).
class TTbMatP : public data::TTypedTB<t_KpMAT_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbMatP(data::TStdDb& db, char table_type = kMatTableType);

  // Ids null, factor 1, no manual value ("N"), the value in the LV's currency.
  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
};

// The standard-text identifiers of sub-items. Index "1": IDBES, IDUPOS (unique).
class TTbSIdent : public data::TTypedTB<t_KpSIDENT> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbSIdent(data::TStdDb& db, char table_type = kSIdentTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
};

// The tree of the sub-item catalogue. Index "1": ZuBg, SzBg (unique).
class TTbUpStruktur : public data::TTypedTB<t_UpStruktur> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbUpStruktur(data::TStdDb& db, char table_type = kUpStrukturTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
};

// The sub-items of the catalogue. Index "1": ID (unique).
class TTbUpBg : public data::TTypedTB<t_UpBg_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbUpBg(data::TStdDb& db, char table_type = kUpBgTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
};

}  // namespace korvan::calc
