#include "desktop/desk_program.h"

#include <QApplication>
#include <QSocketNotifier>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command.h"
#include "app/cli/german_help.h"
#include "app/cli/parse_error_text.h"
#include "app/program/data_dir.h"
#include "app/program/startup.h"
#include "desktop/main_window.h"
#include "desktop/screenshots.h"

namespace korvan::desktop {
namespace {

struct DeskOptions {
  std::string data_dir;
  bool skip_instance_check = false;
  std::string screenshots;
  std::vector<std::string> parameters;
};

std::string ProgramPath(const char* argv0) {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string(argv0) : path.string();
}

// The installation a handed-over command line names with -d or --data; empty when none.
std::string DataDirOf(const std::vector<std::string>& lines) {
  for (size_t i = 1; i + 1 < lines.size(); ++i) {
    if (lines[i] == "-d" || lines[i] == "--data") return lines[i + 1];
  }
  return {};
}

int MessageLoop(QApplication& application, app::ProgramStartup& startup, MainWindow& window) {
  app::InstanceServer* server = startup.Server();
  std::unique_ptr<QSocketNotifier> notifier;
  if (server != nullptr) {
    notifier = std::make_unique<QSocketNotifier>(server->fd(), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &window, [&] {
      server->ServePending([&window](const std::vector<std::string>& lines) {
        if (const std::string dir = DataDirOf(lines); !dir.empty()) window.OpenInstallation(dir);
        window.raise();
        window.activateWindow();
        return app::HandOverAnswer{};
      });
    });
  }
  window.show();
  const int exit_code = application.exec();
  notifier.reset();
  // Starts that arrive while the window closes run as full instances themselves.
  if (server != nullptr) {
    server->ServePending(
        [](const std::vector<std::string>&) { return app::HandOverAnswer{.terminated = true}; });
  }
  return exit_code;
}

}  // namespace

int RunDesk(int argc, char** argv) {
  QApplication application(argc, argv);  // takes Qt's own options out of argv
  application.setApplicationName(QString::fromStdString(std::string(app::kApplicationTitle)));
  DeskOptions options;
  CLI::App cli("Korvan am Bildschirm: LV, Angebote, Preisspiegel und Vergabe in einem Fenster",
               "korvan-desk");
  app::AddDataDirOption(cli, options.data_dir);
  cli.add_flag("--skipinstancecheck", options.skip_instance_check,
               "startet auch, wenn schon eine Instanz läuft");
  cli.add_option("--screenshots", options.screenshots,
                 "schreibt Bilder der Hauptansichten als PNG in dieses Verzeichnis und endet");
  cli.add_option("parameter", options.parameters, "Parameter für die laufende Instanz");
  app::UseGermanHelp(cli);
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    std::cout << cli.help();
    return app::kExitOk;
  } catch (const CLI::ParseError& error) {
    std::cerr << "korvan-desk: " << app::GermanParseError(error) << '\n';
    return app::kExitUsage;
  }

  app::StartupOptions startup_options;
  startup_options.base_dir = options.data_dir;
  startup_options.command_line = {ProgramPath(argv[0]), "-d",
                                  std::filesystem::absolute(options.data_dir).string()};
  startup_options.command_line.insert(startup_options.command_line.end(),
                                      options.parameters.begin(), options.parameters.end());
  // Pictures are taken by a window of their own, whatever else runs.
  startup_options.skip_instance_check = options.skip_instance_check || !options.screenshots.empty();

  std::unique_ptr<MainWindow> window;
  app::ShellHooks hooks;
  hooks.create_main_modules = [&](app::ProgramStartup&) {
    window = std::make_unique<MainWindow>();
    window->SetQuiet(!options.screenshots.empty());
    window->OpenInstallation(options.data_dir);
  };
  hooks.message_loop = [&](app::ProgramStartup& startup) {
    if (!options.screenshots.empty()) {
      return WriteScreenshots(*window, options.screenshots, std::cerr) ? app::kExitOk
                                                                       : app::kExitFailure;
    }
    return MessageLoop(application, startup, *window);
  };
  app::Streams streams{std::cout, std::cerr};
  try {
    app::ProgramStartup startup(std::move(startup_options), streams, std::move(hooks));
    return startup.Run();
  } catch (const std::exception& error) {
    std::cerr << app::kErrorCaption << ": " << error.what() << '\n';
    return app::kExitFailure;
  }
}

}  // namespace korvan::desktop
