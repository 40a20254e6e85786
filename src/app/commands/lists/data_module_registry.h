#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "data/component/table_list_module.h"
#include "data/tables/std_db.h"
#include "data/tables/table_registry.h"

namespace korvan::app {

// The data module of `tables` called `name` ("waehrung", "einheit") on the master-data
// database, loaded; nullptr for a name no module has. CommandError when its rows cannot
// be read.
std::unique_ptr<data::TTableListModule> MakeDataModule(const data::TTableRegistry& tables,
                                                       std::string_view name, data::TStdDb& db);
// Whether a module of `tables` is called `name`.
bool IsDataModule(const data::TTableRegistry& tables, std::string_view name);
// The names of all modules of `tables`, for messages: "waehrung, einheit".
std::string DataModuleNames(const data::TTableRegistry& tables);

}  // namespace korvan::app
