#include "boq/units/dm_wae_convert.h"

#include <cstring>
#include <ctime>
#include <fstream>

#include "data/common/message_format.h"
#include "data/records/wae_betrag.h"

namespace korvan::boq {

using data::FieldType;
using data::Printf;

namespace {

void CollectAmounts(const data::RecordLayout& layout, uint32_t base, std::vector<uint32_t>& out) {
  for (const data::FieldDescriptor& field : layout.fields) {
    switch (field.type) {
      case FieldType::kWaeBetrag:
        out.push_back(base + field.offset);
        break;
      case FieldType::kWaeBetragArray:
        for (uint32_t at = 0; at + sizeof(data::t_WaeBetrag) <= field.size;
             at += sizeof(data::t_WaeBetrag)) {
          out.push_back(base + field.offset + at);
        }
        break;
      case FieldType::kNested:
        if (field.nested != nullptr) CollectAmounts(*field.nested, base + field.offset, out);
        break;
      default:
        break;
    }
  }
}

bool IsCurrencyIdField(const data::FieldDescriptor& field) {
  const std::string_view name = field.name;
  const bool integer = field.type == FieldType::kInt16 || field.type == FieldType::kUInt16 ||
                       field.type == FieldType::kInt32;
  return integer && (name == "IdWae" || name == "IdWaehrung");
}

void CollectCurrencyIds(const data::RecordLayout& layout, uint32_t base,
                        std::vector<TdmWaeConvert::TCurrencyIdField>& out) {
  for (const data::FieldDescriptor& field : layout.fields) {
    if (IsCurrencyIdField(field)) out.push_back({base + field.offset, field.size});
    if (field.type == FieldType::kNested && field.nested != nullptr) {
      CollectCurrencyIds(*field.nested, base + field.offset, out);
    }
  }
}

}  // namespace

TdmWaeConvert::TdmWaeConvert(const data::TTableRegistry& tables,
                             const TAvaUiValueConverter& converter, int32_t target_currency)
    : tables_(tables), converter_(converter), target_(target_currency) {}

std::vector<uint32_t> TdmWaeConvert::AmountOffsets(const data::RecordLayout& layout) {
  std::vector<uint32_t> offsets;
  CollectAmounts(layout, 0, offsets);
  return offsets;
}

std::vector<TdmWaeConvert::TCurrencyIdField> TdmWaeConvert::CurrencyIdFields(
    const data::RecordLayout& layout) {
  std::vector<TCurrencyIdField> fields;
  CollectCurrencyIds(layout, 0, fields);
  return fields;
}

int TdmWaeConvert::ConvertDatabase(data::TStdDb& db, const Progress& progress,
                                   TWaeConvertReport& report) {
  for (const std::unique_ptr<data::TStdTB>& table : tables_.CreateTables(db)) {
    const data::TableDumpFormat* format = tables_.FindDumpFormat(db.DbType(), table->TableType());
    if (format == nullptr || format->layout == nullptr ||
        format->layout->size != static_cast<uint32_t>(table->PhysRecLen())) {
      report.lines.push_back(
          Printf("%s, Tabelle %s (%c): kein passendes Feldverzeichnis, "
                 "Beträge nicht umgerechnet",
                 db.Name().c_str(), table->TableName().c_str(), table->TableType()));
      continue;
    }
    const TFields fields{AmountOffsets(*format->layout), CurrencyIdFields(*format->layout)};
    if (fields.amounts.empty() && fields.currency_ids.empty()) continue;
    ++report.tables;
    if (int result = ConvertTable(*table, fields, progress, report); result != 0) return result;
  }
  return 0;
}

int TdmWaeConvert::ConvertTable(data::TStdTB& table, const TFields& fields,
                                const Progress& progress, TWaeConvertReport& report) {
  // Positions first: the walk is not disturbed by the records it rewrites.
  std::vector<std::string> keys;
  std::vector<int32_t> positions;
  if (int result = table.GetKeyBatch("", table.UniqueIndex(), keys, positions); result != 0) {
    report.lines.push_back(table.Db().Name() + ", " + table.TableName() +
                           ": Datensätze nicht lesbar: " + table.LastErrorText());
    return result;
  }
  const int64_t total = static_cast<int64_t>(positions.size());
  for (int64_t done = 0; done < total; ++done) {
    if (progress) progress(table.Db().Name(), done, total);
    if (!table.GetRec(positions[static_cast<size_t>(done)])) {
      report.lines.push_back(table.Db().Name() + ", " + table.TableName() + ": " +
                             table.LastErrorText());
      return table.LastError() != 0 ? table.LastError() : -1;
    }
    if (!ConvertRecord(table, fields, report)) continue;
    if (int result = table.UpDateRec(); result != 0) {
      report.lines.push_back(table.Db().Name() + ", " + table.CurrentRecordToString() +
                             ": nicht gespeichert: " + table.LastErrorText());
      return result;
    }
    ++report.records;
  }
  if (progress) progress(table.Db().Name(), total, total);
  return 0;
}

bool TdmWaeConvert::ConvertRecord(data::TStdTB& table, const TFields& fields,
                                  TWaeConvertReport& report) {
  std::vector<uint8_t>& record = table.CurrentRecord();
  bool changed = SetCurrencyIds(record, fields);
  for (uint32_t offset : fields.amounts) {
    if (offset + sizeof(data::t_WaeBetrag) > record.size()) continue;
    data::t_WaeBetrag amount;
    std::memcpy(&amount, record.data() + offset, sizeof amount);
    if (amount.IdWaehrung == kUnconvertedCurrencyId || amount.IdWaehrung == target_) continue;
    const auto converted =
        converter_.TryConvertCurrencyValue(amount.Betrag, amount.IdWaehrung, target_, true);
    if (!converted) {
      report.lines.push_back(
          Printf("%s, %s: Währung %d unbekannt, Betrag %.4f bleibt", table.Db().Name().c_str(),
                 table.CurrentRecordToString().c_str(), amount.IdWaehrung, amount.Betrag));
      continue;
    }
    amount.Betrag = *converted;
    amount.IdWaehrung = static_cast<int16_t>(target_);
    std::memcpy(record.data() + offset, &amount, sizeof amount);
    ++report.amounts;
    changed = true;
  }
  return changed;
}

bool TdmWaeConvert::SetCurrencyIds(std::vector<uint8_t>& record, const TFields& fields) const {
  bool changed = false;
  for (const TCurrencyIdField& field : fields.currency_ids) {
    if (field.offset + field.size > record.size()) continue;
    if (field.size == sizeof(int16_t)) {
      int16_t id = 0;
      std::memcpy(&id, record.data() + field.offset, sizeof id);
      if (id == static_cast<int16_t>(target_)) continue;
      id = static_cast<int16_t>(target_);
      std::memcpy(record.data() + field.offset, &id, sizeof id);
    } else {
      int32_t id = 0;
      std::memcpy(&id, record.data() + field.offset, sizeof id);
      if (id == target_) continue;
      std::memcpy(record.data() + field.offset, &target_, sizeof target_);
    }
    changed = true;
  }
  return changed;
}

bool AppendWaeConvertLog(const std::string& file, const std::string& user,
                         const std::string& machine, const std::string& from, const std::string& to,
                         const TWaeConvertReport& report) {
  std::ofstream log(file, std::ios::app | std::ios::binary);
  if (!log) return false;
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char date[16];
  char time[16];
  std::strftime(date, sizeof date, "%d.%m.%Y", &local);
  std::strftime(time, sizeof time, "%H:%M:%S", &local);
  log << Printf("[%s %s] User: %s  Machine: %s - %s - %s", date, time, user.c_str(),
                machine.c_str(), from.c_str(), to.c_str())
      << "\r\n";
  for (const std::string& line : report.lines) log << line << "\r\n";
  log << Printf("%lld Datensätze, %lld Beträge umgerechnet", static_cast<long long>(report.records),
                static_cast<long long>(report.amounts))
      << "\r\n";
  log.flush();
  return static_cast<bool>(log);
}

}  // namespace korvan::boq
