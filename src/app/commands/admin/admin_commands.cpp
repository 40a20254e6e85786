#include "app/commands/admin/admin_commands.h"

#include "app/commands/admin/check_command.h"
#include "app/commands/admin/config_command.h"
#include "app/commands/admin/info_command.h"
#include "app/commands/admin/init_command.h"
#include "app/commands/admin/rebuild_command.h"
#include "app/commands/admin/reorg_command.h"
#include "app/commands/demo/demo_command.h"

namespace korvan::app {

void AddAdminCommands(CommandList& commands) {
  commands.push_back(std::make_unique<DemoCommand>());
  commands.push_back(std::make_unique<InitCommand>());
  commands.push_back(std::make_unique<InfoCommand>());
  commands.push_back(std::make_unique<CheckCommand>());
  commands.push_back(std::make_unique<RebuildCommand>());
  commands.push_back(std::make_unique<ReorgCommand>());
  commands.push_back(std::make_unique<ConfigCommand>());
}

}  // namespace korvan::app
