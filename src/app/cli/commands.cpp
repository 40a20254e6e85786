// The one place where the command groups are put together; each group registers its own
// commands.
#include "app/cli/command.h"
#include "app/commands/admin/admin_commands.h"
#include "app/commands/award/award_command.h"
#include "app/commands/bid/bid_commands.h"
#include "app/commands/calc/calc_commands.h"
#include "app/commands/compare/compare_command.h"
#include "app/commands/contract/contract_commands.h"
#include "app/commands/currency/currency_commands.h"
#include "app/commands/db/db_commands.h"
#include "app/commands/formula/formula_commands.h"
#include "app/commands/gaeb/gaeb_commands.h"
#include "app/commands/lists/list_commands.h"
#include "app/commands/lv/lv_commands.h"
#include "app/commands/oz/oz_commands.h"
#include "app/commands/text/text_commands.h"
#include "app/commands/var/var_commands.h"
#include "app/program/program_commands.h"

namespace korvan::app {

CommandList AllCommands() {
  CommandList commands;
  AddAdminCommands(commands);
  AddDbCommands(commands);
  AddProgramCommands(commands);
  AddListCommands(commands);
  AddLvCommands(commands);
  AddVarCommands(commands);
  AddCalcCommands(commands);
  AddBidCommands(commands);
  AddCompareCommands(commands);
  AddAwardCommands(commands);
  AddContractCommands(commands);
  AddOzCommands(commands);
  AddTextCommands(commands);
  AddCurrencyCommands(commands);
  AddGaebCommands(commands);
  AddFormulaCommands(commands);
  return commands;
}

}  // namespace korvan::app
