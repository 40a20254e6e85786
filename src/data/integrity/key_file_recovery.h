#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "data/tables/std_db.h"
#include "data/tables/table_registry.h"
#include "storage/key_file_rebuild.h"

namespace korvan::data {

// Lends the kernel the keys of records when it rebuilds a key file whose writer ended
// without closing it: the table classes build them, as for a rebuild of the whole
// database. Installed for its lifetime (one per program run). Each rebuild is told to
// the user on `tell` and, once the installation is known, written as an integrity log
// into its "SYS" folder.
class TKeyFileRecovery : public storage::RecordKeySource {
 public:
  TKeyFileRecovery(std::ostream& tell, const TTableRegistry& registry);
  ~TKeyFileRecovery() override;
  TKeyFileRecovery(const TKeyFileRecovery&) = delete;
  TKeyFileRecovery& operator=(const TKeyFileRecovery&) = delete;

  bool Knows(char db_type) const override;
  bool KeysOf(char db_type, int key_length, const uint8_t* record, size_t length,
              std::vector<std::string>* keys) override;
  void Tell(const std::string& line) override;

  // Where integrity logs go from now on; lines told before are written there too.
  void SetLogFolder(const std::filesystem::path& folder);
  const std::vector<std::string>& Lines() const { return FLines; }

 private:
  // Table objects need a database object; one stands for all databases of a type.
  struct TypeTables {
    std::unique_ptr<TStdDb> db;
    std::map<char, std::unique_ptr<TStdTB>> tables;
    ~TypeTables();
  };
  TStdTB* TableFor(char db_type, int key_length, char table_type);
  // Writes the lines not yet logged, once a folder is known.
  void WriteLog();

  std::ostream& FTell;
  const TTableRegistry& FRegistry;
  std::map<std::pair<char, int>, TypeTables> FTypes;
  std::vector<std::string> FLines;
  size_t FLogged = 0;  // lines already in a log
  std::filesystem::path FLogFolder;
  storage::RecordKeySource* FPrevious;
};

// Tells the installed recovery (if any) where the installation keeps its logs.
void SetKeyFileRecoveryLogFolder(const std::filesystem::path& folder);

}  // namespace korvan::data
