#include "app/modules/dm_lv.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/commands/lists/journal_undo.h"
#include "app/commands/lv/lv_entry_edit.h"
#include "app/commands/lv/lv_project.h"
#include "app/commands/lv/lv_totals_view.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/oz/oz_format.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "data/records/null_values.h"

namespace korvan::app {
namespace {

using data::TCData;
using data::TCDataRow;
using data::TStringList;

// Once the LV is awarded its prices are the award's, which are not typed in here.
const std::vector<std::string>& Definitions(boq::TLvPriceKind kind) {
  static const std::vector<std::string> awarded = {
      "OZ,N,0,110,20,N,0,1,1,0,0,,0,1,48001,,,,,,",
      "Art,N,1,40,1,N,0,1,0,1,0,,0,1,48002,,,,,,",
      "Kurztext,N,2,320,70,N,0,1,1,0,0,,0,1,48003,,,,,,",
      "Menge,R,3,90,14,N,3,1,1,0,0,,0,1,48004,,,,,,",
      "Einheit,N,4,60,6,N,0,1,1,0,0,,0,1,48005,,,,,,",
      "Vergabe-EP,W,5,90,14,N,2,1,0,1,0,,0,1,48008,,,,,,",
      "Vergabe-GP,W,6,110,16,N,2,1,0,1,0,,0,1,48009,,,,,,",
  };
  if (kind == boq::TLvPriceKind::kAward) return awarded;
  // The second layout flag says which columns take typed values.
  static const std::vector<std::string> definitions = {
      "OZ,N,0,110,20,N,0,1,1,0,0,,0,1,48001,,,,,,",
      "Art,N,1,40,1,N,0,1,0,1,0,,0,1,48002,,,,,,",
      "Kurztext,N,2,320,70,N,0,1,1,0,0,,0,1,48003,,,,,,",
      "Menge,R,3,90,14,N,3,1,1,0,0,,0,1,48004,,,,,,",
      "Einheit,N,4,60,6,N,0,1,1,0,0,,0,1,48005,,,,,,",
      "EP,W,5,90,14,N,2,1,1,0,0,,0,1,48006,,,,,,",
      "GP,W,6,110,16,N,2,1,0,1,0,,0,1,48007,,,,,,",
  };
  return definitions;
}

std::string Amount(const std::optional<double>& value) {
  return value ? GermanFigure(*value, "%.2f") : std::string();
}

// A typed number, or UsageError naming the column.
double TypedNumber(const std::string& text, const char* column) {
  const std::optional<double> value = ParseGermanNumber(text);
  if (!value) throw UsageError("\"" + text + "\" ist keine Zahl (Spalte " + column + ").");
  return *value;
}

}  // namespace

TdmLv::TdmLv(std::string data_dir, std::string project, int32_t lv_id)
    : TSTDdataModule(kCDataId, "LV"),
      data_dir_(std::move(data_dir)),
      project_(std::move(project)),
      lv_id_(lv_id) {
  CData1.SetStruktur(Definitions(price_kind_));
}

void TdmLv::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions(price_kind_);
}

void TdmLv::Read() {
  LvProject target(data_dir_, project_);
  data::TStdDb& db = target.Db(false);
  list_ = boq::LoadLvPosList(db, target.TextDb(), lv_id_, true);
  double total = 0.0;
  price_kind_ = boq::PriceKindOfStatus(list_.FLv().Status);
  figures_ = boq::PriceFigures(list_, price_kind_, &total);
  const int16_t currency = list_.FLv().IdWae;
  total_text_ =
      GermanMoney(total) + " " +
      target.CurrencySymbol(currency != data::kOwnerCurrencyId ? currency : target.Currency());
  const boq::TAvaUiValueConverter converter({}, {});
  cells_.clear();
  for (int i = 0; i < list_.Count(); ++i) {
    const boq::TLvPos& entry = list_[i];
    const boq::TLvEntryFigures& figure = figures_[static_cast<size_t>(i)];
    cells_.push_back(
        {entry.LvBgBeschr.OZ.Get(), std::string(1, entry.Kind()), entry.ShortText,
         figure.quantity ? QuantityText(entry, *figure.quantity, target.Units(), converter) : "",
         entry.Unit, Amount(figure.unit_price), Amount(figure.total)});
  }
}

void TdmLv::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  try {
    Read();
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    rmax = -1;
    return;
  }
  CData1.SetStruktur(Definitions(price_kind_));
  for (int i = 0; i < list_.Count(); ++i) {
    rows.push_back(TCDataRow{.Key = std::to_string(list_[i].Struktur.IdBgBeschr),
                             .ZArt = list_[i].Kind(),
                             .Level = figures_[static_cast<size_t>(i)].depth});
  }
  rmax = static_cast<int>(rows.size());
}

void TdmLv::CData1C_OnGetDaten(TCData&, int z, TStringList& t, bool&, char&, char& zart) {
  const int index = EntryOf(z);
  if (index < 0 || index >= list_.Count()) return;
  t = cells_[static_cast<size_t>(index)];
  zart = list_[index].Kind();
}

// Only the columns the user changed are taken, each checked as `korvan lv set` checks it.
void TdmLv::CData1C_OnPutDaten(TCData&, int z, TStringList& t, const TStringList& old, char,
                               bool& ok) {
  const int32_t id = EntryIdOf(z);
  auto changed = [&](Column column) { return t[column] != old[column]; };
  EntryValues values;
  std::optional<std::string> new_oz;
  try {
    if (changed(cKurztext)) values.short_text = t[cKurztext];
    if (changed(cMenge)) values.qty = t[cMenge].empty() ? 0.0 : TypedNumber(t[cMenge], "Menge");
    if (changed(cEp)) values.unit_price = t[cEp].empty() ? 0.0 : TypedNumber(t[cEp], "EP");
    if (changed(cEinheit)) values.unit = t[cEinheit];
    if (changed(cOz)) new_oz = t[cOz];
  } catch (const UsageError& error) {
    last_error_ = error.what();
    ok = false;
    return;
  }
  ok = Edit("Eintrag ändern", [&](boq::TLVPosList& list, LvProject& target) {
    const int index = list.SearchItemIndexByIdLvBgBeschr(id);
    if (index < 0) throw CommandError("Der Eintrag ist nicht mehr im LV.");
    ApplyEntryValues(values, list[index], target);
    if (new_oz) list[index].SetOz(boq::FormLvOZ(*new_oz, list.FOzMask().FMask()));
  });
}

void TdmLv::CData1C_OnDeleteZeile(TCData&, int z, const std::string&, data::TOnDeleteMode,
                                  bool& ok) {
  const int32_t id = EntryIdOf(z);
  ok = Edit("Eintrag entfernen", [&](boq::TLVPosList& list, LvProject&) {
    const int index = list.SearchItemIndexByIdLvBgBeschr(id);
    if (index < 0) throw CommandError("Der Eintrag ist nicht mehr im LV.");
    if (std::string problem = boq::RemoveEntry(list, index); !problem.empty())
      throw CommandError("Der Eintrag bleibt: " + problem + ".");
  });
}

bool TdmLv::Edit(const std::string& caption, const EditFunction& edit) {
  last_error_.clear();
  last_warnings_.clear();
  try {
    LvProject target(data_dir_, project_);
    target.Db(true);
    std::ostringstream warnings;
    EditLvInOneStep(
        target, lv_id_, caption, false, false, [&](boq::TLVPosList& list) { edit(list, target); },
        warnings);
    last_warnings_ = warnings.str();
    return true;
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    return false;
  }
}

bool TdmLv::EditAndReload(const std::string& caption, const EditFunction& edit) {
  const bool done = Edit(caption, edit);
  const std::string why = last_error_;
  const bool read = Reload();
  if (!done) last_error_ = why;
  return done && read;
}

bool TdmLv::Reload() {
  if (CData1.ListOperation(0, data::loReload) == data::TListOpResult::Done) return true;
  if (last_error_.empty()) last_error_ = CData1.LastError();
  return false;
}

std::string TdmLv::TotalText() const {
  return total_text_;
}

std::string TdmLv::LongText(int z) const {
  const int index = EntryOf(z);
  if (index < 0 || index >= list_.Count() || list_[index].LongText.empty()) return {};
  return boq::PlainView(boq::ReadRtf(list_[index].LongText).text);
}

int32_t TdmLv::EntryIdOf(int z) const {
  const int index = EntryOf(z);
  if (index < 0 || index >= list_.Count()) return data::kNullId;
  return list_[index].Struktur.IdBgBeschr;
}

int TdmLv::RowOfEntry(int32_t id) const {
  const int index = list_.SearchItemIndexByIdLvBgBeschr(id);
  return index < 0 ? 0 : index + 1;
}

bool TdmLv::AddEntry(int z, char kind) {
  const int32_t at = EntryIdOf(z);
  std::set<int32_t> before;
  for (const boq::TLvPos& entry : list_.Entries()) before.insert(entry.Struktur.IdBgBeschr);
  last_added_ = data::kNullId;
  const bool done = EditAndReload("Eintrag anfügen", [&](boq::TLVPosList& list, LvProject&) {
    boq::TLvPlace place;
    const int index = at == data::kNullId ? -1 : list.SearchItemIndexByIdLvBgBeschr(at);
    if (index >= 0) {
      const bool under = list[index].IsGroup() && kind != 'B';
      place = {under ? boq::TLvPlace::Kind::kUnder : boq::TLvPlace::Kind::kAfter, index};
    }
    boq::AddEntry(list, boq::NewLvPos(kind), place);
  });
  // The new entry is the one whose id the LV did not have before.
  for (const boq::TLvPos& entry : list_.Entries()) {
    if (!before.contains(entry.Struktur.IdBgBeschr)) last_added_ = entry.Struktur.IdBgBeschr;
  }
  return done;
}

std::vector<int> TdmLv::Siblings(int index) const {
  std::vector<int> siblings;
  list_.GetItemsForSameParent(list_[index].Struktur, &siblings);
  return siblings;
}

bool TdmLv::MoveUp(int z) {
  const int index = EntryOf(z);
  if (index < 0 || index >= list_.Count()) return false;
  const std::vector<int> siblings = Siblings(index);
  const auto at = std::find(siblings.begin(), siblings.end(), index);
  if (at == siblings.begin() || at == siblings.end()) {
    last_error_ = "Der Eintrag steht schon als erster in seiner Gruppe.";
    return false;
  }
  // Up is the entry before it moved behind it.
  const int32_t before = list_[*(at - 1)].Struktur.IdBgBeschr;
  const int32_t self = list_[index].Struktur.IdBgBeschr;
  return Move(before, self);
}

bool TdmLv::MoveDown(int z) {
  const int index = EntryOf(z);
  if (index < 0 || index >= list_.Count()) return false;
  const std::vector<int> siblings = Siblings(index);
  const auto at = std::find(siblings.begin(), siblings.end(), index);
  if (at == siblings.end() || at + 1 == siblings.end()) {
    last_error_ = "Der Eintrag steht schon als letzter in seiner Gruppe.";
    return false;
  }
  return Move(list_[index].Struktur.IdBgBeschr, list_[*(at + 1)].Struktur.IdBgBeschr);
}

bool TdmLv::Move(int32_t entry, int32_t behind) {
  return EditAndReload("Eintrag verschieben", [&](boq::TLVPosList& list, LvProject&) {
    const int index = list.SearchItemIndexByIdLvBgBeschr(entry);
    const int after = list.SearchItemIndexByIdLvBgBeschr(behind);
    if (index < 0 || after < 0) throw CommandError("Der Eintrag ist nicht mehr im LV.");
    if (std::string problem = boq::MoveEntry(list, index, after); !problem.empty())
      throw CommandError("Der Eintrag bleibt: " + problem + ".");
  });
}

bool TdmLv::Renumber() {
  return EditAndReload("Positionsnumerierung",
                       [](boq::TLVPosList& list, LvProject&) { boq::RenumberLv(list); });
}

bool TdmLv::Undo() {
  return JournalStep(false);
}
bool TdmLv::Redo() {
  return JournalStep(true);
}

bool TdmLv::JournalStep(bool redo) {
  last_error_.clear();
  last_message_.clear();
  bool done = false;
  try {
    const JournalStepOutcome outcome = TakeJournalStep(data_dir_, redo);
    done = outcome.done;
    last_message_ = outcome.text;
    if (!done) last_error_ = outcome.text;
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
  }
  const std::string why = last_error_;
  const bool read = Reload();
  if (!why.empty()) last_error_ = why;
  return done && read;
}

}  // namespace korvan::app
