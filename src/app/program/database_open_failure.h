#pragma once

// What a command tells its user when a database of the installation does not open.

#include <string>
#include <string_view>

namespace korvan::app {

// Where to go from a damaged database, said after every report of damage.
inline constexpr std::string_view kDamageAdvice =
    "\"korvan check\" zeigt, was beschädigt ist; \"korvan rebuild\" baut die Datenbank aus "
    "ihrer Datendatei neu auf.";

// The file an open failure is about: the key file for the key file's codes, the data
// file otherwise.
std::string FileOfOpenFailure(const std::string& base_path, int code);

// "<file>: <reason>", followed by the advice when the key file is damaged (a rebuild
// makes it anew from the data file).
std::string DatabaseOpenFailureText(const std::string& base_path, int code);

}  // namespace korvan::app
