#include "data/component/table_list_module.h"

#include <algorithm>
#include <cstring>

#include "data/common/cp1252.h"
#include "data/common/date_time.h"
#include "data/integrity/table_damage.h"
#include "data/tables/concurrency_question.h"
#include "storage/db_error_translate.h"
#include "storage/lock_wait.h"
#include "storage/record_header.h"
#include "storage/result_codes.h"

namespace korvan::data {

TTableListModule::TTableListModule(int cdata_id, std::string name, TStdTB& table,
                                   std::span<const TValueRule> rules, std::string noun)
    : TSTDdataModule(cdata_id, std::move(name)),
      table_(table),
      rules_(rules),
      noun_(std::move(noun)) {}

std::string TTableListModule::CheckValue(int column, std::string_view value) const {
  if (column < 0 || static_cast<size_t>(column) >= rules_.size()) return "keine Spalte";
  return FitsRule(rules_[column], value) ? std::string() : ExpectedForm(rules_[column]);
}

bool TTableListModule::Refuse(std::string message) {
  last_error_ = std::move(message);
  return false;
}

int TTableListModule::CheckedRowCount(int rows) {
  last_error_ = DescribeTableDamage(table_, rows);
  return last_error_.empty() ? rows : -1;
}

bool TTableListModule::CheckRow(const TCData& sender, TStringList& t) {
  if (t.size() < rules_.size()) t.resize(rules_.size());
  for (int column = 0; static_cast<size_t>(column) < rules_.size(); ++column) {
    if (const std::string form = CheckValue(column, t[column]); !form.empty()) {
      return Refuse("Spalte \"" + sender.GetFeldName(column) + "\": erwartet " + form +
                    ", nicht \"" + t[column] + "\"");
    }
  }
  return true;
}

// The record is read again just before it is written, so the kernel's own conflict check
// cannot see a change made after the row was shown; comparing the values it shows now
// with those the user edited does.
bool TTableListModule::MayOverwrite(TCData& sender, int z, const TStringList& shown) {
  TStringList now;
  bool mark = false;
  char button = ' ';
  char kind = ' ';
  CData1C_OnGetDaten(sender, z, now, mark, button, kind);  // leaves the record loaded
  TStringList before = shown;
  now.resize(rules_.size());
  before.resize(rules_.size());
  if (now == before) return true;
  const std::vector<uint8_t>& record = table_.CurrentRecord();
  storage::TDbRecordHeader header{};
  std::memcpy(&header, record.data(), std::min(record.size(), sizeof header));
  const size_t length = std::min<size_t>(header.ModifiedById[0], sizeof header.ModifiedById - 1);
  const std::string user = table_.Db().UserName(
      Cp1252ToUtf8({reinterpret_cast<const char*>(header.ModifiedById + 1), length}));
  const std::string when = FormatDateTime(header.LastModified);
  IConcurrencyQuestion* question = table_.Db().ConcurrencyQuestion();
  if (question != nullptr && question->AskOverwrite(ConcurrencyQuestionText(
                                 table_.Db().Name(), table_.CurrentRecordToString(), when, user))) {
    return true;
  }
  return Refuse("Die " + noun_ + " " + RowName(now) + " wurde inzwischen am " + when + " von \"" +
                user + "\" geändert; nichts gespeichert, die Änderung bleibt erhalten");
}

// The record stays locked (under its name in the database's lock file) from the moment
// it is read for the store until it is written: another user storing the same record
// meanwhile waits up to LOCK_TIMEOUT, then is refused.
bool TTableListModule::LockForStore(TCData& sender, int z) {
  storage::GiveUpAfterTimeOut wait;
  const int locked = table_.LockRec(&wait);
  if (locked == storage::kOk) return true;
  return Refuse("Die " + noun_ + " der Zeile " + std::to_string(z) + " (" + sender.GetKey(z) +
                ") wird gerade von einem anderen Benutzer gespeichert; nichts gespeichert: " +
                storage::KernelErrorTranslate().GetErrorString(locked));
}

void TTableListModule::CData1C_OnPutDaten(TCData& sender, int z, TStringList& t,
                                          const TStringList& shown, char, bool& ok) {
  last_error_.clear();
  ok = false;
  if (!CheckRow(sender, t)) return;
  const std::string old_key = sender.GetKey(z);
  const std::string new_key = RowKey(t);
  if (new_key != old_key && table_.ExistsRec(new_key, '1')) {
    Refuse(DuplicateText(t));
    return;
  }
  if (old_key.empty()) {
    table_.InitRecord();
  } else if (!table_.GetKey(old_key, '1')) {
    Refuse("Die " + noun_ + " der Zeile " + std::to_string(z) + " gibt es nicht mehr");
    return;
  } else if (!LockForStore(sender, z) || !MayOverwrite(sender, z, shown)) {
    table_.UnLockRec();
    return;
  }
  Fill(t);
  const int stored = table_.UpDateRec();
  table_.UnLockRec();
  if (stored != storage::kOk) {
    Refuse("Die " + noun_ + " " + RowName(t) +
           " kann nicht gespeichert werden: " + table_.LastErrorText());
    return;
  }
  if (new_key != old_key) sender.SetKey(z, new_key);
  ok = true;
}

void TTableListModule::CData1C_OnDeleteZeile(TCData&, int, const std::string& key, TOnDeleteMode,
                                             bool& ok) {
  last_error_.clear();
  ok = table_.GetKey(key, '1') && table_.DeleteRec() == storage::kOk;
  if (!ok) {
    Refuse("Die " + noun_ + " " + key + " kann nicht gelöscht werden: " + table_.LastErrorText());
  }
}

}  // namespace korvan::data
