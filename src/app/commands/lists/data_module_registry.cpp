#include "app/commands/lists/data_module_registry.h"

#include "app/cli/command_error.h"
#include "app/program/database_open_failure.h"

namespace korvan::app {

std::unique_ptr<data::TTableListModule> MakeDataModule(const data::TTableRegistry& tables,
                                                       std::string_view name, data::TStdDb& db) {
  const data::TTableRegistry::ModuleFactory* factory = tables.FindModule(name);
  if (factory == nullptr) return nullptr;
  std::unique_ptr<data::TTableListModule> module = (*factory)(db);
  if (!module->Loaded()) {
    const std::string& damage = module->LastError();
    if (damage.empty()) {
      throw CommandError("die Liste kann nicht gelesen werden: " + module->CData1.LastError());
    }
    throw CommandError("die Liste kann nicht gelesen werden: " + damage + "\n" +
                       std::string(kDamageAdvice));
  }
  return module;
}

bool IsDataModule(const data::TTableRegistry& tables, std::string_view name) {
  return tables.FindModule(name) != nullptr;
}

std::string DataModuleNames(const data::TTableRegistry& tables) {
  std::string names;
  for (const std::string& name : tables.ModuleNames()) {
    names += (names.empty() ? "" : ", ") + name;
  }
  return names;
}

}  // namespace korvan::app
