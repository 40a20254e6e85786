#include "app/cli/german_help.h"

#include <memory>

namespace korvan::app {

void UseGermanHelp(CLI::App& app) {
  auto formatter = std::make_shared<CLI::Formatter>();
  formatter->label("Usage", "Aufruf");
  formatter->label("OPTIONS", "OPTIONEN");
  formatter->label("SUBCOMMAND", "BEFEHL");
  formatter->label("SUBCOMMANDS", "BEFEHLE");
  formatter->label("Positionals", "Argumente");
  formatter->label("REQUIRED", "PFLICHT");
  formatter->label("Needs", "braucht");
  formatter->label("Excludes", "nicht zusammen mit");
  formatter->label("Env", "Umgebungsvariable");
  formatter->label("TEXT", "TEXT");
  formatter->label("INT", "ZAHL");
  formatter->label("UINT", "ZAHL");
  formatter->label("FLOAT", "ZAHL");
  app.formatter(formatter);
  app.option_defaults()->group("Optionen");
  app.group("Befehle");
  app.set_help_flag("-h,--help", "zeigt diese Hilfe");
}

void GroupHelpFlags(CLI::App& app) {
  for (CLI::App* sub : app.get_subcommands([](CLI::App*) { return true; })) {
    if (CLI::Option* flag = sub->get_help_ptr()) flag->group("Optionen");
    GroupHelpFlags(*sub);
  }
}

}  // namespace korvan::app
