#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "boq/model/lv_entry_totals.h"
#include "boq/model/lv_pos_list.h"
#include "data/component/std_data_module.h"
#include "data/records/null_values.h"

// The entries of one LV as a list a window drives (TdmLv): one row per entry in document
// order, its level in the OZ tree, its values in the columns OZ, Art, Kurztext, Menge,
// Einheit, EP and GP. Every change goes the way of `korvan lv`: the LV is loaded, changed,
// saved with its sums as one step of the installation's journal, and the rows are read
// again, so that numbers and totals show what is stored.
namespace korvan::app {

class LvProject;

class TdmLv : public data::TSTDdataModule {
 public:
  static constexpr int kCDataId = 48000;
  enum Column { cOz, cArt, cKurztext, cMenge, cEinheit, cEp, cGp, kColumnCount };

  TdmLv(std::string data_dir, std::string project, int32_t lv_id);

  // The LV as last read, with its long texts.
  const boq::TLVPosList& Lv() const { return list_; }
  // The prices the rows show: the award's once the LV is awarded or billed, else the
  // estimate's (the only ones typed in here).
  boq::TLvPriceKind PriceKind() const { return price_kind_; }
  // The LV's total in those prices with its currency, "12.345,67 EUR".
  std::string TotalText() const;
  // The long text of row z as plain text; empty when it has none.
  std::string LongText(int z) const;
  // The entry index of row z in Lv().
  int EntryOf(int z) const { return z - 1; }
  // The row of the entry with this id (IdBgBeschr), 0 when none.
  int RowOfEntry(int32_t id) const;
  int32_t EntryIdOf(int z) const;

  // The edits a window offers besides typing into cells. Each is one step of the journal;
  // false with LastError() (German) when refused, and then nothing changed.
  //
  // A new entry of `kind`: under row z when that row is a group and the new entry no
  // group, otherwise behind row z with its sub-entries; z = 0 at the end.
  bool AddEntry(int z, char kind);
  // The id of the entry the last AddEntry made; the null id when it made none.
  int32_t LastAdded() const { return last_added_; }
  // Row z with its sub-entries one place up or down among the entries of its group.
  bool MoveUp(int z);
  bool MoveDown(int z);
  bool Renumber();
  // Takes back or makes again the newest step of the installation's journal, whatever
  // list made it; LastMessage() says what happened.
  bool Undo();
  bool Redo();

  // Reads the LV and its rows again; false with LastError() when it cannot be read.
  bool Reload();

  const std::string& LastError() const { return last_error_; }
  const std::string& LastMessage() const { return last_message_; }
  // Warnings of the last save (the sum run's), empty when none.
  const std::string& LastWarnings() const { return last_warnings_; }

 protected:
  void CData1C_OnGetStruktur(data::TCData&, int, data::TStringList& t) override;
  void CData1C_OnStrukturLesen(data::TCData&, std::vector<data::TCDataRow>& rows, int& rmax,
                               bool) override;
  void CData1C_OnGetDaten(data::TCData&, int z, data::TStringList& t, bool&, char&,
                          char& zart) override;
  void CData1C_OnPutDaten(data::TCData&, int z, data::TStringList& t, const data::TStringList& old,
                          char, bool& ok) override;
  void CData1C_OnDeleteZeile(data::TCData&, int z, const std::string&, data::TOnDeleteMode,
                             bool& ok) override;

 private:
  using EditFunction = std::function<void(boq::TLVPosList&, LvProject&)>;
  // Runs `edit` on the LV as one journal step captioned `caption`; false with LastError()
  // when it throws. The rows are left as they are: a list operation in progress still
  // counts them, so the caller reads them again when it is over.
  bool Edit(const std::string& caption, const EditFunction& edit);
  // Edit, then the rows read again.
  bool EditAndReload(const std::string& caption, const EditFunction& edit);
  bool Move(int32_t entry, int32_t behind);
  bool JournalStep(bool redo);
  void Read();
  // The entries of the group row z belongs to, as entry indexes.
  std::vector<int> Siblings(int index) const;

  std::string data_dir_;
  std::string project_;
  int32_t lv_id_;
  boq::TLVPosList list_;
  boq::TLvPriceKind price_kind_ = boq::TLvPriceKind::kEstimate;
  std::vector<boq::TLvEntryFigures> figures_;
  std::vector<std::vector<std::string>> cells_;  // per entry, per column
  std::string total_text_;
  int32_t last_added_ = data::kNullId;
  std::string last_error_;
  std::string last_message_;
  std::string last_warnings_;
};

}  // namespace korvan::app
