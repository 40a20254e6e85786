#include "app/commands/lists/data_module_registry.h"

#include <functional>

#include "app/cli/command_error.h"
#include "data/units/dm_einheit.h"
#include "data/units/dm_waehrung.h"

namespace korvan::app {
namespace {

template <typename Module>
class Handle : public DataModuleHandle {
 public:
  explicit Handle(data::TStdDb& db) : module_(db) {}
  data::TCData& CData() override { return module_.CData1; }
  std::string CheckValue(int column, std::string_view value) const override {
    return module_.CheckValue(column, value);
  }
  const std::string& LastError() const override { return module_.LastError(); }
  Module& module() { return module_; }

 private:
  Module module_;
};

struct ModuleEntry {
  std::string_view name;
  std::unique_ptr<DataModuleHandle> (*make)(data::TStdDb&);
};

template <typename Module>
std::unique_ptr<DataModuleHandle> Make(data::TStdDb& db) {
  auto handle = std::make_unique<Handle<Module>>(db);
  if (!handle->module().Loaded()) {
    throw CommandError("die Liste kann nicht gelesen werden: " + handle->CData().LastError());
  }
  return handle;
}

constexpr ModuleEntry kModules[] = {
    {"waehrung", &Make<data::TdmWaehrung>},
    {"einheit", &Make<data::TdmEinheit>},
};

}  // namespace

std::unique_ptr<DataModuleHandle> MakeDataModule(std::string_view name, data::TStdDb& db) {
  for (const ModuleEntry& entry : kModules) {
    if (entry.name == name) return entry.make(db);
  }
  return nullptr;
}

bool IsDataModule(std::string_view name) {
  for (const ModuleEntry& entry : kModules) {
    if (entry.name == name) return true;
  }
  return false;
}

std::string DataModuleNames() {
  std::string names;
  for (const ModuleEntry& entry : kModules) {
    names += (names.empty() ? "" : ", ") + std::string(entry.name);
  }
  return names;
}

}  // namespace korvan::app
