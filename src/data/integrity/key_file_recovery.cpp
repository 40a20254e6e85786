#include "data/integrity/key_file_recovery.h"

#include <cstring>
#include <exception>

#include "data/integrity/integrity_log.h"
#include "storage/db_kernel_codes.h"
#include "storage/record_header.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

constexpr char kRecoveryGroup[] = "DB_TEMP";

}  // namespace

TKeyFileRecovery::TypeTables::~TypeTables() {
  tables.clear();  // the tables leave their database object first
}

TKeyFileRecovery::TKeyFileRecovery(std::ostream& tell, const TTableRegistry& registry)
    : FTell(tell), FRegistry(registry), FPrevious(storage::SetRecordKeySource(this)) {}

TKeyFileRecovery::~TKeyFileRecovery() {
  storage::SetRecordKeySource(FPrevious);
}

bool TKeyFileRecovery::Knows(char db_type) const {
  return !FRegistry.TablesOf(db_type).empty();
}

TStdTB* TKeyFileRecovery::TableFor(char db_type, int key_length, char table_type) {
  TypeTables& type = FTypes[{db_type, key_length}];
  if (!type.db) type.db = std::make_unique<TStdDb>(kRecoveryGroup, "", db_type, key_length);
  auto found = type.tables.find(table_type);
  if (found != type.tables.end()) return found->second.get();
  const TTableRegistry::Factory* factory = FRegistry.Find(db_type, table_type);
  std::unique_ptr<TStdTB> table = factory ? (*factory)(*type.db) : nullptr;
  return (type.tables[table_type] = std::move(table)).get();
}

bool TKeyFileRecovery::KeysOf(char db_type, int key_length, const uint8_t* record, size_t length,
                              std::vector<std::string>* keys) {
  if (length < sizeof(storage::TDbRecordHeader)) return false;
  storage::TDbRecordHeader header{};
  std::memcpy(&header, record, sizeof header);
  TStdTB* table = TableFor(db_type, key_length, header.RecTyp);
  if (table == nullptr) return false;
  const RecordView view(record, length);
  TRecordKeys built;
  if (!table->NeedsConversion(header, static_cast<int>(length))) {
    built = table->BuildKeys(view);
  } else {
    std::vector<uint8_t> current;
    if (table->Convert(view, current) != storage::kOk) return false;
    built = table->BuildKeys(RecordView(current.data(), current.size()));
  }
  for (size_t i = 0; i < built.keys.size(); ++i) {
    if (built.entered[i]) keys->push_back(built.keys[i]);
  }
  return true;
}

void TKeyFileRecovery::Tell(const std::string& line) {
  FTell << "korvan: " << line << "\n";
  FLines.push_back(line);
  WriteLog();
}

void TKeyFileRecovery::SetLogFolder(const std::filesystem::path& folder) {
  FLogFolder = folder;
  WriteLog();
}

void TKeyFileRecovery::WriteLog() {
  if (FLogFolder.empty() || FLogged == FLines.size()) return;
  TDiLogItem item;
  item.FDatabaseName = "Schlüsseldateien";
  item.FRecordCountResult.assign(FLines.begin() + static_cast<std::ptrdiff_t>(FLogged),
                                 FLines.end());
  FLogged = FLines.size();
  try {
    AddLogToFile({item}, FLogFolder);
  } catch (const std::exception& error) {
    FTell << "korvan: " << error.what() << "\n";
  }
}

void SetKeyFileRecoveryLogFolder(const std::filesystem::path& folder) {
  if (auto* recovery = dynamic_cast<TKeyFileRecovery*>(storage::CurrentRecordKeySource())) {
    recovery->SetLogFolder(folder);
  }
}

}  // namespace korvan::data
