#include "boq/model/lv_pos_list_io.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <unordered_map>

#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_beschr.h"
#include "boq/lv/tb_lv.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "boq/lv/tb_struktur.h"
#include "boq/model/lv_references.h"
#include "boq/qty/item_quantities.h"
#include "boq/text/long_text_store.h"
#include "boq/text/tb_text_header.h"
#include "boq/text/tb_texte.h"
#include "boq/vars/variable_codes.h"
#include "data/common/result_code_text.h"
#include "data/records/null_values.h"
#include "data/tables/batch_hold.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;

namespace {

// Entries (groups and items share one id space: the structure rows are unique by it)
// and descriptions get their ids from counters of the LV database.
constexpr char kEntryCounterKind = 'L';
constexpr std::string_view kEntryCounterName = "LvBgBeschr";
constexpr std::string_view kDescriptionCounterName = "Beschr";
constexpr char kShortTextKind = 'K';
constexpr char kLongTextKind = 'L';

[[noreturn]] void Fail(const data::TStdDb& db, const std::string& what, int code = 0,
                       const data::TStdTB* table = nullptr) {
  std::string text = db.BasePath() + "0: " + what;
  if (code != 0) text += ": " + data::ResultCodeText(code);
  if (table != nullptr && !table->LastErrorText().empty())
    text += " (" + table->LastErrorText() + ")";
  throw EStoredLvError(text);
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) text += (i == 0 ? "" : "\n") + lines[i];
  return text;
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  if (text.empty()) return lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string RowName(const t_Struktur& row) {
  return "Strukturzeile " + std::to_string(row.IdBgBeschr) + " (Art " +
         std::string(1, row.KzBgBeschr == '\0' ? '?' : row.KzBgBeschr) + ")";
}

// Stores the table's current record when its data (everything after the header)
// differs from `before`, or when it is new.
template <class Table, class Record>
void WriteIfChanged(data::TStdDb& db, Table& table, bool existed, const Record& before,
                    const std::string& what) {
  if (existed &&
      std::memcmp(reinterpret_cast<const uint8_t*>(&before) + sizeof(data::TDbRecordHeader),
                  reinterpret_cast<const uint8_t*>(&table.Rec()) + sizeof(data::TDbRecordHeader),
                  sizeof(Record) - sizeof(data::TDbRecordHeader)) == 0) {
    return;
  }
  if (int result = table.UpDateRec(); result != storage::kOk) {
    Fail(db, what + " kann nicht gespeichert werden", result, &table);
  }
}

class ListWriter {
 public:
  ListWriter(data::TStdDb& lv_db, data::TStdDb* text_db, TLVPosList& list,
             const DescriptionRemoved& on_removed)
      : db_(lv_db),
        text_db_(text_db),
        list_(list),
        on_removed_(on_removed),
        rows_(lv_db),
        groups_(lv_db),
        items_(lv_db),
        descriptions_(lv_db),
        counters_(lv_db) {}

  void Run() {
    const int32_t lv_id = list_.FLv().FId;
    std::map<int32_t, t_Struktur> stored = StoredRows(lv_id);
    std::map<int32_t, int32_t> children_of;
    data::TBatchHold batch({&db_, text_db_});
    const std::map<int32_t, int32_t> new_ids = GiveNewIds();
    for (int i = 0; i < list_.Count(); ++i) {
      TLvPos& entry = list_[i];
      // Entries placed below or referring to new entries name them by their temporary
      // ids until these get their real ones.
      const auto renamed = [&new_ids](int32_t id) {
        const auto found = new_ids.find(id);
        return found == new_ids.end() ? id : found->second;
      };
      entry.Struktur.ZuBg = renamed(entry.Struktur.ZuBg);
      entry.Struktur.ZuPos = renamed(entry.Struktur.ZuPos);
      for (TLvPosRef& ref : entry.RefIDs) ref.Id = renamed(ref.Id);
      ReferencesIntoRecord(entry);
      entry.LvBgBeschr.ID = entry.Struktur.IdBgBeschr;
      entry.Struktur.IdLv = lv_id;
      entry.Struktur.SzLv = i + 1;
      entry.Struktur.SzBg = ++children_of[entry.Struktur.ZuBg];
      const auto old = stored.find(entry.Struktur.IdBgBeschr);
      const bool existed = old != stored.end();
      if (existed && old->second.KzBgBeschr != entry.Kind() &&
          (old->second.KzBgBeschr == 'B') != entry.IsGroup()) {
        DeleteData(old->second);
      }
      if (NeedsDescription(entry)) {
        entry.LvBgBeschr.IDBeschr = NewDescription(entry);
      } else {
        WriteUnit(entry);
      }
      entry.UnitChanged = false;
      WriteData(entry);
      WriteRow(entry);
      if (text_db_ != nullptr) WriteTexts(entry);
      if (existed) stored.erase(old);
      EndOfStep(batch.Step());
    }
    for (const auto& [id, row] : stored) {
      DeleteRow(id, row);
      EndOfStep(batch.Step());
    }
    EndOfStep(batch.Finish());
    CountReferences(list_);
  }

 private:
  void EndOfStep(int batch_result) {
    if (batch_result != storage::kOk) {
      Fail(db_,
           "die Einträge des LV " + std::to_string(list_.FLv().FId) +
               " können nicht auf die Platte geschrieben werden",
           batch_result);
    }
  }

  // New entries carry no id or a temporary one below zero; they get their ids first, in
  // list order. Returns the temporary ids with the real ones.
  std::map<int32_t, int32_t> GiveNewIds() {
    const auto is_new = [](const TLvPos& entry) {
      return entry.Struktur.IdBgBeschr <= 0 || entry.Struktur.IdBgBeschr == kNullId;
    };
    ReservedIds entry_ids = Reserve(
        kEntryCounterName, std::count_if(list_.Entries().begin(), list_.Entries().end(), is_new));
    description_ids_ =
        Reserve(kDescriptionCounterName,
                std::count_if(list_.Entries().begin(), list_.Entries().end(),
                              [this](const TLvPos& entry) { return NeedsDescription(entry); }));
    std::map<int32_t, int32_t> new_ids;
    for (TLvPos& entry : list_.Entries()) {
      if (!is_new(entry)) continue;
      const int32_t old = entry.Struktur.IdBgBeschr;
      entry.Struktur.IdBgBeschr = TakeId(entry_ids, kEntryCounterName);
      if (old < 0) new_ids[old] = entry.Struktur.IdBgBeschr;
    }
    return new_ids;
  }

  // Ids reserved at once: one counter update (and one step of the journal) for all new
  // entries instead of one each.
  struct ReservedIds {
    int32_t next = 0;
    int32_t end = 0;
  };
  ReservedIds Reserve(std::string_view counter, std::ptrdiff_t count) {
    if (count <= 0 || count > INT32_MAX) return {};
    int32_t first = 0;
    if (int result =
            counters_.NextIds(kEntryCounterKind, counter, static_cast<int32_t>(count), &first);
        result != storage::kOk) {
      Fail(db_, "keine neuen Nummern für Einträge", result, &counters_);
    }
    return {first, first + static_cast<int32_t>(count)};
  }
  int32_t TakeId(ReservedIds& ids, std::string_view counter) {
    return ids.next < ids.end ? ids.next++ : NextId(counter);
  }

  std::map<int32_t, t_Struktur> StoredRows(int32_t lv_id) {
    std::vector<std::vector<uint8_t>> records;
    if (int result = rows_.GetBatch(KeyNumber(lv_id), '2', records); result != storage::kOk) {
      Fail(db_, "die Einträge des LV " + std::to_string(lv_id) + " können nicht gelesen werden",
           result, &rows_);
    }
    std::map<int32_t, t_Struktur> rows;
    for (const std::vector<uint8_t>& record : records) {
      const t_Struktur row = TTbStruktur::Of(record);
      rows[row.IdBgBeschr] = row;
    }
    return rows;
  }

  int32_t NextId(std::string_view counter) {
    int32_t id = 0;
    if (int result = counters_.NextId(kEntryCounterKind, counter, &id); result != storage::kOk) {
      Fail(db_, "keine neue Nummer für einen Eintrag", result, &counters_);
    }
    return id;
  }

  bool NeedsDescription(const TLvPos& entry) const {
    if (entry.LvBgBeschr.IDBeschr != kNullId) return false;
    const bool has_texts =
        !entry.ShortText.empty() || (entry.LongTextChanged && !entry.LongText.empty());
    return (text_db_ != nullptr && has_texts) || (entry.UnitChanged && !entry.Unit.empty()) ||
           entry.DescriptionWanted;
  }

  // A new description carries the entry's unit from the start.
  int32_t NewDescription(const TLvPos& entry) {
    descriptions_.InitRecord();
    descriptions_.Rec().Id = TakeId(description_ids_, kDescriptionCounterName);
    descriptions_.Rec().Einheit.Set(entry.Unit);
    descriptions_.Rec().IdEinheit = entry.UnitId;
    if (int result = descriptions_.UpDateRec(); result != storage::kOk) {
      Fail(db_, "die Beschreibung eines Eintrags kann nicht gespeichert werden", result,
           &descriptions_);
    }
    return descriptions_.Rec().Id;
  }

  void WriteUnit(const TLvPos& entry) {
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    if (!entry.UnitChanged || description == kNullId) return;
    if (!descriptions_.GetKey(KeyNumber(description), '1'))
      Fail(db_, "die Beschreibung " + std::to_string(description) + " fehlt");
    const t_Beschr_DB_VERSION_201601 before = descriptions_.Rec();
    descriptions_.Rec().Einheit.Set(entry.Unit);
    descriptions_.Rec().IdEinheit = entry.UnitId;
    WriteIfChanged(db_, descriptions_, true, before, "Beschreibung " + std::to_string(description));
  }

  void WriteData(const TLvPos& entry) {
    const std::string key = KeyNumber(entry.Struktur.IdBgBeschr);
    if (entry.IsGroup()) {
      const bool existed = groups_.GetKey(key, '1');
      if (!existed) groups_.InitRecord();
      const t_LVBg_3000 before = groups_.Rec();
      groups_.Rec().LvBgBeschr1 = entry.LvBgBeschr;
      groups_.Rec().LvBg2 = entry.LvBg;
      WriteIfChanged(db_, groups_, existed, before, "Gruppe " + std::string(entry.Oz()));
    } else {
      const bool existed = items_.GetKey(key, '1');
      if (!existed) items_.InitRecord();
      const t_LVBeschr_3000 before = items_.Rec();
      items_.Rec().LvBgBeschr1 = entry.LvBgBeschr;
      items_.Rec().LvBeschr2 = entry.LvBeschr;
      WriteIfChanged(db_, items_, existed, before, "Eintrag " + std::string(entry.Oz()));
    }
  }

  void WriteRow(const TLvPos& entry) {
    const bool existed = rows_.GetKey(KeyNumber(entry.Struktur.IdBgBeschr), '1');
    if (!existed) rows_.InitRecord();
    const t_Struktur before = rows_.Rec();
    const data::TDbRecordHeader header = rows_.Rec().Header;
    rows_.Rec() = entry.Struktur;
    rows_.Rec().Header = header;
    WriteIfChanged(db_, rows_, existed, before, RowName(entry.Struktur));
  }

  void WriteTexts(const TLvPos& entry) {
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    if (description == kNullId) return;
    TTbTexte short_texts(*text_db_);
    if (JoinLines(short_texts.ReadLines(description, kShortTextKind, kEntryTextLanguage)) !=
        entry.ShortText) {
      const TShortTextResult written = short_texts.WriteLines(
          description, kShortTextKind, kEntryTextLanguage, SplitLines(entry.ShortText));
      if (!written.Ok()) {
        Fail(*text_db_,
             "der Kurztext von " + std::string(entry.Oz()) + " kann nicht gespeichert werden" +
                 (written.refused.empty() ? "" : ": " + written.refused),
             written.code, &short_texts);
      }
    }
    if (!entry.LongTextChanged) return;
    TLongTextStore long_texts(*text_db_);
    const TLongText stored = long_texts.Read(description, kLongTextKind, kEntryTextLanguage);
    if (stored.found && stored.rich_text == entry.LongText) return;
    if (int result = long_texts.Store(description, kLongTextKind, kEntryTextLanguage,
                                      entry.LongText, stored.complements);
        result != storage::kOk) {
      Fail(*text_db_,
           "der Langtext von " + std::string(entry.Oz()) + " kann nicht gespeichert werden",
           result);
    }
  }

  int32_t DescriptionOf(const t_Struktur& row) {
    const std::string key = KeyNumber(row.IdBgBeschr);
    if (row.KzBgBeschr == 'B')
      return groups_.GetKey(key, '1') ? groups_.Rec().LvBgBeschr1.IDBeschr : kNullId;
    return items_.GetKey(key, '1') ? items_.Rec().LvBgBeschr1.IDBeschr : kNullId;
  }

  // The group or item of a row whose kind moved it to the other table.
  void DeleteData(const t_Struktur& row) {
    const std::string key = KeyNumber(row.IdBgBeschr);
    data::TStdTB& table = row.KzBgBeschr == 'B' ? static_cast<data::TStdTB&>(groups_) : items_;
    if (!table.GetKey(key, '1')) return;
    const std::vector<int32_t> variables =
        row.KzBgBeschr == 'B' ? std::vector<int32_t>{} : VariablesOfItem(db_, row.IdBgBeschr);
    // The description goes on with the entry: detach it before the record goes.
    if (row.KzBgBeschr == 'B') {
      groups_.Rec().LvBgBeschr1.IDBeschr = kNullId;
    } else {
      items_.Rec().LvBgBeschr1.IDBeschr = kNullId;
    }
    if (int result = table.UpDateRec(); result != storage::kOk)
      Fail(db_, RowName(row), result, &table);
    if (int result = table.DeleteRec(); result != storage::kOk)
      Fail(db_, RowName(row), result, &table);
    DeleteVariableLines(row, variables);
  }

  void DeleteRow(int32_t id, const t_Struktur& row) {
    const int32_t description = DescriptionOf(row);
    // The item's cascade deletes its variables, but their lines live in the text database,
    // which the tables of the LV database cannot reach.
    const std::vector<int32_t> variables =
        row.KzBgBeschr == 'B' ? std::vector<int32_t>{} : VariablesOfItem(db_, row.IdBgBeschr);
    if (!rows_.GetKey(KeyNumber(id), '1')) return;
    if (int result = rows_.DeleteRec(); result != storage::kOk) {
      Fail(db_, RowName(row) + " kann nicht gelöscht werden", result, &rows_);
    }
    DeleteVariableLines(row, variables);
    if (on_removed_ && description != kNullId) on_removed_(description);
    if (text_db_ == nullptr || description == kNullId) return;
    TTbTexte short_texts(*text_db_);
    TTbTextHeader long_texts(*text_db_);
    int result = short_texts.DeleteOwner(description, kShortTextKind);
    for (char kind : {kShortTextKind, kLongTextKind}) {
      if (result == storage::kOk) result = long_texts.DeleteOwner(description, kind);
    }
    if (result != storage::kOk) {
      Fail(*text_db_, "die Texte von " + RowName(row) + " können nicht gelöscht werden", result);
    }
  }

  void DeleteVariableLines(const t_Struktur& row, const std::vector<int32_t>& variables) {
    if (text_db_ == nullptr) return;
    TTbTexte lines(*text_db_);
    for (const int32_t variable : variables) {
      if (int result = lines.DeleteOwner(variable, kVariableTextKind); result != storage::kOk) {
        Fail(*text_db_,
             "die Texte der Variablen von " + RowName(row) + " können nicht gelöscht werden",
             result);
      }
    }
  }

  data::TStdDb& db_;
  data::TStdDb* text_db_;
  TLVPosList& list_;
  const DescriptionRemoved& on_removed_;
  TTbStruktur rows_;
  TTbLvBg groups_;
  TTbLvBeschr items_;
  TTbBeschr descriptions_;
  data::TTbCounter counters_;
  ReservedIds description_ids_;
};

}  // namespace

namespace {

// The ids' shared leading key characters: one walk of that part of an index finds every
// record of the ids (and, when they are spread, others it passes over).
std::string SharedKeyPrefix(const std::set<int32_t>& ids) {
  if (ids.empty()) return {};
  const std::string low = KeyNumber(*ids.begin());
  const std::string high = KeyNumber(*ids.rbegin());
  std::size_t shared = 0;
  while (shared < low.size() && low[shared] == high[shared]) ++shared;
  return low.substr(0, shared);
}

// The records of a table whose unique index starts with the id of one of `ids`, read in
// one walk under one hold, by id.
template <class Table, class Id>
std::unordered_map<int32_t, std::vector<uint8_t>> RecordsOf(const data::TStdDb& db, Table& table,
                                                            const std::set<int32_t>& ids, Id id_of,
                                                            const std::string& what) {
  std::unordered_map<int32_t, std::vector<uint8_t>> found;
  if (ids.empty()) return found;
  std::vector<std::vector<uint8_t>> records;
  if (int result = table.GetBatch(SharedKeyPrefix(ids), '1', records); result != storage::kOk) {
    Fail(db, what + " können nicht gelesen werden", result, &table);
  }
  for (std::vector<uint8_t>& record : records) {
    const int32_t id = id_of(Table::Of(record));
    if (ids.contains(id)) found.emplace(id, std::move(record));
  }
  return found;
}

// The short texts of the descriptions, each as the lines in their order.
std::unordered_map<int32_t, std::vector<std::string>> ShortTextsOf(
    data::TStdDb& text_db, const std::set<int32_t>& descriptions) {
  TTbTexte texts(text_db);
  std::unordered_map<int32_t, std::vector<std::string>> lines;
  const auto records = [&] {
    std::vector<std::vector<uint8_t>> all;
    if (descriptions.empty()) return all;
    if (int result = texts.GetBatch(SharedKeyPrefix(descriptions), '1', all);
        result != storage::kOk) {
      Fail(text_db, "die Kurztexte können nicht gelesen werden", result, &texts);
    }
    return all;
  }();
  for (const std::vector<uint8_t>& record : records) {
    const t_Texte line = TTbTexte::Of(record);
    if (line.KzBezug != kShortTextKind || line.IdLang != kEntryTextLanguage ||
        !descriptions.contains(line.IdBezug)) {
      continue;
    }
    lines[line.IdBezug].push_back(line.Text.Get());
  }
  return lines;
}

// The tables of an LV's entries, each read once in key order: groups, items, their
// descriptions and short texts.
class StoredEntries {
 public:
  StoredEntries(data::TStdDb& lv_db, data::TStdDb* text_db,
                const std::vector<std::vector<uint8_t>>& rows)
      : db_(lv_db) {
    std::set<int32_t> group_ids;
    std::set<int32_t> item_ids;
    for (const std::vector<uint8_t>& record : rows) {
      const t_Struktur row = TTbStruktur::Of(record);
      (row.KzBgBeschr == 'B' ? group_ids : item_ids).insert(row.IdBgBeschr);
    }
    TTbLvBg groups(lv_db);
    TTbLvBeschr items(lv_db);
    const auto entry_id = [](const auto& record) { return record.LvBgBeschr1.ID; };
    groups_ = RecordsOf(lv_db, groups, group_ids, entry_id, "die Gruppen");
    items_ = RecordsOf(lv_db, items, item_ids, entry_id, "die Einträge");
    std::set<int32_t> description_ids;
    const auto add_description = [&](int32_t description) {
      if (description != kNullId) description_ids.insert(description);
    };
    for (const auto& [id, record] : groups_)
      add_description(TTbLvBg::Of(record).LvBgBeschr1.IDBeschr);
    for (const auto& [id, record] : items_)
      add_description(TTbLvBeschr::Of(record).LvBgBeschr1.IDBeschr);
    TTbBeschr descriptions(lv_db);
    descriptions_ = RecordsOf(
        lv_db, descriptions, description_ids, [](const auto& record) { return record.Id; },
        "die Beschreibungen");
    if (text_db != nullptr) short_texts_ = ShortTextsOf(*text_db, description_ids);
  }

  // The group or item data of a row, its unit and short text into the entry; false when
  // the group or item record is missing.
  bool Fill(TLvPos& entry) const {
    const auto& records = entry.IsGroup() ? groups_ : items_;
    const auto found = records.find(entry.Struktur.IdBgBeschr);
    if (found == records.end()) return false;
    if (entry.IsGroup()) {
      const t_LVBg_3000 group = TTbLvBg::Of(found->second);
      entry.DatenHeader = group.Header;
      entry.LvBgBeschr = group.LvBgBeschr1;
      entry.LvBg = group.LvBg2;
    } else {
      const t_LVBeschr_3000 item = TTbLvBeschr::Of(found->second);
      entry.DatenHeader = item.Header;
      entry.LvBgBeschr = item.LvBgBeschr1;
      entry.LvBeschr = item.LvBeschr2;
    }
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    if (const auto unit = descriptions_.find(description); unit != descriptions_.end()) {
      const t_Beschr_DB_VERSION_201601 stored = TTbBeschr::Of(unit->second);
      entry.Unit = stored.Einheit.Get();
      entry.UnitId = stored.IdEinheit;
    }
    if (const auto text = short_texts_.find(description); text != short_texts_.end())
      entry.ShortText = JoinLines(text->second);
    return true;
  }

 private:
  data::TStdDb& db_;
  std::unordered_map<int32_t, std::vector<uint8_t>> groups_;
  std::unordered_map<int32_t, std::vector<uint8_t>> items_;
  std::unordered_map<int32_t, std::vector<uint8_t>> descriptions_;
  std::unordered_map<int32_t, std::vector<std::string>> short_texts_;
};

}  // namespace

TLVPosList LoadLvPosList(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                         bool long_texts) {
  TTbLV headers(lv_db);
  if (!headers.FindLv(lv_id)) Fail(lv_db, "LV " + std::to_string(lv_id) + " gibt es nicht");
  TLVPosList list(headers.Rec());

  TTbStruktur rows(lv_db);
  std::vector<std::vector<uint8_t>> records;
  if (int result = rows.GetBatch(KeyNumber(lv_id), '2', records); result != storage::kOk) {
    Fail(lv_db, "die Einträge des LV " + std::to_string(lv_id) + " können nicht gelesen werden",
         result, &rows);
  }
  const StoredEntries stored(lv_db, text_db, records);
  std::optional<TLongTextStore> long_text_store;
  if (text_db != nullptr && long_texts) long_text_store.emplace(*text_db);
  list.Entries().reserve(records.size());
  for (const std::vector<uint8_t>& record : records) {
    TLvPos entry;
    entry.Struktur = TTbStruktur::Of(record);
    if (!stored.Fill(entry)) {
      Fail(lv_db, RowName(entry.Struktur) + ": " +
                      (entry.IsGroup() ? "die Gruppe" : "der Eintrag") + " fehlt");
    }
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    if (long_text_store && description != kNullId) {
      entry.LongText =
          long_text_store->Read(description, kLongTextKind, kEntryTextLanguage).rich_text;
      entry.LongTextLoaded = true;
      long_text_store->TraceLoad(description, entry.LongText);
    }
    ReferencesFromRecord(entry);
    list.Add(std::move(entry));
  }
  CountReferences(list);
  return list;
}

void SaveLvPosList(data::TStdDb& lv_db, data::TStdDb* text_db, TLVPosList& list,
                   const DescriptionRemoved& on_removed) {
  if (list.FReadOnly())
    Fail(lv_db, "das LV " + std::to_string(list.FLv().FId) + " ist schreibgeschützt");
  ListWriter(lv_db, text_db, list, on_removed).Run();
}

void SaveLvHeader(data::TStdDb& lv_db, const TLVPosList& list) {
  TTbLV headers(lv_db);
  if (!headers.FindLv(list.FLv().FId))
    Fail(lv_db, "LV " + std::to_string(list.FLv().FId) + " gibt es nicht");
  const t_Lv_DB_VERSION_3100 before = headers.Rec();
  const data::TDbRecordHeader header = headers.Rec().Header;
  headers.Rec() = list.FLv();
  headers.Rec().Header = header;
  WriteIfChanged(lv_db, headers, true, before, "LV " + std::to_string(list.FLv().FId));
}

}  // namespace korvan::boq
