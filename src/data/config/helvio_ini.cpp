#include "data/config/helvio_ini.h"

#include <memory>
#include <system_error>

#include "data/config/config_value.h"

namespace korvan::data {
namespace {

constexpr std::string_view kDbKernel = "DBKERNEL";
constexpr std::string_view kDefaultInfo = "DEFAULTINFO";
constexpr std::string_view kRegenCheck = "REGEN_CHECK";

}  // namespace

THelvioIni THelvioIni::Load(const std::filesystem::path& file) {
  THelvioIni helvio;
  auto tree = IniFile::Load(file, &helvio.warnings_);
  if (!tree) return helvio;
  helvio.tree_ = std::move(*tree);
  if (const auto text = helvio.tree_.Get(kDefaultInfo, kRegenCheck)) {
    const auto value = ParseConfigBool(*text);
    if (value) {
      helvio.regen_check_ = *value;
    } else {
      helvio.warnings_.push_back({file.filename().string(),
                                  helvio.tree_.LineNumber(kDefaultInfo, kRegenCheck),
                                  "[DEFAULTINFO] \"REGEN_CHECK\": ungültiger Wert \"" + *text +
                                      "\", es gilt der Vorgabewert"});
    }
  }
  return helvio;
}

std::filesystem::path THelvioIni::FindIn(const std::filesystem::path& directory) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
    if (IniNamesEqual(entry.path().filename().string(), kHelvioIniFileName)) return entry.path();
  }
  return directory / kHelvioIniFileName;
}

storage::SettingLookup THelvioIni::KernelSettingLookup() const {
  auto tree = std::make_shared<const IniFile>(tree_);
  return [tree](std::string_view key) { return tree->Get(kDbKernel, key); };
}

}  // namespace korvan::data
