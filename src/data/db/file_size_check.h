#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace korvan::data {

// Bit of the global option word that turns the size check off.
inline constexpr uint32_t kSkipFileSizeCheck = 0x1000;

// The limit used for the warning when a project is opened.
inline constexpr int64_t kFileSizeWarningLimit = 1073741824;

// The data files' hard limit: a record position is a signed 32-bit number.
inline constexpr int64_t kFileSizeHardLimit = 2147483647;

// Compares the size of every file with the limit. A file at or above it adds one
// message to `messages`: at the hard limit catalogue text 46233, otherwise up to
// 1.5 GB "Datei "%s" ist größer als 1 GB", above that "Datei "%s" erreicht mit %f GB
// bald die max Größe von 2 GB". Files that do not exist pass. Returns true when every
// file passed; does nothing and returns true when `option_word` has kSkipFileSizeCheck.
bool CheckFileSizes(const std::vector<std::string>& files, int64_t limit,
                    std::vector<std::string>& messages, uint32_t option_word = 0);

}  // namespace korvan::data
