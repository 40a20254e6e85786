#include "app/commands/currency/currency_commands.h"

#include "app/commands/currency/currency_command.h"

namespace korvan::app {

void AddCurrencyCommands(CommandList& commands) {
  commands.push_back(std::make_unique<CurrencyCommand>());
}

}  // namespace korvan::app
