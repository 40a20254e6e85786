#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/config/ini_file.h"
#include "storage/kernel_settings.h"

namespace korvan::data {

inline constexpr std::string_view kHelvioIniFileName = "Helvio.ini";

// The shared configuration file read at start-up: the kernel settings in [DBKERNEL] and
// [DEFAULTINFO] "REGEN_CHECK". Read only; a missing file means every default.
class THelvioIni {
 public:
  THelvioIni() = default;

  // Reads the file; a missing file gives the defaults. Lines that cannot be read and
  // an invalid "REGEN_CHECK" are listed in Warnings(). EAvaConfigError when the file
  // exists but cannot be read.
  static THelvioIni Load(const std::filesystem::path& file);

  // The file in `directory`, whichever way its name is cased ("Helvio.ini",
  // "HELVIO.INI", ...); the usual spelling when there is none.
  static std::filesystem::path FindIn(const std::filesystem::path& directory);

  // The text of a [DBKERNEL] key (nullopt when missing); independent of this object's
  // lifetime. The storage layer checks the values itself.
  storage::SettingLookup KernelSettingLookup() const;

  // The kernel settings of the file: invalid or missing values give their defaults.
  storage::KernelSettings KernelSettings() const {
    return storage::ReadKernelSettings(KernelSettingLookup());
  }

  // Whether the rebuild checks of the integrity check are offered; true unless the
  // file says 0.
  bool RegenCheck() const { return regen_check_; }

  const std::vector<IniProblem>& Warnings() const { return warnings_; }

 private:
  IniFile tree_;
  bool regen_check_ = true;
  std::vector<IniProblem> warnings_;
};

}  // namespace korvan::data
