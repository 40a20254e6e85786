#include "boq/model/lv_pos_list_io.h"

#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_beschr.h"
#include "boq/lv/tb_lv.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "boq/lv/tb_struktur.h"
#include "boq/text/long_text_store.h"
#include "boq/text/tb_text_header.h"
#include "boq/text/tb_texte.h"
#include "data/common/result_code_text.h"
#include "data/records/null_values.h"
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

// The group or item data of a row into the entry; false when the record is missing.
bool ReadEntryData(TTbLvBg& groups, TTbLvBeschr& items, TLvPos& entry) {
  const std::string key = KeyNumber(entry.Struktur.IdBgBeschr);
  if (entry.IsGroup()) {
    if (!groups.GetKey(key, '1')) return false;
    entry.DatenHeader = groups.Rec().Header;
    entry.LvBgBeschr = groups.Rec().LvBgBeschr1;
    entry.LvBg = groups.Rec().LvBg2;
    return true;
  }
  if (!items.GetKey(key, '1')) return false;
  entry.DatenHeader = items.Rec().Header;
  entry.LvBgBeschr = items.Rec().LvBgBeschr1;
  entry.LvBeschr = items.Rec().LvBeschr2;
  return true;
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
  ListWriter(data::TStdDb& lv_db, data::TStdDb* text_db, TLVPosList& list)
      : db_(lv_db),
        text_db_(text_db),
        list_(list),
        rows_(lv_db),
        groups_(lv_db),
        items_(lv_db),
        descriptions_(lv_db),
        counters_(lv_db) {}

  void Run() {
    const int32_t lv_id = list_.FLv().FId;
    std::map<int32_t, t_Struktur> stored = StoredRows(lv_id);
    std::map<int32_t, int32_t> children_of;
    std::map<int32_t, int32_t> new_ids;
    for (int i = 0; i < list_.Count(); ++i) {
      TLvPos& entry = list_[i];
      // New entries carry no id or a temporary one below zero, which entries placed
      // below them name as their parent until they get their real one here.
      if (const auto renamed = new_ids.find(entry.Struktur.ZuBg); renamed != new_ids.end()) {
        entry.Struktur.ZuBg = renamed->second;
      }
      if (const auto renamed = new_ids.find(entry.Struktur.ZuPos); renamed != new_ids.end()) {
        entry.Struktur.ZuPos = renamed->second;
      }
      if (entry.Struktur.IdBgBeschr <= 0 || entry.Struktur.IdBgBeschr == kNullId) {
        const int32_t id = NextId(kEntryCounterName);
        if (entry.Struktur.IdBgBeschr < 0) new_ids[entry.Struktur.IdBgBeschr] = id;
        entry.Struktur.IdBgBeschr = id;
      }
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
    }
    for (const auto& [id, row] : stored) DeleteRow(id, row);
  }

 private:
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
    return (text_db_ != nullptr && has_texts) || (entry.UnitChanged && !entry.Unit.empty());
  }

  // A new description carries the entry's unit from the start.
  int32_t NewDescription(const TLvPos& entry) {
    descriptions_.InitRecord();
    descriptions_.Rec().Id = NextId(kDescriptionCounterName);
    descriptions_.Rec().Einheit.Set(entry.Unit);
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
    // A new symbol drops the link to the unit list; it is made again where the list is
    // at hand.
    if (!(descriptions_.Rec().Einheit == before.Einheit))
      descriptions_.Rec().IdEinheit = data::kNullId16;
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
  }

  void DeleteRow(int32_t id, const t_Struktur& row) {
    const int32_t description = DescriptionOf(row);
    if (!rows_.GetKey(KeyNumber(id), '1')) return;
    if (int result = rows_.DeleteRec(); result != storage::kOk) {
      Fail(db_, RowName(row) + " kann nicht gelöscht werden", result, &rows_);
    }
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

  data::TStdDb& db_;
  data::TStdDb* text_db_;
  TLVPosList& list_;
  TTbStruktur rows_;
  TTbLvBg groups_;
  TTbLvBeschr items_;
  TTbBeschr descriptions_;
  data::TTbCounter counters_;
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
  TTbLvBg groups(lv_db);
  TTbLvBeschr items(lv_db);
  TTbBeschr descriptions(lv_db);
  std::optional<TTbTexte> short_texts;
  std::optional<TLongTextStore> long_text_store;
  if (text_db != nullptr) {
    short_texts.emplace(*text_db);
    if (long_texts) long_text_store.emplace(*text_db);
  }
  list.Entries().reserve(records.size());
  for (const std::vector<uint8_t>& record : records) {
    TLvPos entry;
    entry.Struktur = TTbStruktur::Of(record);
    if (!ReadEntryData(groups, items, entry)) {
      Fail(lv_db, RowName(entry.Struktur) + ": " +
                      (entry.IsGroup() ? "die Gruppe" : "der Eintrag") + " fehlt");
    }
    const int32_t description = entry.LvBgBeschr.IDBeschr;
    if (description != kNullId && descriptions.GetKey(KeyNumber(description), '1'))
      entry.Unit = descriptions.Rec().Einheit.Get();
    if (short_texts && description != kNullId) {
      entry.ShortText =
          JoinLines(short_texts->ReadLines(description, kShortTextKind, kEntryTextLanguage));
    }
    if (long_text_store && description != kNullId) {
      entry.LongText =
          long_text_store->Read(description, kLongTextKind, kEntryTextLanguage).rich_text;
      entry.LongTextLoaded = true;
    }
    list.Add(std::move(entry));
  }
  return list;
}

void SaveLvPosList(data::TStdDb& lv_db, data::TStdDb* text_db, TLVPosList& list) {
  if (list.FReadOnly())
    Fail(lv_db, "das LV " + std::to_string(list.FLv().FId) + " ist schreibgeschützt");
  ListWriter(lv_db, text_db, list).Run();
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
