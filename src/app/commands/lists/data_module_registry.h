#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "data/component/c_data.h"
#include "data/tables/std_db.h"

namespace korvan::app {

// A data module as the command line drives it: its component, the check of a value
// against a column and the reason of its last refusal.
class DataModuleHandle {
 public:
  virtual ~DataModuleHandle() = default;
  virtual data::TCData& CData() = 0;
  // Empty when `value` fits column `column`, else the expected form in words.
  virtual std::string CheckValue(int column, std::string_view value) const = 0;
  virtual const std::string& LastError() const = 0;
};

// The data module called `name` ("waehrung", "einheit") on the master-data database,
// loaded; nullptr for a name no module has. CommandError when its rows cannot be read.
std::unique_ptr<DataModuleHandle> MakeDataModule(std::string_view name, data::TStdDb& db);
// Whether a module is called `name`.
bool IsDataModule(std::string_view name);
// The names of all modules, for messages: "waehrung, einheit".
std::string DataModuleNames();

}  // namespace korvan::app
