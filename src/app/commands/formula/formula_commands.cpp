#include "app/commands/formula/formula_commands.h"

#include "app/commands/formula/formula_command.h"

namespace korvan::app {

void AddFormulaCommands(CommandList& commands) {
  commands.push_back(std::make_unique<FormulaCommand>());
}

}  // namespace korvan::app
