// Every table class of the program is registered: a class left out would be rebuilt
// without keys, skipped by the integrity check and not found by undo.
#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>

#include "app/program/program_tables.h"
#include "data/db/db_types.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;

// The class name of an object without its namespaces: "TTbWaehrung".
std::string ClassNameOf(const data::TStdTB& table) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(typeid(table).name(), nullptr, nullptr, &status), &std::free);
  const std::string full = status == 0 ? name.get() : typeid(table).name();
  const size_t colon = full.rfind("::");
  return colon == std::string::npos ? full : full.substr(colon + 2);
}

// The classes the sources of the program derive from the table base, directly or through
// another table class.
std::set<std::string> TableClassesInSources() {
  const std::regex declaration(R"(class\s+(\w+)\s*(?:final\s*)?:\s*public\s+([\w:]+))");
  std::multimap<std::string, std::string> bases;  // base -> derived
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(KORVAN_SOURCE_DIR)) {
    const fs::path extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    std::ifstream file(entry.path());
    std::stringstream text;
    text << file.rdbuf();
    const std::string source = text.str();
    for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end; ++it) {
      std::string base = (*it)[2];
      if (const size_t colon = base.rfind("::"); colon != std::string::npos) {
        base = base.substr(colon + 2);
      }
      bases.emplace(base, (*it)[1]);
    }
  }
  std::set<std::string> found;
  std::vector<std::string> open{"TStdTB", "TTypedTB"};
  while (!open.empty()) {
    const std::string base = open.back();
    open.pop_back();
    for (auto [it, end] = bases.equal_range(base); it != end; ++it) {
      if (found.insert(it->second).second) open.push_back(it->second);
    }
  }
  found.erase("TTypedTB");
  return found;
}

// The class of every table the program registers, over all database types.
std::set<std::string> RegisteredTableClasses() {
  korvan::testing::TempDir dir;
  std::set<std::string> classes;
  for (const data::DbTypeDefinition& type : data::StandardDbTypes()) {
    data::TStdDb db("DB_Test", dir.path().string(), type.letter, type.key_length);
    for (const auto& table : ProgramTables().CreateTables(db)) classes.insert(ClassNameOf(*table));
  }
  data::TStdDbDatas::Instance().ReleaseEmpty();
  return classes;
}

TEST(ProgramTables, EveryTableClassOfTheSourcesIsRegistered) {
  const std::set<std::string> declared = TableClassesInSources();
  ASSERT_TRUE(declared.contains("TTbCounter")) << "the source scan finds no table classes";
  const std::set<std::string> registered = RegisteredTableClasses();
  for (const std::string& name : declared) {
    EXPECT_TRUE(registered.contains(name))
        << name << " is a table class but no library registers it (Register...Tables)";
  }
}

TEST(ProgramTables, ModulesAndDumpFormatsOfTheMasterData) {
  EXPECT_EQ(ProgramTables().ModuleNames(),
            (std::vector<std::string>{"waehrung", "einheit", "rebformel"}));
  for (const char letter : {'W', 'E', 'Z', 'V'}) {
    EXPECT_NE(ProgramTables().FindDumpFormat('E', letter), nullptr) << letter;
  }
  // A letter registered for every type is found in any; one of another type is not.
  data::TTableRegistry registry;
  registry.RegisterDumpFormat('W', ProgramTables().FindDumpFormat('E', 'W')->layout[0]);
  registry.RegisterDumpFormat('K', 'R', ProgramTables().FindDumpFormat('E', 'E')->layout[0]);
  EXPECT_NE(registry.FindDumpFormat('K', 'W'), nullptr);
  EXPECT_EQ(registry.FindDumpFormat('K', 'R')->layout,
            ProgramTables().FindDumpFormat('E', 'E')->layout);
  EXPECT_EQ(registry.FindDumpFormat('E', 'R'), nullptr);
}

}  // namespace
}  // namespace korvan::app
