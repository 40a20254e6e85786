#include "app/commands/admin/config_command.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string_view>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/program/data_dir.h"
#include "app/program/installation.h"
#include "data/config/ini_file.h"

namespace korvan::app {

namespace fs = std::filesystem;

namespace {

// One of the three configuration objects, seen through what the command needs.
struct ConfigFile {
  std::string_view option;  // "--system", ...
  data::TBaseConfig* config;
  fs::path file;
  // Whether the object would accept `text` for the key; the object stays unchanged.
  std::function<bool(std::string_view section, std::string_view key, std::string_view text)>
      accepts;
};

template <typename Config>
ConfigFile Describe(std::string_view option, Config& config, fs::path file) {
  auto accepts = [&config](std::string_view section, std::string_view key, std::string_view text) {
    Config probe = config;
    try {
      return probe.SetFromText(section, key, text);
    } catch (const data::EAvaConfigError&) {
      return false;
    }
  };
  return ConfigFile{option, &config, std::move(file), accepts};
}

std::vector<ConfigFile> Files(Installation& installation) {
  const data::TMachineConfig& machine = installation.machine;
  return {Describe("--system", installation.system, machine.SysConfigFile()),
          Describe("--machine", installation.machine, machine.MachineConfigFile()),
          Describe("--user", installation.user, machine.UserConfigFile())};
}

bool HasKey(const data::TBaseConfig& config, std::string_view section, std::string_view key) {
  for (const auto& entry : config.Entries()) {
    if (data::IniNamesEqual(entry.section, section) && data::IniNamesEqual(entry.key, key)) {
      return true;
    }
  }
  return false;
}

std::string_view Source(const ConfigFile& file, const data::TBaseConfig::TConfigEntry& entry) {
  const auto text = file.config->Tree().Get(entry.section, entry.key);
  if (!text) return "Vorgabe";
  return file.accepts(entry.section, entry.key, *text) ? "Datei"
                                                       : "Vorgabe; Wert in Datei ungültig";
}

// The accepted whole numbers of an integer key form one range around 0; its ends are
// found by bisection.
int64_t HighestAccepted(const std::function<bool(int64_t)>& accepts, int64_t low, int64_t high) {
  while (low < high) {
    const int64_t middle = low + (high - low + 1) / 2;
    if (accepts(middle)) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
}

int64_t LowestAccepted(const std::function<bool(int64_t)>& accepts, int64_t low, int64_t high) {
  while (low < high) {
    const int64_t middle = low + (high - low) / 2;
    if (accepts(middle)) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return high;
}

// What kind of text the key takes, found by trying typical values on a copy.
std::string ExpectedValue(const ConfigFile& file, std::string_view section, std::string_view key) {
  const auto accepts = [&](std::string_view text) { return file.accepts(section, key, text); };
  if (accepts("1,1,1,1,1,1,1,1,1,1") && !accepts("1")) {
    return accepts("true,true,true,true,true,true,true,true,true,true")
               ? "zehn Wahrheitswerte (0 oder 1), durch Komma getrennt"
               : "zehn ganze Zahlen, durch Komma getrennt";
  }
  if (accepts("true")) return "0 oder 1";
  if (accepts("1.5")) return "eine Zahl, z. B. 1.95583";
  if (accepts("20091217") && !accepts("20091399")) return "ein Datum JJJJMMTT oder 0";
  if (accepts("0")) {
    const auto accepts_number = [&](int64_t n) { return accepts(std::to_string(n)); };
    const int64_t low = LowestAccepted(accepts_number, INT32_MIN, 0);
    const int64_t high = HighestAccepted(accepts_number, 0, UINT32_MAX);
    return "eine ganze Zahl von " + std::to_string(low) + " bis " + std::to_string(high);
  }
  if (accepts("a") && !accepts("ab")) return "ein einzelnes Zeichen";
  return "ein gültiger Wert";
}

}  // namespace

void ConfigCommand::Define(CLI::App& app) {
  app.require_subcommand(1, 1);
  const auto add_file_options = [this](CLI::App* sub) {
    AddDataDirOption(*sub, data_dir_);
    auto* system = sub->add_flag("--system", system_, "die Systemkonfiguration (Q_System.ini)");
    auto* machine =
        sub->add_flag("--machine", machine_, "die Rechnerkonfiguration (Q_Machine.ini)");
    auto* user = sub->add_flag("--user", user_, "die Benutzerkonfiguration (Q_User.ini)");
    system->excludes(machine)->excludes(user);
    machine->excludes(user);
  };
  show_ = app.add_subcommand("show", "zeigt jede Einstellung mit ihrem Wert und ihrer Herkunft");
  add_file_options(show_);
  set_ = app.add_subcommand("set", "prüft und speichert einen Wert");
  add_file_options(set_);
  set_->add_option("schluessel", key_, "<Abschnitt>.<Schlüssel>, z. B. Strings.OZFormat")
      ->required();
  set_->add_option("wert", value_, "der neue Wert")->required();
}

int ConfigCommand::Run(Streams& streams) {
  if (set_->parsed()) return Set(streams);
  return Show(streams);
}

int ConfigCommand::Show(Streams& streams) const {
  Installation installation = LoadInstallation(data_dir_);
  const bool all = !system_ && !machine_ && !user_;
  for (const ConfigFile& file : Files(installation)) {
    const bool chosen = all || (file.option == "--system" && system_) ||
                        (file.option == "--machine" && machine_) ||
                        (file.option == "--user" && user_);
    if (!chosen) continue;
    std::error_code error;
    const bool exists = fs::exists(file.file, error);
    streams.out << "# " << file.file.string() << (exists ? "" : " (Datei fehlt)") << "\n";
    for (const auto& entry : file.config->Entries()) {
      streams.out << entry.section << "." << entry.key << " = " << entry.value << " ("
                  << Source(file, entry) << ")\n";
    }
    for (const auto& warning : file.config->Warnings()) {
      streams.err << "Warnung: " << warning.ToString() << "\n";
    }
  }
  return kExitOk;
}

int ConfigCommand::Set(Streams& streams) const {
  const auto dot = key_.find('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == key_.size()) {
    throw UsageError("Schlüssel \"" + key_ + "\" muss die Form <Abschnitt>.<Schlüssel> haben");
  }
  const std::string section = key_.substr(0, dot);
  const std::string key = key_.substr(dot + 1);

  Installation installation = LoadInstallation(data_dir_);
  std::vector<ConfigFile> candidates;
  for (ConfigFile& file : Files(installation)) {
    const bool restricted = system_ || machine_ || user_;
    const bool chosen = (file.option == "--system" && system_) ||
                        (file.option == "--machine" && machine_) ||
                        (file.option == "--user" && user_);
    if (restricted && !chosen) continue;
    if (HasKey(*file.config, section, key)) candidates.push_back(file);
  }
  if (candidates.empty()) throw UsageError("unbekannter Schlüssel \"" + key_ + "\"");
  if (candidates.size() > 1) {
    std::string options;
    for (const ConfigFile& file : candidates) {
      options += (options.empty() ? "" : " oder ") + std::string(file.option);
    }
    throw UsageError("Schlüssel \"" + key_ + "\" gibt es in mehreren Dateien; " + options +
                     " wählen");
  }
  const ConfigFile& target = candidates.front();
  try {
    target.config->SetFromText(section, key, value_);
  } catch (const data::EAvaConfigError&) {
    throw UsageError("ungültiger Wert \"" + value_ + "\" für \"" + key_ +
                     "\"; erwartet: " + ExpectedValue(target, section, key));
  }
  std::error_code error;
  fs::create_directories(target.file.parent_path(), error);
  if (error) {
    throw CommandError("Verzeichnis \"" + target.file.parent_path().string() +
                       "\" kann nicht angelegt werden: " + error.message());
  }
  target.config->SaveAs(target.file);
  for (const auto& entry : target.config->Entries()) {
    if (data::IniNamesEqual(entry.section, section) && data::IniNamesEqual(entry.key, key)) {
      streams.out << entry.section << "." << entry.key << " = " << entry.value << " ("
                  << target.file.string() << ")\n";
    }
  }
  return kExitOk;
}

}  // namespace korvan::app
