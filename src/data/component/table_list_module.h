#pragma once

#include <span>
#include <string>
#include <string_view>

#include "data/component/dm_values.h"
#include "data/component/std_data_module.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

// A list with one row per record of one table. It checks every value column by column
// before anything is written, stores a row as one record and deletes rows by their key;
// a refused edit leaves the table unchanged and says why in LastError(). Derived lists
// say how a row maps to their record and name their rows in messages.
class TTableListModule : public TSTDdataModule {
 public:
  // Empty when `value` fits the column, otherwise the expected form in words.
  std::string CheckValue(int column, std::string_view value) const;
  const std::string& LastError() const { return last_error_; }

 protected:
  // `noun` names one record in messages ("Einheit" gives "Die Einheit ...").
  TTableListModule(int cdata_id, std::string name, TStdTB& table, std::span<const TValueRule> rules,
                   std::string noun);

  void CData1C_OnPutDaten(TCData& sender, int z, TStringList& t, const TStringList&, char,
                          bool& ok) override;
  void CData1C_OnDeleteZeile(TCData&, int, const std::string& key, TOnDeleteMode,
                             bool& ok) override;

  // The row count to report after the rows were read by a walk over the table's primary
  // index: `rows`, or -1 with LastError() saying where the table is damaged when the walk
  // failed or found fewer records than the data file holds, so that no list is shown
  // that silently lacks rows.
  int CheckedRowCount(int rows);

  // The unique key ("1") of the record a row of checked values describes.
  virtual std::string RowKey(const TStringList& t) const = 0;
  // Why a row cannot take a key another record already has.
  virtual std::string DuplicateText(const TStringList& t) const = 0;
  // How the messages name the record of a row, e.g. its symbol.
  virtual std::string RowName(const TStringList& t) const = 0;
  // Takes checked values into the table's current record.
  virtual void Fill(const TStringList& t) = 0;

 private:
  bool Refuse(std::string message);
  bool CheckRow(const TCData& sender, TStringList& t);
  // Whether the stored record may be overwritten: it still shows the values `shown` the
  // user edited, or the user answers the concurrency question with yes.
  bool MayOverwrite(TCData& sender, int z, const TStringList& shown);
  bool LockForStore(TCData& sender, int z);

  TStdTB& table_;
  std::span<const TValueRule> rules_;
  std::string noun_;
  std::string last_error_;
};

}  // namespace korvan::data
