#pragma once

#include <filesystem>
#include <optional>

#include "storage/kernel_settings.h"

namespace korvan::app {

// The folder below the user directory that text tracing writes to.
inline constexpr const char* kTraceFolderName = "TRACE";

// The storage start of a one-shot command, in the order the long-running program takes
// it: the database types registered, the version of new data files set, then the kernel
// settings ([DBKERNEL] of "Helvio.ini") of the installation at `base_dir` read and put in
// force, so that the lock time-out, the cache settings and conflict detection hold for
// every command. Without an installation (or without the file) the defaults hold. When
// the system settings switch text tracing on, long texts are traced to the user's
// "TRACE" folder.
// Throws std::runtime_error naming the file when it exists but cannot be read.
storage::KernelSettings StartCommandStorage(const std::optional<std::filesystem::path>& base_dir);

// The installation a database file belongs to: the nearest folder above `base_path`
// that holds an installation's "SYSTEM" folder; none when there is none.
std::optional<std::filesystem::path> InstallationAbove(const std::filesystem::path& base_path);

}  // namespace korvan::app
