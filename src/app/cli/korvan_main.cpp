#include "app/cli/korvan_main.h"

#include <algorithm>
#include <exception>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command.h"
#include "app/cli/command_error.h"

#ifndef KORVAN_VERSION
#define KORVAN_VERSION "0.0.0"
#endif

namespace korvan::app {

namespace {

constexpr const char* kDescription =
    "Korvan - Ausschreibung, Vergabe, Abrechnung (AVA) for the construction trade";

bool IsOption(const std::string& arg) {
  return !arg.empty() && arg[0] == '-';
}

const Command* FindCommand(const std::vector<std::unique_ptr<Command>>& commands,
                           const std::string& name) {
  for (const auto& command : commands) {
    if (command->Name() == name) return command.get();
  }
  return nullptr;
}

int UnknownCommand(const std::string& name, std::ostream& err) {
  err << "korvan: unbekannter Befehl '" << name << "' ('korvan --help' listet die Befehle)\n";
  return kExitUsage;
}

// `korvan help [command]`: the program's or one command's help text.
int PrintHelp(CLI::App& app, const std::vector<std::string>& topic, std::ostream& out,
              std::ostream& err) {
  if (topic.empty()) {
    out << app.help();
    return kExitOk;
  }
  CLI::App* sub = nullptr;
  try {
    sub = app.get_subcommand(topic.front());
  } catch (const CLI::OptionNotFound&) {
    return UnknownCommand(topic.front(), err);
  }
  out << sub->help();
  return kExitOk;
}

}  // namespace

int RunKorvan(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  CLI::App app{kDescription, "korvan"};
  app.set_version_flag("--version", std::string("korvan ") + KORVAN_VERSION);
  app.require_subcommand(0, 1);
  app.fallthrough(false);

  std::vector<std::unique_ptr<Command>> commands = AllCommands();
  std::vector<std::pair<CLI::App*, Command*>> subs;
  for (auto& command : commands) {
    CLI::App* sub = app.add_subcommand(command->Name(), command->Summary());
    command->Define(*sub);
    subs.emplace_back(sub, command.get());
  }
  std::vector<std::string> help_topic;
  CLI::App* help = app.add_subcommand("help", "show the help of the program or of one command");
  help->add_option("command", help_topic, "command to explain")->expected(0, 1);

  if (!args.empty() && !IsOption(args.front()) && args.front() != "help" &&
      !FindCommand(commands, args.front())) {
    return UnknownCommand(args.front(), err);
  }

  try {
    std::vector<std::string> reversed(args.rbegin(), args.rend());
    app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    CLI::App* chosen = app.get_subcommands().empty() ? &app : app.get_subcommands().front();
    out << chosen->help();
    return kExitOk;
  } catch (const CLI::CallForVersion& e) {
    out << e.what() << "\n";
    return kExitOk;
  } catch (const CLI::ParseError& e) {
    err << "korvan: " << e.what() << "\n";
    return kExitUsage;
  }

  if (help->parsed()) return PrintHelp(app, help_topic, out, err);
  if (app.get_subcommands().empty()) {
    out << app.help();
    return kExitOk;
  }

  Streams streams{out, err};
  for (auto& [sub, command] : subs) {
    if (!sub->parsed()) continue;
    try {
      return command->Run(streams);
    } catch (const UsageError& e) {
      err << "korvan " << command->Name() << ": " << e.what() << "\n";
      return kExitUsage;
    } catch (const std::exception& e) {
      err << "korvan " << command->Name() << ": " << e.what() << "\n";
      return kExitFailure;
    }
  }
  return kExitOk;
}

}  // namespace korvan::app
