#include "data/config/machine_config.h"

#include <unistd.h>

#include <system_error>

namespace korvan::data {
namespace {

constexpr std::string_view kDirectories = "Directories";

// A computer or user name becomes one directory level, never a path.
std::string DirectoryName(std::string name) {
  for (char& c : name) {
    if (c == '/' || c == '\\' || c == '\0') c = '_';
  }
  if (name.empty() || name == "." || name == "..") return "_";
  return name;
}

std::string Below(const std::string& directory, std::string_view name) {
  return WithTrailingSeparator(directory) + std::string(name) + "/";
}

// The directory containing `path`, which names a directory itself.
std::string ParentDirectory(const std::string& path) {
  std::filesystem::path p(path);
  if (!p.has_filename()) p = p.parent_path();
  return WithTrailingSeparator(p.parent_path().string());
}

bool IsDirectory(const std::string& path) {
  std::error_code ignored;
  return !path.empty() && std::filesystem::is_directory(path, ignored);
}

std::string ExistingOrEmpty(std::string path) {
  return IsDirectory(path) ? path : std::string();
}

}  // namespace

TMachineEnvironment TMachineEnvironment::FromProcess() {
  TMachineEnvironment environment;
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  environment.ProgrammDirectory = error ? std::filesystem::current_path(error).string() + "/"
                                        : executable.parent_path().string() + "/";
  return environment;
}

// One directory: its key in the file, its field and how it is derived when the file
// does not name it. Rules only look at directories of earlier rules.
struct TMachineConfig::DirectoryRule {
  std::string_view key;
  std::string TMachineConfig::*field;
  std::string (*derive)(const TMachineConfig& config);
};

const std::vector<TMachineConfig::DirectoryRule>& TMachineConfig::Rules() {
  using C = TMachineConfig;
  static const std::vector<DirectoryRule> rules = {
      {"ProgrammDirectory", &C::FProgrammdirectory,
       [](const C& c) { return WithTrailingSeparator(c.environment_.ProgrammDirectory); }},
      {"BasisDirectory", &C::FBasisDirectory,
       [](const C& c) {
         const std::string& system_path = c.environment_.ConfiguredSystemPath;
         return system_path.empty() ? c.FProgrammdirectory : ParentDirectory(system_path);
       }},
      {"SystemDirectory", &C::FSystemDirectory,
       [](const C& c) {
         const std::string& system_path = c.environment_.ConfiguredSystemPath;
         return system_path.empty() ? Below(c.FBasisDirectory, "SYSTEM")
                                    : WithTrailingSeparator(system_path);
       }},
      {"MachineStammDirectory", &C::FMachineStammDirectory,
       [](const C& c) { return Below(c.FSystemDirectory, "MACHINE"); }},
      {"MachineDirectory", &C::FMachineDirectory,
       [](const C& c) { return Below(c.FMachineStammDirectory, DirectoryName(c.MachineName())); }},
      {"UserStammDirectory", &C::FUserStammDirectory,
       [](const C& c) { return Below(c.FSystemDirectory, "USER"); }},
      {"UserDirectory", &C::FUserDirectory,
       [](const C& c) { return Below(c.FUserStammDirectory, DirectoryName(c.SystemUserName())); }},
      {"ClipDirectory", &C::FClipDirectory,
       [](const C& c) { return Below(c.FUserDirectory, "TEMP"); }},
      {"SysStammDirectory", &C::FSysStammDirectory,
       [](const C& c) { return Below(c.FSystemDirectory, "SYS"); }},
      {"SysDictionaryDirectory", &C::FSysDictionaryDirectory,
       [](const C& c) { return Below(c.FSysStammDirectory, "DICTIONARY"); }},
      {"SysHeilerDirectory", &C::FSysHeilerDirectory,
       [](const C& c) { return Below(c.FSysStammDirectory, "HEILER"); }},
      {"ObjektstammDirectory", &C::FObjektstammDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "PROJEKTE"); }},
      // Left empty rather than created when the folder is missing.
      {"KatalogDirectory", &C::FKatalogDirectory,
       [](const C& c) { return ExistingOrEmpty(Below(c.FObjektstammDirectory, "BSP-KAT")); }},
      {"StammprojektDirectory", &C::FStammprojektDirectory,
       [](const C& c) { return ExistingOrEmpty(Below(c.FObjektstammDirectory, "STAMMPROJEKT")); }},
      // Set when a project is opened.
      {"ObjektDirectory", &C::FObjektDirectory, [](const C& c) { return c.FObjektDirectory; }},
      {"ExtObjektDirectory", &C::FExtObjektDirectory,
       [](const C& c) { return c.FExtObjektDirectory; }},
      {"StammDatenDirectory", &C::FStammDatenDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "STAMMDATEN"); }},
      {"AusdruckDirectory", &C::FAusdruckDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "AUSDRUCK"); }},
      {"LayoutDirectory", &C::FLayoutDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "LAYOUT"); }},
      {"ClipBlockDirectory", &C::FClipBlockDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "BLOCKDATEN"); }},
      {"PictureDirectory", &C::FPictureDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "PICTURE"); }},
      {"BackupStammDirectory", &C::FBackupStammDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "AUTOSAVE"); }},
      {"FormularDirectory", &C::FFormularDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "FOR"); }},
      {"HelpDirectory", &C::FHelpDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "HLP"); }},
      {"OnlineHelpDirectory", &C::FOnlineHelpDirectory,
       [](const C& c) {
         const std::string& root = c.environment_.OnlineHelpRoot;
         return root.empty() ? c.FHelpDirectory : Below(root, "HLP");
       }},
      {"StlbDirectory", &C::FStlbDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "STLB"); }},
      // Both kinds of standard texts share one folder by design.
      {"StlkDirectory", &C::FStlkDirectory,
       [](const C& c) { return Below(c.FBasisDirectory, "STLB"); }},
      {"LocalUserConfigDirectory", &C::FLocalUserConfigDirectory,
       [](const C& c) { return c.FLocalUserConfigDirectory; }},
      {"GAEBToolboxDirectory", &C::FGAEBToolboxDirectory,
       [](const C& c) { return c.FGAEBToolboxDirectory; }},
      {"LastIFCImportDirectory", &C::FLastIFCImportDirectory,
       [](const C& c) { return c.FLastIFCImportDirectory; }},
  };
  return rules;
}

TMachineConfig::TMachineConfig(const TConfigContext& context, TMachineEnvironment environment)
    : TBaseConfig(context, "Machine"), environment_(std::move(environment)) {
  DeriveDirectories();
}

TMachineConfig TMachineConfig::Open(const TConfigContext& context,
                                    TMachineEnvironment environment) {
  TMachineConfig config(context, std::move(environment));
  config.Load(config.MachineConfigFile());
  return config;
}

void TMachineConfig::BindValues(TConfigBindings& bindings) {
  for (const DirectoryRule& rule : Rules()) bindings.Add(kDirectories, rule.key, this->*rule.field);
}

void TMachineConfig::AfterLoad() {
  DeriveDirectories();
}

void TMachineConfig::DeriveDirectories() {
  for (const DirectoryRule& rule : Rules()) {
    std::string& field = this->*rule.field;
    const auto named = Tree().Get(kDirectories, rule.key);
    field = named && !named->empty() ? WithTrailingSeparator(*named) : rule.derive(*this);
  }
}

std::filesystem::path TMachineConfig::MachineConfigFile() const {
  return std::filesystem::path(FMachineDirectory) / kMachineConfigFileName;
}

std::filesystem::path TMachineConfig::SysConfigFile() const {
  return std::filesystem::path(FSysStammDirectory) / kSysConfigFileName;
}

std::filesystem::path TMachineConfig::UserConfigFile() const {
  return std::filesystem::path(FUserDirectory) / kUserConfigFileName;
}

std::vector<TMachineConfig::TDirectoryEntry> TMachineConfig::Directories() const {
  std::vector<TDirectoryEntry> entries;
  for (const DirectoryRule& rule : Rules()) entries.push_back({rule.key, this->*rule.field});
  return entries;
}

TMachineData TMachineConfig::MachineData() const {
  return {FProgrammdirectory,    FBasisDirectory,
          FSystemDirectory,      FMachineStammDirectory,
          FMachineDirectory,     FUserStammDirectory,
          FUserDirectory,        FClipDirectory,
          FSysStammDirectory,    FSysDictionaryDirectory,
          FSysHeilerDirectory,   FObjektstammDirectory,
          FKatalogDirectory,     FStammprojektDirectory,
          FObjektDirectory,      FExtObjektDirectory,
          FStammDatenDirectory,  FAusdruckDirectory,
          FLayoutDirectory,      FClipBlockDirectory,
          FPictureDirectory,     FBackupStammDirectory,
          FFormularDirectory,    FHelpDirectory,
          FOnlineHelpDirectory,  FStlbDirectory,
          FStlkDirectory,        FLocalUserConfigDirectory,
          FGAEBToolboxDirectory, FLastIFCImportDirectory};
}

DatabaseDirectories TMachineConfig::ToDatabaseDirectories() const {
  DatabaseDirectories directories;
  directories.system_directory = FSystemDirectory;
  directories.objekt_directory = FObjektDirectory;
  directories.formular_directory = FFormularDirectory;
  directories.stammdaten_directory = FStammDatenDirectory;
  directories.katalog_directory = FKatalogDirectory;
  directories.clip_block_directory = FClipBlockDirectory;
  directories.clip_directory = FClipDirectory;
  return directories;
}

std::string TMachineConfig::DirectoryReport() const {
  std::string report;
  for (const TDirectoryEntry& entry : Directories()) {
    const bool exists = IsDirectory(entry.path);
    const char* state = entry.path.empty() ? "leer" : exists ? "vorhanden" : "fehlt";
    const bool readable = exists && ::access(entry.path.c_str(), R_OK | X_OK) == 0;
    const bool writable = exists && ::access(entry.path.c_str(), W_OK | X_OK) == 0;
    report.append(entry.key).append(":\t").append(entry.path);
    report.append(" (").append(state).append(")");
    report.append(" Read: ").append(readable ? "True" : "False");
    report.append(" Write: ").append(writable ? "True" : "False").append("\n");
  }
  return report;
}

}  // namespace korvan::data
