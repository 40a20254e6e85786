#pragma once

#include <cstdint>
#include <string>

namespace korvan::app {

// A path as messages about an installation show it: relative to the installation's base
// directory when it lies below it, else as it is. Directories keep their trailing
// separator.
std::string DisplayPath(const std::string& base_dir, const std::string& path);

// "1 Datensatz", "3 Datensätze": a count with the noun in singular or plural.
std::string CountOf(int64_t count, const char* singular, const char* plural);

}  // namespace korvan::app
