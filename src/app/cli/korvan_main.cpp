#include "app/cli/korvan_main.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command.h"
#include "app/cli/command_error.h"
#include "app/cli/german_help.h"
#include "app/cli/parse_error_text.h"
#include "app/program/command_startup.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "boq/text/long_text_trace.h"
#include "data/integrity/key_file_recovery.h"

#ifndef KORVAN_VERSION
#define KORVAN_VERSION "0.0.0"
#endif

namespace korvan::app {

namespace {

constexpr const char* kDescription =
    "Korvan - Ausschreibung, Vergabe, Abrechnung (AVA) für das Bauwesen";

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

// The names of the commands below `app`: "create, info, dump".
std::string CommandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
    names += (names.empty() ? "" : ", ") + sub->get_name();
  }
  return names;
}

// A command with commands of its own ("korvan db frobnicate"): the parser would only say
// that one is missing, not which word it did not know.
int UnknownSubcommand(const CLI::App& command, const std::string& name, std::ostream& err) {
  err << "korvan " << command.get_name() << ": unbekannter Unterbefehl '" << name
      << "' (bekannt: " << CommandNames(command) << ")\n";
  return kExitUsage;
}

// The command of `app` that the parser took, or nullptr.
const CLI::App* ParsedCommand(const CLI::App& app) {
  for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (sub->parsed()) return sub;
  }
  return nullptr;
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

// The installation whose settings a command runs under: its -d/--data directory, or for
// the commands on one database the installation the database lies in.
std::optional<std::filesystem::path> InstallationOf(const CLI::App& sub) {
  if (const CLI::Option* data = sub.get_option_no_throw("--data")) {
    return data->count() > 0 ? std::filesystem::path(data->results().front())
                             : std::filesystem::path(DefaultDataDir());
  }
  if (const CLI::Option* base = sub.get_option_no_throw("basis"); base && base->count() > 0) {
    return InstallationAbove(base->results().front());
  }
  for (const CLI::App* operation : sub.get_subcommands()) {
    if (std::optional<std::filesystem::path> found = InstallationOf(*operation)) return found;
  }
  return std::nullopt;
}

// A trace file that could not be written is worth one warning, not a failed command.
void WarnOfTraceProblem(std::ostream& err) {
  if (std::optional<std::string> problem = boq::TLongTextTrace::Instance().TakeProblem()) {
    err << "Warnung: Textprotokoll nicht geschrieben: " << *problem << "\n";
  }
}

}  // namespace

int RunKorvan(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  CLI::App app{kDescription, "korvan"};
  UseGermanHelp(app);
  app.set_version_flag("--version", std::string("korvan ") + KORVAN_VERSION,
                       "zeigt die Version des Programms");
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
  CLI::App* help = app.add_subcommand("help", "zeigt die Hilfe des Programms oder eines Befehls");
  help->add_option("befehl", help_topic, "der Befehl, der erklärt wird")->expected(0, 1);
  GroupHelpFlags(app);

  if (!args.empty() && !IsOption(args.front()) && args.front() != "help" &&
      !FindCommand(commands, args.front())) {
    return UnknownCommand(args.front(), err);
  }
  if (args.size() >= 2 && !IsOption(args.front()) && !IsOption(args[1])) {
    const CLI::App* command = app.get_subcommand(args.front());
    const bool has_commands =
        !command->get_subcommands([](const CLI::App*) { return true; }).empty();
    if (has_commands &&
        command->get_subcommands([&](const CLI::App* sub) { return sub->get_name() == args[1]; })
            .empty()) {
      return UnknownSubcommand(*command, args[1], err);
    }
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
    const CLI::App* command = ParsedCommand(app);
    err << "korvan" << (command ? " " + command->get_name() : std::string()) << ": "
        << GermanParseError(e);
    if (command && e.get_name() == "RequiredError" && !CommandNames(*command).empty()) {
      err << " (" << CommandNames(*command) << ")";
    }
    err << "\n";
    return kExitUsage;
  }

  if (help->parsed()) return PrintHelp(app, help_topic, out, err);
  if (app.get_subcommands().empty()) {
    out << app.help();
    return kExitOk;
  }

  Streams streams{out, err};
  // A key file whose writer ended without closing it is rebuilt when it is opened.
  data::TKeyFileRecovery key_file_recovery(err, ProgramTables());
  for (auto& [sub, command] : subs) {
    if (!sub->parsed()) continue;
    try {
      StartCommandStorage(InstallationOf(*sub));
      const int exit_code = command->Run(streams);
      WarnOfTraceProblem(err);
      return exit_code;
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
