#include "data/db/db_file_register.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "storage/file/file_names.h"

namespace korvan::data {
namespace {

std::string DataFileName(const std::string& directory, const std::string& name, char type_letter) {
  return storage::DataFileName(storage::DatabaseBasePath(directory, name, type_letter));
}

struct StandardFile {
  const char* name;
  char type_letter;
  std::string_view path_types;
};

constexpr StandardFile kStandardFiles[] = {
    {"DB_Lv", 'A', "OCB"},     {"DB_Kat", 'B', "OCBK"},        {"DB_Texte", 'C', "OCBUK"},
    {"DB_Ris", 'D', "OCBK"},   {"DB_Prop", 'P', "ABC"},        {"DB_Stamm", 'E', "U"},
    {"DB_LvEx", 'M', "OCB"},   {"DB_Rv", 'N', "UCB"},          {"DB_Ansatz", 'H', "OCBK"},
    {"DB_KR", 'R', "U"},       {"DB_KP", 'K', "OCB"},          {"DB_UP", 'S', "U"},
    {"DB_QProjekt", 'W', "U"}, {"DB_UserFelderDef", 'Y', "U"}, {"DB_UserFelder", 'X', "O"},
    {"DB_QOffice", 'U', "U"},  {"DB_Struct", 'F', "O"},        {"DB_CONTRO", 'I', "Y"},
    {"DB_QPR", 'T', "U"},      {"DB_GlobData", 'L', "OUK"},
};

}  // namespace

void TDBFileRegister::RegisterDBFile(const std::string& name, char path_type, char type_letter) {
  entries_.push_back({name, path_type, type_letter});
}

void TDBFileRegister::GetFiles(char path_type, const std::string& directory,
                               std::vector<std::string>& list) const {
  for (const Entry& entry : entries_) {
    if (entry.path_type == path_type) {
      list.push_back(DataFileName(directory, entry.name, entry.type_letter));
    }
  }
}

void TDBFileRegister::GetPathTypes(std::vector<char>& list) const {
  std::vector<char> seen;
  for (const Entry& entry : entries_) {
    if (std::find(seen.begin(), seen.end(), entry.path_type) == seen.end()) {
      seen.push_back(entry.path_type);
    }
  }
  list.insert(list.end(), seen.begin(), seen.end());
}

void RegisterStandardDbFiles(TDBFileRegister& file_register) {
  for (const StandardFile& file : kStandardFiles) {
    for (char path_type : file.path_types) {
      file_register.RegisterDBFile(file.name, path_type, file.type_letter);
    }
  }
}

}  // namespace korvan::data
